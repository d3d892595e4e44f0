// Straight pieces stay straight lines, so that Qt draws them by its quick road.
#include "desktop/outline.h"

#include <algorithm>

#include "host/css.h"
#include "host/svg_markup.h"
#include "host/svg_source.h"

namespace quorvel::desktop {

namespace {

bool Same(RealPoint a, RealPoint b) { return a.h == b.h && a.v == b.v; }

void AddPiece(const PathSegment& from, const PathSegment& to, QPainterPath* outline) {
    if (Same(from.p, from.out) && Same(to.p, to.in))
        outline->lineTo(ToQt(to.p));
    else
        outline->cubicTo(ToQt(from.out), ToQt(to.in), ToQt(to.p));
}

void AddOutline(const host::PathData& path, QPainterPath* outline) {
    if (path.segments.empty()) return;
    outline->moveTo(ToQt(path.segments.front().p));
    for (std::size_t i = 1; i < path.segments.size(); ++i) AddPiece(path.segments[i - 1], path.segments[i], outline);
    if (!path.closed) return;
    if (path.segments.size() > 1) AddPiece(path.segments.back(), path.segments.front(), outline);
    outline->closeSubpath();
}

}  // namespace

QColor ToQt(const AIColor& color) {
    const auto channel = [](float value) { return std::clamp(value, 0.0F, 1.0F); };
    if (color.kind == kRgbPaint)
        return QColor::fromRgbF(channel(color.rgb[0]), channel(color.rgb[1]), channel(color.rgb[2]));
    const float light = 1 - channel(color.gray);
    return QColor::fromRgbF(light, light, light);
}

QPainterPath OutlineOf(const host::Document& document, const host::Art& art) {
    QPainterPath outline;
    if (art.path != nullptr) AddOutline(*art.path, &outline);
    if (art.kind == kCompoundPathArt)
        ForEachChildUpwards(document, art,
                            [&](const host::Art& child) { outline.addPath(OutlineOf(document, child)); });
    return outline;
}

QPainterPath FrameOf(const host::Document& document, const host::Art& art) {
    QPainterPath frame;
    const host::SvgSource* source = document.source();
    const std::int32_t index = art.foreignSource >= 0 ? art.foreignSource : art.source;
    if (art.kind != kForeignArt || source == nullptr || index < 0) return frame;
    const host::SvgElement& element = source->elements[static_cast<std::size_t>(index)];
    const host::Affine& map = source->ctms[element.ctm];
    const host::StartTag tag(host::startTagText(source->text, element.nameOffset));
    const double page[] = {document.width() / map.scale(), document.height() / map.scale()};
    const auto length = [&](const char* name, double percentOf) {
        return host::parseLength(tag.attribute(name).value_or(""), {percentOf, 16}).value_or(0);
    };
    const QRectF box(length("x", page[0]), length("y", page[1]), length("width", page[0]), length("height", page[1]));
    if (!(box.width() > 0 && box.height() > 0)) return frame;
    frame.addPolygon((ToQt(map) * ToQt(art.foreignMatrix)).map(QPolygonF(box)));
    return frame;
}

std::optional<QRectF> BoxOf(const host::Document& document, const host::Art& art) {
    const RealRect bounds = document.bounds(art.id);
    std::optional<QRectF> box;
    const auto add = [&box](const QRectF& more) {
        // A line has no height, a point no extent at all, and Qt would pass over it.
        box = !box ? more
                   : QRectF(QPointF(std::min(box->left(), more.left()), std::min(box->top(), more.top())),
                            QPointF(std::max(box->right(), more.right()), std::max(box->bottom(), more.bottom())));
    };
    if (!IsEmpty(bounds)) add(ToQt(bounds));
    if (const QPainterPath frame = FrameOf(document, art); !frame.isEmpty()) add(frame.boundingRect());
    if (art.kind == kGroupArt)
        ForEachChildUpwards(document, art, [&](const host::Art& child) {
            if (child.kind != kGroupArt && child.kind != kForeignArt) return;
            if (const auto inner = BoxOf(document, child)) add(*inner);
        });
    return box;
}

QPainterPath OutlineBelow(const host::Document& document, const host::Art& art) {
    QPainterPath outline;
    if (art.hidden) return outline;
    if (art.kind == kGroupArt)
        ForEachChildUpwards(document, art,
                            [&](const host::Art& child) { outline.addPath(OutlineBelow(document, child)); });
    else if (art.kind == kForeignArt)
        outline = FrameOf(document, art);
    else if (art.kind == kTextFrameArt)
        outline.addRect(BoxOf(document, art).value_or(QRectF()));
    else
        outline = OutlineOf(document, art);
    return outline;
}

const host::PathData* PaintedPath(const host::Document& document, const host::Art& art) {
    if (art.path != nullptr) return art.path.get();
    const host::Art* member = art.kind == kCompoundPathArt ? document.find(art.firstChild) : nullptr;
    return member == nullptr ? nullptr : PaintedPath(document, *member);
}

}  // namespace quorvel::desktop
