// Reads the command line; exports without a window, or opens one.
#include "desktop/program.h"

#include <unistd.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QProcess>
#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "app/sentences.h"
#include "desktop/files/image_messages.h"
#include "desktop/session.h"
#include "desktop/window/color_scheme.h"
#include "desktop/window/main_window.h"
#include "files/file_writer.h"
#include "files/termination.h"
#include "interchange/svg/svg.h"
#include "render/export.h"

namespace quorvel::desktop {

namespace {

constexpr int kExitOk = 0, kExitBadInput = 2;

// The language of everything that is said before a session knows its own.
app::Language languageAsked = app::Language::english;

int fail(const Error& error) {
    std::fprintf(stderr, "%s\n", app::sentence(error, languageAsked).c_str());
    return kExitBadInput;
}

int fail(ErrorCode code, const QString& place) { return fail(makeError(code).inFile(place.toStdString())); }

// The arguments as bytes: the names of files need be no text.
class ArgumentBytes {
  public:
    ArgumentBytes(int argc, char** argv) : all_(argv + 1, argv + argc) {}

    // Those of an argument, or of an option's value behind "=". Of several that are alike as texts each is given once.
    std::string take(const QString& word) {
        for (auto argument = all_.begin(); argument != all_.end(); ++argument) {
            std::string bytes = *argument;
            if (argument->starts_with("--") && argument->find('=') != std::string::npos)
                bytes = argument->substr(argument->find('=') + 1);
            if (QString::fromLocal8Bit(bytes.c_str()) != word) continue;
            all_.erase(argument);
            return bytes;
        }
        return QFile::encodeName(word).toStdString();
    }

  private:
    std::vector<std::string> all_;
};

// Each drawing goes to the name given, or, when that begins with a dot (".pdf"), beside itself under its own name.
int exportAll(const std::string& output, const render::ExportTarget& like, const std::vector<std::string>& files,
              const QStringList& imageFolders) {
    namespace fs = std::filesystem;
    const host::Host measuring;  // texts measure as they do while the plug-in runs
    for (const std::string& file : files) {
        const bool isBeside = output.starts_with('.') && output.find('/') == std::string::npos;
        render::ExportTarget target = like;
        target.file = isBeside ? fs::path(file).replace_extension(output).string() : output;
        target.path = QFile::decodeName(target.file.c_str());
        std::error_code isAbsent;
        if (file != "-" && target.file != "-" && fs::equivalent(file, target.file, isAbsent))
            return fail(makeError(ErrorCode::kExportOntoDrawing).inFile(target.file));
        const Result<interchange::SvgDrawing> read = interchange::readSvgFile(file);
        if (!read) return fail(Error(read.error()).inFile(file));
        std::vector<Error> warnings;
        const QString folder = QFileInfo(QFile::decodeName(file.c_str())).absolutePath();
        const Status exported =
            render::exportDrawing(*read->document, render::ImageAccess(folder, imageFolders), target, &warnings);
        if (!exported) return fail(Error(exported.error()).inFile(target.file));
        for (const std::string& warning : app::warningSentences(warnings, languageAsked))
            std::fprintf(stderr, "%s: %s\n", file.c_str(), warning.c_str());
    }
    return kExitOk;
}

// A window holds one drawing; the drawing asked for comes in a window of its own beside the recovered one.
void openBeside(const app::SessionOptions& options, const QString& file, const QStringList& imageFolders) {
    QStringList arguments{QStringLiteral("--no-recovery")};
    const auto add = [&](const char* name, const std::string& value) {
        if (!value.empty()) arguments << QLatin1String(name) + QString::fromStdString(value);
    };
    add("--profile=", options.profile);
    add("--language=", options.language);
    for (const QString& folder : imageFolders) arguments << QStringLiteral("--allow-files=") + folder;
    if (options.skipsBackups) arguments << QStringLiteral("--no-backup");
    QProcess::startDetached(QCoreApplication::applicationFilePath(), arguments << QStringLiteral("--") << file);
}

int openWindow(QApplication& program, const app::SessionOptions& options, const std::string& recordFile,
               ColorScheme scheme, bool asksRecovery, const QStringList& files, const QStringList& imageFolders) {
    applyColorScheme(&program, scheme);
    Session session(options, recordFile);
    if (const Status started = session.start(); !started) return fail(started.error());
    languageAsked = session.language();
    int status = kExitOk;
    {
        MainWindow window(&session, imageFolders);
        window.show();
        const bool isRecovered = asksRecovery && window.file().offerRecovery();
        if (!files.isEmpty() && isRecovered) openBeside(options, files.front(), imageFolders);
        if (!files.isEmpty() && !isRecovered) window.file().open(files.front());
        status = program.exec();
    }
    const Status ended = session.shutdown();
    if (ended) return status;
    QMessageBox::warning(nullptr, QStringLiteral("Quorvel"), session.say(ended.error()));
    return fail(ended.error());
}

// What the window's own code throws is told, and the window stays.
class Application : public QApplication {
  public:
    using QApplication::QApplication;
    bool notify(QObject* receiver, QEvent* event) override {
        try {
            return QApplication::notify(receiver, event);
        } catch (const std::exception& thrown) {
            const Error error = makeError(ErrorCode::kInternal, {thrown.what()});
            QMessageBox(QMessageBox::Critical, QStringLiteral("Quorvel"),
                        QString::fromStdString(app::sentence(error, languageAsked)))
                .exec();
            return false;
        }
    }
};

// Where a session has made no folder for running programs, Qt makes one in the place for temporary files and complains.
void nameRuntimeFolder() {
    if (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) return;
    const QString folder = QDir::tempPath() + QStringLiteral("/runtime-quorvel-") + QString::number(getuid());
    QDir().mkpath(folder);
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder));
}

struct OptionRow {
    const char *name, *what, *value = "", *otherwise = "";  // value: empty for an option without one
};
constexpr OptionRow kOptions[] = {
    {"export", "write OUT.pdf or OUT.png and end; .pdf or .png: beside each drawing; -: the standard output", "OUT"},
    {"format", "what is exported where the name does not say it: pdf or png", "FORMAT"},
    {"dpi", "dots per inch of a PNG export", "N", "192"},
    {"force", "export onto files that are read-only too"},
    {"allow-files", "images in this folder and below may be shown, beside those in the drawing's own folder", "DIR"},
    {"record", "write what is done as a script", "FILE"},
    {"profile", "folder used as the documents folder", "DIR"},
    {"language", "ja, en or ko", "LANGUAGE"},
    {"seed", "start of the random numbers", "N"},
    {"look", "light or dark; what was chosen last, or the desktop's own, without it", "LOOK"},
    {"no-recovery", "do not ask about the copies that a crash has left"},
    {"no-backup", "keep no copies of the versions that saving replaces"},
};
static_assert(render::kPngResolution == 192);

void addOptions(QCommandLineParser* words) {
    words->setApplicationDescription(QStringLiteral("Quorvel's window: dimensions SVG drawings."));
    words->addHelpOption();
    for (const OptionRow& row : kOptions)
        words->addOption(
            {QLatin1String(row.name), QLatin1String(row.what), QLatin1String(row.value), QLatin1String(row.otherwise)});
    words->addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("the drawing"), QStringLiteral("[FILE...]"));
}

int showHelp(const QString& text) {
    const Status shown = files::writeFile("-", text.toStdString());
    return shown ? kExitOk : fail(makeError(ErrorCode::kOutputLost, shown.error().arguments));
}

int exportNamed(const QCommandLineParser& words, ArgumentBytes* bytes, const QStringList& imageFolders) {
    std::vector<std::string> files;
    for (const QString& file : words.positionalArguments()) files.push_back(bytes->take(file));
    if (files.empty()) return fail(ErrorCode::kNoDrawingNamed, QStringLiteral("--export"));
    render::ExportTarget like;
    like.dotsPerInch = words.value(QStringLiteral("dpi")).toDouble();
    if (!(like.dotsPerInch > 0)) return fail(ErrorCode::kNumberNeeded, QStringLiteral("--dpi"));
    like.ending = words.value(QStringLiteral("format"));
    like.replacesReadOnly = words.isSet(QStringLiteral("force"));
    return exportAll(bytes->take(words.value(QStringLiteral("export"))), like, files, imageFolders);
}

bool isExporting(int argc, char** argv) {
    return std::any_of(argv + 1, argv + argc, [](const char* word) {
        return qstrcmp(word, "--export") == 0 || QByteArray(word).startsWith("--export=");
    });
}

}  // namespace

int runProgram(int argc, char** argv) {
    nameRuntimeFolder();
    for (const int signal : {SIGPIPE, SIGXFSZ}) std::signal(signal, SIG_IGN);  // writing fails instead
    // Exporting asks for no screen, and ends on a signal as the command does.
    const bool isDecoding = argc == 2 && qstrcmp(argv[1], kDecodeImages) == 0;
    if (isDecoding || isExporting(argc, argv)) qputenv("QT_QPA_PLATFORM", "offscreen");
    if (isExporting(argc, argv)) files::terminateCleanly();
    ArgumentBytes bytes(argc, argv);
    Application program(argc, argv);
    std::setlocale(LC_NUMERIC, "C");  // numbers in files have points whatever the user's language
    if (isDecoding) return decodeRequests();
    QApplication::setApplicationName(QStringLiteral("quorvel-desktop"));
    QApplication::setOrganizationName(QStringLiteral("Selkie Works"));
    QCommandLineParser words;
    addOptions(&words);
    if (words.parse(QCoreApplication::arguments()) && words.isSet(QStringLiteral("help")))
        return showHelp(words.helpText());
    words.process(program);

    const QStringList files = words.positionalArguments();
    app::SessionOptions options;
    options.profile = QFile::encodeName(words.value(QStringLiteral("profile"))).toStdString();
    options.skipsBackups = words.isSet(QStringLiteral("no-backup"));
    options.language = words.value(QStringLiteral("language")).toStdString();
    languageAsked = app::languageOf(options);
    const QStringList imageFolders = words.values(QStringLiteral("allow-files"));
    for (const QString& folder : imageFolders)
        if (!QFileInfo(folder).isDir()) return fail(ErrorCode::kNotReadable, folder);
    if (words.isSet(QStringLiteral("export"))) return exportNamed(words, &bytes, imageFolders);
    if (!options.language.empty() && options.language != "ja" && options.language != "en" && options.language != "ko")
        return fail(ErrorCode::kLanguageNeeded, QStringLiteral("--language"));
    if (words.isSet(QStringLiteral("seed"))) {
        bool read = false;
        options.seed = words.value(QStringLiteral("seed")).toULongLong(&read);
        if (!read) return fail(ErrorCode::kWholeNumberNeeded, QStringLiteral("--seed"));
    }
    const QString asked = words.value(QStringLiteral("look"));
    return openWindow(program, options, QFile::encodeName(words.value(QStringLiteral("record"))).toStdString(),
                      asked == QLatin1String("dark")    ? ColorScheme::dark
                      : asked == QLatin1String("light") ? ColorScheme::light
                                                        : savedColorScheme(),
                      !words.isSet(QStringLiteral("no-recovery")), files, imageFolders);
}

}  // namespace quorvel::desktop
