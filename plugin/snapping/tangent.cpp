// Vertical/Horizontal Snap: with the first point on a path, the second one falls onto the path's normal or tangent
// through it, at the distance that the cursor has from it.
#include "plugin/shell/suites.h"
#include "plugin/snapping/snap.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

// How far outside a chord's box a point that was put onto the curve and narrowed may lie.
constexpr double kChordSlack = 0.0001;

bool ChordBoxHolds(const DoublePoint& a, const DoublePoint& b, const DoublePoint& point) {
    return MinOf(a.h, b.h) - kChordSlack <= point.h && point.h <= MaxOf(a.h, b.h) + kChordSlack &&
           MinOf(a.v, b.v) - kChordSlack <= point.v && point.v <= MaxOf(a.v, b.v) + kChordSlack;
}

double NormalAmongChords(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t,
                         const DoublePoint& point) {
    const DoublePoint p0 = ToDoublePoint(s.p), p1 = ToDoublePoint(s.out);
    const DoublePoint p2 = ToDoublePoint(t.in), p3 = ToDoublePoint(t.p);
    DoublePoint previous = p0;
    for (int k = 1; k <= 256; ++k) {
        const DoublePoint current = BezierSample(tables, 256, k, p0, p1, p2, p3);
        if (ChordBoxHolds(previous, current, point)) return AngleBetweenPoints(previous, current) + kHalfPi;
        previous = current;
    }
    return kNoDistance;
}

// The direction of the normal where the point lies on the segment; kNoDistance when it does not.
double NormalAt(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t, const DoublePoint& point,
                double tolerance) {
    const DoublePoint p0 = ToDoublePoint(s.p), p3 = ToDoublePoint(t.p);
    if (IsStraightSegment(s, t)) return AngleBetweenPoints(p0, p3) + kHalfPi;
    DoublePoint centre;
    double radius = 0.0;
    if (!IsCircularArc(s, t, &centre, &radius)) return NormalAmongChords(tables, s, t, point);
    if (!(AbsOf(radius - DistanceBetweenPoints(centre, point)) < tolerance + 0.01)) return kNoDistance;
    const double angle = AngleBetweenPoints(centre, point);
    return AngleLiesOnArc(angle, AngleBetweenPoints(centre, p0), AngleBetweenPoints(centre, p3)) ? angle : kNoDistance;
}

bool ReadFirstSegment(const SnapCell& cell, PathSegment* s, PathSegment* t) {
    std::int16_t type = kUnknownArt;
    return cell.art != nullptr && sAIArt->GetArtType(cell.art, &type) == kNoErr && type == kPathArt &&
           ReadSegmentPair(cell.art, cell.index, s, t);
}

// In the order of trial.
struct Target {
    double turn;  // from the normal
    std::int16_t kind;
};
constexpr Target kTargets[] = {
    {0.0, kSnapTangent}, {-kPi, kSnapTangent}, {kHalfPi, kSnapNormal}, {-kHalfPi, kSnapNormal}};

}  // namespace

void SnapTangentNormal(PluginGlobals* globals, RealPoint* point, std::int16_t* kind) {
    ToolState& state = globals->liveState;
    if (*kind != kSnapNothing || state.toolStep < 1 || state.fromKind < kSnapAnchor) return;
    PathSegment s, t;
    if (!ReadFirstSegment(state.fromCells[0], &s, &t)) return;
    const DoublePoint first = ToDoublePoint(state.fromPoint), cursor = ToDoublePoint(*point);
    const double tolerance = PickTolerance(), distance = DistanceBetweenPoints(first, cursor);
    if (state.fromTangent == kNoDistance) state.fromTangent = NormalAt(globals->bezierTables, s, t, first, tolerance);
    if (state.fromTangent == kNoDistance) return;
    for (const Target& target : kTargets) {
        const DoublePoint place = PolarPoint(first, distance, state.fromTangent + target.turn);
        if (AbsOf(cursor.h - place.h) <= tolerance && AbsOf(cursor.v - place.v) <= tolerance) {
            *point = ToRealPoint(place);
            *kind = target.kind;
            return;
        }
    }
}

}  // namespace quorvel
