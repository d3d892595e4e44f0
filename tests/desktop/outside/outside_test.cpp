// The program as a user has it: its own process on a screen of its own, with nothing but a mouse and keys (xdotool
// under Xvfb). Where things stand is asked of a window of the same size in this process, since no place is promised.
// Pictures of each step go to out/window: the screen keeps its pixels in a file.
#include "tests/desktop/outside/outside.h"

namespace quorvel::tests {
namespace {

TEST_P(Outside, ADraftsmansFirstMinutes) {
    const Case& words = GetParam();
    // Where things are.
    QMap<int, QPoint> settingsPlaces, radiusPlaces, schedulePlaces;
    QMap<QString, QPoint> slotPlaces;
    QPoint canvas, panelButton;
    int canvasHeight = 0, stepsToSaveAs = 0;
    {
        WindowRig rig({words.language, words.look[0] == 'd', false});
        QFile::copy(QStringLiteral(QUORVEL_SOURCE_DIR "/examples/bracket.svg"), rig.home.filePath("bracket.svg"));
        ASSERT_TRUE(rig.window->file().open(rig.home.filePath("bracket.svg")));
        QApplication::processEvents();
        rig.canvas().fit();
        for (const char* title : {words.straight, words.radius, words.schedule}) {
            desktop::ToolSlot* slot = rig.window->tools()->slotOf(QString::fromUtf8(title));
            ASSERT_NE(slot, nullptr) << title;
            slotPlaces.insert(QString::fromUtf8(title), slot->mapTo(rig.window.get(), QPoint(8, 8)));
        }
        canvas = rig.canvas().mapTo(rig.window.get(), QPoint());
        canvasHeight = rig.canvas().height();
        panelButton =
            rig.session->user().dialogs().panelForm()->widget(kPanelButton)->mapTo(rig.window.get(), QPoint(8, 8));
        const auto options = [&](const char* title) {
            return [&rig, title] {
                QTest::mouseDClick(rig.window->tools()->slotOf(QString::fromUtf8(title)), Qt::LeftButton, {}, {8, 8});
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
    ASSERT_NO_FATAL_FAILURE(startProgram());
    for (int i = 0; i < 3; ++i) key("ctrl+0");  // the whole page
    loadPicture("open");
    // A page that fits is as wide as the canvas but for its margins, or as high; its middle is the canvas's.
    const double zoom = recordedZoom(), pageWidth = 297 * kPoints, pageHeight = kPageHeight * kPoints;
    ASSERT_GT(zoom, 0);
    const double canvasWidth = zoom * pageWidth + 2 * kFitMargin;
    ASSERT_GT((canvasHeight - 2 * kFitMargin) / pageHeight, zoom) << "the canvas is too wide for this reckoning";
    const auto at = [&](double x, double y) {
        return canvas + QPointF(canvasWidth / 2 + (x * kPoints - pageWidth / 2) * zoom,
                                canvasHeight / 2.0 + (y * kPoints - pageHeight / 2) * zoom)
                            .toPoint();
    };

    // The overall width, snapped at both corners.
    // The straight tool is the second of its slot: held, the slot opens.
    moveTo(slotPlaces.value(QString::fromUtf8(words.straight)));
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

    // The radius tool's options, kept.
    moveTo(slotPlaces.value(QString::fromUtf8(words.radius)));
    click(slotPlaces.value(QString::fromUtf8(words.radius)), 2);
    const QString radiusTitle = QString::fromUtf8(words.radiusOptions);
    QString dialog = awaitWindow(radiusTitle);
    ASSERT_FALSE(dialog.isEmpty()) << "no options of the radius tool";
    loadPicture("radius");
    click(controlAt(dialog, radiusPlaces, 6));
    click(controlAt(dialog, radiusPlaces, 1));
    EXPECT_TRUE(awaitGone(radiusTitle));

    // Settings: a value that is refused, then a good one.
    key("ctrl+comma");
    dialog = awaitWindow(QString::fromUtf8(words.settings));
    ASSERT_FALSE(dialog.isEmpty()) << "no settings";
    click(controlAt(dialog, settingsPlaces, 20));
    type(dialog, "-1");
    click(controlAt(dialog, settingsPlaces, 1));
    loadPicture("refused");
    EXPECT_FALSE(awaitWindow(QString::fromUtf8(words.settings)).isEmpty());
    type(dialog, "25");  // the field has the focus, all of it selected
    click(controlAt(dialog, settingsPlaces, 1));
    EXPECT_TRUE(awaitGone(QString::fromUtf8(words.settings)));

    // The schedule: a preset is kept, the form changed, and the preset taken again.
    click(slotPlaces.value(QString::fromUtf8(words.schedule)), 2);
    const QString scheduleTitle = QString::fromUtf8(words.form);
    dialog = awaitWindow(scheduleTitle);
    ASSERT_FALSE(dialog.isEmpty()) << "no schedule";
    click(controlAt(dialog, schedulePlaces, 8));
    type(dialog, "Mounting bracket");
    click(controlAt(dialog, schedulePlaces, 35));
    type(dialog, "Bracket");
    const auto pick = [&](const char* towards, int steps) {
        click(controlAt(dialog, schedulePlaces, 106));
        for (int i = 0; i < steps; ++i) tool({"key", QLatin1String(towards)}), settle();
        tool({"key", "Return"});
        settle();
    };
    pick("Down", stepsToSaveAs);
    const QString naming = awaitWindow(QString::fromUtf8(words.preset));
    ASSERT_FALSE(naming.isEmpty()) << "no name is asked for";
    loadPicture("preset");
    type(naming, "House");
    tool({"key", "Return"});
    EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(preset()); }, kPatience));
    EXPECT_TRUE(awaitGone(QString::fromUtf8(words.preset)));
    tool({"windowfocus", "--sync", dialog});
    pick("Up", 1);  // the untitled form stands above
    click(controlAt(dialog, schedulePlaces, 8));
    type(dialog, "Other");
    pick("Down", 1);
    loadPicture("schedule");
    click(controlAt(dialog, schedulePlaces, 1));
    EXPECT_TRUE(awaitGone(scheduleTitle));

    // A switch of the panel.
    click(panelButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return recorded("panel toggle 12") == 1; }, kPatience));
    loadPicture("panel");

    // Undo and redo are told by what the window shows and what is saved behind them.
    const auto sheet = [&] { return screenshot().copy(QRect(canvas, QSize(int(canvasWidth), canvasHeight))); };
    const QImage drawn = sheet();
    key("ctrl+s");
    EXPECT_EQ(savedDimensions(1).size(), 1U);
    key("ctrl+z");
    EXPECT_NE(sheet(), drawn);
    loadPicture("undone");
    key("ctrl+s");
    EXPECT_EQ(savedDimensions(0).size(), 0U);
    key("ctrl+shift+z");
    EXPECT_EQ(sheet(), drawn);
    loadPicture("redone");
    key("ctrl+s");
    EXPECT_EQ(savedDimensions(1).size(), 1U);

    // Opened again, it looks the same.
    const qsizetype opened = recorded("open ");
    key("ctrl+o");
    dialog = awaitWindow(QString::fromUtf8(words.open));
    ASSERT_FALSE(dialog.isEmpty()) << "no file dialog";
    loadPicture("file-dialog");
    type(dialog, drawing().toUtf8().constData());
    tool({"key", "Return"});
    EXPECT_TRUE(awaitGone(QString::fromUtf8(words.open)));
    EXPECT_TRUE(QTest::qWaitFor([&] { return recorded("open ") == opened + 1; }, kPatience));
    settle();
    loadPicture("reopened");
    key("ctrl+q");
    if (program_.state() != QProcess::NotRunning && !program_.waitForFinished(kPatience)) {
        loadPicture("left-open");
        FAIL() << "the program does not end";
    }
    EXPECT_EQ(program_.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program_.readAll().toStdString(), "") << "nothing to complain of";

    const std::vector<app::RecordedDimension> found = savedDimensions(1);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].kind, "straight");
    EXPECT_EQ(found[0].texts, std::vector<std::string>{"120"}) << "snapped to both corners";
    QFile settings(home_.filePath("profile/Adobe/Illustrator/Prefs/Quorvel.ini"));
    ASSERT_TRUE(settings.open(QIODevice::ReadOnly));
    const QByteArray kept = settings.readAll();
    EXPECT_TRUE(kept.contains("flArAngle = 25")) << kept.toStdString();
    EXPECT_TRUE(kept.contains("flZwkTitle = \"Mounting bracket\""));
    EXPECT_TRUE(kept.contains("flZwkPartsName00 = \"Bracket\""));
    EXPECT_TRUE(kept.contains("flRadiusMode = 1")) << "the surface is shown";
}

INSTANTIATE_TEST_SUITE_P(Languages, Outside, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.language) + info.param.look; });

}  // namespace
}  // namespace quorvel::tests
