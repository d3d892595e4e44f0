// Between the drawing's points and Qt's: outlines, rectangles, colours and maps.
#pragma once

#include <QColor>
#include <QPainterPath>
#include <QTransform>
#include <optional>

#include "document/document.h"
#include "svg/values/affine.h"

namespace quorvel::render {

inline QPointF toQt(RealPoint point) { return {point.h, point.v}; }
inline RealPoint fromQt(QPointF point) { return {static_cast<float>(point.x()), static_cast<float>(point.y())}; }
// Normalised, y still up.
inline QRectF toQt(const RealRect& rect) {
    return QRectF(QPointF(rect.left, rect.bottom), QPointF(rect.right, rect.top));
}
inline bool isEmpty(const RealRect& rect) { return !(rect.left <= rect.right && rect.bottom <= rect.top); }
inline QTransform toQt(const RealMatrix& m) { return {m.a, m.b, m.c, m.d, m.tx, m.ty}; }
inline QTransform toQt(const svg::Affine& m) { return {m.a, m.b, m.c, m.d, m.e, m.f}; }
QColor toQt(const AIColor& color);

// Of a path, or of all members of a compound path.
QPainterPath outlineOf(const doc::Document& document, const doc::Art& art);
// The same with straight lines for curves when it reaches out of the coordinates of the raster engine, which cuts
// curves in seconds and lines in no time. pixel: in the outline's units.
QPainterPath withoutFarCurves(const QPainterPath& outline, double pixel);
// Of foreign art: the frame that its element gives it, which may be turned. Empty for elements that have none.
QPainterPath frameOf(const doc::Document& document, const doc::Art& art);
// What all art at and below this covers without its strokes: its bounds, and the frames of foreign art, which has no
// bounds. Nothing for art that has no extent.
std::optional<QRectF> boxOf(const doc::Document& document, const doc::Art& art);
// Of all art at and below this, texts and foreign art as their boxes.
QPainterPath outlineBelow(const doc::Document& document, const doc::Art& art);
// The path whose style paints the art: itself, or the first member of a compound path. Null when there is none.
const doc::PathData* paintedPath(const doc::Document& document, const doc::Art& art);
// Calls visit(child) from the lowest child to the top one.
template <typename Visit>
void forEachChildUpwards(const doc::Document& document, const doc::Art& art, Visit visit) {
    for (doc::ArtId id = art.lastChild; id != 0;) {
        const doc::Art* child = document.find(id);
        if (child == nullptr) return;
        visit(*child);
        id = child->above;
    }
}

}  // namespace quorvel::render
