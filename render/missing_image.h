// What is drawn in the place of an image that is not shown.
#pragma once

#include <QPainter>
#include <QRectF>
#include <string>

namespace quorvel::render {

// A frame with a cross and the file's name. frame: in the painter's coordinates, y down.
void drawMissingImage(const std::string& href, const QRectF& frame, QPainter* painter);

}  // namespace quorvel::render
