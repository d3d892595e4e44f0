// The program in a process and on a screen of its own, driven by a mouse and keys alone (xdotool under Xvfb).
#pragma once

#include <QProcess>
#include <QStandardPaths>
#include <QtEndian>
#include <cmath>
#include <regex>
#include "app/dimension_list.h"
#include "interchange/svg/svg.h"
#include "platform/qt/panel_button.h"
#include "tests/desktop/window_rig.h"

namespace quorvel::tests {

constexpr double kPoints = 72 / 25.4, kPageHeight = 210;
constexpr double kFitMargin = 28;  // pixels
constexpr int kPatience = 15'000;  // milliseconds, for a window to come
constexpr int kPanelButton = 12;

struct Words {
    const char* language;
    const char *straight, *radius, *schedule;                     // tools
    const char *settings, *radiusOptions, *form, *preset, *open;  // titles of windows
    const char* saveAs;                                           // a row of the form's presets
};
constexpr Words kEnglish{.language = "en",
                         .straight = "Straight Dimension Tool",
                         .radius = "Radius Tool",
                         .schedule = "Schedule Tool [bottom]",
                         .settings = "Quorvel Settings",
                         .radiusOptions = "Radius",
                         .form = "Schedule",
                         .preset = "Save File As",
                         .open = "Open",
                         .saveAs = "Save As..."};
constexpr Words kJapanese{.language = "ja",
                          .straight = "寸法線ツール",
                          .radius = "半径ツール",
                          .schedule = "図面枠ツール [下に部品]",
                          .settings = "Quorvel 設定",
                          .radiusOptions = "半径",
                          .form = "図面枠",
                          .preset = "保存",
                          .open = "開く",
                          .saveAs = "別名で保存..."};
struct Case : Words {
    const char* look;
};
constexpr Case kCases[] = {{kEnglish, "light"}, {kEnglish, "dark"}, {kJapanese, "light"}, {kJapanese, "dark"}};

inline bool Present(const char* program) { return !QStandardPaths::findExecutable(QLatin1String(program)).isEmpty(); }

class Outside : public ::testing::TestWithParam<Case> {
  protected:
    void SetUp() override {
        if (!Present("Xvfb") || !Present("xdotool")) GTEST_SKIP() << "Xvfb or xdotool is not here";
        screen_.start(QStringLiteral("Xvfb"),
                      {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                       QStringLiteral("0"), QStringLiteral("1400x950x24"), QStringLiteral("-nolisten"),
                       QStringLiteral("tcp"), QStringLiteral("-fbdir"), home_.path(),
                       // It would start afresh whenever the last client leaves, and refuse the program meanwhile.
                       QStringLiteral("-noreset")});
        ASSERT_TRUE(screen_.waitForStarted());
        QByteArray number;
        while (!number.contains('\n') && screen_.waitForReadyRead(kPatience)) number += screen_.readAllStandardOutput();
        ASSERT_FALSE(number.trimmed().isEmpty()) << "no display";
        around_ = QProcessEnvironment::systemEnvironment();
        around_.insert(QStringLiteral("DISPLAY"), QLatin1Char(':') + QString::fromLatin1(number.trimmed()));
        around_.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"})
            around_.insert(QLatin1String(name), home_.path());
        QFile::copy(QStringLiteral(QUORVEL_SOURCE_DIR "/examples/bracket.svg"), drawing());
    }
    void TearDown() override {
        for (QProcess* process : {&program_, &screen_}) {
            if (process->state() == QProcess::NotRunning) continue;
            process->terminate();  // so that the screen's number is free again
            if (process->waitForFinished(5000)) continue;
            process->kill();
            process->waitForFinished(5000);
        }
    }
    QString drawing() const { return home_.filePath(QStringLiteral("bracket.svg")); }
    QString preset() const {
        return home_.filePath(QStringLiteral("profile/Adobe/Illustrator/Prefs/Quorvel/House.ini"));
    }
    QString script() const { return home_.filePath(QStringLiteral("recorded.script")); }

    void startProgram() {
        program_.setProcessEnvironment(around_);
        program_.setProcessChannelMode(QProcess::MergedChannels);
        program_.start(
            QStringLiteral(QUORVEL_DESKTOP_FILE),
            {QStringLiteral("--language"), QLatin1String(GetParam().language), QStringLiteral("--look"),
             QLatin1String(GetParam().look), QStringLiteral("--profile"), home_.filePath("profile"),
             QStringLiteral("--seed"), QStringLiteral("1"), QStringLiteral("--record"), script(), drawing()});
        ASSERT_TRUE(program_.waitForStarted());
        window_ = awaitWindow(QStringLiteral("bracket.svg"));
        ASSERT_FALSE(window_.isEmpty()) << program_.readAll().toStdString();
        tool({"windowmove", window_, "0", "0"});
        tool({"windowsize", "--sync", window_, "1240", "820"});
        settle();
    }

    // What xdotool says, without the last line's end.
    QString tool(const QStringList& words) const {
        QProcess process;
        process.setProcessEnvironment(around_);
        process.start(QStringLiteral("xdotool"), words);
        process.waitForFinished(kPatience);
        return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    }
    // The number of a window with this in its title; empty when none comes.
    QString awaitWindow(const QString& title) const {
        QString found;
        (void)QTest::qWaitFor(
            [&] {
                found = tool({"search", "--onlyvisible", "--name", QRegularExpression::escape(title)})
                            .section(QLatin1Char('\n'), -1);
                return !found.isEmpty();
            },
            kPatience);
        return found;
    }
    bool awaitGone(const QString& title) const {
        return QTest::qWaitFor(
            [&] {
                return tool({"search", "--onlyvisible", "--name", QRegularExpression::escape(title)}).isEmpty();
            },
            kPatience);
    }
    // State of the process and the processor time that it has had: fields 3, 14 and 15 of proc(5)'s stat.
    static QByteArrayList pulse(const QProcess& process) {
        QFile stat(QStringLiteral("/proc/%1/stat").arg(process.processId()));
        if (!stat.open(QIODevice::ReadOnly)) return {};
        const QByteArray line = stat.readAll();
        const QByteArrayList fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
        return {fields.value(0), fields.value(11), fields.value(12)};
    }
    // Until screen and program have slept in their event loops for a while, or are gone.
    void settle() const {
        constexpr int kPause = 20, kQuietPauses = 3;
        QByteArrayList before;
        int quiet = 0;
        for (int waited = 0; waited < kPatience && quiet < kQuietPauses; waited += kPause) {
            QTest::qWait(kPause);
            const QByteArrayList now = pulse(screen_) + pulse(program_);
            const bool asleep = now.count("S") == 2 || now.contains("Z") || now.size() < 6;
            quiet = asleep && now == before ? quiet + 1 : 0;
            before = now;
        }
    }

    void moveTo(QPoint at) const {
        tool({"mousemove", QString::number(at.x()), QString::number(at.y())});
        settle();
    }
    void click(QPoint at, int times = 1) const {
        moveTo(at);
        tool({"click", "--repeat", QString::number(times), "--delay", "60", "1"});
        settle();
    }
    // There is no window manager that would hand the keys on.
    void key(const char* name) const {
        tool({"windowfocus", "--sync", window_});
        tool({"key", QLatin1String(name)});
        settle();
    }
    void type(const QString& dialogWindow, const char* text) const {
        tool({"windowfocus", "--sync", dialogWindow});
        tool({"key", "ctrl+a"});
        tool({"type", "--", QLatin1String(text)});
        settle();
    }
    // The screen's file is an X window dump: words of 32 bits, the highest byte first, then the colours, then the
    // pixels as the screen has them.
    QImage screenshot() const {
        enum Word { kHeaderSize = 0, kWidth = 4, kHeight = 5, kBitsPerPixel = 11, kBytesPerLine = 12, kColours = 19 };
        constexpr int kColourSize = 12;
        QFile file(home_.filePath(QStringLiteral("Xvfb_screen0")));
        if (!file.open(QIODevice::ReadOnly)) return {};
        const QByteArray bytes = file.readAll();
        const auto word = [&](Word n) { return qFromBigEndian<quint32>(bytes.constData() + 4 * n); };
        if (bytes.size() < 100 || word(kBitsPerPixel) != 32) return {};
        const qsizetype start = word(kHeaderSize) + kColourSize * word(kColours);
        if (bytes.size() < start + qsizetype{word(kBytesPerLine)} * word(kHeight)) return {};
        return QImage(reinterpret_cast<const uchar*>(bytes.constData()) + start, static_cast<int>(word(kWidth)),
                      static_cast<int>(word(kHeight)), word(kBytesPerLine), QImage::Format_RGB32)
            .copy();
    }
    void loadPicture(const char* name) const {
        const QString folder = QStringLiteral(QUORVEL_SOURCE_DIR "/out/window");
        QDir().mkpath(folder);
        EXPECT_TRUE(screenshot()
                        .copy(0, 0, 1240, 820)
                        .save(folder + QStringLiteral("/outside-%1-%2-%3.png")
                                           .arg(QLatin1String(name), QLatin1String(GetParam().language),
                                                QLatin1String(GetParam().look))))
            << name;
    }
    // How often the script has such a line.
    qsizetype recorded(const char* start) const {
        QFile file(script());
        return file.open(QIODevice::ReadOnly) ? file.readAll().count(QByteArray("\n") + start) : 0;
    }
    // What stands in the drawing's file, once it holds so many dimensions.
    std::vector<app::RecordedDimension> savedDimensions(std::size_t wanted) const {
        const host::Host measuring;
        std::vector<app::RecordedDimension> found;
        (void)QTest::qWaitFor(
            [&] {
                const Result<interchange::SvgDrawing> read = interchange::readSvgFile(drawing().toStdString());
                found = read ? app::listDimensions(*read->document) : std::vector<app::RecordedDimension>();
                return found.size() == wanted;
            },
            kPatience);
        return found;
    }

    // Pixels for each point, as the recorded script says it of the second fit but last.
    double recordedZoom() const {
        double zoom = 0;
        (void)QTest::qWaitFor(
            [&] {
                QFile file(script());
                if (!file.open(QIODevice::ReadOnly)) return false;
                const QString text = QString::fromUtf8(file.readAll());
                const qsizetype last = text.lastIndexOf(QStringLiteral("\nzoom "));
                if (last >= 0) zoom = text.mid(last + 6).section(QLatin1Char('\n'), 0, 0).toDouble();
                return zoom > 0;
            },
            kPatience);
        return zoom;
    }

    // A control of the dialog that has come, by where it stands in one of the same kind in this process.
    QPoint controlAt(const QString& dialogWindow, const QMap<int, QPoint>& places, int control) const {
        const QString geometry = tool({"getwindowgeometry", "--shell", dialogWindow});
        const auto number = [&](const char* name) {
            return QRegularExpression(QLatin1String(name) + QStringLiteral("=(-?\\d+)"))
                .match(geometry)
                .captured(1)
                .toInt();
        };
        return QPoint(number("X"), number("Y")) + places.value(control);
    }

    QTemporaryDir home_;
    QProcessEnvironment around_;
    QProcess screen_, program_;
    QString window_;
};

// Places in a dialog where its controls take a click: near their left ends, where boxes have their marks.
inline QMap<int, QPoint> PlacesIn(QWidget* dialog) {
    QMap<int, QPoint> places;
    for (QWidget* one : dialog->findChildren<QWidget*>(QRegularExpression(QStringLiteral("^control\\d+$"))))
        places.insert(one->objectName().mid(7).toInt(),
                      one->mapTo(dialog, QPoint(std::min(10, one->width() / 2), one->height() / 2)));
    return places;
}

// Keys that lead from the row which the open list shows to another: rows that are disabled are passed over.
inline int StepsTo(QWidget* dialog, const char* row) {
    auto* list = WindowRig::control<platform::CommandList>(dialog, 106);
    list->refreshRows();
    const int wanted = list->findText(QString::fromUtf8(row));
    int steps = 0;
    for (int at = list->currentIndex() + 1; at <= wanted; ++at)
        if (list->model()->flags(list->model()->index(at, 0)) & Qt::ItemIsEnabled) ++steps;
    EXPECT_GE(wanted, 0) << row;
    return steps;
}

}  // namespace quorvel::tests
