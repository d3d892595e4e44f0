// The real window with a profile and a drawing of its own, and a hand at its mouse and dialogs.
#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/dump.h"
#include "desktop/window/color_scheme.h"
#include "desktop/window/main_window.h"
#include "host/code_page.h"

namespace quorvel::tests {

// A plate of 200 by 100 points with its lower left corner at (100, 100), and a round hole of 20 points' radius.
constexpr char kPlate[] =
    "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"600pt\" height=\"400pt\" viewBox=\"0 0 600 400\">\n"
    "  <defs><linearGradient id=\"steel\"><stop offset=\"0\" stop-color=\"#eef2f6\"/>"
    "<stop offset=\"1\" stop-color=\"#b9c4d0\"/></linearGradient></defs>\n"
    "  <g id=\"part\" xmlns:inkscape=\"http://www.inkscape.org/namespaces/inkscape\" inkscape:groupmode=\"layer\" "
    "inkscape:label=\"Part\">\n"
    "    <path id=\"plate\" d=\"M100 300 L300 300 L300 200 L100 200 Z\" fill=\"url(#steel)\" stroke=\"#000\"/>\n"
    "    <circle id=\"hole\" cx=\"400\" cy=\"250\" r=\"20\" fill=\"none\" stroke=\"#000\" stroke-dasharray=\"6 2 1 "
    "2\"/>\n"
    "  </g>\n</svg>\n";

struct WindowRig {
    struct Options {
        std::string language = "en";
        bool dark = false;
        bool record = false;
        std::string pluginFile = QUORVEL_PLUGIN_FILE;
    };
    explicit WindowRig(Options options) {
        const std::string folder = home.path().toStdString();
        QFile file(drawing());
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(kPlate);
        file.close();
        desktop::applyColorScheme(qobject_cast<QApplication*>(QApplication::instance()),
                                  options.dark ? desktop::ColorScheme::dark : desktop::ColorScheme::light);
        app::SessionOptions sessionOptions;
        sessionOptions.profile = folder;
        sessionOptions.language = options.language;
        sessionOptions.seed = 1;
        sessionOptions.pluginFile = options.pluginFile;
        session = std::make_unique<desktop::Session>(sessionOptions,
                                                     options.record ? folder + "/recorded.script" : std::string());
        EXPECT_TRUE(session->start());
        window = std::make_unique<desktop::MainWindow>(session.get());
        window->resize(1240, 820);
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        EXPECT_TRUE(window->file().open(drawing()));
        QApplication::processEvents();
    }
    WindowRig() : WindowRig(Options()) {}

    QString drawing() const { return home.path() + QStringLiteral("/plate.svg"); }
    desktop::Canvas& canvas() { return *window->canvas(); }
    doc::Document& document() { return *session->document(); }

    QPoint pixel(double h, double v) {
        return canvas().toPixel({static_cast<float>(h), static_cast<float>(v)}).toPoint();
    }
    void press(const QString& slot) {
        QTest::mouseClick(window->tools()->slotOf(slot), Qt::LeftButton, {}, QPoint(8, 8));
    }
    void moveTo(QPoint at, Qt::MouseButtons held = Qt::NoButton) {
        QMouseEvent event(QEvent::MouseMove, at, canvas().mapToGlobal(at), Qt::NoButton, held, Qt::NoModifier);
        QApplication::sendEvent(&canvas(), &event);
    }
    void drag(QPoint from, QPoint to) {
        moveTo(from);
        QTest::mousePress(&canvas(), Qt::LeftButton, {}, from);
        moveTo((from + to) / 2, Qt::LeftButton);
        moveTo(to, Qt::LeftButton);
        QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, to);
    }
    void click(QPoint at) {
        moveTo(at);
        QTest::mouseClick(&canvas(), Qt::LeftButton, {}, at);
    }
    // Dimensions the plate's lower edge; the cursor is a few pixels off the corners, and snaps.
    void dimensionEdge() {
        window->tools()->choose(QStringLiteral("Straight Dimension Tool"));
        drag(pixel(100, 100) + QPoint(1, 1), pixel(300, 100) + QPoint(-1, 1));
        const QPoint place = pixel(200, 60);
        moveTo(place + QPoint(20, 0));
        click(place);
    }
    // The text of the topmost text frame below the art.
    std::string textBelow(doc::ArtId id) {
        const doc::Art* art = document().find(id);
        if (art->text != nullptr) return host::toUtf8(art->text->text);
        for (doc::ArtId child = art->firstChild; child != 0; child = document().find(child)->below)
            if (const std::string text = textBelow(child); !text.empty()) return text;
        return {};
    }
    std::string newestText() {
        const doc::Art* root = document().find(document().layer(document().currentLayer())->root);
        return textBelow(root->firstChild);
    }
    std::string dump() { return app::dumpDocument(document(), session->host().rulerUnit()); }

    // The picture of the window, or of a dialog over it, for people to look at.
    static void picture(QWidget* of, const QString& name) {
        const QString folder = QStringLiteral(QUORVEL_SOURCE_DIR "/out/window");
        QDir().mkpath(folder);
        if (auto* canvas = of->findChild<desktop::Canvas*>()) canvas->shown();  // sharp
        EXPECT_TRUE(of->grab().save(folder + QLatin1Char('/') + name + QStringLiteral(".png")));
    }
    // Runs deed, and on each dialog that it opens, one after the other, what is given for it.
    static void inDialogs(const std::function<void()>& gesture,
                          const std::vector<std::function<void(QWidget*)>>& there) {
        std::size_t came = 0;
        bool inside = false;  // what is given may wait for something itself
        QTimer waiting;
        QObject::connect(&waiting, &QTimer::timeout, [&] {
            QWidget* dialog = QApplication::activeModalWidget();
            if (dialog == nullptr || inside) return;
            if (came == there.size()) {
                ADD_FAILURE() << "one dialog more than expected: " << dialog->windowTitle().toStdString();
                dialog->close();
                return;
            }
            inside = true;
            there[came++](dialog);
            inside = false;
            if (QApplication::activeModalWidget() == dialog) {
                ADD_FAILURE() << "the dialog stays open";
                dialog->close();
            }
        });
        waiting.start(20);
        gesture();
        EXPECT_EQ(came, there.size()) << "dialogs that came";
    }
    static void inDialog(const std::function<void()>& gesture, const std::function<void(QWidget*)>& there) {
        inDialogs(gesture, {there});
    }
    // Gives a file dialog a name, as typed, once it has listed its folder: what it then selects goes before what was
    // typed earlier.
    static void nameFile(QWidget* dialog, const QString& path) {
        auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        ASSERT_NE(name, nullptr) << "no file dialog";
        auto* list = dialog->findChild<QListView*>(QStringLiteral("listView"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return list->model()->rowCount(list->rootIndex()) > 0; }));
        // A list that arrives late selects the proposed name again, in the field or in the list alone, and what is
        // selected there goes before what is typed: neither may change for a while.
        int quietTurns = 0;
        ASSERT_TRUE(QTest::qWaitFor([&] {
            const QStringList files = dynamic_cast<QFileDialog&>(*dialog).selectedFiles();
            const bool isTyped = name->text() == path && files.size() == 1 && files.front().startsWith(path);
            quietTurns = isTyped ? quietTurns + 1 : 0;
            if (!isTyped) {
                list->selectionModel()->clear();
                name->setText(path);
            }
            return quietTurns > 10;
        }));
        QTest::keyClick(name, Qt::Key_Return);
    }
    // The menu's item of this text, without the letters that only say its key.
    QAction* item(const QString& text) const {
        for (QAction* action : window->findChildren<QAction*>())
            if (action->text().remove(QLatin1Char('&')) == text) return action;
        ADD_FAILURE() << "no menu item " << text.toStdString();
        return nullptr;
    }
    template <typename Widget>
    static Widget* control(QWidget* dialog, int id) {
        auto* found = dialog->findChild<Widget*>(QStringLiteral("control%1").arg(id));
        EXPECT_NE(found, nullptr) << "control " << id;
        return found;
    }

    QTemporaryDir home;
    std::unique_ptr<desktop::Session> session;
    std::unique_ptr<desktop::MainWindow> window;
    ~WindowRig() {
        window.reset();
        session.reset();
    }
};

}  // namespace quorvel::tests
