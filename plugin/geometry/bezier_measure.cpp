// Measuring along and beside a segment: how far a point is from it and on which side, how long it is, what lies at a
// given length. The values in every dimension come from here, so each is the plain table method's to the last bit; the
// speed comes from rejecting chords that cannot matter.
#include <cmath>
#include <limits>

#include "plugin/geometry/bezier.h"
#include "plugin/geometry/chord.h"
#include "plugin/geometry/sampled_curve.h"

namespace quorvel {

namespace {

// The angle between two directions, at most half a turn.
double AngleBetweenDirections(double a0, double a1) {
    const double difference = AbsOf(a1 - a0);
    return difference > kPi ? kTwoPi - difference : difference;
}

std::int16_t SideOfDirection(const DoublePoint& base, double direction, double distance, const DoublePoint& point) {
    const DoublePoint right = PolarPoint(base, distance, direction - kHalfPi);
    const DoublePoint left = PolarPoint(base, distance, direction + kHalfPi);
    return DistanceBetweenPoints(right, point) > DistanceBetweenPoints(left, point) ? kLeftSide : kRightSide;
}

// What DistanceToSegment answers, for one shape.
struct Nearest {
    double distance = kNoDistance;
    DoublePoint point;
    std::int16_t side = kRightSide;
};

Nearest NearestOnLine(const DoublePoint& a, const DoublePoint& b, const DoublePoint& point, bool wantSide) {
    const ChordDistance found = MeasureChord(a, b, point);
    Nearest nearest{found.distance, found.nearest, kRightSide};
    if (wantSide) nearest.side = SideOfDirection(found.nearest, AngleBetweenPoints(a, b), found.distance, point);
    return nearest;
}

Nearest NearestOnArc(const ArcCircle& circle, const DoublePoint& start, const DoublePoint& end,
                     const DoublePoint& point) {
    const double toCentre = DistanceBetweenPoints(circle.centre, point);
    const double startAngle = AngleBetweenPoints(circle.centre, start);
    const double pointAngle = AngleBetweenPoints(circle.centre, point);
    const double sweep = WrapAngle(AngleBetweenPoints(circle.centre, end) - startAngle);
    const double turn = WrapAngle(pointAngle - startAngle);
    const bool inside = circle.radius > toCentre;
    Nearest nearest;
    nearest.side = inside != (0 > sweep) ? kLeftSide : kRightSide;
    if (SignOf(turn) == SignOf(sweep) && AbsOf(turn) <= AbsOf(sweep)) {
        nearest.distance = AbsOf(circle.radius - toCentre);
        nearest.point = PolarPoint(circle.centre, circle.radius, pointAngle);
        return nearest;
    }
    const double toStart = DistanceBetweenPoints(start, point), toEnd = DistanceBetweenPoints(end, point);
    nearest.distance = toStart > toEnd ? toEnd : toStart;
    nearest.point = toStart > toEnd ? end : start;
    return nearest;
}

// The first of the nearest chords that were looked at, 0 when none is nearer than kNoDistance.
struct NearestChord {
    int index = 0;
    double distance = kNoDistance, squared = 0;
};

// Visits the chords of one block in order; a strictly smaller distance takes over. The limit is a square: a chord whose
// bound is above it can never be the result.
void SearchBlock(const BezierBasisTables& tables, const CurveControls& c, const DoublePoint& point, int block,
                 double* limit, NearestChord* best) {
    DoublePoint a = CoarsePoint(tables, c, FirstPointOfBlock(block));
    for (int i = FirstPointOfBlock(block) + 1; i <= LastPointOfBlock(block); ++i) {
        const DoublePoint b = CoarsePoint(tables, c, i);
        if (!(ChordBound(a, b, point) > *limit)) {
            const ChordDistance found = MeasureChord(a, b, point);
            if (best->distance > found.distance) {
                *best = {i, found.distance, found.squared};
                *limit = LesserOf(*limit, found.squared);
            }
        }
        a = b;
    }
}

// The block that lies nearest by its box is searched first, so that its distance rejects nearly all others. It keeps
// its place in the order all the same, and the limit that it gives is a few units in the last place too high, so that
// no earlier chord with an equal root of a larger square is lost.
NearestChord FindNearestChord(const BezierBasisTables& tables, const CurveControls& c, const DoublePoint& point) {
    BlockBoxes boxes;
    BoxBlocks(tables, c, &boxes);
    double bounds[kBlocks];
    for (int i = 0; i < kBlocks; ++i)
        bounds[i] = BoxBound(boxes.lowH[i], boxes.highH[i], boxes.lowV[i], boxes.highV[i], point);
    int likely = 0;
    for (int i = 1; i < kBlocks; ++i) likely = bounds[likely] > bounds[i] ? i : likely;

    double limit = std::numeric_limits<double>::infinity();
    NearestChord known;
    SearchBlock(tables, c, point, likely, &limit, &known);
    limit = limit * (1 + 1e-15);
    NearestChord best;
    for (int block = 0; block < kBlocks; ++block) {
        if (block == likely) {
            if (best.distance > known.distance) best = known;
        } else if (!(bounds[block] > limit)) {
            SearchBlock(tables, c, point, block, &limit, &best);
        }
    }
    return best;
}

Nearest NearestOnCurve(const BezierBasisTables& tables, const CurveControls& c, const DoublePoint& point,
                       bool wantSide) {
    Nearest nearest;
    const int best = FindNearestChord(tables, c, point).index;
    if (best == 0) return nearest;

    const DoublePoint middle = FineSample(tables, c, CoarseIndex(best) - 1);
    const DoublePoint ends[3] = {CoarsePoint(tables, c, best - 1), middle, CoarsePoint(tables, c, best)};
    ChordDistance halves[2];
    for (int i = 0; i < 2; ++i) {
        halves[i] = MeasureChord(ends[i], ends[i + 1], point);
        if (PointsEqual(ends[i], ends[i + 1])) halves[i].distance = kNoDistance;
    }
    const int half = halves[1].distance > halves[0].distance ? 0 : 1;
    const DoublePoint &a = ends[half], &b = ends[half + 1];
    nearest.distance = halves[half].distance;
    nearest.point = halves[half].nearest;
    if (wantSide) {
        const DoublePoint chordMiddle{(a.h + b.h) / 2, (a.v + b.v) / 2};
        nearest.side = SideOfDirection(chordMiddle, AngleBetweenPoints(a, b), nearest.distance, point);
    }
    return nearest;
}

// Adds the chords from first to last. Each is added to the sum of those before it, as a walk does.
double AddChords(const FineCurve& curve, int first, int last, double sum) {
    for (int k = first; k <= last; ++k) sum += std::sqrt(SquaredDistance(curve.Point(k - 1), curve.Point(k)));
    return sum;
}

// One loop samples the curve and measures it some way behind, so that the processor's roots and products overlap; the
// distance keeps a chord from waiting for samples that have just been stored.
double WholeCurveLength(const BezierBasisTables& tables, const CurveControls& c) {
    constexpr int kLag = 24;
    const double *b0 = tables.b0n256, *b1 = tables.b1n256;
    FineCurve curve;
    curve.h[0] = c.p0.h;
    curve.v[0] = c.p0.v;
    SampleFine(tables, c, 1, kLag, &curve);
    double sum = 0;
    for (int k = 1; k + kLag < kFineSteps; ++k) {
        const int ahead = k + kLag;
        const double w0 = b0[ahead], w1 = b1[ahead], w2 = b1[kFineSteps - ahead], w3 = b0[kFineSteps - ahead];
        curve.h[ahead] = w0 * c.p0.h + w1 * c.p1.h + w2 * c.p2.h + w3 * c.p3.h;
        curve.v[ahead] = w0 * c.p0.v + w1 * c.p1.v + w2 * c.p2.v + w3 * c.p3.v;
        const double h = curve.h[k] - curve.h[k - 1], v = curve.v[k] - curve.v[k - 1];
        sum += std::sqrt(h * h + v * v);
    }
    curve.h[kFineSteps] = c.p3.h;
    curve.v[kFineSteps] = c.p3.v;
    return AddChords(curve, kFineSteps - kLag, kFineSteps, sum);
}

// The samples with the anchors in place of the first and the last one. They differ only where a control point is not
// finite.
void SampleBetweenAnchors(const BezierBasisTables& tables, const CurveControls& c, FineCurve* curve) {
    SampleFine(tables, c, 1, kFineSteps - 1, curve);
    curve->h[0] = c.p0.h;
    curve->v[0] = c.p0.v;
    curve->h[kFineSteps] = c.p3.h;
    curve->v[kFineSteps] = c.p3.v;
}

double CurveLength(const BezierBasisTables& tables, const CurveControls& c, DoublePoint* stop) {
    if (stop == nullptr) return WholeCurveLength(tables, c);
    FineCurve curve;
    SampleBetweenAnchors(tables, c, &curve);
    const double tolerance = ChordTolerance(c, *stop);
    for (int k = 1; k < kFineSteps; ++k) {
        const DoublePoint from = curve.Point(k - 1);
        if (SnapToChord(stop, from, curve.Point(k), tolerance))
            return AddChords(curve, 1, k - 1, 0) + DistanceBetweenPoints(from, *stop);
    }
    // A stop on the last chord or beside the curve: where it is nearest.
    int nearest = 1;
    ChordDistance best = MeasureChord(curve.Point(0), curve.Point(1), *stop);
    for (int k = 2; k <= kFineSteps; ++k) {
        const ChordDistance found = MeasureChord(curve.Point(k - 1), curve.Point(k), *stop);
        if (!(best.distance > found.distance)) continue;
        best = found;
        nearest = k;
    }
    *stop = best.nearest;
    return AddChords(curve, 1, nearest - 1, 0) + DistanceBetweenPoints(curve.Point(nearest - 1), *stop);
}

double LineLength(const CurveControls& c, DoublePoint* stop) {
    if (stop == nullptr) return DistanceBetweenPoints(c.p0, c.p3);
    if (!SnapToChord(stop, c.p0, c.p3, ChordTolerance(c, *stop))) *stop = MeasureChord(c.p0, c.p3, *stop).nearest;
    return DistanceBetweenPoints(c.p0, *stop);
}

bool PointAtCurveLength(const BezierBasisTables& tables, const CurveControls& c, double length, DoublePoint* point,
                        double* angle) {
    FineCurve curve;
    SampleBetweenAnchors(tables, c, &curve);
    double sum = 0;
    for (int k = 1; k <= kFineSteps; ++k) {
        const DoublePoint from = curve.Point(k - 1), to = curve.Point(k);
        const double reached = sum + std::sqrt(SquaredDistance(from, to));
        if (length <= reached) {
            *angle = AngleBetweenPoints(from, to);
            *point = PolarPoint(from, length - sum, *angle);
            return true;
        }
        sum = reached;
    }
    return false;
}

bool PointAtArcLength(const ArcCircle& circle, const DoublePoint& start, const DoublePoint& end, double length,
                      DoublePoint* point, double* angle) {
    const double startAngle = AngleBetweenPoints(circle.centre, start);
    const double endAngle = AngleBetweenPoints(circle.centre, end);
    if (!(length <= circle.radius * AngleBetweenDirections(startAngle, endAngle))) return false;
    const bool wraps = AbsOf(endAngle - startAngle) > kPi;
    const bool counterClockwise = (startAngle < endAngle) != wraps;
    const double step = length / circle.radius;
    const double reached = startAngle + (counterClockwise ? step : -step);
    *point = PolarPoint(circle.centre, circle.radius, reached);
    // Back along the path, unlike the other shapes.
    *angle = counterClockwise ? reached - kHalfPi : reached + kHalfPi;
    return true;
}

}  // namespace

double DistanceToSegment(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t,
                         const DoublePoint& point, DoublePoint* nearest, std::int16_t* side) {
    const CurveControls c = ControlsOf(s, t);
    ArcCircle circle;
    Nearest found;
    if (IsStraightSegment(s, t)) {
        found = NearestOnLine(c.p0, c.p3, point, side != nullptr);
    } else if (IsCircularArc(s, t, &circle.centre, &circle.radius)) {
        found = NearestOnArc(circle, c.p0, c.p3, point);
    } else {
        found = NearestOnCurve(tables, c, point, side != nullptr);
    }
    if (nearest != nullptr) *nearest = found.point;
    if (side != nullptr) *side = found.side;
    return found.distance;
}

double SegmentLength(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t, DoublePoint* stop) {
    const CurveControls c = ControlsOf(s, t);
    if (IsStraightSegment(s, t)) return LineLength(c, stop);
    ArcCircle circle;
    if (IsCircularArc(s, t, &circle.centre, &circle.radius)) {
        const DoublePoint& end = stop != nullptr ? *stop : c.p3;
        return circle.radius *
               AngleBetweenDirections(AngleBetweenPoints(circle.centre, c.p0), AngleBetweenPoints(circle.centre, end));
    }
    return CurveLength(tables, c, stop);
}

bool PointAtLength(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t, double length,
                   DoublePoint* point, double* angle) {
    const CurveControls c = ControlsOf(s, t);
    if (IsStraightSegment(s, t)) {
        if (!(length <= DistanceBetweenPoints(c.p0, c.p3))) return false;
        *angle = AngleBetweenPoints(c.p0, c.p3);
        *point = PolarPoint(c.p0, length, *angle);
        return true;
    }
    ArcCircle circle;
    if (IsCircularArc(s, t, &circle.centre, &circle.radius))
        return PointAtArcLength(circle, c.p0, c.p3, length, point, angle);
    return PointAtCurveLength(tables, c, length, point, angle);
}

}  // namespace quorvel
