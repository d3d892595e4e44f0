// The program as a user has it: its own process on a screen of its own, with nothing but a mouse and keys (xdotool
// under Xvfb). Where things stand is asked of a window of the same size in this process, since no place is promised.
// Pictures of each step go to out/window: the screen keeps its pixels in a file.
#include "tests/desktop/outside/outside.h"

namespace quorvel::tests {
namespace {

class FirstMinutes : public Outside {
  protected:
    static QString text(const char* utf8) { return QString::fromUtf8(utf8); }
    QPoint slot(const char* tool) const { return slotPlaces.value(text(tool)); }
    // The window with the title, which a step has opened; empty, and a failure, when none comes.
    QString opened(const char* title) const {
        const QString dialog = awaitWindow(text(title));
        EXPECT_FALSE(dialog.isEmpty()) << "no window " << title;
        return dialog;
    }

    // Asked of a window of the same size in this process.
    void findPlaces() {
        WindowRig rig({words.language, words.look[0] == 'd', false});
        QFile::copy(QStringLiteral(QUORVEL_SOURCE_DIR "/examples/bracket.svg"), rig.home.filePath("bracket.svg"));
        ASSERT_TRUE(rig.window->file().open(rig.home.filePath("bracket.svg")));
        QApplication::processEvents();
        rig.canvas().fit();
        for (const char* title : {words.straight, words.radius, words.schedule}) {
            desktop::ToolSlot* found = rig.window->tools()->slotOf(text(title));
            ASSERT_NE(found, nullptr) << title;
            slotPlaces.insert(text(title), found->mapTo(rig.window.get(), QPoint(8, 8)));
        }
        canvas = rig.canvas().mapTo(rig.window.get(), QPoint());
        canvasHeight = rig.canvas().height();
        panelButton =
            rig.session->user().dialogs().panelForm()->widget(kPanelButton)->mapTo(rig.window.get(), QPoint(8, 8));
        const auto options = [&](const char* title) {
            return [&rig, title] {
                QTest::mouseDClick(rig.window->tools()->slotOf(text(title)), Qt::LeftButton, {}, {8, 8});
            };
        };
        rig.inDialog([&] { rig.window->menuGo("Orvane Group"); },
                     [&](QWidget* dialog) { settingsPlaces = PlacesIn(dialog), dialog->close(); });
        rig.inDialog(options(words.radius), [&](QWidget* dialog) { radiusPlaces = PlacesIn(dialog), dialog->close(); });
        rig.inDialog(options(words.schedule), [&](QWidget* dialog) {
            schedulePlaces = PlacesIn(dialog);
            stepsToSaveAs = StepsTo(dialog, words.saveAs);
            dialog->close();
        });
        rig.document().markSaved();
    }

    // A page that fits is as wide as the canvas but for its margins, or as high; its middle is the canvas's.
    void showWholePage() {
        for (int i = 0; i < 3; ++i) key("ctrl+0");
        loadPicture("open");
        zoom = recordedZoom();
        ASSERT_GT(zoom, 0);
        canvasWidth = zoom * kPageWidth + 2 * kFitMargin;
        ASSERT_GT((canvasHeight - 2 * kFitMargin) / (kPageHeight * kPoints), zoom)
            << "the canvas is too wide for this reckoning";
    }
    // A place on the sheet, millimetres.
    QPoint at(double x, double y) const {
        return canvas + QPointF(canvasWidth / 2 + (x * kPoints - kPageWidth / 2) * zoom,
                                canvasHeight / 2.0 + (y - kPageHeight / 2) * kPoints * zoom)
                            .toPoint();
    }

    // Snapped at both corners. The straight tool is the second of its slot: held, the slot opens.
    void drawOverallWidth() {
        moveTo(slot(words.straight));
        tool({"mousedown", "1"});
        QTest::qWait(900);
        tool({"mouseup", "1"});
        loadPicture("slot");
        for (const char* name : {"Down", "Down", "Return"}) {
            tool({"key", QLatin1String(name)});
            settle();
        }
        moveTo(at(45, 140) + QPoint(-1, 1));
        tool({"mousedown", "1"});
        moveTo(at(100, 142));
        moveTo(at(165, 140) + QPoint(1, 1));
        loadPicture("snap");
        tool({"mouseup", "1"});
        moveTo(at(120, 150));
        click(at(105, 156));
        loadPicture("dimension");
    }

    void keepRadiusOptions() {
        moveTo(slot(words.radius));
        click(slot(words.radius), 2);
        const QString dialog = opened(words.radiusOptions);
        ASSERT_FALSE(dialog.isEmpty());
        loadPicture("radius");
        click(controlAt(dialog, radiusPlaces, 6));
        click(controlAt(dialog, radiusPlaces, 1));
        EXPECT_TRUE(awaitGone(text(words.radiusOptions)));
    }

    // A value that is refused, then a good one.
    void changeSettings() {
        key("ctrl+comma");
        const QString dialog = opened(words.settings);
        ASSERT_FALSE(dialog.isEmpty());
        click(controlAt(dialog, settingsPlaces, 20));
        type(dialog, "-1");
        click(controlAt(dialog, settingsPlaces, 1));
        loadPicture("refused");
        EXPECT_FALSE(opened(words.settings).isEmpty());
        type(dialog, "25");  // the field has the focus, all of it selected
        click(controlAt(dialog, settingsPlaces, 1));
        EXPECT_TRUE(awaitGone(text(words.settings)));
    }

    // A preset is kept, the form changed, and the preset taken again.
    void keepPreset() {
        click(slot(words.schedule), 2);
        const QString dialog = opened(words.form);
        ASSERT_FALSE(dialog.isEmpty());
        const auto fill = [&](int control, const char* value) {
            click(controlAt(dialog, schedulePlaces, control));
            type(dialog, value);
        };
        const auto pick = [&](const char* towards, int steps) {
            click(controlAt(dialog, schedulePlaces, 106));
            for (int i = 0; i < steps; ++i) tool({"key", QLatin1String(towards)}), settle();
            tool({"key", "Return"});
            settle();
        };
        fill(8, "Mounting bracket");
        fill(35, "Bracket");
        pick("Down", stepsToSaveAs);
        const QString naming = opened(words.preset);
        ASSERT_FALSE(naming.isEmpty());
        loadPicture("preset");
        type(naming, "House");
        tool({"key", "Return"});
        EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(preset()); }, kPatience));
        EXPECT_TRUE(awaitGone(text(words.preset)));
        tool({"windowfocus", "--sync", dialog});
        pick("Up", 1);  // the untitled form stands above
        fill(8, "Other");
        pick("Down", 1);
        loadPicture("schedule");
        click(controlAt(dialog, schedulePlaces, 1));
        EXPECT_TRUE(awaitGone(text(words.form)));
    }

    void switchOnPanel() {
        click(panelButton);
        EXPECT_TRUE(QTest::qWaitFor([&] { return recorded("panel toggle 12") == 1; }, kPatience));
        loadPicture("panel");
    }

    // Told by what the window shows and what is saved behind it.
    void undoAndRedo() {
        const auto sheet = [&] { return screenshot().copy(QRect(canvas, QSize(int(canvasWidth), canvasHeight))); };
        const auto expectSaved = [&](std::size_t dimensions) {
            key("ctrl+s");
            EXPECT_EQ(savedDimensions(dimensions).size(), dimensions);
        };
        const QImage drawn = sheet();
        expectSaved(1);
        key("ctrl+z");
        EXPECT_NE(sheet(), drawn);
        loadPicture("undone");
        expectSaved(0);
        key("ctrl+shift+z");
        EXPECT_EQ(sheet(), drawn);
        loadPicture("redone");
        expectSaved(1);
    }

    void reopenAndQuit() {
        const qsizetype before = recorded("open ");
        key("ctrl+o");
        const QString dialog = opened(words.open);
        ASSERT_FALSE(dialog.isEmpty());
        loadPicture("file-dialog");
        type(dialog, drawing().toUtf8().constData());
        tool({"key", "Return"});
        EXPECT_TRUE(awaitGone(text(words.open)));
        EXPECT_TRUE(QTest::qWaitFor([&] { return recorded("open ") == before + 1; }, kPatience));
        settle();
        loadPicture("reopened");
        key("ctrl+q");
        if (program_.state() != QProcess::NotRunning && !program_.waitForFinished(kPatience)) {
            loadPicture("left-open");
            FAIL() << "the program does not end";
        }
        EXPECT_EQ(program_.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program_.readAll().toStdString(), "") << "nothing to complain of";
    }

    void expectKept() const {
        const std::vector<app::RecordedDimension> found = savedDimensions(1);
        ASSERT_EQ(found.size(), 1U);
        EXPECT_EQ(found[0].kind, "straight");
        EXPECT_EQ(found[0].texts, std::vector<std::string>{"120"}) << "snapped to both corners";
        QFile settings(home_.filePath("profile/Adobe/Illustrator/Prefs/Quorvel.ini"));
        ASSERT_TRUE(settings.open(QIODevice::ReadOnly));
        const QByteArray kept = settings.readAll();
        for (const char* line : {"flArAngle = 25", "flZwkTitle = \"Mounting bracket\"",
                                 "flZwkPartsName00 = \"Bracket\"", "flRadiusMode = 1"})
            EXPECT_TRUE(kept.contains(line)) << line << " in " << kept.toStdString();
    }

    static constexpr double kPageWidth = 297 * kPoints;
    const Case& words = GetParam();
    QMap<int, QPoint> settingsPlaces, radiusPlaces, schedulePlaces;
    QMap<QString, QPoint> slotPlaces;
    QPoint canvas, panelButton;
    int canvasHeight = 0, stepsToSaveAs = 0;
    double zoom = 0, canvasWidth = 0;
};

TEST_P(FirstMinutes, OfADraftsman) {
    ASSERT_NO_FATAL_FAILURE(findPlaces());
    ASSERT_NO_FATAL_FAILURE(startProgram());
    ASSERT_NO_FATAL_FAILURE(showWholePage());
    drawOverallWidth();
    ASSERT_NO_FATAL_FAILURE(keepRadiusOptions());
    ASSERT_NO_FATAL_FAILURE(changeSettings());
    ASSERT_NO_FATAL_FAILURE(keepPreset());
    switchOnPanel();
    undoAndRedo();
    ASSERT_NO_FATAL_FAILURE(reopenAndQuit());
    expectKept();
}

INSTANTIATE_TEST_SUITE_P(Languages, FirstMinutes, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.language) + info.param.look; });

class Recovery : public Outside {};

// The recovered copy stays in its window; the drawing that the command line names comes in another one.
TEST_P(Recovery, TheDrawingAskedForIsOpenedToo) {
    const QString copy = home_.filePath("Selkie Works/quorvel-desktop/rescue/1.svg");
    ASSERT_TRUE(QDir().mkpath(QFileInfo(copy).path()) && QFile::copy(drawing(), copy));
    QFile origin(copy + ".origin");
    ASSERT_TRUE(origin.open(QIODevice::WriteOnly) && origin.write("/elsewhere/plate.svg") > 0);
    origin.close();
    program_.setProcessEnvironment(around_);
    program_.start(QStringLiteral(QUORVEL_DESKTOP_FILE),
                   {"--language", "en", "--profile", home_.filePath("profile"), drawing()});
    ASSERT_TRUE(program_.waitForStarted());
    QString question;  // comes above the empty window
    (void)QTest::qWaitFor(
        [&] {
            question = tool({"search", "--onlyvisible", "--name", "Quorvel"}).section(QLatin1Char('\n'), 1, 1);
            return !question.isEmpty();
        },
        kPatience);
    settle();
    tool({"windowfocus", "--sync", question});
    tool({"key", "Return"});
    EXPECT_FALSE(awaitWindow("Copy of plate.svg").isEmpty());
    const QString second = awaitWindow("bracket.svg");
    EXPECT_FALSE(second.isEmpty());
    tool({"windowkill", second});
    EXPECT_TRUE(awaitGone("bracket.svg"));
}

INSTANTIATE_TEST_SUITE_P(English, Recovery, ::testing::Values(kCases[0]));

}  // namespace
}  // namespace quorvel::tests
