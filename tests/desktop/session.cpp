// A draftsman's first minutes at the window, by mouse, keys and real dialogs.
#include <QAbstractItemView>
#include <QAction>
#include <QLabel>
#include <QMenuBar>
#include <QPainter>
#include <QProgressBar>
#include <QSettings>
#include <QStatusBar>
#include <algorithm>

#include "interchange/svg/svg.h"
#include "platform/qt/panel_button.h"
#include "tests/desktop/window_rig.h"

namespace quorvel::tests {
namespace {

TEST(Window, StraightDimensionByMouseSnapsUndoesSavesAndReopens) {
    WindowRig rig;
    rig.press("Straight Dimension Tool");
    const std::size_t before = rig.document().artCount();
    rig.dimensionEdge();
    EXPECT_EQ(rig.newestText(), "71");  // 200 points are 70.56 mm: both ends have snapped to the corners
    EXPECT_GT(rig.document().artCount(), before);
    EXPECT_EQ(rig.session->user().screen().inverted().count(), 0U);

    const std::size_t drawn = rig.document().artCount();
    rig.window->undo();
    EXPECT_EQ(rig.document().artCount(), before);
    rig.window->redo();
    EXPECT_EQ(rig.document().artCount(), drawn);

    const std::string dump = rig.dump();
    ASSERT_TRUE(rig.window->file().save());
    EXPECT_FALSE(rig.window->isWindowModified());
    ASSERT_TRUE(rig.window->file().open(rig.drawing()));
    EXPECT_EQ(rig.dump(), dump);
}

TEST(Window, MovedArtTakesItsDimensionAlong) {
    WindowRig rig;
    rig.dimensionEdge();
    rig.press("select");
    const doc::ArtId plate = rig.document().findByName("plate");
    const RealRect before = rig.document().bounds(plate);
    rig.drag(rig.pixel(150, 150), rig.pixel(150, 150) + QPoint(40, -30));
    const RealRect after = rig.document().bounds(plate);
    const double zoom = rig.session->host().view().zoom;
    EXPECT_NEAR(after.left - before.left, 40 / zoom, 0.01);
    EXPECT_NEAR(after.bottom - before.bottom, 30 / zoom, 0.01);
    const doc::Art* root = rig.document().find(rig.document().layer(rig.document().currentLayer())->root);
    const RealRect dimension = rig.document().bounds(root->firstChild);
    EXPECT_GT(dimension.right, 300 + 20 / zoom);
}

TEST(Window, CountsTheDimensionsThatAreNoLongerTrue) {
    WindowRig rig;
    const auto* shown = rig.window->findChild<QLabel*>(QStringLiteral("untrue"));
    ASSERT_NE(shown, nullptr);
    rig.dimensionEdge();
    rig.window->truth().countNow();
    EXPECT_EQ(shown->text(), "");
    rig.session->host().edit("Shift", [](doc::Document& document) {
        return document.transform(document.findByName("plate"), {1, 0, 0, 1, 10, 10}, 1);
    });
    const std::string before = rig.dump();
    rig.window->truth().countNow();
    EXPECT_EQ(shown->text(), "1 dimension is no longer true - Ctrl+R");
    EXPECT_EQ(rig.dump(), before) << "counting changes nothing";
    EXPECT_EQ(*rig.document().undoName(), "Undo Shift");
    const QImage plain = rig.canvas().grab().toImage();
    rig.window->findChild<QAction*>(QStringLiteral("markUntrue"))->setChecked(true);
    EXPECT_NE(rig.canvas().grab().toImage(), plain);
    rig.window->undo();
    rig.window->truth().countNow();
    EXPECT_EQ(shown->text(), "");
    EXPECT_NE(rig.document().redoName(), nullptr);
}

TEST(Window, RadiusOptionsByDoubleClick) {
    WindowRig rig;
    desktop::ToolSlot* slot = rig.window->tools()->slotOf("Radius Tool");
    ASSERT_NE(slot, nullptr);
    const auto open = [&] { QTest::mouseDClick(slot, Qt::LeftButton, {}, QPoint(8, 8)); };
    rig.inDialog(open, [&](QWidget* dialog) {
        EXPECT_EQ(dialog->objectName(), "dialog16266");
        QTest::mouseClick(rig.control<QAbstractButton>(dialog, 6), Qt::LeftButton, {}, QPoint(8, 8));
        auto* list = rig.control<QComboBox>(dialog, 7);
        EXPECT_EQ(list->count(), 3);
        list->setCurrentIndex(2);
        emit list->activated(2);
        QTest::keyClick(dialog, Qt::Key_Return);
    });
    rig.inDialog(open, [&](QWidget* dialog) {
        EXPECT_TRUE(rig.control<QAbstractButton>(dialog, 6)->isChecked());
        EXPECT_EQ(rig.control<QComboBox>(dialog, 7)->currentIndex(), 2);
        QTest::keyClick(dialog, Qt::Key_Escape);
    });
}

TEST(Window, SettingsRefuseAValueAndStoreNothing) {
    for (const char* language : {"en", "ja"}) {
        WindowRig rig({language, true, false});
        const auto open = [&] { rig.window->menuGo("Orvane Group"); };
        rig.inDialog(open, [&](QWidget* dialog) {
            auto* width = rig.control<QLineEdit>(dialog, 19);
            auto* angle = rig.control<QLineEdit>(dialog, 20);
            width->selectAll();
            QTest::keyClicks(width, "3");
            angle->selectAll();
            QTest::keyClicks(angle, "-1");
            QTest::mouseClick(rig.control<QPushButton>(dialog, 1), Qt::LeftButton);
            EXPECT_TRUE(dialog->isVisible());
            EXPECT_EQ(dialog->focusWidget(), angle);
            EXPECT_EQ(angle->selectedText(), "-1");
            QTest::mouseClick(rig.control<QPushButton>(dialog, 2), Qt::LeftButton);
        });
        rig.inDialog(open, [&](QWidget* dialog) {
            EXPECT_EQ(rig.control<QLineEdit>(dialog, 20)->text(), "15");
            auto* angle = rig.control<QLineEdit>(dialog, 20);
            angle->selectAll();
            QTest::keyClicks(angle, "20");
            QTest::mouseClick(rig.control<QPushButton>(dialog, 1), Qt::LeftButton);
        });
        rig.inDialog(open, [&](QWidget* dialog) {
            EXPECT_EQ(rig.control<QLineEdit>(dialog, 20)->text(), "20");
            dialog->close();
        });
    }
}

TEST(Window, ScheduleDialogTurnsPagesAndOffersPresets) {
    for (const char* language : {"en", "ja"}) {
        WindowRig rig({language, false, false});
        const QString title =
            QString::fromUtf8(language[0] == 'e' ? "Schedule Tool [bottom]" : "図面枠ツール [下に部品]");
        desktop::ToolSlot* slot = rig.window->tools()->slotOf(title);
        ASSERT_NE(slot, nullptr);
        rig.inDialog([&] { QTest::mouseDClick(slot, Qt::LeftButton, {}, QPoint(8, 8)); },
                     [&](QWidget* dialog) {
                         auto* name = rig.control<QLineEdit>(dialog, 35);
                         QTest::keyClicks(name, "Bracket");
                         QTest::mouseClick(rig.control<QPushButton>(dialog, 6), Qt::LeftButton);
                         EXPECT_EQ(name->text(), "");
                         QTest::mouseClick(rig.control<QPushButton>(dialog, 5), Qt::LeftButton);
                         EXPECT_EQ(name->text(), "Bracket");
                         auto* presets = rig.control<platform::CommandList>(dialog, 106);
                         presets->refreshRows();
                         int disabled = 0;
                         for (int row = 0; row < presets->count(); ++row)
                             disabled +=
                                 presets->model()->flags(presets->model()->index(row, 0)) & Qt::ItemIsEnabled ? 0 : 1;
                         EXPECT_GE(disabled, 3);  // separators, and Save and Delete while there is no preset
                         QTest::mouseClick(rig.control<QPushButton>(dialog, 1), Qt::LeftButton);
                     });
    }
}

// Keys on the closed list would load one preset after the other over what has been typed.
TEST(Window, KeysRunNoPresetUnseen) {
    WindowRig rig;
    desktop::ToolSlot* slot = rig.window->tools()->slotOf("Schedule Tool [bottom]");
    rig.inDialog([&] { QTest::mouseDClick(slot, Qt::LeftButton, {}, QPoint(8, 8)); },
                 [&](QWidget* dialog) {
                     auto* name = rig.control<QLineEdit>(dialog, 35);
                     QTest::keyClicks(name, "Bracket");
                     auto* presets = rig.control<platform::CommandList>(dialog, 106);
                     int ran = 0;
                     QObject::connect(presets, &QComboBox::activated, [&] { ++ran; });
                     const int before = presets->currentIndex();
                     for (const int key : {Qt::Key_Down, Qt::Key_Up, Qt::Key_PageDown, Qt::Key_End, Qt::Key_Home}) {
                         QTest::keyClick(presets, static_cast<Qt::Key>(key));
                         EXPECT_TRUE(presets->view()->isVisible()) << key;
                         presets->hidePopup();
                         EXPECT_EQ(presets->currentIndex(), before) << key;
                     }
                     QTest::keyClick(presets, 'u');  // "Untitled"
                     EXPECT_EQ(presets->currentIndex(), before);
                     EXPECT_EQ(ran, 0);
                     EXPECT_EQ(name->text(), "Bracket");
                     // The open list is the keys' own.
                     QTest::keyClick(presets, Qt::Key_Down);
                     QTest::keyClick(presets->view(), Qt::Key_Escape);
                     EXPECT_FALSE(presets->view()->isVisible());
                     dialog->close();
                 });
}

// Rulers, host and plug-in mean the same by each unit.
TEST(Window, UnitsAreTheSameEverywhere) {
    WindowRig rig;
    host::Host& host = rig.session->host();
    const auto settings = [&] { rig.window->menuGo("Orvane Group"); };
    ASSERT_EQ(desktop::rulerUnits().size(), 7U);
    auto* point = rig.window->findChild<QLabel*>("point");
    ASSERT_NE(point, nullptr);
    for (const desktop::RulerUnit& unit : desktop::rulerUnits()) {
        SCOPED_TRACE(unit.name);
        host.setRulerUnit(unit.name);
        ASSERT_EQ(host.rulerUnit(), unit.name);
        const std::string shown = host.formatWithRulerUnit(static_cast<float>(unit.points * 12), 0);
        EXPECT_EQ(shown.substr(0, shown.find_first_of(" p")), "12");
        rig.moveTo(rig.pixel(144, 72));
        EXPECT_TRUE(point->text().startsWith(
            QStringLiteral("X %1 ").arg(rig.canvas().toArtwork(rig.pixel(144, 72)).h / unit.points, 0, 'f', 2)))
            << point->text().toStdString();
        rig.inDialog(settings, [&](QWidget* dialog) {
            auto* length = rig.control<QLineEdit>(dialog, 28);
            length->selectAll();
            QTest::keyClicks(length, QStringLiteral("12") + unit.name);
            QTest::mouseClick(rig.control<QPushButton>(dialog, 1), Qt::LeftButton);
        });
        host.setRulerUnit("pt");
        rig.inDialog(settings, [&](QWidget* dialog) {
            const QString read = rig.control<QLineEdit>(dialog, 28)->text();
            EXPECT_NEAR(QString(read).remove("pt").trimmed().toDouble(), unit.points * 12, 0.001) << read.toStdString();
            dialog->close();
        });
    }
}

TEST(Window, GridStepsAreWholeInANewDrawingsUnit) {
    WindowRig rig;
    for (const int step : {20, 22, 24})
        EXPECT_EQ(rig.session->user().dialogs().panelForm()->text(step), "5 mm") << step;
    EXPECT_EQ(rig.session->host().rulerUnit(), "pt") << "the drawing has brought its own";
}

// What was closed stays closed, and the plug-in's menu item says so.
TEST(Window, PanelStaysAsItWasLeft) {
    QSettings().clear();
    for (const bool shown : {false, true}) {
        {
            WindowRig rig;
            if (rig.window->infoDock()->isVisible() != shown) rig.item("Quorvel Information")->trigger();
            EXPECT_EQ(rig.window->infoDock()->isVisible(), shown);
            EXPECT_TRUE(rig.window->close());
        }
        WindowRig again;
        EXPECT_EQ(again.window->infoDock()->isVisible(), shown);
        EXPECT_EQ(again.item("Quorvel Information")->isChecked(), shown);
        again.item("Quorvel Information")->trigger();
        EXPECT_EQ(again.window->infoDock()->isVisible(), !shown);
        again.item("Quorvel Information")->trigger();
        EXPECT_TRUE(again.window->close());
    }
    QSettings().clear();
}

TEST(Window, AppearanceIsKeptAndFollowsTheDesktop) {
    QSettings().clear();
    EXPECT_EQ(desktop::savedColorScheme(), desktop::ColorScheme::system);
    WindowRig rig;
    const auto choose = [&](const char* look) {
        rig.item(look)->trigger();
        QApplication::processEvents();
    };
    const auto themeChanges = [&] {
        QEvent change(QEvent::ThemeChange);
        QApplication::sendEvent(rig.window.get(), &change);
        QApplication::processEvents();
    };
    choose("As the Desktop");
    const bool desktopIsDark = rig.session->dark();
    EXPECT_EQ(desktop::savedColorScheme(), desktop::ColorScheme::system);
    // As if the desktop had been of the other kind until now.
    QPalette other;
    other.setColor(QPalette::Window, desktopIsDark ? Qt::white : Qt::black);
    other.setColor(QPalette::WindowText, desktopIsDark ? Qt::black : Qt::white);
    qobject_cast<QApplication*>(QApplication::instance())->setPalette(other);
    QApplication::processEvents();
    EXPECT_NE(rig.session->dark(), desktopIsDark);
    themeChanges();
    EXPECT_EQ(rig.session->dark(), desktopIsDark);
    for (const bool dark : {true, false}) {
        choose(dark ? "Dark" : "Light");
        EXPECT_EQ(desktop::savedColorScheme(), dark ? desktop::ColorScheme::dark : desktop::ColorScheme::light)
            << "for the next time";
        EXPECT_EQ(rig.session->dark(), dark);
        themeChanges();
        EXPECT_EQ(rig.session->dark(), dark) << "what the user has chosen";
    }
    QSettings().clear();
}

TEST(Window, FileThatAnotherProgramChangedIsAskedFor) {
    WindowRig rig;
    rig.dimensionEdge();
    QFile file(rig.drawing());
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("<!-- changed -->\n");
    file.close();
    rig.inDialog([&] { EXPECT_FALSE(rig.window->file().save()); },
                 [](QWidget* dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
    QFile kept(rig.drawing());
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_TRUE(kept.readAll().endsWith("<!-- changed -->\n"));
    rig.document().markSaved();
}

TEST(Window, EscapeGivesUpWhatAToolHasBegun) {
    WindowRig rig;
    const std::string dump = rig.dump();
    rig.window->tools()->choose("Straight Dimension Tool");
    rig.drag(rig.pixel(100, 100), rig.pixel(300, 100));
    rig.moveTo(rig.pixel(200, 60));
    EXPECT_GT(rig.session->user().screen().inverted().count(), 0U);
    QTest::keyClick(&rig.canvas(), Qt::Key_Escape);
    EXPECT_EQ(rig.session->user().screen().inverted().count(), 0U);
    rig.click(rig.pixel(200, 60));  // a first point again, and no third
    EXPECT_EQ(rig.dump(), dump);
    EXPECT_FALSE(rig.window->isWindowModified());
    rig.dimensionEdge();
    EXPECT_EQ(rig.newestText(), "71");
    rig.document().markSaved();
}

// A dimension along many curves is built for a while: the window shows how far it is and paints, and its clock waits.
TEST(Window, LongBuildShowsItsProgress) {
    WindowRig rig;
    constexpr int kSpans = 40;
    const QString wave = rig.home.filePath("wave.svg");
    QFile file(wave);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"600pt\" height=\"400pt\" viewBox=\"0 0 600 400\">"
        "<path fill=\"none\" stroke=\"#000\" d=\"M100 200");
    for (int i = 0; i < kSpans; ++i) file.write(i % 2 == 0 ? " c3 -4 7 -4 10 0" : " c3 4 7 4 10 0");
    file.write("\"/></svg>");
    file.close();
    ASSERT_TRUE(rig.window->file().open(wave));
    QApplication::processEvents();
    auto* bar = rig.window->statusBar()->findChild<QProgressBar*>();
    std::vector<int> seen;
    bool hidden = false;
    QObject::connect(rig.session.get(), &desktop::Session::progressed, [&](int current, int maximum) {
        seen.push_back(current);
        hidden = hidden || bar->isVisible() != (current < maximum);
        rig.window->tick();  // a clock that strikes in the middle
        EXPECT_TRUE(rig.session->host().busy());
    });
    rig.window->tools()->choose("Curve Dimension Tool");
    rig.drag(rig.pixel(100, 200), rig.pixel(500, 200));
    rig.moveTo(rig.pixel(300, 240));
    EXPECT_TRUE(seen.empty()) << "a preview shows none";
    rig.click(rig.pixel(300, 240));
    EXPECT_EQ(seen.size(), kSpans + 2U);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_EQ(seen.front(), 0);
    EXPECT_EQ(seen.back(), 100);
    EXPECT_FALSE(hidden);
    EXPECT_FALSE(bar->isVisible());
    EXPECT_EQ(rig.newestText(), "171");  // 40 curves of 12.0967 points, summed over 100,000 chords each
    rig.document().markSaved();
}

// Drawings from elsewhere hold everything in groups.
TEST(Window, CtrlClickTakesAPartOfAGroup) {
    WindowRig rig;
    rig.dimensionEdge();
    doc::Document& document = rig.document();
    const doc::ArtId plate = document.findByName("plate"), hole = document.findByName("hole");
    doc::ArtId group = 0;
    rig.session->host().edit("Group", [&](doc::Document& d) {
        group = d.insertArt(kGroupArt, kPlaceAbove, plate);
        return d.moveArt(plate, kPlaceInsideOnTop, group) && d.moveArt(hole, kPlaceInsideOnTop, group);
    });
    rig.press("select");
    rig.click(rig.pixel(120, 180));
    EXPECT_EQ(rig.window->editing().selection(), std::vector<doc::ArtId>({group}));
    const QPoint inside = rig.pixel(120, 180);
    rig.click(rig.pixel(50, 350));
    QTest::mouseClick(&rig.canvas(), Qt::LeftButton, Qt::ControlModifier, inside);
    EXPECT_EQ(rig.window->editing().selection(), std::vector<doc::ArtId>({plate}));
    QTest::mouseClick(&rig.canvas(), Qt::LeftButton, Qt::ControlModifier | Qt::ShiftModifier,
                      rig.pixel(420, 150));                                          // the hole's edge
    EXPECT_EQ(rig.window->editing().selection(), std::vector<doc::ArtId>({group}));  // both of its parts
    rig.window->editing().select({plate});
    const RealRect still = document.bounds(hole);
    rig.window->editing().move({20, 0});
    EXPECT_EQ(document.bounds(hole).left, still.left);
    EXPECT_EQ(document.bounds(plate).left, 120);
    document.markSaved();
}

TEST(Window, CutAndPasteKeepTags) {
    WindowRig rig;
    rig.dimensionEdge();
    const std::string text = rig.newestText();
    rig.window->editing().selectAll();
    rig.window->editing().cut();
    EXPECT_EQ(rig.document().findByName("plate"), 0U);
    rig.window->editing().paste();
    EXPECT_EQ(rig.window->editing().selection().size(), 3U);
    EXPECT_EQ(rig.newestText(), text);
    rig.document().markSaved();
}

}  // namespace
}  // namespace quorvel::tests
