// What is recorded at the window makes the same drawing without one.
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
        dump = rig.dump();
        rig.desk->recorder().flush();
        script = ReadText(rig.home.path().toStdString() + "/recorded.script");
        const std::string name = rig.home.path().toStdString() + "/recorded.script";
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
