// The searches that put the cursor on an anchor, a centre, a path, an arc or a segment to be picked. They are one walk
// with one table: a row says which bounds keep a path out, how a path is tested, and which kind a hit gets.
#include <algorithm>

#include "plugin/snapping/candidates.h"
#include "plugin/snapping/snap.h"

namespace quorvel {

namespace {

struct ArtSearch;

// Moves the point when the pair is hit.
using PairTest = bool (*)(const ArtSearch& search, RealPoint* point, const PathSegment& s, const PathSegment& t);
// The index that a hit records, -1 for none; hit is the cursor as it came and takes the place of the hit.
using PathTest = int (*)(const ArtSearch& search, AIArtHandle path, int segmentCount, const RealRect& bounds,
                         RealPoint* hit);

struct SearchMember {
    std::int16_t kind;
    PathTest testPath;
    PairTest testPair;  // of a path test that goes by pairs
    AIErr (*getBounds)(AIArtHandle art, RealRect* bounds);
    LayerScope layers;
    bool textFrames;
};

struct ArtSearch {
    const SearchMember& member;
    const BezierBasisTables& tables;
    double tolerance;
    RealPoint* point;
    std::int16_t* kind;
    int capacity;
    SnapCell* cells;
    int count;
};

AIErr BoundsWithControls(AIArtHandle art, RealRect* bounds) {
    return sAIArt->GetArtTransformBounds(art, nullptr, kTransformBoundsWithControls, bounds);
}

AIErr TightBounds(AIArtHandle art, RealRect* bounds) { return sAIArt->GetArtBounds(art, bounds); }

// The first hit moves the cursor for good; all later art is tested against the moved cursor.
void RecordHit(ArtSearch* search, AIArtHandle art, int index, const RealPoint& hit) {
    if (search->count == 0) {
        *search->point = hit;
        *search->kind = search->member.kind;
    }
    search->cells[search->count++] = {art, static_cast<std::int16_t>(index)};
}

int FindAnchor(const ArtSearch& search, AIArtHandle path, int segmentCount, const RealRect&, RealPoint* hit) {
    SegmentBlock block;
    block.path = path;
    block.count = segmentCount;
    for (int i = 0; i < segmentCount; ++i) {
        const PathSegment* segment = SegmentAt(&block, i);
        if (segment == nullptr) break;
        if (SnapToPoint(hit, segment->p, search.tolerance)) return i;
    }
    return -1;
}

int FindCenter(const ArtSearch& search, AIArtHandle, int, const RealRect& bounds, RealPoint* hit) {
    return SnapToRectCenter(hit, bounds, search.tolerance) ? 0 : -1;
}

int FindPair(const ArtSearch& search, AIArtHandle path, int segmentCount, const RealRect&, RealPoint* hit) {
    const RealPoint cursor = *hit;
    if (segmentCount < kSmallestPair) return -1;
    return FindSegmentPair(path, segmentCount, [&](const PathSegment& s, const PathSegment& t, int) {
        *hit = cursor;
        return search.member.testPair(search, hit, s, t);
    });
}

bool AnySegmentUnder(const ArtSearch& search, RealPoint* point, const PathSegment& s, const PathSegment& t) {
    return SnapToSegment(search.tables, point, s, t, search.tolerance, kAnyCurve);
}

bool LineOrArcUnder(const ArtSearch& search, RealPoint* point, const PathSegment& s, const PathSegment& t) {
    return SnapToSegment(search.tables, point, s, t, search.tolerance, kArcsOnly);
}

bool ArcUnder(const ArtSearch& search, RealPoint* point, const PathSegment& s, const PathSegment& t) {
    return SnapToCurvedSegment(search.tables, point, s, t, search.tolerance);
}

bool LineUnder(const ArtSearch& search, RealPoint* point, const PathSegment& s, const PathSegment& t) {
    return SnapToStraightSegment(point, s, t, search.tolerance);
}

constexpr SearchMember kAnchors = {kSnapAnchor, FindAnchor, nullptr, BoundsWithControls, LayerScope::visible, true};
constexpr SearchMember kCenters = {kSnapCenter, FindCenter, nullptr, BoundsWithControls, LayerScope::visible, false};
constexpr SearchMember kPaths = {kSnapPath, FindPair, AnySegmentUnder, BoundsWithControls, LayerScope::visible, false};
constexpr SearchMember kArcs = {kSnapAnchor, FindPair, ArcUnder, BoundsWithControls, LayerScope::visible, false};
constexpr SearchMember kStraightPick = {kSnapAnchor, FindPair, LineUnder, TightBounds, LayerScope::visible, false};
constexpr SearchMember kFilletPick = {kSnapAnchor, FindPair, LineOrArcUnder, TightBounds, LayerScope::all, false};

// Leaves *over alone on failure.
AIErr TestBounds(const ArtSearch& search, AIArtHandle art, RealRect* bounds, bool* over) {
    const AIErr error = search.member.getBounds(art, bounds);
    if (error == kNoErr) *over = PointInPickRect(*search.point, *bounds, search.tolerance);
    return error;
}

AIErr VisitPath(ArtSearch* search, AIArtHandle path) {
    RealRect bounds;
    bool over = false;
    const AIErr error = TestBounds(*search, path, &bounds, &over);
    if (error != kNoErr || !over) return error;
    const int segmentCount = SegmentCount(path);
    if (segmentCount < 1) return kNoErr;
    RealPoint hit = *search->point;
    const int index = search->member.testPath(*search, path, segmentCount, bounds, &hit);
    if (index >= 0) RecordHit(search, path, index, hit);
    return kNoErr;
}

// Caught by its anchor, wherever its letters are.
AIErr VisitPointText(ArtSearch* search, AIArtHandle frame) {
    RealPoint anchor, hit = *search->point;
    const AIErr error = sAITextFrame->GetPointTextAnchor(frame, &anchor);
    if (error == kNoErr && SnapToPoint(&hit, anchor, search->tolerance)) RecordHit(search, frame, 0, hit);
    return error;
}

// Caught by the anchors of its path; the cell names the text.
AIErr VisitTextWithPath(ArtSearch* search, AIArtHandle frame) {
    RealRect bounds;
    bool over = false;
    AIErr error = TestBounds(*search, frame, &bounds, &over);
    if (error != kNoErr || !over) return error;
    AIArtHandle path = nullptr;
    error = sAITextFrame->GetPathObject(frame, &path);
    if (error != kNoErr || path == nullptr) return error;
    const int before = search->count;
    error = VisitPath(search, path);
    if (search->count > before) search->cells[before].art = frame;
    return error;
}

AIErr VisitTextFrame(ArtSearch* search, AIArtHandle frame) {
    std::int32_t type = kPointTextType;
    const AIErr error = sAITextFrame->GetTextFrameType(frame, &type);
    if (error != kNoErr) return error;
    if (type == kPointTextType) return VisitPointText(search, frame);
    return type == kInPathTextType || type == kOnPathTextType ? VisitTextWithPath(search, frame) : kNoErr;
}

void RunSearch(const SearchMember& member, RealPoint* point, std::int16_t* kind, int capacity, SnapCell* cells) {
    if (*kind != kSnapNothing) return;
    ArtSearch search = {member, gGlobals->bezierTables, PickTolerance(), point, kind, capacity, cells, 0};
    // A search that goes on behind its first hit tests around a cursor that has moved by up to one tolerance.
    const double reach = capacity > 1 ? 2.0 * search.tolerance : search.tolerance;
    const RealPoint before = *point;
    const AIErr error = VisitCandidates(
        member.layers, *point, reach,
        [&](AIArtHandle art, std::int16_t type) {
            if (type == kPathArt) return VisitPath(&search, art);
            return type == kTextFrameArt && member.textFrames ? VisitTextFrame(&search, art) : kNoErr;
        },
        [&] { return search.count >= capacity; });
    if (error == kNoErr) return;
    // A host that fails on the way has shown nothing.
    *point = before;
    *kind = kSnapNothing;
    std::fill_n(cells, search.count, SnapCell{});
}

}  // namespace

void SnapAnchorPoint(RealPoint* point, std::int16_t* kind, int capacity, SnapCell* cells) {
    RunSearch(kAnchors, point, kind, capacity, cells);
}

void SnapCenterPoint(RealPoint* point, std::int16_t* kind, int capacity, SnapCell* cells) {
    RunSearch(kCenters, point, kind, capacity, cells);
}

void SnapPath(RealPoint* point, std::int16_t* kind, SnapCell* cell) { RunSearch(kPaths, point, kind, 1, cell); }

void SnapArc(RealPoint* point, std::int16_t* kind, SnapCell* cell) { RunSearch(kArcs, point, kind, 1, cell); }

void PickStraightSegment(RealPoint* point, std::int16_t* kind, SnapCell* cell) {
    RunSearch(kStraightPick, point, kind, 1, cell);
}

void PickFilletSegment(RealPoint* point, std::int16_t* kind, SnapCell* cell) {
    RunSearch(kFilletPick, point, kind, 1, cell);
}

}  // namespace quorvel
