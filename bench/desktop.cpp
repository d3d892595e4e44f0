// The window with a drawing of 100,000 paths: from a movement of the mouse to its preview on the canvas, from a turn of
// the wheel to the next picture, and how long the sharp picture takes. Then drawings of all kinds beside rsvg-convert,
// by the mean difference of their pixels. Offscreen: nothing waits for a screen. Times are of the clock on the wall.
#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>
#include <QWheelEvent>
#include <clocale>
#include <cstdio>
#include <filesystem>

#include "app/sentences.h"
#include "bench/mixed_drawing.h"
#include "bench/plugin_run.h"
#include "desktop/window/color_scheme.h"
#include "desktop/window/main_window.h"
#include "interchange/svg/svg.h"
#include "render/export.h"

namespace quorvel::bench {
namespace {

constexpr int kPaths = 100'000;
constexpr int kMoves = 400, kTurnsOfTheWheel = 60;

class Times {
  public:
    template <typename Work>
    void take(Work work) {
        QElapsedTimer clock;
        clock.start();
        work();
        times_.push_back(static_cast<double>(clock.nsecsElapsed()) * 1e-6);
    }
    double at(double share) const {
        std::vector<double> sorted = times_;
        std::sort(sorted.begin(), sorted.end());
        return sorted[std::min(sorted.size() - 1,
                               static_cast<std::size_t>(share * static_cast<double>(sorted.size())))];
    }
    void print(const char* what) const { std::printf("%-52s %9.2f %9.2f %9.2f\n", what, at(0.5), at(0.95), at(1)); }

  private:
    std::vector<double> times_;  // milliseconds
};

class Session {
  public:
    Session() {
        app::SessionOptions options;
        options.profile = home_.path().toStdString();
        options.language = "en";
        options.seed = 1;
        options.pluginFile = QUORVEL_PLUGIN_FILE;
        session_ = std::make_unique<desktop::Session>(options);
        if (const Status started = session_->start(); !started)
            throw std::runtime_error(app::sentence(started.error(), app::Language::english));
        window_ = std::make_unique<desktop::MainWindow>(session_.get());
        window_->resize(1600, 1000);
        window_->show();
        QApplication::processEvents();
    }
    desktop::Canvas& canvas() { return *window_->canvas(); }
    desktop::MainWindow& window() { return *window_; }
    doc::Document& document() { return *session_->document(); }
    void waitForSharp() {
        while (!canvas().isSharp()) QApplication::processEvents();
    }

    // A movement of the mouse, or a turn of its wheel, and the painting that follows.
    void move(QPointF at, bool held) {
        QMouseEvent event(QEvent::MouseMove, at, canvas().mapToGlobal(at), Qt::NoButton,
                          held ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&canvas(), &event);
        canvas().repaint();
    }
    void button(QEvent::Type type, QPointF at) {
        QMouseEvent event(type, at, canvas().mapToGlobal(at), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&canvas(), &event);
    }
    void wheel(QPointF at, int turned, Qt::KeyboardModifiers keys) {
        QWheelEvent event(at, canvas().mapToGlobal(at), {}, {0, turned}, Qt::NoButton, keys, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&canvas(), &event);
        canvas().repaint();
    }

  private:
    QTemporaryDir home_;
    std::unique_ptr<desktop::Session> session_;
    std::unique_ptr<desktop::MainWindow> window_;
};

QPointF somewhere(desktop::Canvas& canvas, std::mt19937& random) {
    const auto within = [&](int size) { return std::uniform_real_distribution<double>(20, size - 20)(random); };
    return {within(canvas.width()), within(canvas.height())};
}

void measureView(Session& session, const std::string& view, Promises* promises) {
    std::mt19937 random(5);
    Times track, wheel, scroll, sharp, undo;
    session.waitForSharp();
    session.window().tools()->choose(QStringLiteral("Straight Dimension Tool"));
    const QPointF start = somewhere(session.canvas(), random);
    session.move(start, false);
    session.button(QEvent::MouseButtonPress, start);
    for (int i = 0; i < kMoves; ++i) {
        const QPointF at = somewhere(session.canvas(), random);
        track.take([&] { session.move(at, true); });
    }
    for (int i = 0; i < kTurnsOfTheWheel; ++i) {
        const QPointF at = somewhere(session.canvas(), random);
        wheel.take([&] { session.wheel(at, i % 2 == 0 ? 120 : -120, Qt::NoModifier); });
        if (i % 10 == 0) sharp.take([&] { session.waitForSharp(); });
    }
    for (int i = 0; i < kTurnsOfTheWheel; ++i)
        scroll.take([&] { session.wheel(start, i % 4 < 2 ? 40 : -40, Qt::ControlModifier); });
    const QPointF end = somewhere(session.canvas(), random);
    session.move(end, true);
    session.button(QEvent::MouseButtonRelease, end);
    session.move(end + QPointF(9, 30), false);
    session.button(QEvent::MouseButtonPress, end + QPointF(9, 30));
    session.button(QEvent::MouseButtonRelease, end + QPointF(9, 30));
    session.waitForSharp();
    for (int i = 0; i < 10; ++i)
        undo.take([&] {
            i % 2 == 0 ? session.window().undo() : session.window().redo();
            session.canvas().repaint();
        });
    track.print((view + ": movement of the mouse to painted preview").c_str());
    wheel.print((view + ": zoom step to painted picture").c_str());
    scroll.print((view + ": scroll step to painted picture").c_str());
    undo.print((view + ": undo or redo of a dimension to painted picture").c_str());
    sharp.print((view + ": zoom step to sharp picture").c_str());
    promises->check(view + ": preview, 95 of 100, ms", track.at(0.95), 16);
    promises->check(view + ": zoom step, 95 of 100, ms", wheel.at(0.95), 100);
    promises->check(view + ": scroll step, 95 of 100, ms", scroll.at(0.95), 100);
}

void measureWindow(Promises* promises) {
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("large.svg"));
    {
        const host::Host measuring;
        MixedDrawing drawing(kPaths);
        const Status saved = interchange::saveSvgFile(*drawing.take(), file.toStdString(), "mm");
        if (!saved) throw std::runtime_error(app::sentence(saved.error(), app::Language::english));
    }
    Session session;
    int steps = 0;
    QObject::connect(&session.canvas(), &desktop::Canvas::pictureProgressed, &session.canvas(),
                     [&](int done, int total) { steps += done < total ? 1 : 0; });
    Times open, sharp;
    open.take([&] {
        if (!session.window().file().open(file)) throw std::runtime_error("the drawing was not opened");
        session.canvas().repaint();
    });
    sharp.take([&] { session.waitForSharp(); });
    std::printf("%-52s %9s %9s %9s\n", "milliseconds", "50 of 100", "95", "all");
    open.print("opening to the first painting");
    sharp.print("from there to the sharp picture");
    std::printf("progress was shown %d times meanwhile\n", steps);
    promises->check("paintings without progress while opening", steps > 0 ? 0 : 1, 0);
    measureView(session, "whole page", promises);
    session.canvas().setZoom(1);
    measureView(session, "at 1 pixel a point", promises);
    session.document().markSaved();
}

// Of all channels, 0 to 255.
double meanDifference(const QImage& a, const QImage& b) {
    double sum = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            sum += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) + std::abs(qBlue(p) - qBlue(q));
        }
    return sum / (3.0 * a.width() * a.height());
}

void compareDrawings() {
    namespace fs = std::filesystem;
    const QTemporaryDir folder;
    const host::Host measuring;
    std::printf("\n%-40s %s\n", "drawing", "mean difference to rsvg-convert, of 255");
    for (const char* place : {QUORVEL_SOURCE_DIR "/examples", QUORVEL_SOURCE_DIR "/../shared/drawings"}) {
        if (!fs::exists(place)) {
            std::printf("%s is not here\n", place);
            continue;
        }
        std::vector<fs::path> files;
        for (const fs::directory_entry& entry : fs::directory_iterator(place))
            if (entry.path().extension() == ".svg") files.push_back(entry.path());
        std::sort(files.begin(), files.end());
        for (const fs::path& path : files) {
            const Result<interchange::SvgDrawing> read = interchange::readSvgFile(path.string());
            const QString ours = folder.filePath(QStringLiteral("ours.png")), name(path.c_str());
            const QString images = QString::fromStdString(path.parent_path().string());
            if (!read || !render::exportDrawing(*read->document, images, {ours})) {
                std::printf("%-40s cannot be drawn\n", path.filename().c_str());
                continue;
            }
            const QImage picture(ours);
            QProcess other;
            other.start(QStringLiteral("rsvg-convert"),
                        {QStringLiteral("-w"), QString::number(picture.width()), QStringLiteral("-h"),
                         QString::number(picture.height()), QStringLiteral("-b"), QStringLiteral("white"), name});
            if (!other.waitForStarted() || !other.waitForFinished(60'000)) {
                std::printf("rsvg-convert is not here\n");
                return;
            }
            const QImage theirs = QImage::fromData(other.readAllStandardOutput());
            if (theirs.size() != picture.size())
                std::printf("%-40s rsvg-convert drew nothing of this size\n", path.filename().c_str());
            else
                std::printf("%-40s %.3f\n", path.filename().c_str(), meanDifference(picture, theirs));
        }
    }
}

}  // namespace
}  // namespace quorvel::bench

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication program(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    quorvel::desktop::applyColorScheme(&program, quorvel::desktop::ColorScheme::light);
    quorvel::bench::Promises promises;
    quorvel::bench::measureWindow(&promises);
    quorvel::bench::compareDrawings();
    return promises.exitCode();
}
