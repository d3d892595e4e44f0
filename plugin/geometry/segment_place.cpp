#include "plugin/geometry/segment_place.h"

#include <algorithm>
#include <cmath>

#include "plugin/geometry/chord.h"
#include "plugin/geometry/sampled_curve.h"

namespace quorvel {

namespace {

double Cross(const DoublePoint& a, const DoublePoint& b) { return a.h * b.v - a.v * b.h; }
double Dot(const DoublePoint& a, const DoublePoint& b) { return a.h * b.h + a.v * b.v; }
DoublePoint Minus(const DoublePoint& a, const DoublePoint& b) { return {a.h - b.h, a.v - b.v}; }

// How far along a to b the foot of the point is; 0 when they are one.
double ShareOfChord(const DoublePoint& a, const DoublePoint& b, const DoublePoint& point) {
    const DoublePoint chord = Minus(b, a);
    const double square = Dot(chord, chord);
    return square > 0 ? Dot(Minus(point, a), chord) / square : 0.0;
}

FineCurve SampleAll(const BezierBasisTables& tables, const CurveControls& c) {
    FineCurve curve;
    SampleFine(tables, c, 1, kFineSteps - 1, &curve);
    curve.h[0] = c.p0.h;
    curve.v[0] = c.p0.v;
    curve.h[kFineSteps] = c.p3.h;
    curve.v[kFineSteps] = c.p3.v;
    return curve;
}

double PlaceOnCurve(const FineCurve& curve, const DoublePoint& point) {
    int nearest = 1;
    double best = MeasureChord(curve.Point(0), curve.Point(1), point).distance;
    for (int k = 2; k <= kFineSteps; ++k) {
        const double distance = MeasureChord(curve.Point(k - 1), curve.Point(k), point).distance;
        if (!(best > distance)) continue;
        best = distance;
        nearest = k;
    }
    const double share = ShareOfChord(curve.Point(nearest - 1), curve.Point(nearest), point);
    return (nearest - 1 + std::clamp(share, 0.0, 1.0)) / kFineSteps;
}

// Where the ray from the centre through the point meets the chords. Going from the place to the point takes the same
// ray, so that the two agree however far the chords are from the arc.
double PlaceOnArc(const FineCurve& curve, const DoublePoint& centre, const DoublePoint& point) {
    const DoublePoint ray = Minus(point, centre);
    for (int k = 1; k <= kFineSteps; ++k) {
        const DoublePoint a = Minus(curve.Point(k - 1), centre), b = Minus(curve.Point(k), centre);
        const double sideA = Cross(ray, a), sideB = Cross(ray, b);
        if ((sideA > 0) == (sideB > 0) && sideA != 0 && sideB != 0) continue;
        if (!(Dot(ray, a) > 0) || sideA == sideB) continue;
        return (k - 1 + sideA / (sideA - sideB)) / kFineSteps;
    }
    return SquaredDistance(curve.Point(0), point) <= SquaredDistance(curve.Point(kFineSteps), point) ? 0.0 : 1.0;
}

DoublePoint PointOnChords(const FineCurve& curve, double place) {
    const double along = std::clamp(place, 0.0, 1.0) * kFineSteps;
    const int k = std::min(static_cast<int>(along), kFineSteps - 1);
    const DoublePoint a = curve.Point(k), b = curve.Point(k + 1);
    const double share = along - k;
    return {a.h + (b.h - a.h) * share, a.v + (b.v - a.v) * share};
}

}  // namespace

double PlaceOnSegment(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t,
                      const DoublePoint& point) {
    const CurveControls c = ControlsOf(s, t);
    if (IsStraightSegment(s, t)) return ShareOfChord(c.p0, c.p3, point);
    const FineCurve curve = SampleAll(tables, c);
    ArcCircle circle;
    return IsCircularArc(s, t, &circle.centre, &circle.radius) ? PlaceOnArc(curve, circle.centre, point)
                                                               : PlaceOnCurve(curve, point);
}

DoublePoint PointAtPlace(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t, double place) {
    const CurveControls c = ControlsOf(s, t);
    if (IsStraightSegment(s, t)) return {c.p0.h + (c.p3.h - c.p0.h) * place, c.p0.v + (c.p3.v - c.p0.v) * place};
    const DoublePoint point = PointOnChords(SampleAll(tables, c), place);
    ArcCircle circle;
    if (!IsCircularArc(s, t, &circle.centre, &circle.radius)) return point;
    return PolarPoint(circle.centre, circle.radius, AngleBetweenPoints(circle.centre, point));
}

DoublePoint TurnedBoundsMiddle(const PathSegment* segments, int count, double angle) {
    const double c = std::cos(angle), s = std::sin(angle);
    double lowH = INFINITY, highH = -INFINITY, lowV = INFINITY, highV = -INFINITY;
    for (int i = 0; i < count; ++i) {
        for (const RealPoint& point : {segments[i].p, segments[i].in, segments[i].out}) {
            const double h = c * point.h + s * point.v, v = c * point.v - s * point.h;
            lowH = std::min(lowH, h);
            highH = std::max(highH, h);
            lowV = std::min(lowV, v);
            highV = std::max(highV, v);
        }
    }
    const double h = (lowH + highH) / 2, v = (lowV + highV) / 2;
    return {c * h - s * v, s * h + c * v};
}

}  // namespace quorvel
