// What it costs to open a drawing of 100,000 paths (30 MB) and to save it with one path more, beside rsvg-convert
// making a small picture of the same file in the same run. Each is a process of its own, so that its peak memory is its
// own; they take turns, and the median of five counts. Run bench_svg_file; it takes a minute.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "app/sentences.h"
#include "files/file_writer.h"
#include "interchange/svg/svg.h"

namespace {

using namespace quorvel;

constexpr int kTurns = 5;
constexpr double kMostLoad = 0.10, kMostLoadAndSave = 0.20, kMostMemory = 0.5;  // of rsvg-convert's
constexpr double kMostReadBack = 1.5;                                           // of loading and saving without it

struct Cost {
    double seconds = 0;
    double megabytes = 0;
};

Cost run(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0) {
        std::fprintf(stderr, "%s failed\n", arguments[0]);
        std::exit(2);
    }
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    return {took.count(), static_cast<double>(usage.ru_maxrss) / 1024};
}

Cost median(std::vector<Cost> costs) {
    std::ranges::sort(costs, {}, &Cost::seconds);
    Cost result = costs[costs.size() / 2];
    for (const Cost& cost : costs) result.megabytes = std::max(result.megabytes, cost.megabytes);
    return result;
}

// The work of a child: load, and save with one path more when a target is given. readsBack: as all saving does.
int work(const char* path, const char* target, bool readsBack) {
    Result<interchange::SvgDrawing> read = interchange::readSvgFile(path);
    if (!read) {
        std::fprintf(stderr, "%s\n", app::sentence(read.error(), app::Language::english).c_str());
        return 2;
    }
    if (target == nullptr) _exit(0);  // a program that ends does not tidy up
    doc::Document& document = *read->document;
    const doc::ArtId added = document.insertArt(kPathArt, kPlaceAboveAll, 0);
    const PathSegment ends[] = {{{10, 10}, {10, 10}, {10, 10}, 1}, {{90, 50}, {90, 50}, {90, 50}, 1}};
    document.setSegments(added, 0, ends);
    const Status saved = readsBack ? interchange::saveSvgFile(document, target, "")
                                   : files::writeFile(target, interchange::writeSvg(document));
    if (!saved) {
        std::fprintf(stderr, "%s\n", app::sentence(saved.error(), app::Language::english).c_str());
        return 2;
    }
    _exit(0);
}

bool report(const char* what, double ratio, double most, const char* of = "rsvg-convert's") {
    std::printf("%-28s %.3f of %s (at most %.2f)  %s\n", what, ratio, of, most, ratio <= most ? "PASS" : "FAIL");
    return ratio <= most;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc >= 3 && std::strcmp(argv[1], "--work") == 0) return work(argv[2], argc > 3 ? argv[3] : nullptr, argc == 4);
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("svg_file-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    const std::string drawing = folder / "paths.svg";
    run({QUORVEL_SOURCE_DIR "/tools/make_paths", "100000", drawing});
    std::printf("%.1f MB, 100000 paths\n", static_cast<double>(std::filesystem::file_size(drawing)) / 1e6);

    const std::string self = std::filesystem::read_symlink("/proc/self/exe");
    std::vector<Cost> load, both, unread, picture;
    for (int turn = 0; turn < kTurns; ++turn) {
        load.push_back(run({self, "--work", drawing}));
        both.push_back(run({self, "--work", drawing, folder / "saved.svg"}));
        unread.push_back(run({self, "--work", drawing, folder / "saved.svg", "--unread"}));
        picture.push_back(run({"rsvg-convert", "-w", "400", drawing, "-o", folder / "picture.png"}));
    }
    std::filesystem::remove_all(folder);
    const Cost a = median(load), b = median(both), d = median(unread), c = median(picture);
    std::printf("load          %6.3f s  %6.1f MB\n", a.seconds, a.megabytes);
    std::printf("load + save   %6.3f s  %6.1f MB\n", b.seconds, b.megabytes);
    std::printf("not read back %6.3f s  %6.1f MB\n", d.seconds, d.megabytes);
    std::printf("rsvg-convert  %6.3f s  %6.1f MB\n", c.seconds, c.megabytes);
    bool good = report("time to load", a.seconds / c.seconds, kMostLoad);
    good &= report("time to load and save", b.seconds / c.seconds, kMostLoadAndSave);
    good &= report("time to load, save, read back", b.seconds / d.seconds, kMostReadBack, "that without reading back");
    good &= report("peak memory, load", a.megabytes / c.megabytes, kMostMemory);
    good &= report("peak memory, load and save", b.megabytes / c.megabytes, kMostMemory);
    return good ? 0 : 1;
}
