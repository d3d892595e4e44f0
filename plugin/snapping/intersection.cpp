// The search for a crossing under the cursor: the first two segments that the cursor touches, and the point where they
// cross. It is the one search that keeps something from path to path.
#include "plugin/snapping/candidates.h"
#include "plugin/snapping/crossing.h"
#include "plugin/snapping/snap.h"

namespace quorvel {

namespace {

struct CrossingSearch {
    const BezierBasisTables& tables;
    const RealPoint cursor;  // as it came: every pair is tried on a copy
    const double tolerance;
    SegmentHit first, second;
};

bool IsFull(const CrossingSearch& search) { return search.second.art != nullptr; }

// Two neighbours of one path "cross" at the anchor between them, and that is the anchor search's business.
bool MeetsFirstAtAnchor(const CrossingSearch& search, AIArtHandle path, int segmentCount, const PathSegment& previous,
                        int index) {
    if (path != search.first.art) return false;
    const bool follows = index == search.first.index + 1 || (index == 0 && search.first.index == segmentCount - 1);
    RealPoint cursor = search.cursor;
    return follows && SnapToPoint(&cursor, previous.p, search.tolerance);
}

// Takes the pair into the first free record. True when both are full.
bool TakePair(CrossingSearch* search, AIArtHandle path, int segmentCount, const PathSegment& previous,
              const PathSegment& segment, int index) {
    RealPoint cursor = search->cursor;
    if (!SnapToSegment(search->tables, &cursor, previous, segment, search->tolerance, kAnyCurve)) return false;
    const SegmentHit hit = {path, static_cast<std::int16_t>(index), previous, segment};
    if (search->first.art == nullptr) {
        search->first = hit;
    } else if (!MeetsFirstAtAnchor(*search, path, segmentCount, previous, index)) {
        search->second = hit;
    }
    return IsFull(*search);
}

AIErr VisitPath(CrossingSearch* search, AIArtHandle path) {
    RealRect bounds;
    const AIErr error = sAIArt->GetArtTransformBounds(path, nullptr, kTransformBoundsWithControls, &bounds);
    if (error != kNoErr || !PointInPickRect(search->cursor, bounds, search->tolerance)) return error;
    const int segmentCount = SegmentCount(path);
    if (segmentCount < kSmallestPair) return kNoErr;
    FindSegmentPair(path, segmentCount, [&](const PathSegment& s, const PathSegment& t, int index) {
        return TakePair(search, path, segmentCount, s, t, index);
    });
    return kNoErr;
}

}  // namespace

// Only the first two pairs are tried: when they do not cross near the cursor, the search has found nothing.
void SnapIntersection(RealPoint* point, std::int16_t* kind, int capacity, SnapCell* cells) {
    if (*kind != kSnapNothing) return;
    CrossingSearch search = {gGlobals->bezierTables, *point, PickTolerance(), {}, {}};
    const AIErr error = VisitCandidates(
        LayerScope::visible, search.cursor, search.tolerance,
        [&](AIArtHandle art, std::int16_t type) { return type == kPathArt ? VisitPath(&search, art) : kNoErr; },
        [&] { return IsFull(search); });
    if (error != kNoErr || !IsFull(search)) return;
    if (!FindCrossing(search.tables, search.first, search.second, search.cursor, search.tolerance, point)) return;
    *kind = kSnapIntersection;
    const SnapCell found[] = {{search.first.art, search.first.index}, {search.second.art, search.second.index}};
    for (int i = 0; i < 2 && i < capacity; ++i) cells[i] = found[i];
}

}  // namespace quorvel
