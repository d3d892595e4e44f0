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

#include "desktop/desk.h"
#include "desktop/export.h"
#include "desktop/look.h"
#include "desktop/main_window.h"
#include "host/svg.h"

namespace quorvel::desktop {

namespace {

constexpr int kExitOk = 0, kExitBadInput = 2;

int Fail(const QString& text) {
    std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
    return kExitBadInput;
}

// Each drawing goes to the name given, or, when that begins with a dot (".pdf"), beside itself under its own name.
int ExportAll(const QString& output, double dotsPerInch, const QStringList& files) {
    const host::Host measuring;  // texts measure as they do while the plug-in runs
    for (const QString& file : files) {
        const QFileInfo info(file);
        const QString path = output.startsWith(QLatin1Char('.')) && output.count(QLatin1Char('/')) == 0
                                 ? info.path() + QLatin1Char('/') + info.completeBaseName() + output
                                 : output;
        if (QFileInfo(path).absoluteFilePath() == info.absoluteFilePath())
            return Fail(path + QStringLiteral(": is the drawing itself"));
        const host::SvgReadResult read = host::readSvgFile(QFile::encodeName(file).toStdString());
        if (read.document == nullptr) return Fail(file + QStringLiteral(": ") + QString::fromStdString(read.error));
        QString cause;
        if (!ExportDrawing(*read.document, info.absolutePath(), {path, dotsPerInch}, &cause))
            return Fail(path + QStringLiteral(": ") + cause);
    }
    return kExitOk;
}

int OpenWindow(QApplication& program, const DeskOptions& options, Look look, const QStringList& files) {
    ApplyLook(&program, look);
    Desk desk(options);
    QString error;
    if (!desk.start(&error)) return Fail(error);
    MainWindow window(&desk);
    window.show();
    if (!window.file().offerRescuedCopy() && !files.isEmpty()) window.file().open(files.front());
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
            QMessageBox(QMessageBox::Critical, QStringLiteral("Quorvel"), QString::fromUtf8(thrown.what())).exec();
            return false;
        }
    }
};

// Where a session has made no folder for running programs, Qt makes one in the place for temporary files and complains.
void NameRuntimeFolder() {
    if (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) return;
    const QString folder = QDir::tempPath() + QStringLiteral("/runtime-quorvel-") + QString::number(getuid());
    QDir().mkpath(folder);
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder));
}

}  // namespace

int RunProgram(int argc, char** argv) {
    NameRuntimeFolder();
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
                                 QStringLiteral("N"), QString::number(kPngResolution));
    const QCommandLineOption record(QStringLiteral("record"), QStringLiteral("write what is done as a script"),
                                    QStringLiteral("FILE"));
    const QCommandLineOption profile(QStringLiteral("profile"),
                                     QStringLiteral("folder that stands for the documents folder"),
                                     QStringLiteral("DIR"));
    const QCommandLineOption language(QStringLiteral("language"), QStringLiteral("ja, en or ko"),
                                      QStringLiteral("LANGUAGE"));
    const QCommandLineOption seed(QStringLiteral("seed"), QStringLiteral("start of the random numbers"),
                                  QStringLiteral("N"));
    const QCommandLineOption look(
        QStringLiteral("look"), QStringLiteral("light or dark; what was chosen last, or the desktop's own, without it"),
        QStringLiteral("LOOK"));
    words.addOptions({exportTo, dpi, record, profile, language, seed, look});
    words.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("the drawing"), QStringLiteral("[FILE...]"));
    words.process(program);

    const QStringList files = words.positionalArguments();
    if (words.isSet(exportTo)) {
        if (files.isEmpty()) return Fail(QStringLiteral("--export: no drawing is named"));
        const double dotsPerInch = words.value(dpi).toDouble();
        if (!(dotsPerInch > 0)) return Fail(QStringLiteral("--dpi: a number above 0 is needed"));
        return ExportAll(words.value(exportTo), dotsPerInch, files);
    }
    const QString tongue = words.value(language);
    if (!tongue.isEmpty() && tongue != QLatin1String("ja") && tongue != QLatin1String("en") &&
        tongue != QLatin1String("ko"))
        return Fail(QStringLiteral("--language: ja, en or ko"));
    DeskOptions options;
    options.profile = QFile::encodeName(words.value(profile)).toStdString();
    options.language = tongue.toStdString();
    options.recordFile = QFile::encodeName(words.value(record)).toStdString();
    if (words.isSet(seed)) {
        bool read = false;
        options.seed = words.value(seed).toULongLong(&read);
        if (!read) return Fail(QStringLiteral("--seed: a whole number is needed"));
    }
    const QString asked = words.value(look);
    return OpenWindow(program, options,
                      asked == QLatin1String("dark")    ? Look::dark
                      : asked == QLatin1String("light") ? Look::light
                                                        : ChosenLook(),
                      files);
}

}  // namespace quorvel::desktop
