// Draws each SVG once for each size and keeps the result, since buttons and cursors change at every move of the mouse.
#include "platform/qt/pictures.h"

#include <QFile>
#include <QHash>
#include <QPainter>
#include <QPixmapCache>
#include <QPoint>
#include <QSvgRenderer>
#include <QTextStream>

// The resource of a static library must be pulled in by name, from outside any namespace.
static void initResource() { Q_INIT_RESOURCE(pictures); }

namespace quorvel::platform {

namespace {

QString pathOf(std::int32_t id) { return QStringLiteral(":/pictures/%1.svg").arg(id); }

const QHash<std::int32_t, QPoint>& hotSpots() {
    static const QHash<std::int32_t, QPoint> spots = [] {
        QHash<std::int32_t, QPoint> read;
        QFile file(QStringLiteral(":/pictures/hotspots.txt"));
        if (!file.open(QIODevice::ReadOnly)) return read;
        QTextStream in(&file);
        std::int32_t id = 0, h = 0, v = 0;
        while (!in.atEnd()) {
            in >> id >> h >> v;
            if (in.status() == QTextStream::Ok) read.insert(id, {h, v});
        }
        return read;
    }();
    return spots;
}

}  // namespace

void initPictures() { initResource(); }

bool pictureExists(std::int32_t id) { return QFile::exists(pathOf(id)); }

QPixmap loadPicture(std::int32_t id, qreal pixelRatio, QSize size) {
    if (!pictureExists(id)) return {};
    const QString key =
        QStringLiteral("quorvel-%1-%2-%3x%4").arg(id).arg(pixelRatio).arg(size.width()).arg(size.height());
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap)) return pixmap;
    QSvgRenderer drawing(pathOf(id));
    if (!drawing.isValid()) return {};
    drawing.setAspectRatioMode(Qt::KeepAspectRatio);
    const QSize shown = size.isValid() && !size.isEmpty() ? size : drawing.defaultSize();
    pixmap = QPixmap(shown * pixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    drawing.render(&painter, QRectF(QPointF(), QSizeF(pixmap.size())));
    painter.end();
    pixmap.setDevicePixelRatio(pixelRatio);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

QCursor pictureCursor(std::int32_t id, qreal pixelRatio) {
    const QPixmap pixmap = loadPicture(id, pixelRatio);
    if (pixmap.isNull()) return {};
    const QPoint spot = hotSpots().value(id, {0, 0});
    return QCursor(pixmap, spot.x(), spot.y());
}

}  // namespace quorvel::platform
