// Moving a point onto a segment when it is near enough: what the cursor does over a path. A straight line pulls along
// one axis, an arc onto its circle, a general curve onto the foot on one of its chords.
#include "plugin/geometry/bezier.h"
#include "plugin/geometry/chord.h"
#include "plugin/geometry/sampled_curve.h"

namespace quorvel {

namespace {

// Added to the tolerance on arcs alone.
constexpr double kArcSlack = 0.01;

struct CoarseChord {
    int index = 0;  // 0 for none
    DoublePoint a, b;
};

// The first chord that takes the point. Nearly all are out by the box of their block.
CoarseChord FirstChordHit(const BezierBasisTables& tables, const CurveControls& c, const DoublePoint& point,
                          double tolerance) {
    BlockBoxes boxes;
    BoxBlocks(tables, c, &boxes);
    for (int block = 0; block < kBlocks; ++block) {
        if (point.h < boxes.lowH[block] - tolerance || point.h > boxes.highH[block] + tolerance ||
            point.v < boxes.lowV[block] - tolerance || point.v > boxes.highV[block] + tolerance)
            continue;
        DoublePoint a = CoarsePoint(tables, c, FirstPointOfBlock(block));
        for (int i = FirstPointOfBlock(block) + 1; i <= LastPointOfBlock(block); ++i) {
            const DoublePoint b = CoarsePoint(tables, c, i);
            DoublePoint copy = point;
            if (SnapToChord(&copy, a, b, tolerance)) return {i, a, b};
            a = b;
        }
    }
    return {};
}

// Can the point be in the grown box of any chord? All samples lie in the box of the four controls but for the rounding
// of the basis and of the sums, which a slack of some fifty units in the last place covers.
bool ControlBoxHolds(const CurveControls& c, const DoublePoint& p, double tolerance) {
    const double left = LesserOf(LesserOf(c.p0.h, c.p1.h), LesserOf(c.p2.h, c.p3.h));
    const double right = GreaterOf(GreaterOf(c.p0.h, c.p1.h), GreaterOf(c.p2.h, c.p3.h));
    const double bottom = LesserOf(LesserOf(c.p0.v, c.p1.v), LesserOf(c.p2.v, c.p3.v));
    const double top = GreaterOf(GreaterOf(c.p0.v, c.p1.v), GreaterOf(c.p2.v, c.p3.v));
    const double largest = GreaterOf(GreaterOf(right, -left), GreaterOf(top, -bottom));
    const double grown = tolerance + 1e-14 * (largest + tolerance);
    return !(p.h < left - grown || p.h > right + grown || p.v < bottom - grown || p.v > top + grown);
}

}  // namespace

bool AngleLiesOnArc(double a, double a0, double a1) {
    if (AbsOf(a1 - a0) > kPi) {
        if (0 > a1) {
            a1 += kTwoPi;
        } else {
            a0 += kTwoPi;
        }
    }
    const double low = MinOf(a0, a1), high = MaxOf(a0, a1);
    if (low <= a && a <= high) return true;
    if (0 > a) return low <= a + kTwoPi && a + kTwoPi <= high;
    if (a > 0) return low <= a - kTwoPi && a - kTwoPi <= high;
    return false;
}

bool SnapPointToFlatLine(RealPoint* point, const RealPoint& a, const RealPoint& b, double tolerance) {
    const DoublePoint p = ToDoublePoint(*point), from = ToDoublePoint(a), to = ToDoublePoint(b);
    if (!ChordBoxHolds(p, from, to, tolerance)) return false;
    if (from.h != to.h && from.v != to.v) {
        const double slope = (to.v - from.v) / (to.h - from.h);
        const double intercept = from.v - slope * from.h;
        if (AbsOf(slope) <= 0.5) {
            const double v = slope * p.h + intercept;
            if (!(tolerance > AbsOf(p.v - v))) return false;
            point->v = static_cast<float>(v);
        } else {
            const double h = (p.v - intercept) / slope;
            if (!(tolerance > AbsOf(p.h - h))) return false;
            point->h = static_cast<float>(h);
        }
        return true;
    }
    if (from.h == to.h && tolerance > AbsOf(from.h - p.h)) {
        point->h = a.h;
        return true;
    }
    if (from.v != to.v) return false;
    if (!(tolerance > AbsOf(to.v - p.v))) return false;
    point->v = a.v;
    return true;
}

bool SnapPointToChord(DoublePoint* point, const DoublePoint& a, const DoublePoint& b, double tolerance) {
    return SnapToChord(point, a, b, tolerance);
}

bool SnapPointToChords(const BezierBasisTables& tables, DoublePoint* point, const PathSegment& s, const PathSegment& t,
                       double tolerance) {
    const CurveControls controls = ControlsOf(s, t);
    if (!ControlBoxHolds(controls, *point, tolerance)) return false;
    const CoarseChord hit = FirstChordHit(tables, controls, *point, tolerance);
    if (hit.index == 0) return false;

    // A hit on the long chord need not survive on its halves; the point stays where it is then, and it is still a hit.
    const DoublePoint middle = FineSample(tables, controls, CoarseIndex(hit.index) - 1);
    DoublePoint first = *point, second = *point;
    double firstDistance = kNoDistance;
    if (SnapToChord(&first, hit.a, middle, tolerance)) firstDistance = DistanceBetweenPoints(*point, first);
    if (SnapToChord(&second, middle, hit.b, tolerance) && !(DistanceBetweenPoints(*point, second) > firstDistance)) {
        *point = second;
    } else {
        *point = first;
    }
    return true;
}

bool SnapPointToCurve(const BezierBasisTables& tables, RealPoint* point, const PathSegment& s, const PathSegment& t,
                      double tolerance, std::int16_t anyCurve) {
    DoublePoint p = ToDoublePoint(*point);
    DoublePoint centre;
    double radius = 0;
    if (IsCircularArc(s, t, &centre, &radius)) {
        if (!(AbsOf(radius - DistanceBetweenPoints(centre, p)) < tolerance + kArcSlack)) return false;
        const double startAngle = AngleBetweenPoints(centre, ToDoublePoint(s.p));
        const double endAngle = AngleBetweenPoints(centre, ToDoublePoint(t.p));
        const double angle = AngleBetweenPoints(centre, p);
        if (!AngleLiesOnArc(angle, startAngle, endAngle)) return false;
        *point = ToRealPoint(PolarPoint(centre, radius, angle));
        return true;
    }
    if (anyCurve == kArcsOnly) return false;
    if (!SnapPointToChords(tables, &p, s, t, tolerance)) return false;
    *point = ToRealPoint(p);
    return true;
}

bool SnapToSegment(const BezierBasisTables& tables, RealPoint* point, const PathSegment& s, const PathSegment& t,
                   double tolerance, std::int16_t anyCurve) {
    if (IsStraightSegment(s, t)) return SnapPointToFlatLine(point, s.p, t.p, tolerance);
    return SnapPointToCurve(tables, point, s, t, tolerance, anyCurve);
}

bool SnapToCurvedSegment(const BezierBasisTables& tables, RealPoint* point, const PathSegment& s, const PathSegment& t,
                         double tolerance) {
    if (IsStraightSegment(s, t)) return false;
    return SnapPointToCurve(tables, point, s, t, tolerance, kArcsOnly);
}

bool SnapToStraightSegment(RealPoint* point, const PathSegment& s, const PathSegment& t, double tolerance) {
    if (!IsStraightSegment(s, t)) return false;
    return SnapPointToFlatLine(point, s.p, t.p, tolerance);
}

bool SnapToPoint(RealPoint* point, const RealPoint& target, double tolerance) {
    const DoublePoint p = ToDoublePoint(*point), q = ToDoublePoint(target);
    if (!(AbsOf(q.h - p.h) <= tolerance && AbsOf(q.v - p.v) <= tolerance)) return false;
    *point = target;
    return true;
}

bool SnapToRectCenter(RealPoint* point, const RealRect& rect, double tolerance) {
    const double h = static_cast<double>(rect.left) + rect.right, v = static_cast<double>(rect.top) + rect.bottom;
    return SnapToPoint(point, ToRealPoint({h / 2, v / 2}), tolerance);
}

}  // namespace quorvel
