#include "render/art_boxes.h"

#include <algorithm>
#include <cmath>

#include "render/filter_painter.h"
#include "render/outline.h"

namespace quorvel::render {

namespace {

constexpr double kFarAway = 1e6;  // points, for art of which it is not known how far it reaches

// A stroke reaches out of its path's bounds by half its width, at a sharp corner by the miter limit times that.
double reachOf(const AIPathStyle& style) {
    if (style.strokePaint == 0) return 0;
    const double half = style.strokeWidth / 2.0;
    return style.join == 0 ? half * std::max(1.5, double(style.miterLimit)) : half * 1.5;
}

// Also holds boxes without height or width, unlike Qt's own union.
QRectF united(const QRectF& a, const QRectF& b) {
    if (a.isNull()) return b;
    if (b.isNull()) return a;
    return QRectF(QPointF(std::min(a.left(), b.left()), std::min(a.top(), b.top())),
                  QPointF(std::max(a.right(), b.right()), std::max(a.bottom(), b.bottom())));
}

// How far at most the map takes a vector of length 1.
double stretchOf(const QTransform& map) {
    return std::sqrt(map.m11() * map.m11() + map.m12() * map.m12() + map.m21() * map.m21() + map.m22() * map.m22());
}

}  // namespace

double markerUnit(const svg::Marker& marker, const AIPathStyle& style, const QTransform& userSpace) {
    return marker.byStroke ? style.strokeWidth / std::sqrt(std::abs(userSpace.determinant())) : 1;
}

ArtBoxes::ArtBoxes(const doc::Document& document, AppearanceReader* looks, SubDrawingCache* drawings,
                   ForeignArtCache* foreign)
    : document_(document), looks_(*looks), drawings_(*drawings), foreign_(*foreign) {}

QRectF ArtBoxes::plain(const doc::Art& art) {
    if (art.kind == kForeignArt) return foreign_.frameOf(art).boundingRect();
    const RealRect bounds = document_.bounds(art.id);
    QRectF box = isEmpty(bounds) ? QRectF() : toQt(bounds);
    if (art.kind == kGroupArt && looks_.hasForeign())
        forEachChildUpwards(document_, art, [&](const doc::Art& child) { box = united(box, plain(child)); });
    return box;
}

QRectF ArtBoxes::drawn(const doc::Art& art) {
    if (art.kind == kGroupArt)
        if (const auto known = groups_.find(art.id); known != groups_.end()) return known->second;
    QRectF box = unfiltered(art);
    if (const svg::Filter* filter = looks_.of(art).filter; filter != nullptr) {
        const QTransform user = looks_.userSpace(art), toUser = user.inverted();
        box = user.mapRect(filteredBox(*filter, toUser.mapRect(plain(art)), toUser.mapRect(box)));
    }
    if (art.kind == kGroupArt) groups_[art.id] = box;
    return box;
}

QRectF ArtBoxes::unfiltered(const doc::Art& art) {
    if (art.kind == kGroupArt) {
        QRectF box;
        forEachChildUpwards(document_, art, [&](const doc::Art& child) { box = united(box, drawn(child)); });
        return box;
    }
    if (art.kind == kForeignArt) {
        const QPolygonF frame = foreign_.frameOf(art);
        if (!frame.isEmpty()) return frame.boundingRect();
        return QRectF(QPointF(-kFarAway, -kFarAway), QPointF(kFarAway, kFarAway));
    }
    const RealRect bounds = document_.bounds(art.id);
    if (isEmpty(bounds)) return {};
    double reach = 0;
    if (const doc::PathData* path = paintedPath(document_, art); path != nullptr && path->style != nullptr)
        reach = std::max(reachOf(*path->style), markerReach(art, *path->style));
    if (art.kind == kTextFrameArt) reach = double(bounds.top) - bounds.bottom;
    reach = std::max(reach, 0.01);  // a level line has no height, and is no empty box
    QRectF box = toQt(bounds);
    QTransform toDocument;
    if (const TextLayout* layout = art.kind == kTextFrameArt ? looks_.textLayout(art, &toDocument) : nullptr)
        box = united(box, toDocument.mapRect(layout->box));
    return box.adjusted(-reach, -reach, reach, reach);
}

QRectF ArtBoxes::renewed(const doc::Art& art) {
    groups_.erase(art.id);
    const QRectF box = drawn(art);
    for (const doc::Art* group = document_.find(art.parent); group != nullptr; group = document_.find(group->parent))
        if (const auto known = groups_.find(group->id); known != groups_.end())
            known->second = united(known->second, box);
    return box;
}

double ArtBoxes::markerReach(const doc::Art& art, const AIPathStyle& style) {
    const Appearance& look = looks_.of(art);
    if (!look.hasMarkers) return 0;
    const QTransform user = looks_.userSpace(art);
    double reach = 0;
    for (const std::string_view id : look.markers)
        if (const MarkerDrawing* marker = drawings_.marker(id))
            reach = std::max(reach, marker->reach * markerUnit(*marker->marker, style, user) * stretchOf(user));
    return reach;
}

}  // namespace quorvel::render
