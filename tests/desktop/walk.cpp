// A draftsman's first minutes in both languages, light and dark, with a picture of each step for people to look at.
#include <QAbstractItemView>
#include <QFileDialog>

#include "platform/qt/panel_button.h"
#include "tests/desktop/window_rig.h"

namespace quorvel::tests {
namespace {

constexpr double kPoints = 72 / 25.4, kPageHeight = 210;

struct ColorScheme {
    const char* language;
    bool dark;
};

class Walk : public ::testing::TestWithParam<ColorScheme> {
  protected:
    Walk() : rig({.language = GetParam().language, .dark = GetParam().dark}) {}

    bool english() const { return GetParam().language[0] == 'e'; }
    QString said(const char* inEnglish, const char* inJapanese) const {
        return QString::fromUtf8(english() ? inEnglish : inJapanese);
    }
    QString bracket() const { return rig.home.filePath(QStringLiteral("bracket.svg")); }
    QPoint at(double x, double y) { return rig.pixel(x * kPoints, (kPageHeight - y) * kPoints); }
    void picture(QWidget* of, const char* step) const {
        WindowRig::picture(of, QStringLiteral("walk-%1-%2-%3")
                                   .arg(QLatin1String(step), QLatin1String(GetParam().language),
                                        QLatin1String(GetParam().dark ? "dark" : "light")));
    }
    void window(const char* step) {
        QApplication::processEvents();
        rig.window->tick();
        QApplication::processEvents();
        picture(rig.window.get(), step);
    }
    void type(QWidget* dialog, int control, const char* text) {
        auto* field = rig.control<QLineEdit>(dialog, control);
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, text);
    }
    static void ok(QWidget* dialog) { QTest::mouseClick(WindowRig::control<QPushButton>(dialog, 1), Qt::LeftButton); }
    void doubleClick(const QString& tool) {
        QTest::mouseDClick(rig.window->tools()->slotOf(tool), Qt::LeftButton, {}, QPoint(8, 8));
    }
    // Chooses a row of the list of presets, and answers the window that comes over the dialog.
    void command(QWidget* dialog, const QString& row, const std::function<void(QWidget*)>& answer = {}) {
        auto* list = rig.control<platform::CommandList>(dialog, 106);
        const int found = list->findText(row);
        ASSERT_GE(found, 0) << row.toStdString();
        bool answered = !answer;
        QTimer waiting;
        QObject::connect(&waiting, &QTimer::timeout, [&] {
            QWidget* over = QApplication::activeModalWidget();
            if (answered || over == nullptr || over == dialog) return;
            answered = true;
            answer(over);
        });
        waiting.start(20);
        list->setCurrentIndex(found);
        emit list->activated(found);
        EXPECT_TRUE(QTest::qWaitFor([&] { return answered && QApplication::activeModalWidget() == dialog; }));
    }

    WindowRig rig;
};

TEST_P(Walk, FromOpeningToReopening) {
    QFile::copy(QStringLiteral(QUORVEL_SOURCE_DIR "/examples/bracket.svg"), bracket());
    ASSERT_TRUE(rig.window->file().open(bracket()));
    QApplication::processEvents();
    rig.canvas().fit();
    window("01-open");

    const QString straight = said("Straight Dimension Tool", "寸法線ツール");
    rig.window->tools()->choose(straight);
    const QPoint from = at(45, 140) + QPoint(-1, 1), to = at(165, 140) + QPoint(1, 1);
    rig.moveTo(from);
    QTest::mousePress(&rig.canvas(), Qt::LeftButton, {}, from);
    rig.moveTo((from + to) / 2, Qt::LeftButton);
    rig.moveTo(to, Qt::LeftButton);
    EXPECT_GT(rig.session->user().screen().inverted().count(), 0U);
    window("02-snapping");
    QTest::mouseRelease(&rig.canvas(), Qt::LeftButton, {}, to);
    rig.moveTo(at(120, 150));
    rig.click(at(105, 156));
    EXPECT_EQ(rig.newestText(), "120") << "snapped at both corners";
    window("03-dimension");

    const auto radius = [&] { doubleClick(said("Radius Tool", "半径ツール")); };
    rig.inDialog(radius, [&](QWidget* dialog) {
        QTest::mouseClick(rig.control<QAbstractButton>(dialog, 6), Qt::LeftButton, {}, QPoint(8, 8));
        picture(dialog, "04-radius");
        ok(dialog);
    });
    rig.inDialog(radius, [&](QWidget* dialog) {
        EXPECT_TRUE(rig.control<QAbstractButton>(dialog, 6)->isChecked()) << "it was kept";
        dialog->close();
    });

    const auto settings = [&] { rig.window->menuGo("Orvane Group"); };
    rig.inDialog(settings, [&](QWidget* dialog) {
        type(dialog, 19, "3");
        type(dialog, 20, "-1");
        ok(dialog);
        EXPECT_TRUE(dialog->isVisible()) << "refused";
        EXPECT_EQ(dialog->focusWidget(), rig.control<QLineEdit>(dialog, 20));
        picture(dialog, "05-refused");
        type(dialog, 20, "20");
        picture(dialog, "06-good");
        ok(dialog);
    });
    rig.inDialog(settings, [&](QWidget* dialog) {
        EXPECT_EQ(rig.control<QLineEdit>(dialog, 20)->text(), "20");
        dialog->close();
    });

    rig.inDialog([&] { doubleClick(said("Schedule Tool [bottom]", "図面枠ツール [下に部品]")); },
                 [&](QWidget* dialog) {
                     type(dialog, 8, "Mounting bracket");
                     type(dialog, 35, "Bracket");
                     command(dialog, said("Save As...", "別名で保存..."), [&](QWidget* over) {
                         type(over, 3, "House");
                         picture(over, "07-preset");
                         ok(over);
                     });
                     command(dialog, QStringLiteral("Untitled"));
                     type(dialog, 8, "Other");
                     command(dialog, QStringLiteral("House"));
                     EXPECT_TRUE(QTest::qWaitFor(
                         [&] { return rig.control<QLineEdit>(dialog, 8)->text() == "Mounting bracket"; }));
                     picture(dialog, "08-schedule");
                     ok(dialog);
                 });

    platform::ControlForm* panel = rig.session->user().dialogs().panelForm();
    const bool lit = panel->isChecked(12);
    QTest::mouseClick(panel->widget(12), Qt::LeftButton);
    EXPECT_NE(panel->isChecked(12), lit);
    window("09-panel");

    const std::string drawn = rig.dump();
    rig.item(QString::fromStdString(*rig.document().undoName()).remove('&'))->trigger();
    EXPECT_EQ(rig.dump().find("\"120\""), std::string::npos);
    window("10-undone");
    rig.item(QString::fromStdString(*rig.document().redoName()).remove('&'))->trigger();
    EXPECT_EQ(rig.dump(), drawn);
    window("11-redone");

    rig.item(said("Save", "保存(S)"))->trigger();
    EXPECT_FALSE(rig.window->isWindowModified());
    window("12-saved");
    ASSERT_TRUE(rig.window->file().open(rig.drawing()));
    EXPECT_NE(rig.dump(), drawn);
    rig.inDialog([&] { rig.item(said("Open...", "開く(O)..."))->trigger(); },
                 [&](QWidget* dialog) {
                     picture(dialog, "13-open");
                     rig.nameFile(dialog, bracket());
                 });
    EXPECT_EQ(rig.dump(), drawn);
    window("14-reopened");
}

INSTANTIATE_TEST_SUITE_P(SvgAppearance, Walk,
                         ::testing::Values(ColorScheme{"en", false}, ColorScheme{"en", true}, ColorScheme{"ja", false},
                                           ColorScheme{"ja", true}),
                         [](const auto& info) {
                             return std::string(info.param.language) + (info.param.dark ? "Dark" : "Light");
                         });

}  // namespace
}  // namespace quorvel::tests
