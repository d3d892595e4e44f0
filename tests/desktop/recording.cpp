// What is recorded at the window makes the same drawing without one.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QTreeWidget>
#include <csignal>
#include <fstream>
#include <sstream>

#include "app/headless_session.h"
#include "app/script.h"
#include "tests/desktop/window_rig.h"
#include "tests/support/script_fault.h"

namespace quorvel::tests {
namespace {

std::string ReadText(const std::string& path) {
    std::ifstream in(path);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// Closes the window and replays what it has recorded, to the drawing that it had.
void ReplaysHere(WindowRig& rig) {
    const std::string name = rig.home.path().toStdString() + "/recorded.script";
    const std::string dump = rig.dump();
    rig.document().markSaved();
    rig.window.reset();
    rig.session.reset();
    const std::string script = ReadText(name);
    QTemporaryDir profile;
    app::HeadlessSession session({profile.path().toStdString(), "", 1, QUORVEL_PLUGIN_FILE});
    EXPECT_EQ(faultOf(script, name, session), "") << script;
    ASSERT_NE(session.document(), nullptr);
    EXPECT_EQ(app::dumpDocument(*session.document(), session.host().rulerUnit()), dump) << script;
}

TEST(Recording, ReplaysToTheSameDump) {
    WindowRig rig({"en", false, true});
    rig.dimensionEdge();
    rig.inDialog([&] { rig.window->menuGo("Orvane Group"); },
                 [&](QWidget* dialog) {
                     auto* angle = rig.control<QLineEdit>(dialog, 20);
                     angle->selectAll();
                     QTest::keyClicks(angle, "2");
                     angle->insert(QString::fromUtf8("\u20AC"));  // the code page has no euro sign
                     QTest::keyClicks(angle, "5");
                     auto* shape = rig.control<QComboBox>(dialog, 5);
                     shape->setCurrentIndex(0);
                     emit shape->activated(0);
                     QTest::mouseClick(rig.control<QPushButton>(dialog, 1), Qt::LeftButton);
                 });
    QTest::mouseClick(rig.session->user().dialogs().panelForm()->widget(13), Qt::LeftButton);
    rig.window->tools()->choose("Radius Tool");
    rig.drag(rig.pixel(400, 170) + QPoint(0, 0), rig.pixel(470, 200));
    rig.window->tools()->choose("select");
    rig.drag(rig.pixel(200, 150), rig.pixel(230, 170));
    rig.window->editing().copy();
    rig.window->editing().paste();
    rig.window->undo();
    rig.window->redo();
    rig.window->editing().select({rig.document().findByName("hole")});
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
    const std::string script = ReadText(rig.home.path().toStdString() + "/recorded.script");
    for (const char* line : {"move \"@", "clip \"@", "layer \"Layer 2\" down", "title \"Renamed \\\"part\\\"\""})
        EXPECT_NE(script.find(line), std::string::npos) << line << "\n" << script;
    ReplaysHere(rig);
}

// What was cut, has changed since it was copied or comes from another drawing is pasted alike.
TEST(Recording, PastesOfWhatIsGoneReplay) {
    WindowRig rig({"en", false, true});
    desktop::Editing& editing = rig.window->editing();
    rig.dimensionEdge();
    editing.selectAll();
    editing.cut();
    editing.paste();
    editing.paste();
    editing.select({rig.document().findByName("hole")});
    editing.copy();
    editing.move({30, -10});
    editing.paste();
    rig.window->undo();
    rig.window->undo();
    rig.window->redo();
    rig.document().markSaved();
    ASSERT_TRUE(rig.window->file().open(rig.drawing()));
    editing.paste();
    editing.turn(10, {200, 200});
    EXPECT_EQ(rig.document().artCount(), 3U);
    ReplaysHere(rig);
}

// A click on the turning handle, a drag back to its start and an empty group make no step, and an undo behind them
// takes back what the window takes back.
TEST(Recording, DeedsThatChangeNothingCountNoSteps) {
    WindowRig rig({"en", false, true});
    desktop::Editing& editing = rig.window->editing();
    rig.dimensionEdge();
    editing.selectAll();
    editing.move({40, 0});
    rig.press("select");
    const QRectF box = rig.canvas().toPixels().mapRect(editing.selectionBox());
    rig.click(QPointF(box.center().x(), box.top() - 22).toPoint());
    editing.move({0, 0});
    rig.window->undo();
    EXPECT_EQ(*rig.document().undoName(), "Undo Straight Dimension Tool");
    rig.press("select");
    editing.select({rig.document().findByName("plate"), rig.document().findByName("hole")});
    editing.move({7, 7});
    editing.turn(0, {0, 0});
    rig.window->undo();
    rig.window->redo();
    rig.window->undo();
    rig.window->undo();
    EXPECT_EQ(rig.document().undoName(), nullptr);
    ReplaysHere(rig);
}

// The outer dialog asks first for its reply, and has it last.
TEST(Recording, DialogsInDialogsReplay) {
    WindowRig rig({"en", false, true});
    desktop::ToolSlot* slot = rig.window->tools()->slotOf("Schedule Tool [bottom]");
    ASSERT_NE(slot, nullptr);
    rig.inDialog([&] { QTest::mouseDClick(slot, Qt::LeftButton, {}, QPoint(8, 8)); },
                 [&](QWidget* dialog) {
                     QTest::keyClicks(rig.control<QLineEdit>(dialog, 8), "Lever");
                     bool named = false;
                     QTimer waiting;
                     QObject::connect(&waiting, &QTimer::timeout, [&] {
                         QWidget* over = QApplication::activeModalWidget();
                         if (over == nullptr || over == dialog || named) return;
                         named = true;
                         auto* name = rig.control<QLineEdit>(over, 3);
                         name->selectAll();
                         QTest::keyClicks(name, "House");
                         QTest::mouseClick(rig.control<QPushButton>(over, 1), Qt::LeftButton);
                     });
                     waiting.start(20);
                     auto* presets = rig.control<QComboBox>(dialog, 106);
                     const int row = presets->findText("Save As...");
                     presets->setCurrentIndex(row);
                     emit presets->activated(row);
                     EXPECT_TRUE(QTest::qWaitFor([&] { return named && QApplication::activeModalWidget() == dialog; }));
                     QTest::mouseClick(rig.control<QPushButton>(dialog, 1), Qt::LeftButton);
                 });
    ReplaysHere(rig);
}

TEST(Recording, AGridStepPickedFromTheListReplays) {
    WindowRig rig({"en", false, true});
    auto* list = qobject_cast<QComboBox*>(rig.session->user().dialogs().panelForm()->widget(20));
    ASSERT_NE(list, nullptr);
    ASSERT_GT(list->count(), 4);
    list->setCurrentIndex(4);
    emit list->activated(4);
    rig.window->tick();
    const std::string script = ReadText(rig.home.path().toStdString() + "/recorded.script");
    EXPECT_NE(script.find("panel text 20 " + app::quotedWord(list->itemText(4).toStdString()) + "\ntick\n"),
              std::string::npos)
        << script;
    ReplaysHere(rig);
}

// --- the file itself
// --------------------------------------------------------------------------------------------------

class RecorderFile : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(recorder.open(path(), 7)); }
    std::string path() const { return folder.filePath("a.script").toStdString(); }
    std::string lines() const {
        const std::string text = ReadText(path());
        return text.substr(text.find('\n', text.find('\n') + 1) + 1);  // behind the two comments
    }
    QTemporaryDir folder;
    app::Recorder recorder;
};

// A deed that brings the program down is the one that is wanted.
TEST_F(RecorderFile, HoldsALineBeforeItIsDone) {
    EXPECT_NE(ReadText(path()).find("--seed 7"), std::string::npos);
    recorder.line("tool \"A\"");
    EXPECT_EQ(lines(), "tool \"A\"\n");
    for (const float h : {1000.5F, 2.0F, 3.0F, 4.0F}) recorder.move("track", {h, 1}, 0);
    EXPECT_EQ(lines(), "tool \"A\"\ntrack 3 1\ntrack 4 1\n");
    recorder.button("down", 0);
    recorder.plan({"move \"a\" 1 2", "move \"b\" 1 2"});
    EXPECT_EQ(lines(), "tool \"A\"\ntrack 3 1\ntrack 4 1\ndown\nmove \"a\" 1 2\nmove \"b\" 1 2\n");
    recorder.step({});
    EXPECT_EQ(lines(), "tool \"A\"\ntrack 3 1\ntrack 4 1\ndown\n");
    app::Recorder unseeded;
    ASSERT_TRUE(unseeded.open(path(), std::nullopt));
    EXPECT_NE(ReadText(path()).find("ids differ"), std::string::npos);
}

TEST_F(RecorderFile, EndsWithOneWordWhenTheDiskIsFull) {
    std::vector<Error> told;
    recorder.writeFailed = [&told](const Error& error) { told.push_back(error); };
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{200, before.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    for (int i = 0; i < 20; ++i) recorder.line("tool \"Straight\"");
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].file, path());
    EXPECT_FALSE(recorder.on());
}

// A pipe has no end that could be written anew: it gets what is settled.
TEST_F(RecorderFile, GoesThroughAPipeInOrder) {
    const std::string pipe = folder.filePath("pipe").toStdString();
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
    {
        app::Recorder piped;
        ASSERT_TRUE(piped.open(pipe, 7));
        for (const float h : {1.0F, 2.0F, 3.0F}) piped.move("track", {h, 1}, 0);
        piped.button("down", 0);
    }
    std::string text(1000, '\0');
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(::read(reader, text.data(), text.size()), 0)));
    ::close(reader);
    EXPECT_EQ(text.substr(text.find("track")), "track 2 1\ntrack 3 1\ndown\n");
}

TEST_F(RecorderFile, PutsRepliesAheadAndAlertsBehindTheirLine) {
    using Kind = platform::DialogStep::Kind;
    recorder.line("options \"S\"");
    recorder.dialogOpened();
    recorder.boxAnswered(false);
    recorder.dialogOpened();
    recorder.dialogAnswered({2, {{Kind::press, 1, {}, 0}}});
    recorder.dialogAnswered({1, {{Kind::press, 2, {}, 0}}});
    recorder.alertShown("a \"bad\" end");
    recorder.line("undo");
    EXPECT_EQ(lines(),
              "dialog 1 press:2\nanswer cancel\ndialog 2 press:1\noptions \"S\"\n"
              "expect alert \"a \\\"bad\\\" end\"\nundo\n");
}

TEST_F(RecorderFile, KeepsAMoveThatHadConsequences) {
    for (const float h : {1.0F, 2.0F, 3.0F}) {
        recorder.move("track", {h, 0}, 0);
        if (h == 1) recorder.alertShown("first");
    }
    recorder.move("track", {4, 0}, 0);
    recorder.tick();  // nothing to do, and nothing said of it
    recorder.move("track", {5, 0}, 0);
    recorder.tick();
    recorder.alertShown("late");
    EXPECT_EQ(lines(), "track 1 0\nexpect alert \"first\"\ntrack 4 0\ntrack 5 0\ntick\nexpect alert \"late\"\n");
}

TEST_F(RecorderFile, CountsTheScriptsStepsOfEachOfTheWindows) {
    recorder.stepMade();
    recorder.step({"move \"a\" 1 1", "move \"b\" 1 1"});
    recorder.line("notify N");
    recorder.stepMade();
    recorder.lastStepsJoined();
    recorder.line("x");
    recorder.stepMade();
    recorder.undo();
    recorder.undo();
    recorder.redo();
    const std::string all = lines();
    EXPECT_EQ(all.substr(all.find("x\n")), "x\nundo\nundo\nundo\nundo\nredo\nredo\nredo\n");
}

}  // namespace
}  // namespace quorvel::tests
