// Between the drawing's points and Qt's: outlines, rectangles, colours and maps.
#pragma once

#include <QColor>
#include <QPainterPath>
#include <QTransform>
#include <optional>

#include "host/document.h"
#include "host/svg_affine.h"

namespace quorvel::desktop {

inline QPointF ToQt(RealPoint point) { return {point.h, point.v}; }
inline RealPoint FromQt(QPointF point) { return {static_cast<float>(point.x()), static_cast<float>(point.y())}; }
// Normalised, y still up.
inline QRectF ToQt(const RealRect& rect) {
    return QRectF(QPointF(rect.left, rect.bottom), QPointF(rect.right, rect.top));
}
inline bool IsEmpty(const RealRect& rect) { return !(rect.left <= rect.right && rect.bottom <= rect.top); }
inline QTransform ToQt(const RealMatrix& m) { return {m.a, m.b, m.c, m.d, m.tx, m.ty}; }
inline QTransform ToQt(const host::Affine& m) { return {m.a, m.b, m.c, m.d, m.e, m.f}; }
QColor ToQt(const AIColor& color);

// Of a path, or of all members of a compound path.
QPainterPath OutlineOf(const host::Document& document, const host::Art& art);
// Of foreign art: the frame that its element gives it, which may be turned. Empty for elements that have none.
QPainterPath FrameOf(const host::Document& document, const host::Art& art);
// What all art at and below this covers without its strokes: its bounds, and the frames of foreign art, which has no
// bounds. Nothing for art that has no extent.
std::optional<QRectF> BoxOf(const host::Document& document, const host::Art& art);
// Of all art at and below this, texts and foreign art as their boxes.
QPainterPath OutlineBelow(const host::Document& document, const host::Art& art);
// The path whose style paints the art: itself, or the first member of a compound path. Null when there is none.
const host::PathData* PaintedPath(const host::Document& document, const host::Art& art);
// Calls visit(child) from the lowest child to the top one.
template <typename Visit>
void ForEachChildUpwards(const host::Document& document, const host::Art& art, Visit visit) {
    for (host::ArtId id = art.lastChild; id != 0;) {
        const host::Art* child = document.find(id);
        if (child == nullptr) return;
        visit(*child);
        id = child->above;
    }
}

}  // namespace quorvel::desktop
