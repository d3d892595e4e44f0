#include "render/missing_image.h"

#include <QFileInfo>
#include <QFont>
#include <QPainterPath>
#include <QUrl>
#include <algorithm>

namespace quorvel::render {

namespace {

constexpr qsizetype kLongestName = 60;
const QColor kInk(0x70, 0x70, 0x70);

// Of a file without its folders; of an image in the drawing itself there is none.
QString shownName(const std::string& href) {
    const QString link = QString::fromStdString(href).trimmed();
    if (link.startsWith(QLatin1String("data:"), Qt::CaseInsensitive)) return {};
    const QString name = QFileInfo(QUrl::fromPercentEncoding(link.toUtf8())).fileName();
    return name.size() <= kLongestName ? name : name.left(kLongestName) + QChar(0x2026);
}

}  // namespace

void drawMissingImage(const std::string& href, const QRectF& frame, QPainter* painter) {
    const double line = std::min(frame.width(), frame.height()) / 100;
    const QRectF inner = frame.adjusted(line / 2, line / 2, -line / 2, -line / 2);
    painter->setPen(QPen(kInk, line));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(inner);
    painter->drawLine(inner.topLeft(), inner.bottomRight());
    painter->drawLine(inner.bottomLeft(), inner.topRight());
    QPainterPath name;
    name.addText(QPointF(), QFont(QStringLiteral("sans-serif"), 100), shownName(href));
    const QRectF box = name.boundingRect();
    if (box.isEmpty()) return;
    const double scale = std::min(frame.width() * 0.8 / box.width(), frame.height() * 0.12 / box.height());
    QTransform place = QTransform::fromTranslate(frame.center().x(), frame.center().y());
    place.scale(scale, scale).translate(-box.center().x(), -box.center().y());
    const double margin = box.height() / 3;
    painter->fillRect(place.mapRect(box.adjusted(-margin, -margin, margin, margin)), Qt::white);
    painter->fillPath(place.map(name), kInk);
}

}  // namespace quorvel::render
