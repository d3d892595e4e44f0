// Groups the tools as they were added: a tool's set is that of the tool which opened it.
#include "desktop/window/tool_palette.h"

#include <QAction>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>
#include <map>

#include "desktop/window/icons.h"
#include "platform/qt/pictures.h"

namespace quorvel::desktop {

namespace {

constexpr int kSlotSize = 38, kIconSize = 28;
constexpr int kArrowSize = 5;
constexpr int kArrowReach = 11;  // of the corner in which a press opens the set

}  // namespace

// --- one slot
// ---------------------------------------------------------------------------------------------------------

void ToolSlot::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && doubleClicked) doubleClicked();
}

void ToolSlot::mousePressEvent(QMouseEvent* event) {
    const bool onArrow =
        event->position().x() >= width() - kArrowReach && event->position().y() >= height() - kArrowReach;
    if (event->button() == Qt::LeftButton && menu() != nullptr && onArrow) return showMenu();
    QToolButton::mousePressEvent(event);
}

void ToolSlot::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor ground = palette().color(QPalette::Highlight);
    const QRectF box = QRectF(rect()).adjusted(2, 2, -2, -2);
    if (isChecked()) {
        ground.setAlpha(70);
        painter.setPen(QPen(palette().color(QPalette::Highlight), 1));
        painter.setBrush(ground);
        painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
    } else if (underMouse() || hasFocus()) {
        ground = palette().color(QPalette::WindowText);
        ground.setAlpha(26);
        painter.setPen(Qt::NoPen);
        painter.setBrush(ground);
        painter.drawRoundedRect(box, 4, 4);
    }
    const QRect place((width() - kIconSize) / 2, (height() - kIconSize) / 2, kIconSize, kIconSize);
    icon().paint(&painter, place);
    if (menu() == nullptr) return;
    const double right = width() - 4.5, bottom = height() - 4.5;
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(QPalette::WindowText));
    painter.drawPolygon(QPolygonF({{right, bottom}, {right - kArrowSize, bottom}, {right, bottom - kArrowSize}}));
}

// --- all slots
// --------------------------------------------------------------------------------------------------------

ToolPalette::ToolPalette(Session* session, QWidget* parent) : QWidget(parent), session_(session) {
    setObjectName(QStringLiteral("palette"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(3, 4, 3, 4);
    column->setSpacing(1);
    select_ = addButton(QStringLiteral("select"));
    zoom_ = addButton(QStringLiteral("zoom"));
    select_->setToolTip(session->say("Select (V)", "選択 (V)"));
    zoom_->setToolTip(session->say("Zoom (Z)", "ズーム (Z)"));
    connect(select_, &QToolButton::clicked, this, [this] { choose(QStringLiteral("select")); });
    connect(zoom_, &QToolButton::clicked, this, [this] { choose(QStringLiteral("zoom")); });

    std::vector<int> order;
    std::map<int, std::vector<std::string>> sets;
    for (const host::ToolRecord& tool : session->host().tools()) {
        if (sets[tool.toolset].empty()) order.push_back(tool.toolset);
        sets[tool.toolset].push_back(tool.title);
    }
    for (const int set : order) addSet(sets[set]);
    column->addStretch();
    refreshIcons();
    choose(QStringLiteral("select"));
}

ToolSlot* ToolPalette::addButton(const QString& name) {
    auto* button = new ToolSlot(this);
    button->setObjectName(name);
    button->setFixedSize(kSlotSize, kSlotSize);
    button->setCheckable(true);
    button->setFocusPolicy(Qt::TabFocus);
    layout()->addWidget(button);
    return button;
}

void ToolPalette::addSet(const std::vector<std::string>& titles) {
    SetSlot slot;
    slot.button = addButton({});
    slot.titles = titles;
    ToolSlot* button = slot.button;
    if (titles.size() > 1) {
        auto* menu = new QMenu(button);
        for (const std::string& title : titles) {
            QAction* action = menu->addAction(QString::fromStdString(title));
            connect(action, &QAction::triggered, this, [this, title] { choose(QString::fromStdString(title)); });
        }
        button->setMenu(menu);
        button->setPopupMode(QToolButton::DelayedPopup);
    }
    sets_.push_back(slot);
    show(&sets_.back(), titles.front());
    const auto shownBy = [this, button] {
        const auto found =
            std::find_if(sets_.begin(), sets_.end(), [&](const SetSlot& s) { return s.button == button; });
        return QString::fromStdString(found->shown);
    };
    connect(button, &QToolButton::clicked, this, [this, shownBy] { choose(shownBy()); });
    button->doubleClicked = [this, shownBy] { emit optionsWanted(shownBy()); };
}

QIcon ToolPalette::iconOf(const std::string& title) const {
    const host::ToolRecord* tool = session_->host().toolByTitle(title);
    if (tool == nullptr) return {};
    const int id = session_->dark() ? tool->darkIconId : tool->iconId;
    return QIcon(platform::loadPicture(id, devicePixelRatioF(), QSize(kIconSize, kIconSize)));
}

void ToolPalette::show(SetSlot* slot, const std::string& title) {
    slot->shown = title;
    slot->button->setIcon(iconOf(title));
    slot->button->setToolTip(QString::fromStdString(title));
    slot->button->setAccessibleName(QString::fromStdString(title));
}

void ToolPalette::refreshIcons() {
    const QColor ink = palette().color(QPalette::WindowText);
    select_->setIcon(arrowIcon(ink));
    zoom_->setIcon(magnifierIcon(ink));
    for (SetSlot& slot : sets_) {
        slot.button->setIcon(iconOf(slot.shown));
        if (slot.button->menu() == nullptr) continue;
        for (QAction* action : slot.button->menu()->actions()) action->setIcon(iconOf(action->text().toStdString()));
    }
}

ToolSlot* ToolPalette::slotOf(const QString& title) const {
    if (title == QLatin1String("select")) return select_;
    if (title == QLatin1String("zoom")) return zoom_;
    for (const SetSlot& slot : sets_)
        if (std::find(slot.titles.begin(), slot.titles.end(), title.toStdString()) != slot.titles.end())
            return slot.button;
    return nullptr;
}

void ToolPalette::light(ToolSlot* button) {
    select_->setChecked(button == select_);
    zoom_->setChecked(button == zoom_);
    for (SetSlot& slot : sets_) slot.button->setChecked(button == slot.button);
}

void ToolPalette::choose(const QString& title) {
    ToolSlot* button = slotOf(title);
    if (button == nullptr) return;
    light(button);
    if (button == select_) {
        emit selectChosen();
    } else if (button == zoom_) {
        emit zoomChosen();
    } else {
        for (SetSlot& slot : sets_)
            if (slot.button == button) show(&slot, title.toStdString());
        emit pluginToolChosen(title);
    }
}

}  // namespace quorvel::desktop
