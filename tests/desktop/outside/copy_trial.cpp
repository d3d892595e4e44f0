// What tools/trials kills and starves: the window opens a drawing, changes it and keeps its copy against a crash, over
// and over. copy_trial DRAWING PROFILE ROUNDS BYTES: "ready" is printed behind the first copy, then no file may grow
// longer than BYTES; 0: no limit. It ends as a crash does, and leaves its copy.
#include <sys/resource.h>
#include <unistd.h>

#include <QApplication>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "desktop/files/drawing_file.h"
#include "desktop/session.h"
#include "desktop/window/main_window.h"

using namespace quorvel;

namespace {

bool changeAndCopy(desktop::Session* session, desktop::DrawingFile* file) {
    const bool isChanged = session->host().edit("Move", [](doc::Document& document) {
        return document.transform(document.find(document.layer(document.layers().front())->root)->firstChild,
                                  {1, 0, 0, 1, 1, 0}, 1);
    });
    file->autosave();
    return isChanged;
}

void limitFiles(rlim_t bytes) {
    if (bytes == 0) return;
    const rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) return 2;
    QApplication program(argc, argv);
    QApplication::setApplicationName(QStringLiteral("quorvel-desktop"));
    QApplication::setOrganizationName(QStringLiteral("Selkie Works"));
    app::SessionOptions options;
    options.profile = argv[2];
    options.seed = 1;
    desktop::Session session(options, {});
    if (!session.start()) return 2;
    desktop::MainWindow window(&session);
    if (!window.file().open(QFile::decodeName(argv[1])) || !changeAndCopy(&session, &window.file())) return 2;
    std::puts("ready");
    std::fflush(stdout);
    limitFiles(std::strtoull(argv[4], nullptr, 10));
    for (int round = 0; round < std::atoi(argv[3]); ++round)
        if (!changeAndCopy(&session, &window.file())) return 2;
    _exit(0);
}
