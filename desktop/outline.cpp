// Straight pieces stay straight lines, so that Qt draws them by its quick road.
#include "desktop/outline.h"

#include <algorithm>

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

QPainterPath OutlineBelow(const host::Document& document, const host::Art& art) {
    QPainterPath outline;
    if (art.hidden) return outline;
    if (art.kind == kGroupArt)
        ForEachChildUpwards(document, art,
                            [&](const host::Art& child) { outline.addPath(OutlineBelow(document, child)); });
    else if (art.kind == kTextFrameArt || art.kind == kForeignArt)
        outline.addRect(ToQt(document.bounds(art.id)));
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
