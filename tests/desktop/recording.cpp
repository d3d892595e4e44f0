// What is recorded at the window makes the same drawing without one.
#include <QTreeWidget>
#include <fstream>
#include <sstream>

#include "cli/script.h"
#include "cli/script_runner.h"
#include "cli/session.h"
#include "tests/desktop/window_rig.h"

namespace quorvel::tests {
namespace {

std::string ReadText(const std::string& path) {
    std::ifstream in(path);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

TEST(Recording, ReplaysToTheSameDump) {
    std::string script, dump;
    QTemporaryDir profile;
    {
        WindowRig rig({"en", false, true});
        rig.dimensionEdge();
        rig.inDialog([&] { rig.window->menuGo("Orvane Group"); },
                     [&](QWidget* dialog) {
                         auto* angle = rig.control<QLineEdit>(dialog, 20);
                         angle->selectAll();
                         QTest::keyClicks(angle, "25");
                         auto* shape = rig.control<QComboBox>(dialog, 5);
                         shape->setCurrentIndex(0);
                         emit shape->activated(0);
                         QTest::mouseClick(rig.control<QPushButton>(dialog, 1), Qt::LeftButton);
                     });
        QTest::mouseClick(rig.desk->user().panelForm()->widget(13), Qt::LeftButton);
        rig.window->tools()->choose("Radius Tool");
        rig.drag(rig.pixel(400, 170) + QPoint(0, 0), rig.pixel(470, 200));
        rig.window->tools()->choose("select");
        rig.drag(rig.pixel(200, 150), rig.pixel(230, 170));
        rig.window->editing().copy();
        rig.window->editing().paste();
        rig.window->undo();
        rig.window->redo();
        rig.window->editing().select({rig.document().findBySvgId("hole")});
        rig.window->editing().turn(12.5, {380, 140});
        // Art that bears no id: the comment's leader and the arc.
        rig.window->tools()->choose("Arc Tool [Three Points]");
        for (const QPoint at : {rig.pixel(340, 320), rig.pixel(420, 320), rig.pixel(380, 350)}) {
            rig.moveTo(at);
            QTest::mousePress(&rig.canvas(), Qt::LeftButton, {}, at);
            rig.moveTo(at + QPoint(3, 2), Qt::LeftButton);
            QTest::mouseRelease(&rig.canvas(), Qt::LeftButton, {}, at + QPoint(3, 2));
        }
        rig.window->tools()->choose("select");
        rig.window->editing().selectAll();
        rig.window->editing().move({11, 7});
        rig.window->editing().copy();
        rig.window->editing().paste();
        rig.window->editing().remove();
        rig.window->undo();
        QWidget& layers = *rig.window->findChild<QWidget*>("layers");
        layers.findChild<QAbstractButton*>("newLayer")->click();
        layers.findChild<QAbstractButton*>("lowerLayer")->click();
        auto* list = layers.findChild<QTreeWidget*>();
        QApplication::processEvents();
        list->topLevelItem(0)->setText(2, "Renamed \"part\"");
        QApplication::processEvents();
        rig.drag(rig.pixel(520, 350), rig.pixel(560, 370));
        dump = rig.dump();
        rig.desk->recorder().flush();
        script = ReadText(rig.home.path().toStdString() + "/recorded.script");
        const std::string name = rig.home.path().toStdString() + "/recorded.script";
        for (const char* line : {"move \"@", "copy \"@", "layer \"Layer 2\" down", "title \"Renamed \\\"part\\\"\""})
            EXPECT_NE(script.find(line), std::string::npos) << line << "\n" << script;
        rig.document().markSaved();
        rig.window.reset();
        rig.desk.reset();

        cli::Session session({profile.path().toStdString(), "", 1, QUORVEL_PLUGIN_FILE});
        const cli::ScriptOutcome outcome =
            cli::runScript(cli::parseScript(script, name), name, session, [](const std::string&) {});
        EXPECT_TRUE(outcome.held) << outcome.fault << "\n" << script;
        ASSERT_NE(session.document(), nullptr);
        EXPECT_EQ(cli::dumpDocument(*session.document(), session.host().rulerUnit()).dump(1), dump) << script;
        EXPECT_FALSE(session.user().repliesLeft());
    }
}

}  // namespace
}  // namespace quorvel::tests
