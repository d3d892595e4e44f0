// Every dialog in both languages, as the widgets stand on it: nothing sticks out, lies over another, or is cut short.
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QLabel>
#include <QRadioButton>
#include <QStyleOptionComboBox>
#include <set>

#include "tests/desktop/window_rig.h"

namespace quorvel::tests {
namespace {

bool Surrounds(const QWidget* widget) {
    return qobject_cast<const QGroupBox*>(widget) != nullptr ||
           (qobject_cast<const QFrame*>(widget) != nullptr && qobject_cast<const QLabel*>(widget) == nullptr);
}

bool IsPicture(const QWidget* widget) {
    const auto* label = qobject_cast<const QLabel*>(widget);
    return label != nullptr && !label->pixmap(Qt::ReturnByValue).isNull();
}

int WidestLine(const QFontMetrics& metrics, QString text) {
    int widest = 0;
    for (const QString& line : text.remove('&').split('\n')) widest = std::max(widest, metrics.horizontalAdvance(line));
    return widest;
}

// Pixels that the widget's text needs, and those that it has.
std::pair<int, int> TextRoom(QWidget* widget) {
    const QFontMetrics metrics = widget->fontMetrics();
    QStyle* style = widget->style();
    if (auto* label = qobject_cast<QLabel*>(widget)) return {WidestLine(metrics, label->text()), label->width()};
    if (auto* list = qobject_cast<QComboBox*>(widget)) {
        int widest = 0;
        for (int row = 0; row < list->count(); ++row)
            widest = std::max(widest, WidestLine(metrics, list->itemText(row)));
        QStyleOptionComboBox option;
        option.initFrom(list);
        option.editable = list->isEditable();
        const QRect field = style->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, list);
        return {widest, field.width()};
    }
    if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
        const bool radio = qobject_cast<QRadioButton*>(widget) != nullptr;
        const bool marked = radio || qobject_cast<QCheckBox*>(widget) != nullptr;
        const int mark =
            !marked
                ? 0
                : style->pixelMetric(radio ? QStyle::PM_ExclusiveIndicatorWidth : QStyle::PM_IndicatorWidth) +
                      style->pixelMetric(radio ? QStyle::PM_RadioButtonLabelSpacing : QStyle::PM_CheckBoxLabelSpacing);
        return {WidestLine(metrics, button->text()) + mark, button->width()};
    }
    return {0, widget->width()};
}

// Fonts have names of any length, and the sample shows as much of a sentence as there is room for.
bool OfAnyLength(QWidget* widget) {
    return (widget->objectName() == "control8" && qobject_cast<QComboBox*>(widget) != nullptr) ||
           (widget->objectName() == "control29" && qobject_cast<QLabel*>(widget) != nullptr);
}

void ExpectTidy(QWidget* dialog, const std::string& which) {
    SCOPED_TRACE(which);
    QList<QWidget*> shown;
    for (QWidget* widget : dialog->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        if (widget->isVisible() && widget->objectName().startsWith("control")) shown.append(widget);
    EXPECT_GT(shown.size(), 2);
    for (QWidget* widget : shown) {
        const std::string name = widget->objectName().toStdString();
        const QRect at = widget->geometry();
        EXPECT_TRUE(dialog->rect().contains(at)) << name << " sticks out";
        EXPECT_GE(widget->height(), widget->fontMetrics().height() - 3 * Surrounds(widget)) << name << " is too low";
        const auto [needs, has] = TextRoom(widget);
        EXPECT_TRUE(needs <= has || OfAnyLength(widget)) << name << " is cut short: " << needs << " of " << has;
        if (Surrounds(widget) || IsPicture(widget)) continue;
        for (QWidget* other : shown) {
            if (other <= widget || Surrounds(other) || IsPicture(other)) continue;
            EXPECT_TRUE((at & other->geometry()).isEmpty()) << name << " and " << other->objectName().toStdString();
        }
    }
}

TEST(Dialogs, NothingIsCutOrHidden) {
    for (const bool english : {true, false}) {
        const std::string language = english ? "en" : "ja";
        WindowRig rig({language, !english, false});
        std::set<std::string> seen;
        const auto look = [&](QWidget* dialog) {
            const std::string name = dialog->objectName().toStdString() + "-" + language;
            if (!seen.insert(name).second) return dialog->close();
            ExpectTidy(dialog, name);
            rig.picture(dialog, QString::fromStdString(name));
            return dialog->close();
        };
        rig.inDialog([&] { rig.window->menuGo("Orvane Group"); }, look);
        for (const host::ToolRecord& tool : rig.session->host().tools()) {
            QTimer waiting;
            QObject::connect(&waiting, &QTimer::timeout, [&] {
                if (QWidget* dialog = QApplication::activeModalWidget()) look(dialog);
            });
            waiting.start(20);
            rig.window->tools()->choose(QString::fromStdString(tool.title));
            rig.session->host().editOptions(tool);
        }
        rig.inDialog([&] { rig.session->host().about(); },
                     [&](QWidget* box) {
                         rig.picture(box, QString::fromStdString("about-" + language));
                         QTest::keyClick(box, Qt::Key_Return);
                     });
        EXPECT_EQ(seen.size(), 7U);  // settings, radius, diameter, fillet, comment, object number, schedule
    }
}

TEST(Dialogs, NewPageHasTheSizeThatWasChosen) {
    WindowRig rig;
    const auto millimetres = [&](double points) { return points * 25.4 / 72; };
    const auto boxes = [](QWidget* dialog) { return dialog->findChildren<QDoubleSpinBox*>(); };
    const auto ok = [](QWidget* dialog) {
        QTest::mouseClick(dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok), Qt::LeftButton);
    };
    rig.inDialog([&] { rig.window->file().newPage(); },
                 [&](QWidget* dialog) {
                     rig.picture(dialog, "new-page-en");
                     EXPECT_FALSE(boxes(dialog)[0]->isEnabled());
                     dialog->findChild<QComboBox*>()->setCurrentText("A4");
                     QTest::keyClick(dialog->findChildren<QRadioButton*>()[1], Qt::Key_Space);
                     ok(dialog);
                 });
    EXPECT_NEAR(millimetres(rig.document().width()), 210, 0.01);
    EXPECT_NEAR(millimetres(rig.document().height()), 297, 0.01);
    EXPECT_FALSE(rig.window->isWindowModified());
    rig.inDialog([&] { rig.window->file().newPage(); },
                 [&](QWidget* dialog) {
                     auto* sizes = dialog->findChild<QComboBox*>();
                     sizes->setCurrentIndex(sizes->count() - 1);
                     boxes(dialog)[0]->setValue(123.5);
                     boxes(dialog)[1]->setValue(50);
                     ok(dialog);
                 });
    EXPECT_NEAR(millimetres(rig.document().width()), 123.5, 0.01);
    rig.inDialog([&] { rig.window->file().newPage(); }, [](QWidget* dialog) { dialog->close(); });
    EXPECT_NEAR(millimetres(rig.document().height()), 50, 0.01);
}

}  // namespace
}  // namespace quorvel::tests
