// A newcomer's first drawing, from a file that another program made to a dimensioned sheet with frame and parts list.
// The pictures that it leaves in out/window are those of docs/user-guide.md.
#include <QFileDialog>

#include <cmath>
#include <map>

#include "app/dimension_list.h"
#include "tests/desktop/window_rig.h"

namespace quorvel::tests {
namespace {

// Millimetres of the bracket's file, its y downward, in document points.
constexpr double kPoints = 72 / 25.4, kPageHeight = 210;

class Guide : public ::testing::Test {
  protected:
    static constexpr int kAlt = 1;

    explicit Guide(WindowRig::Options options = {}) : rig(options) {}

    void open() {
        QFile::copy(QStringLiteral(QUORVEL_SOURCE_DIR "/examples/bracket.svg"), bracket());
        ASSERT_TRUE(rig.window->file().open(bracket()));
        QApplication::processEvents();
        rig.canvas().fit();
    }
    QString bracket() const { return rig.home.path() + QStringLiteral("/bracket.svg"); }
    QPoint at(double x, double y) { return rig.pixel(x * kPoints, (kPageHeight - y) * kPoints); }
    void show(const char* name) {
        QApplication::processEvents();
        rig.window->tick();
        QApplication::processEvents();
        WindowRig::picture(rig.window.get(), QStringLiteral("guide-") + name);
    }
    void mouse(QEvent::Type type, QPoint where, bool held, int keys = 0) {
        QMouseEvent event(type, where, rig.canvas().mapToGlobal(where),
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                          held ? Qt::LeftButton : Qt::NoButton, keys == kAlt ? Qt::AltModifier : Qt::NoModifier);
        QApplication::sendEvent(&rig.canvas(), &event);
    }
    void press(QPoint where, int keys = 0) {
        mouse(QEvent::MouseMove, where, false, keys);
        mouse(QEvent::MouseButtonPress, where, true, keys);
    }
    void pull(QPoint where, int keys = 0) { mouse(QEvent::MouseMove, where, true, keys); }
    void release(QPoint where, int keys = 0) { mouse(QEvent::MouseButtonRelease, where, false, keys); }
    void draw(const char* tool, QPoint from, QPoint to) {
        rig.window->tools()->choose(QString::fromUtf8(tool));
        press(from);
        pull(to);
        release(to);
    }
    void place(QPoint where) {
        press(where);
        release(where);
    }
    void type(QWidget* dialog, int control, const char* text) {
        QWidget* field = rig.control<QWidget>(dialog, control);
        if (auto* list = qobject_cast<QComboBox*>(field)) field = list->lineEdit();
        auto* edit = qobject_cast<QLineEdit*>(field);
        ASSERT_NE(edit, nullptr) << control;
        edit->setFocus();
        edit->selectAll();
        QTest::keyClicks(edit, text);
    }
    void pick(QWidget* dialog, int control, const char* row) {
        auto* list = rig.control<QComboBox>(dialog, control);
        const int found = list->findText(QString::fromUtf8(row));
        ASSERT_GE(found, 0) << row;
        list->setCurrentIndex(found);
        emit list->activated(found);
    }
    void pickRow(QWidget* dialog, int control, int row) {
        auto* list = rig.control<QComboBox>(dialog, control);
        list->setCurrentIndex(row);
        emit list->activated(row);
    }
    void layout(QWidget* dialog) {
        pickRow(dialog, 5, 1);  // filled triangles
        type(dialog, 28, "9pt");
        pick(dialog, 6, "0.0");
        pick(dialog, 8, "DejaVu Sans");
        type(dialog, 10, "9pt");
        type(dialog, 19, "0.5pt");
        type(dialog, 20, "10");
        type(dialog, 21, "5pt");
        type(dialog, 23, "3pt");
        auto* layer = rig.control<QCheckBox>(dialog, 15);
        if (!layer->isChecked()) layer->click();
    }
    static void ok(QWidget* dialog) { QTest::mouseClick(WindowRig::control<QPushButton>(dialog, 1), Qt::LeftButton); }
    // How often each value stands on the drawing's dimensions.
    std::map<std::string, int> values() {
        std::map<std::string, int> found;
        for (const app::RecordedDimension& dimension : app::listDimensions(rig.document()))
            if (dimension.kind != "frame")
                for (const std::string& text : dimension.texts) ++found[text];
        return found;
    }
    using Values = std::map<std::string, int>;

    // The Schedule dialog's Import, with the file dialog over it.
    void importParts(QWidget* dialog) {
        bool chosen = false;
        QTimer waiting;
        QObject::connect(&waiting, &QTimer::timeout, [&] {
            auto* files = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (files == nullptr || chosen) return;
            chosen = true;
            auto* name = files->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            name->setText(QStringLiteral(QUORVEL_SOURCE_DIR "/examples/bracket.csv"));
            QTest::keyClick(name, Qt::Key_Return);
        });
        waiting.start(20);
        pick(dialog, 106, "Import...");
        EXPECT_TRUE(QTest::qWaitFor([&] { return chosen && QApplication::activeModalWidget() == dialog; }));
    }

    void drawLinear() {
        rig.window->tools()->choose("Straight Dimension Tool");
        press(at(45, 140) + QPoint(-1, 1));
        pull(at(165, 140) + QPoint(1, 1));
        show("3-snap");
        release(at(165, 140) + QPoint(1, 1));
        place(at(105, 156));
        EXPECT_EQ(values(), (Values{{"120", 1}}));

        // One series over both holes: Alt at each stop.
        press(at(45, 65));
        for (const QPoint hole : {at(60, 56), at(150, 56)}) {
            pull(hole, kAlt);
            release(hole, kAlt);
            mouse(QEvent::MouseButtonPress, hole, true, kAlt);
        }
        pull(at(165, 65));
        release(at(165, 65));
        place(at(105, 36));
        EXPECT_EQ(values(), (Values{{"120", 1}, {"15", 2}, {"90", 1}}));
        draw("Straight Dimension Tool", at(45, 140), at(60, 50));
        place(at(27, 132));
        EXPECT_EQ(values()["90"], 2);
        show("4-linear");
    }

    void drawRound() {
        const auto options = [&] {
            QTest::mouseDClick(rig.window->tools()->slotOf("Diameter Tool"), Qt::LeftButton, {}, QPoint(8, 8));
        };
        rig.inDialog(options, [&](QWidget* dialog) {
            WindowRig::picture(dialog, QStringLiteral("guide-5-diameter"));
            ok(dialog);
        });
        draw("Diameter Tool", at(105 + 14 * std::sqrt(0.5), 88 - 14 * std::sqrt(0.5)), at(130, 66));
        draw("Radius Tool", at(165 - 15 * (1 - std::sqrt(0.5)), 50 + 15 * (1 - std::sqrt(0.5))), at(176, 40));
        EXPECT_EQ(values()["R15"], 1);
        EXPECT_EQ(values()["ø28"], 1);
        draw("Curve Dimension Tool", at(223, 140), at(205, 122));
        place(at(206, 139));
        EXPECT_EQ(values()["28.3"], 1);  // a quarter of a circle of 18
        draw("Straight Dimension Tool", at(205, 122), at(265, 140));
        place(at(235, 152));
        EXPECT_EQ(values()["60"], 1);

        draw("Object Number Tool", at(118, 112), at(180, 105));
        draw("Object Number Tool", at(215, 60), at(235, 52));
        show("6-round");
    }

    void drawSheet() {
        rig.inDialog(
            [&] {
                QTest::mouseDClick(rig.window->tools()->slotOf("Schedule Tool [bottom]"), Qt::LeftButton, {}, {8, 8});
            },
            [&](QWidget* dialog) {
                importParts(dialog);
                EXPECT_EQ(rig.control<QLineEdit>(dialog, 8)->text(), "Mounting bracket");
                EXPECT_EQ(rig.control<QLineEdit>(dialog, 35)->text(), "Bracket");
                WindowRig::picture(dialog, QStringLiteral("guide-7-schedule"));
                ok(dialog);
            });
        for (const doc::LayerId layer : rig.document().layers())
            if (rig.document().layer(layer)->title == "Sheet") rig.document().setLayerVisible(layer, false);
        draw("Schedule Tool [bottom]", at(10, 10), at(287, 200));
        rig.window->tools()->choose("select");
        show("8-sheet");
    }

    // Another program moves the right-hand hole and its centre lines by 10 mm.
    void moveHole() {
        QFile file(bracket());
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        QByteArray svg = file.readAll();
        for (const auto& [before, after] :
             {std::pair("cx=\"150\" cy=\"65\"", "cx=\"140\" cy=\"65\""), std::pair("M 150,56 V 74", "M 140,56 V 74"),
              std::pair("M 141,65 H 159", "M 131,65 H 149")}) {
            ASSERT_EQ(svg.count(before), 1) << before;
            svg.replace(before, after);
        }
        file.seek(0);
        file.write(svg);
        file.close();
    }

    WindowRig rig;
};

TEST_F(Guide, FromADrawingToASheet) {
    open();
    show("1-open");

    const auto settings = [&] { rig.window->menuGo("Orvane Group"); };
    rig.inDialog(settings, [&](QWidget* dialog) {
        layout(dialog);
        EXPECT_EQ(rig.control<QComboBox>(dialog, 5)->currentText(), "Triangular");
        WindowRig::picture(dialog, QStringLiteral("guide-2-settings"));
        ok(dialog);
    });
    drawLinear();
    drawRound();
    drawSheet();
    ASSERT_TRUE(rig.window->file().save());
    ASSERT_NO_FATAL_FAILURE(moveHole());
    // One command makes the drawing true again.
    ASSERT_TRUE(rig.window->file().open(bracket()));
    rig.inDialog([&] { rig.session->host().playAction("Recalculate_Dimension_lines"); },
                 [&](QWidget* dialog) {
                     WindowRig::picture(dialog, QStringLiteral("guide-9-question"));
                     QTest::keyClick(dialog, Qt::Key_Return);
                 });
    EXPECT_EQ(values()["80"], 1);
    EXPECT_EQ(values()["25"], 1);
    show("10-true-again");
    rig.document().markSaved();
}

class JapaneseGuide : public Guide {
  protected:
    JapaneseGuide() : Guide({.language = "ja", .dark = true}) {}
};

TEST_F(JapaneseGuide, TheSameToolsInJapaneseOnDarkGround) {
    open();
    rig.inDialog([&] { rig.window->menuGo("Orvane Group"); },
                 [&](QWidget* dialog) {
                     layout(dialog);
                     ok(dialog);
                 });
    draw("寸法線ツール", at(45, 140), at(165, 140));
    place(at(105, 156));
    draw("寸法線ツール", at(45, 140), at(60, 50));
    place(at(27, 132));
    draw("直径ツール", at(105 + 14 * std::sqrt(0.5), 88 - 14 * std::sqrt(0.5)), at(130, 66));
    draw("半径ツール", at(165 - 15 * (1 - std::sqrt(0.5)), 50 + 15 * (1 - std::sqrt(0.5))), at(176, 40));
    EXPECT_EQ(values(), (Values{{"120", 1}, {"90", 1}, {"R15", 1}, {"φ28", 1}}));
    draw("部品番号ツール", at(118, 112), at(180, 105));
    draw("コメントツール", at(215, 60), at(235, 52));
    show("ja-dark");
    rig.document().markSaved();
}

}  // namespace
}  // namespace quorvel::tests
