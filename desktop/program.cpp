// Reads the command line; exports without a window, or opens one.
#include "desktop/program.h"

#include <unistd.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <clocale>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "app/sentences.h"
#include "desktop/session.h"
#include "desktop/window/color_scheme.h"
#include "desktop/window/main_window.h"
#include "interchange/svg/svg.h"
#include "render/export.h"

namespace quorvel::desktop {

namespace {

constexpr int kExitOk = 0, kExitBadInput = 2;

// The language of everything that is said before a session knows its own.
app::Language languageAsked = app::Language::english;

int fail(const Error& error) {
    const QString text = QString::fromStdString(app::sentence(error, languageAsked));
    std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
    return kExitBadInput;
}

int fail(ErrorCode code, const QString& place) { return fail(makeError(code).inFile(place.toStdString())); }

// Each drawing goes to the name given, or, when that begins with a dot (".pdf"), beside itself under its own name.
int exportAll(const QString& output, double dotsPerInch, const QStringList& files) {
    const host::Host measuring;  // texts measure as they do while the plug-in runs
    for (const QString& file : files) {
        const QFileInfo info(file);
        const QString path = output.startsWith(QLatin1Char('.')) && output.count(QLatin1Char('/')) == 0
                                 ? info.path() + QLatin1Char('/') + info.completeBaseName() + output
                                 : output;
        if (QFileInfo(path).absoluteFilePath() == info.absoluteFilePath())
            return fail(ErrorCode::kExportOntoDrawing, path);
        const Result<interchange::SvgDrawing> read = interchange::readSvgFile(QFile::encodeName(file).toStdString());
        if (!read) return fail(Error(read.error()).inFile(file.toStdString()));
        std::vector<Error> warnings;
        const Status exported =
            render::exportDrawing(*read->document, info.absolutePath(), {path, dotsPerInch}, &warnings);
        if (!exported) return fail(Error(exported.error()).inFile(path.toStdString()));
        for (const std::string& warning : app::warningSentences(warnings, languageAsked))
            std::fprintf(stderr, "%s: %s\n", file.toLocal8Bit().constData(), warning.c_str());
    }
    return kExitOk;
}

int openWindow(QApplication& program, const app::SessionOptions& options, const std::string& recordFile,
               ColorScheme scheme, const QStringList& files) {
    applyColorScheme(&program, scheme);
    Session session(options, recordFile);
    if (const Status started = session.start(); !started) return fail(started.error());
    languageAsked = session.language();
    MainWindow window(&session);
    window.show();
    if (!window.file().offerRecovery() && !files.isEmpty()) window.file().open(files.front());
    return program.exec();
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

}  // namespace

int runProgram(int argc, char** argv) {
    nameRuntimeFolder();
    // Exporting asks for no screen.
    for (int i = 1; i < argc; ++i)
        if (qstrcmp(argv[i], "--export") == 0 || QByteArray(argv[i]).startsWith("--export="))
            qputenv("QT_QPA_PLATFORM", "offscreen");
    Application program(argc, argv);
    std::setlocale(LC_NUMERIC, "C");  // numbers in files have points whatever the user's language
    QApplication::setApplicationName(QStringLiteral("quorvel-desktop"));
    QApplication::setOrganizationName(QStringLiteral("Selkie Works"));
    QCommandLineParser words;
    words.setApplicationDescription(QStringLiteral("Quorvel's window: dimensions SVG drawings."));
    words.addHelpOption();
    const QCommandLineOption exportTo(
        QStringLiteral("export"), QStringLiteral("write OUT.pdf or OUT.png and end; .pdf or .png: beside each drawing"),
        QStringLiteral("OUT"));
    const QCommandLineOption dpi(QStringLiteral("dpi"), QStringLiteral("dots per inch of a PNG export"),
                                 QStringLiteral("N"), QString::number(render::kPngResolution));
    const QCommandLineOption record(QStringLiteral("record"), QStringLiteral("write what is done as a script"),
                                    QStringLiteral("FILE"));
    const QCommandLineOption profile(QStringLiteral("profile"), QStringLiteral("folder used as the documents folder"),
                                     QStringLiteral("DIR"));
    const QCommandLineOption language(QStringLiteral("language"), QStringLiteral("ja, en or ko"),
                                      QStringLiteral("LANGUAGE"));
    const QCommandLineOption seed(QStringLiteral("seed"), QStringLiteral("start of the random numbers"),
                                  QStringLiteral("N"));
    const QCommandLineOption scheme(
        QStringLiteral("look"), QStringLiteral("light or dark; what was chosen last, or the desktop's own, without it"),
        QStringLiteral("LOOK"));
    words.addOptions({exportTo, dpi, record, profile, language, seed, scheme});
    words.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("the drawing"), QStringLiteral("[FILE...]"));
    words.process(program);

    const QStringList files = words.positionalArguments();
    app::SessionOptions options;
    options.profile = QFile::encodeName(words.value(profile)).toStdString();
    options.language = words.value(language).toStdString();
    languageAsked = app::languageOf(options);
    if (words.isSet(exportTo)) {
        if (files.isEmpty()) return fail(ErrorCode::kNoDrawingNamed, QStringLiteral("--export"));
        const double dotsPerInch = words.value(dpi).toDouble();
        if (!(dotsPerInch > 0)) return fail(ErrorCode::kNumberNeeded, QStringLiteral("--dpi"));
        return exportAll(words.value(exportTo), dotsPerInch, files);
    }
    if (!options.language.empty() && options.language != "ja" && options.language != "en" && options.language != "ko")
        return fail(ErrorCode::kLanguageNeeded, QStringLiteral("--language"));
    if (words.isSet(seed)) {
        bool read = false;
        options.seed = words.value(seed).toULongLong(&read);
        if (!read) return fail(ErrorCode::kWholeNumberNeeded, QStringLiteral("--seed"));
    }
    const QString asked = words.value(scheme);
    return openWindow(program, options, QFile::encodeName(words.value(record)).toStdString(),
                      asked == QLatin1String("dark")    ? ColorScheme::dark
                      : asked == QLatin1String("light") ? ColorScheme::light
                                                        : savedColorScheme(),
                      files);
}

}  // namespace quorvel::desktop
