// Makes and drives the widgets of a form. Signals that only the user sends are connected, so that what the logic
// sets causes no event.
#include "platform/qt/control_form.h"

#include <fontconfig/fontconfig.h>

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFontDatabase>
#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QValidator>
#include <algorithm>

#include "platform/qt/panel_button.h"
#include "platform/qt/pictures.h"
#include "platform/text.h"

namespace quorvel::platform {

namespace {

using StepKind = DialogStep::Kind;

constexpr double kPixelsPerPoint = 96.0 / 72.0;

// A label shows what the plug-in parts with carriage returns on lines of its own.
QString shownText(const std::string& text) {
    return QString::fromStdString(text).replace(QLatin1Char('\r'), QLatin1Char('\n'));
}

// The plug-in keeps texts in the code page: a character that it lacks would be lost.
class WritableText final : public QValidator {
  public:
    using QValidator::QValidator;
    State validate(QString& text, int&) const override {
        const std::string utf8 = text.toStdString();
        return ToUtf8AndBack(FromUtf8(utf8, kCodePageJapanese), kCodePageJapanese) == utf8 ? Acceptable : Invalid;
    }
};

void refuseUnwritable(QLineEdit* edit) {
    edit->setValidator(new WritableText(edit));
    QObject::connect(edit, &QLineEdit::inputRejected, edit, [] { QApplication::beep(); });
}

struct PatternFree {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
struct SetFree {
    void operator()(FcFontSet* set) const { FcFontSetDestroy(set); }
};

}  // namespace

QFont fontBySystemName(const std::string& systemName, float points) {
    QFont font = QApplication::font();
    const std::unique_ptr<FcPattern, PatternFree> wanted(FcPatternCreate());
    FcPatternAddString(wanted.get(), FC_POSTSCRIPT_NAME, reinterpret_cast<const FcChar8*>(systemName.c_str()));
    const std::unique_ptr<FcObjectSet, void (*)(FcObjectSet*)> words(FcObjectSetBuild(FC_FAMILY, FC_STYLE, nullptr),
                                                                     FcObjectSetDestroy);
    const std::unique_ptr<FcFontSet, SetFree> found(FcFontList(nullptr, wanted.get(), words.get()));
    if (found != nullptr && found->nfont > 0) {
        FcChar8 *family = nullptr, *style = nullptr;
        if (FcPatternGetString(found->fonts[0], FC_FAMILY, 0, &family) == FcResultMatch &&
            FcPatternGetString(found->fonts[0], FC_STYLE, 0, &style) == FcResultMatch)
            font = QFontDatabase::font(QString::fromUtf8(reinterpret_cast<const char*>(family)),
                                       QString::fromUtf8(reinterpret_cast<const char*>(style)), 12);
    }
    font.setPixelSize(std::clamp(static_cast<int>(points * kPixelsPerPoint), 1, 400));
    return font;
}

// --- making

ControlForm::ControlForm(QWidget* page, const WindowContent& content, double scale, StepListener listener)
    : page_(page), content_(content), scale_(scale), listener_(std::move(listener)) {
    for (const ControlRow& row : content.rows) {
        const char* label = content.language == Language::english ? row.english : row.japanese;
        Control control{row, make(row, QString::fromUtf8(label)), label};
        place(control.widget, row);
        connectControl(control);
        controls_.push_back(std::move(control));
    }
    // Frames are behind what they surround.
    for (const Control& control : controls_)
        if (control.row.kind == ControlKind::group || control.row.kind == ControlKind::frame) control.widget->lower();
}

ControlForm::~ControlForm() = default;

QWidget* ControlForm::makeList(const ControlRow& row) {
    if (row.kind == ControlKind::commandList) {
        auto* list = new CommandList(page_);
        list->rowDisabled = [this, id = row.id](int at) {
            return content_.logic.rowDisabled != nullptr && content_.logic.rowDisabled(this, id, at, content_.context);
        };
        return list;
    }
    auto* list = new QComboBox(page_);
    list->setEditable(row.kind == ControlKind::editList);
    list->setInsertPolicy(QComboBox::NoInsert);
    if (list->isEditable()) list->setCompleter(nullptr);
    return list;
}

QWidget* ControlForm::make(const ControlRow& row, const QString& label) {
    switch (row.kind) {
        case ControlKind::label:
        case ControlKind::text: {
            auto* text = new QLabel(label, page_);
            text->setTextFormat(Qt::PlainText);
            if (row.kind == ControlKind::text) text->setAlignment(Qt::AlignLeft | Qt::AlignTop);
            return text;
        }
        case ControlKind::edit:
            return new QLineEdit(label, page_);
        case ControlKind::list:
        case ControlKind::editList:
        case ControlKind::commandList:
            return makeList(row);
        case ControlKind::checkBox:
            return new QCheckBox(label, page_);
        case ControlKind::radio:
            return new QRadioButton(label, page_);
        case ControlKind::button: {
            auto* button = new QPushButton(label, page_);
            button->setAutoDefault(false);
            button->setDefault(row.id == kOkControl);
            return button;
        }
        case ControlKind::group:
            return new QGroupBox(label, page_);
        case ControlKind::frame: {
            auto* frame = new QFrame(page_);
            frame->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
            return frame;
        }
        case ControlKind::line: {
            auto* line = new QFrame(page_);
            line->setAutoFillBackground(true);
            QPalette colors = line->palette();
            colors.setColor(QPalette::Window, colors.color(QPalette::WindowText));
            line->setPalette(colors);
            return line;
        }
        case ControlKind::picture: {
            auto* picture = new QLabel(page_);
            picture->setAlignment(Qt::AlignCenter);
            picture->setPixmap(loadPicture(row.picture, page_->devicePixelRatioF()));
            return picture;
        }
        case ControlKind::toggle:
        case ControlKind::pushButton: {
            auto* button = new PanelButton(page_, row.picture, row.darkPicture);
            button->setToolTip(label);
            button->setAccessibleName(label);
            return button;
        }
    }
    return new QWidget(page_);
}

void ControlForm::place(QWidget* widget, const ControlRow& row) const {
    const auto scaled = [this](std::int32_t value) { return qRound(value * scale_); };
    const QRect rect(QPoint(scaled(row.rect.left), scaled(row.rect.top)),
                     QPoint(scaled(row.rect.right) - 1, scaled(row.rect.bottom) - 1));
    widget->setGeometry(rect);
    widget->setObjectName(QStringLiteral("control%1").arg(row.id));
    if (row.kind == ControlKind::picture && scale_ > 1)
        if (auto* label = qobject_cast<QLabel*>(widget); label != nullptr && !label->pixmap().isNull())
            label->setPixmap(loadPicture(row.picture, page_->devicePixelRatioF(), label->pixmap().size() * scale_));
}

// --- the user's steps

void ControlForm::connectControl(const Control& control) {
    const std::int32_t id = control.row.id;
    if (auto* edit = qobject_cast<QLineEdit*>(control.widget)) {
        refuseUnwritable(edit);
        connect(edit, &QLineEdit::textEdited, this, [this, id](const QString& text) {
            told({StepKind::setText, id, text.toStdString(), 0});
        });
    } else if (auto* list = qobject_cast<QComboBox*>(control.widget)) {
        connect(list, &QComboBox::activated, this, [this, id](int row) { told({StepKind::selectRow, id, {}, row}); });
        if (list->isEditable()) {
            refuseUnwritable(list->lineEdit());
            connect(list->lineEdit(), &QLineEdit::textEdited, this, [this, id](const QString& text) {
                told({StepKind::setText, id, text.toStdString(), 0});
            });
        }
    } else if (auto* button = qobject_cast<QAbstractButton*>(control.widget)) {
        const bool switches = control.row.kind == ControlKind::checkBox;
        connect(button, &QAbstractButton::clicked, this, [this, id, button, switches] {
            const StepKind kind = !switches             ? StepKind::press
                                  : button->isChecked() ? StepKind::check
                                                        : StepKind::uncheck;
            told({kind, id, {}, 0});
        });
    }
}

void ControlForm::told(const DialogStep& step) {
    if (!open_) return;
    if (listener_) listener_(step);
    sendEvent(step.control);
}

void ControlForm::sendEvent(std::int32_t control) {
    if (open_ && content_.logic.event != nullptr) content_.logic.event(this, control, content_.context);
}

void ControlForm::open() {
    if (content_.logic.opening != nullptr) content_.logic.opening(this, content_.context);
}

void ControlForm::close(std::int32_t result) {
    if (!closed) return;
    stop();
    closed(result);
}

void ControlForm::postCommand(std::int32_t number) {
    QTimer::singleShot(0, this, [this, number] {
        if (open_ && content_.logic.command != nullptr) content_.logic.command(this, number, content_.context);
    });
}

// --- what the logic asks and sets

ControlForm::Control* ControlForm::find(std::int32_t control) {
    const auto found =
        std::find_if(controls_.begin(), controls_.end(), [&](const Control& c) { return c.row.id == control; });
    return found == controls_.end() ? nullptr : &*found;
}

const ControlForm::Control* ControlForm::find(std::int32_t control) const {
    return const_cast<ControlForm*>(this)->find(control);
}

QWidget* ControlForm::widget(std::int32_t control) const {
    const Control* found = find(control);
    return found == nullptr ? nullptr : found->widget;
}

std::string ControlForm::text(std::int32_t control) const {
    const Control* found = find(control);
    if (found == nullptr) return {};
    if (const auto* edit = qobject_cast<QLineEdit*>(found->widget)) return edit->text().toStdString();
    if (const auto* list = qobject_cast<QComboBox*>(found->widget)) return list->currentText().toStdString();
    return found->text;
}

void ControlForm::setText(std::int32_t control, const std::string& text) {
    Control* found = find(control);
    if (found == nullptr) return;
    found->text = text;
    if (auto* edit = qobject_cast<QLineEdit*>(found->widget)) {
        edit->setText(QString::fromStdString(text));
    } else if (auto* list = qobject_cast<QComboBox*>(found->widget)) {
        if (list->isEditable()) list->setEditText(QString::fromStdString(text));
    } else if (auto* label = qobject_cast<QLabel*>(found->widget)) {
        label->setText(shownText(text));
    } else if (auto* button = qobject_cast<QAbstractButton*>(found->widget)) {
        button->setText(QString::fromStdString(text));
    }
}

std::vector<std::string> ControlForm::rows(std::int32_t control) const {
    std::vector<std::string> all;
    if (const auto* list = qobject_cast<QComboBox*>(widget(control)))
        for (int row = 0; row < list->count(); ++row) all.push_back(list->itemText(row).toStdString());
    return all;
}

// A stock list selects its first row by itself; here nothing is selected until somebody does.
void ControlForm::insertRow(std::int32_t control, std::int32_t row, const std::string& text) {
    auto* list = qobject_cast<QComboBox*>(widget(control));
    if (list == nullptr) return;
    const bool none = list->currentIndex() < 0;
    const QString typed = list->currentText();
    list->insertItem(row < 0 || row > list->count() ? list->count() : row, QString::fromStdString(text));
    if (none) list->setCurrentIndex(-1);
    if (none && list->isEditable()) list->setEditText(typed);
    if (auto* commands = dynamic_cast<CommandList*>(list)) commands->refreshRows();
}

void ControlForm::removeRow(std::int32_t control, std::int32_t row) {
    auto* list = qobject_cast<QComboBox*>(widget(control));
    if (list == nullptr || row < 0 || row >= list->count()) return;
    const bool selected = list->currentIndex() == row;
    const QString typed = list->currentText();
    list->removeItem(row);
    if (selected) list->setCurrentIndex(-1);
    if (list->isEditable()) list->setEditText(typed);
}

std::int32_t ControlForm::selectedRow(std::int32_t control) const {
    const auto* list = qobject_cast<QComboBox*>(widget(control));
    if (list == nullptr) return -1;
    return list->isEditable() ? list->findText(list->currentText(), Qt::MatchExactly | Qt::MatchCaseSensitive)
                              : list->currentIndex();
}

void ControlForm::selectRow(std::int32_t control, std::int32_t row) {
    auto* list = qobject_cast<QComboBox*>(widget(control));
    if (list == nullptr) return;
    list->setCurrentIndex(row >= 0 && row < list->count() ? row : -1);
    if (list->currentIndex() < 0 && list->isEditable()) list->clearEditText();
}

bool ControlForm::isChecked(std::int32_t control) const {
    QWidget* found = widget(control);
    if (const auto* lit = dynamic_cast<PanelButton*>(found)) return lit->lit();
    const auto* button = qobject_cast<QAbstractButton*>(found);
    return button != nullptr && button->isChecked();
}

void ControlForm::setChecked(std::int32_t control, bool checked) {
    QWidget* found = widget(control);
    if (auto* lit = dynamic_cast<PanelButton*>(found))
        lit->setLit(checked);
    else if (auto* button = qobject_cast<QAbstractButton*>(found))
        button->setChecked(checked);
}

void ControlForm::setEnabled(std::int32_t control, bool enabled) {
    if (QWidget* found = widget(control)) found->setEnabled(enabled);
}

void ControlForm::setShown(std::int32_t control, bool shown) {
    if (QWidget* found = widget(control)) found->setVisible(shown);
}

void ControlForm::focusSelectingAll(std::int32_t control) {
    QWidget* found = widget(control);
    if (found == nullptr) return;
    found->setFocus(Qt::OtherFocusReason);
    if (auto* edit = qobject_cast<QLineEdit*>(found)) edit->selectAll();
    if (auto* list = qobject_cast<QComboBox*>(found); list != nullptr && list->isEditable())
        list->lineEdit()->selectAll();
}

void ControlForm::setFont(std::int32_t control, const std::string& systemName, float points) {
    QWidget* found = widget(control);
    if (found == nullptr) return;
    QFont font = fontBySystemName(systemName, points);
    // A list's frame leaves little room in the height of a line.
    if (qobject_cast<QComboBox*>(found) != nullptr)
        font.setPixelSize(std::min(font.pixelSize(), std::max(8, found->height() - 6)));
    found->setFont(font);
}

void ControlForm::setTheme(const PanelTheme& theme) {
    second_ = theme.secondIcons;
    QPalette colors = page_->palette();
    const QColor ground = QColor::fromRgbF(theme.background[0], theme.background[1], theme.background[2]);
    const QColor ink = QColor::fromRgbF(theme.text[0], theme.text[1], theme.text[2]);
    colors.setColor(QPalette::Window, ground);
    colors.setColor(QPalette::WindowText, ink);
    page_->setPalette(colors);
    page_->setAutoFillBackground(true);
    for (Control& control : controls_) {
        if (auto* button = dynamic_cast<PanelButton*>(control.widget)) button->setTheme(theme);
        if (control.row.kind == ControlKind::picture)
            static_cast<QLabel*>(control.widget)
                ->setPixmap(
                    loadPicture(second_ ? control.row.darkPicture : control.row.picture, page_->devicePixelRatioF()));
        if (control.row.kind == ControlKind::line) {
            QPalette line = colors;
            line.setColor(QPalette::Window, ink);
            control.widget->setPalette(line);
        }
    }
}

}  // namespace quorvel::platform
