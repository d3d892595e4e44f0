// Each icon is drawn on a grid of 16 units, at twice the size and at the size itself.
#include "desktop/window/icons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace quorvel::desktop {

namespace {

template <typename Draw>
void addDrawn(QIcon* icon, QIcon::Mode mode, const QColor& ink, Draw draw) {
    for (const int size : {16, 24, 32, 48}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(size / 16.0, size / 16.0);
        painter.setPen(QPen(ink, 1.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        draw(painter, ink);
        icon->addPixmap(pixmap, mode);
    }
}

template <typename Draw>
QIcon drawn(const QColor& ink, Draw draw) {
    QIcon icon;
    addDrawn(&icon, QIcon::Normal, ink, draw);
    return icon;
}

// In a list: a selected row's ground is another one.
template <typename Draw>
QIcon drawnInList(const QPalette& colors, Draw draw) {
    QIcon icon;
    addDrawn(&icon, QIcon::Normal, colors.color(QPalette::Text), draw);
    addDrawn(&icon, QIcon::Selected, colors.color(QPalette::HighlightedText), draw);
    return icon;
}

}  // namespace

QIcon arrowIcon(const QColor& color) {
    return drawn(color, [](QPainter& painter, const QColor& ink) {
        painter.setBrush(ink);
        painter.drawPolygon(
            QPolygonF({{4, 2}, {4, 12.5}, {6.6, 10.2}, {8.4, 14}, {10, 13.2}, {8.3, 9.6}, {11.8, 9.4}}));
    });
}

QIcon magnifierIcon(const QColor& color) {
    return drawn(color, [](QPainter& painter, const QColor& ink) {
        painter.drawEllipse(QPointF(6.5, 6.5), 4.2, 4.2);
        painter.drawLine(QPointF(4.7, 6.5), QPointF(8.3, 6.5));
        painter.drawLine(QPointF(6.5, 4.7), QPointF(6.5, 8.3));
        painter.setPen(QPen(ink, 2.2, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(10, 10), QPointF(13.4, 13.4));
    });
}

QIcon eyeIcon(const QPalette& colors, bool open) {
    return drawnInList(colors, [open](QPainter& painter, const QColor& ink) {
        QPainterPath lids(QPointF(1.5, 8));
        lids.quadTo({8, open ? 2.0 : 9.5}, {14.5, 8});
        if (open) lids.quadTo({8, 14}, {1.5, 8});
        painter.drawPath(lids);
        if (!open) return;
        painter.setBrush(ink);
        painter.drawEllipse(QPointF(8, 8), 1.8, 1.8);
    });
}

QIcon lockIcon(const QPalette& colors, bool locked) {
    return drawnInList(colors, [locked](QPainter& painter, const QColor& ink) {
        QColor faint = ink;
        if (!locked) faint.setAlpha(120);
        painter.setPen(QPen(faint, 1.2));
        QPainterPath bow(QPointF(5, 8));
        bow.lineTo(5, 5.5);
        bow.arcTo(QRectF(5, 2.5, 6, 6), 180, locked ? -180 : -120);
        if (locked) bow.lineTo(11, 8);
        painter.drawPath(bow);
        if (locked) painter.setBrush(faint);
        painter.drawRoundedRect(QRectF(3.5, 8, 9, 6), 1, 1);
    });
}

QIcon menuIcon(const QColor& ink) {
    return drawn(ink, [](QPainter& painter, const QColor&) {
        for (const double y : {4.5, 8.0, 11.5}) painter.drawLine(QPointF(3, y), QPointF(13, y));
    });
}

QIcon plusIcon(const QColor& ink) {
    return drawn(ink, [](QPainter& painter, const QColor&) {
        painter.drawLine(QPointF(3, 8), QPointF(13, 8));
        painter.drawLine(QPointF(8, 3), QPointF(8, 13));
    });
}

}  // namespace quorvel::desktop
