// Straight pieces stay straight lines, so that Qt draws them by its fast path.
#include "render/outline.h"

#include <algorithm>

#include "interchange/svg/source.h"
#include "svg/tree/frame.h"

namespace quorvel::render {

namespace {

bool same(RealPoint a, RealPoint b) { return a.h == b.h && a.v == b.v; }

void addPiece(const PathSegment& from, const PathSegment& to, QPainterPath* outline) {
    if (same(from.p, from.out) && same(to.p, to.in))
        outline->lineTo(toQt(to.p));
    else
        outline->cubicTo(toQt(from.out), toQt(to.in), toQt(to.p));
}

void addOutline(const doc::PathData& path, QPainterPath* outline) {
    if (path.segments.empty()) return;
    outline->moveTo(toQt(path.segments.front().p));
    for (std::size_t i = 1; i < path.segments.size(); ++i) addPiece(path.segments[i - 1], path.segments[i], outline);
    if (!path.closed) return;
    if (path.segments.size() > 1) addPiece(path.segments.back(), path.segments.front(), outline);
    outline->closeSubpath();
}

}  // namespace

QColor toQt(const AIColor& color) {
    const auto channel = [](float value) { return std::clamp(value, 0.0F, 1.0F); };
    if (color.kind == kRgbPaint)
        return QColor::fromRgbF(channel(color.rgb[0]), channel(color.rgb[1]), channel(color.rgb[2]));
    const float light = 1 - channel(color.gray);
    return QColor::fromRgbF(light, light, light);
}

QPainterPath outlineOf(const doc::Document& document, const doc::Art& art) {
    QPainterPath outline;
    if (art.path != nullptr) addOutline(*art.path, &outline);
    if (art.kind == kCompoundPathArt)
        forEachChildUpwards(document, art, [&](const doc::Art& child) { outline.addPath(outlineOf(document, child)); });
    return outline;
}

QPainterPath withoutFarCurves(const QPainterPath& outline, double pixel) {
    constexpr double kFarthest = 30'000;  // pixels
    const QRectF box = outline.controlPointRect();
    if (!(std::max(box.width(), box.height()) > kFarthest * pixel)) return outline;
    QPainterPath lines;
    lines.setFillRule(outline.fillRule());
    for (const QPolygonF& polygon : outline.toSubpathPolygons(QTransform::fromScale(1 / pixel, 1 / pixel)))
        lines.addPolygon(polygon);
    return QTransform::fromScale(pixel, pixel).map(lines);
}

QPainterPath frameOf(const doc::Document& document, const doc::Art& art) {
    QPainterPath frame;
    const interchange::SvgSource* source = interchange::svgSource(document);
    const std::int32_t index = art.ref.index;
    if (art.kind != kForeignArt || source == nullptr || index < 0) return frame;
    const svg::Frame said = svg::frameOf(source->tree, *source->text, index);
    const QRectF box(said.x, said.y, said.width.value_or(0), said.height.value_or(0));
    if (!(box.width() > 0 && box.height() > 0)) return frame;
    frame.addPolygon((toQt(source->tree.map(index)) * toQt(art.foreignMatrix)).map(QPolygonF(box)));
    return frame;
}

std::optional<QRectF> boxOf(const doc::Document& document, const doc::Art& art) {
    const RealRect bounds = document.bounds(art.id);
    std::optional<QRectF> box;
    const auto add = [&box](const QRectF& more) {
        // A line has no height, a point no extent at all, and Qt would pass over it.
        box = !box ? more
                   : QRectF(QPointF(std::min(box->left(), more.left()), std::min(box->top(), more.top())),
                            QPointF(std::max(box->right(), more.right()), std::max(box->bottom(), more.bottom())));
    };
    if (!isEmpty(bounds)) add(toQt(bounds));
    if (const QPainterPath frame = frameOf(document, art); !frame.isEmpty()) add(frame.boundingRect());
    if (art.kind == kGroupArt)
        forEachChildUpwards(document, art, [&](const doc::Art& child) {
            if (child.kind != kGroupArt && child.kind != kForeignArt) return;
            if (const auto inner = boxOf(document, child)) add(*inner);
        });
    return box;
}

QPainterPath outlineBelow(const doc::Document& document, const doc::Art& art) {
    QPainterPath outline;
    if (art.hidden) return outline;
    if (art.kind == kGroupArt)
        forEachChildUpwards(document, art,
                            [&](const doc::Art& child) { outline.addPath(outlineBelow(document, child)); });
    else if (art.kind == kForeignArt)
        outline = frameOf(document, art);
    else if (art.kind == kTextFrameArt)
        outline.addRect(boxOf(document, art).value_or(QRectF()));
    else
        outline = outlineOf(document, art);
    return outline;
}

const doc::PathData* paintedPath(const doc::Document& document, const doc::Art& art) {
    if (art.path != nullptr) return art.path.get();
    const doc::Art* member = art.kind == kCompoundPathArt ? document.find(art.firstChild) : nullptr;
    return member == nullptr ? nullptr : paintedPath(document, *member);
}

}  // namespace quorvel::render
