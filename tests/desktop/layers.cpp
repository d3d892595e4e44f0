// The layer list under mouse and keys, what its deeds are called, and how a script says them.
#include <QTreeWidget>
#include <fstream>
#include <sstream>

#include "app/headless_session.h"
#include "tests/desktop/window_rig.h"
#include "tests/support/script_fault.h"

namespace quorvel::tests {
namespace {

enum Column { kEye, kLock, kTitle };

class Layers : public ::testing::Test {
  protected:
    void start(const WindowRig::Options& options = {}) { rig = std::make_unique<WindowRig>(options); }
    void TearDown() override {
        if (rig != nullptr) rig->document().markSaved();
    }
    QWidget& panel() { return *rig->window->findChild<QWidget*>("layers"); }
    QTreeWidget& list() { return *panel().findChild<QTreeWidget*>(); }
    // A whole click, after which the window does what it has put off.
    void click(int row, int column) {
        QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, place(row, column));
        QApplication::processEvents();
    }
    // The second press of a double click, as a mouse sends it.
    void pressAgain(int row, int column) {
        const QPoint at = place(row, column);
        for (const QEvent::Type type : {QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}) {
            QMouseEvent event(type, at, list().viewport()->mapToGlobal(at), Qt::LeftButton,
                              type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(list().viewport(), &event);
        }
        QApplication::processEvents();
    }
    QPoint place(int row, int column) {
        const QTreeWidgetItem* item = list().topLevelItem(row);
        return list().visualRect(list().indexFromItem(item, column)).center();
    }
    QLineEdit* editor() { return list().viewport()->findChild<QLineEdit*>(); }
    void type(const char* text) {
        QLineEdit* field = editor();
        ASSERT_NE(field, nullptr) << "nothing to type into";
        field->selectAll();
        QTest::keyClicks(field, text);
        QTest::keyClick(field, Qt::Key_Return);
        QApplication::processEvents();
    }
    void press(const char* button) {
        panel().findChild<QAbstractButton*>(button)->click();
        QApplication::processEvents();
    }
    std::vector<std::string> titles() {
        std::vector<std::string> all;
        for (const doc::LayerId id : rig->document().layers()) all.push_back(rig->document().layer(id)->title);
        return all;
    }
    std::vector<std::string> shownTitles() {
        std::vector<std::string> all;
        for (int row = 0; row < list().topLevelItemCount(); ++row)
            all.push_back(list().topLevelItem(row)->text(kTitle).toStdString());
        return all;
    }
    std::string undoName() { return *rig->document().undoName(); }
    using Titles = std::vector<std::string>;

    std::unique_ptr<WindowRig> rig;
};

TEST_F(Layers, DoubleClickAndKeyRename) {
    start();
    press("newLayer");
    ASSERT_EQ(titles(), (Titles{"Layer 2", "Part"}));
    click(1, kTitle);
    pressAgain(1, kTitle);
    ASSERT_NO_FATAL_FAILURE(type("Plate"));
    EXPECT_EQ(titles(), (Titles{"Layer 2", "Plate"}));
    EXPECT_EQ(shownTitles(), titles());
    EXPECT_EQ(undoName(), "Undo Rename Layer");
    // The key renames, also behind a click on the eye.
    click(0, kEye);
    EXPECT_FALSE(rig->document().layer(rig->document().layers()[0])->visible);
    QTest::keyClick(&list(), Qt::Key_F2);
    ASSERT_NO_FATAL_FAILURE(type("Hidden one"));
    EXPECT_EQ(titles(), (Titles{"Hidden one", "Plate"}));
    // Escape and an empty name leave it.
    QTest::keyClick(&list(), Qt::Key_F2);
    ASSERT_NE(editor(), nullptr);
    QTest::keyClicks(editor(), "Other");
    QTest::keyClick(editor(), Qt::Key_Escape);
    QApplication::processEvents();
    QTest::keyClick(&list(), Qt::Key_F2);
    ASSERT_NO_FATAL_FAILURE(type(""));
    EXPECT_EQ(titles(), (Titles{"Hidden one", "Plate"}));
    EXPECT_EQ(shownTitles(), titles());
    rig->window->undo();
    rig->window->undo();
    QApplication::processEvents();
    EXPECT_EQ(shownTitles(), (Titles{"Layer 2", "Plate"}));
}

// A drag past several layers, as the list tells it.
TEST_F(Layers, OneDeedIsOneStepWithAName) {
    struct Case {
        const char* language;
        std::vector<std::string> names;
    };
    const Case cases[] = {
        {"en", {"Undo New Layer", "Undo Move Layer", "Undo Hide Layer", "Undo Lock Layer", "Undo Unlock Layer"}},
        {"ja",
         {"新規レイヤーの取り消し", "レイヤーの移動の取り消し", "レイヤーの非表示の取り消し",
          "レイヤーのロックの取り消し", "レイヤーのロック解除の取り消し"}},
    };
    for (const Case& c : cases) {
        start({.language = c.language});
        for (int i = 0; i < 3; ++i) press("newLayer");
        EXPECT_EQ(undoName(), c.names[0]);
        const Titles before = titles();
        ASSERT_EQ(before.size(), 4U);
        dynamic_cast<desktop::LayerList&>(list()).dropped(3, 0);
        QApplication::processEvents();
        EXPECT_EQ(titles(), (Titles{before[3], before[0], before[1], before[2]}));
        EXPECT_EQ(shownTitles(), titles());
        EXPECT_EQ(undoName(), c.names[1]);
        EXPECT_EQ(rig->window->findChild<QAction*>("undo")->text().toStdString(), c.names[1]);
        rig->window->undo();
        EXPECT_EQ(titles(), before);
        click(1, kEye);
        EXPECT_EQ(undoName(), c.names[2]);
        click(1, kLock);
        EXPECT_EQ(undoName(), c.names[3]);
        click(1, kLock);
        EXPECT_EQ(undoName(), c.names[4]);
        rig->document().markSaved();
        rig.reset();
    }
}

// A script knows layers by their titles; of two that are called the same the lower one is meant here.
TEST_F(Layers, ScriptMeansTheLayerThatWasClicked) {
    start({.record = true});
    press("newLayer");
    press("newLayer");
    click(0, kTitle);
    pressAgain(0, kTitle);
    ASSERT_NO_FATAL_FAILURE(type("Part"));
    ASSERT_EQ(titles(), (Titles{"Part", "Layer 2", "Part"}));
    click(2, kLock);
    click(2, kEye);
    rig->window->undo();
    rig->window->redo();
    click(2, kTitle);
    press("raiseLayer");
    ASSERT_EQ(titles(), (Titles{"Part", "Part", "Layer 2"}));
    EXPECT_EQ(rig->document().currentLayer(), rig->document().layers()[1]);
    rig->window->undo();
    click(2, kTitle);
    const std::string dump = rig->dump(), name = rig->home.path().toStdString() + "/recorded.script";
    std::ostringstream script;
    script << std::ifstream(name).rdbuf();
    rig->document().markSaved();
    rig->window.reset();
    rig->session.reset();

    const QTemporaryDir profile;
    app::HeadlessSession session({profile.path().toStdString(), "", 1, QUORVEL_PLUGIN_FILE});
    EXPECT_EQ(faultOf(script.str(), name, session), "") << script.str();
    ASSERT_NE(session.document(), nullptr);
    EXPECT_EQ(app::dumpDocument(*session.document(), session.host().rulerUnit()), dump) << script.str();
    rig.reset();
}

}  // namespace
}  // namespace quorvel::tests
