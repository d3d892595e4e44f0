// Draws the panel's buttons pixel by pixel as they are meant, and keeps the state of a command list's rows true.
#include "platform/qt/panel_button.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStandardItemModel>
#include <QWheelEvent>

#include "platform/qt/pictures.h"

namespace quorvel::platform {

namespace {

constexpr int kIconSize = 32;

QColor colorOf(const float (&channels)[3]) { return QColor::fromRgbF(channels[0], channels[1], channels[2]); }

}  // namespace

PanelButton::PanelButton(QWidget* parent, std::int32_t picture, std::int32_t secondPicture)
    : QAbstractButton(parent), picture_(picture), secondPicture_(secondPicture) {
    setFocusPolicy(Qt::TabFocus);
    theme_.highlight = 0x444444;
}

void PanelButton::setLit(bool lit) {
    lit_ = lit;
    update();
}

void PanelButton::setTheme(const PanelTheme& theme) {
    theme_ = theme;
    update();
}

// The icon is shown unscaled and cut off at the button's edge: its middle is what is drawn for this size.
void PanelButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const bool lit = lit_ || isDown();
    const QColor highlight(QRgb{theme_.highlight});
    painter.fillRect(rect(), lit ? highlight : colorOf(theme_.background));
    const bool second = theme_.secondIcons != lit;
    const QPixmap icon = loadPicture(second ? secondPicture_ : picture_, devicePixelRatioF());
    painter.drawPixmap(QPointF((width() - kIconSize) / 2.0, (height() - kIconSize) / 2.0), icon);
    painter.setPen(hasFocus() ? palette().color(QPalette::Highlight) : highlight);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void CommandList::refreshRows() {
    auto* items = qobject_cast<QStandardItemModel*>(model());
    if (items == nullptr) return;
    for (int row = 0; row < items->rowCount(); ++row) {
        QStandardItem* item = items->item(row);
        const QString text = item->text();
        const bool separator = text.isEmpty() || text == QLatin1String("-");
        item->setAccessibleDescription(separator ? QStringLiteral("separator") : QString());
        const bool enabled = !separator && !(rowDisabled && rowDisabled(row));
        item->setFlags(enabled ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags);
    }
}

void CommandList::showPopup() {
    refreshRows();
    QComboBox::showPopup();
}

// A row is a command, so that a key must not run one on its way to another: keys that would change the row of the
// closed list open it, and letters do nothing.
void CommandList::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
        case Qt::Key_Home:
        case Qt::Key_End:
            return showPopup();
        case Qt::Key_Space:
        case Qt::Key_F4:
            refreshRows();
            return QComboBox::keyPressEvent(event);
        default:
            event->ignore();
    }
}

// A turn of the wheel over the dialog must not run a command by accident.
void CommandList::wheelEvent(QWheelEvent* event) { event->ignore(); }

}  // namespace quorvel::platform
