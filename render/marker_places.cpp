#include "render/marker_places.h"

#include <cmath>
#include <numbers>
#include <optional>

#include "render/outline.h"

namespace quorvel::render {

namespace {

// Of a stretch between two anchors: where it leads at its begin and at its end. A stretch without length leads nowhere.
struct Stretch {
    std::optional<QPointF> begin, end;
};

Stretch stretchOf(QPointF p, QPointF out, QPointF in, QPointF q) {
    const QPointF points[] = {p, out, in, q};
    Stretch stretch;
    for (int i = 1; i < 4 && !stretch.begin; ++i)
        if (points[i] != p) stretch.begin = points[i] - p;
    for (int i = 2; i >= 0 && !stretch.end; --i)
        if (points[i] != q) stretch.end = q - points[i];
    return stretch;
}

double angleOf(QPointF direction) { return std::atan2(direction.y(), direction.x()) * 180 / std::numbers::pi; }

// Half-way between what leads to an anchor and what leads on from it.
double angleBetween(const std::optional<QPointF>& before, const std::optional<QPointF>& after) {
    if (!before && !after) return 0;
    if (!before || !after) return angleOf(before ? *before : *after);
    const double first = angleOf(*before);
    return first + std::remainder(angleOf(*after) - first, 360) / 2;
}

void addPlaces(const doc::PathData& piece, const QTransform& map, std::vector<MarkerPlace>* places) {
    const std::size_t count = piece.segments.size();
    if (count == 0) return;
    const auto at = [&](RealPoint point) { return map.map(toQt(point)); };
    std::vector<Stretch> stretches;
    for (std::size_t i = 0; i + (piece.closed ? 0 : 1) < count; ++i) {
        const PathSegment &from = piece.segments[i], &to = piece.segments[(i + 1) % count];
        stretches.push_back(stretchOf(at(from.p), at(from.out), at(to.in), at(to.p)));
    }
    // One without length leads where the one before it does, else where the one behind it does.
    for (std::size_t i = 1; i < stretches.size(); ++i)
        if (!stretches[i].begin) stretches[i] = {stretches[i - 1].end, stretches[i - 1].end};
    for (std::size_t i = stretches.size(); i-- > 1;)
        if (!stretches[i - 1].begin) stretches[i - 1] = {stretches[i].begin, stretches[i].begin};
    const std::size_t anchors = stretches.size() + 1;
    for (std::size_t i = 0; i < anchors; ++i) {
        std::optional<QPointF> before, after;
        if (i > 0) before = stretches[i - 1].end;
        if (i + 1 < anchors) after = stretches[i].begin;
        if (piece.closed && i == 0) before = stretches.back().end;
        if (piece.closed && i + 1 == anchors) after = stretches.front().begin;
        places->push_back({1, at(piece.segments[i % count].p), angleBetween(before, after)});
    }
}

}  // namespace

std::vector<MarkerPlace> markerPlaces(const std::vector<const doc::PathData*>& pieces, const QTransform& map) {
    std::vector<MarkerPlace> places;
    for (const doc::PathData* piece : pieces) addPlaces(*piece, map, &places);
    if (places.empty()) return places;
    places.front().kind = 0;
    if (places.size() == 1) places.push_back(places.front());
    places.back().kind = 2;
    return places;
}

}  // namespace quorvel::render
