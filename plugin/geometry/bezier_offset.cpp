// The parallel copy of a piece of a segment: the curved dimension line that runs beside the path which it measures. A
// line stays a line and an arc an arc; a general curve becomes a polyline, or cubics laid through it.
#include "plugin/geometry/bezier.h"
#include "plugin/geometry/chord.h"
#include "plugin/geometry/sampled_curve.h"

namespace quorvel {

namespace {

// A sample nearer than this to a cut would give a chord without a trustworthy direction.
constexpr double kCutClearance = 0.01;

constexpr int kPolylineCapacity = kSegmentListCapacity;
struct Polyline {
    int count = 0;
    DoublePoint points[kPolylineCapacity];

    void Add(const DoublePoint& p) { points[count++] = p; }
};

bool LiesOnChord(const DoublePoint& p, const DoublePoint& a, const DoublePoint& b, double tolerance) {
    DoublePoint copy = p;
    return SnapToChord(&copy, a, b, tolerance);
}

void SetRecord(PathSegment* record, const DoublePoint& in, const DoublePoint& p, const DoublePoint& out) {
    record->in = ToRealPoint(in);
    record->p = ToRealPoint(p);
    record->out = ToRealPoint(out);
    record->corner = 1;
}

void OffsetLine(const CurveControls& c, const DoublePoint* from, const DoublePoint* to, double normal, double distance,
                SegmentList* out) {
    DoublePoint a = c.p0, b = c.p3;
    if (from != nullptr && LiesOnChord(*from, a, b, ChordTolerance(c, *from))) a = *from;
    if (to != nullptr && LiesOnChord(*to, a, b, ChordTolerance(c, *to))) b = *to;
    if (distance != 0) {
        const double direction = AngleBetweenPoints(a, b);
        a = PolarPoint(a, distance, direction - normal);
        b = PolarPoint(b, distance, direction - normal);
    }
    SetRecord(&out->segments[0], a, a, a);
    SetRecord(&out->segments[1], b, b, b);
}

// Crossing of the tangents of a circle at a and b, by the slopes of the normals. A level normal makes its tangent
// vertical. Parallel tangents do not cross: b is taken, or, when both are vertical, a's place across at height 0.
DoublePoint TangentCrossing(const DoublePoint& centre, const DoublePoint& a, const DoublePoint& b) {
    const bool verticalA = NearlyEqual(a.v, centre.v), verticalB = NearlyEqual(b.v, centre.v);
    double slopeA = 0, interceptA = 0, slopeB = 0, interceptB = 0;
    if (!verticalA) {
        slopeA = -(a.h - centre.h) / (a.v - centre.v);
        interceptA = a.v - slopeA * a.h;
    }
    if (!verticalB) {
        slopeB = -(b.h - centre.h) / (b.v - centre.v);
        interceptB = b.v - slopeB * b.h;
    }
    if (verticalA) return {a.h, a.h * slopeB + interceptB};
    if (verticalB) return {b.h, b.h * slopeA + interceptA};
    if (slopeA == slopeB) return b;
    const double h = (interceptA - interceptB) / (slopeB - slopeA);
    return {h, h * slopeA + interceptA};
}

DoublePoint Between(const DoublePoint& a, const DoublePoint& b, double ratio) {
    return {a.h + (b.h - a.h) * ratio, a.v + (b.v - a.v) * ratio};
}

void OffsetArc(const CurveControls& c, const DoublePoint& centre, const DoublePoint* from, const DoublePoint* to,
               double normal, double distance, SegmentList* out) {
    DoublePoint a = c.p0, b = c.p3;
    const double base = AngleBetweenPoints(centre, a);
    const double sweep = WrapAngle(AngleBetweenPoints(centre, b) - base);
    double start = base, end = base + sweep;
    const auto turnTo = [&](const DoublePoint& cut, double* turn) {
        *turn = WrapAngle(AngleBetweenPoints(centre, cut) - base);
        return SignOf(*turn) == SignOf(sweep) && AbsOf(*turn) <= AbsOf(sweep);
    };
    double turn = 0;
    if (from != nullptr && turnTo(*from, &turn)) {
        start = base + turn;
        a = *from;
    }
    if (to != nullptr && turnTo(*to, &turn)) {
        end = base + turn;
        b = *to;
    }
    const DoublePoint crossing = TangentCrossing(centre, a, b);
    const double ratio = ArcHandleRatio(AbsOf(end - start));
    const DoublePoint movedA = PolarPoint(a, distance, AngleBetweenPoints(a, crossing) - normal);
    const DoublePoint movedB = PolarPoint(b, distance, AngleBetweenPoints(b, crossing) + normal);
    DoublePoint movedCrossing;
    IntersectLines(a, crossing, movedA, b, crossing, movedB, &movedCrossing);
    SetRecord(&out->segments[0], movedA, movedA, Between(movedA, movedCrossing, ratio));
    SetRecord(&out->segments[1], Between(movedB, movedCrossing, ratio), movedB, movedB);
}

// The index of the sample that ends the first chord on which the cut lies; 0 when it lies on none.
int ChordOfCut(const CurveControls& c, const FineCurve& curve, const DoublePoint* cut) {
    if (cut == nullptr) return 0;
    const double tolerance = ChordTolerance(c, *cut);
    for (int k = 1; k <= kFineSteps; ++k)
        if (LiesOnChord(*cut, curve.Point(k - 1), curve.Point(k), tolerance)) return k;
    return 0;
}

void CutPolyline(const BezierBasisTables& tables, const CurveControls& c, const DoublePoint* from,
                 const DoublePoint* to, Polyline* line) {
    FineCurve curve;
    SampleFine(tables, c, 1, kFineSteps, &curve);
    curve.h[0] = c.p0.h;
    curve.v[0] = c.p0.v;
    const int fromChord = ChordOfCut(c, curve, from), toChord = ChordOfCut(c, curve, to);
    const int start = fromChord != 0 ? fromChord : 1;
    const int end = toChord != 0 ? toChord : 255;  // so a curve that is not cut leaves out its last sample
    line->Add(fromChord != 0 ? *from : c.p0);
    for (int k = start; k < end; ++k) {
        const DoublePoint sample = curve.Point(k);
        if (fromChord != 0 && k == start && kCutClearance > DistanceBetweenPoints(sample, *from)) continue;
        if (toChord != 0 && k == end - 1 && kCutClearance > DistanceBetweenPoints(sample, *to)) continue;
        line->Add(sample);
    }
    line->Add(toChord != 0 ? *to : c.p3);
}

// Moves each point onto the crossing of its two neighbouring chords, both carried aside.
void OffsetPolyline(Polyline* line, double normal, double distance) {
    DoublePoint previous = line->points[0];  // as it was before it was moved
    line->points[0] = PolarPoint(previous, distance, AngleBetweenPoints(previous, line->points[1]) - normal);
    for (int i = 1; i < line->count; ++i) {
        const DoublePoint point = line->points[i];
        const DoublePoint next = i + 1 < line->count ? line->points[i + 1] : point;
        const bool onPrevious = PointsEqual(point, previous), onNext = PointsEqual(point, next);
        double back = AngleBetweenPoints(point, previous), ahead = AngleBetweenPoints(point, next);
        if (onPrevious) back = ahead + kPi;
        if (onNext) ahead = back - kPi;
        const DoublePoint besideBack = PolarPoint(point, distance, back + normal);
        const DoublePoint besideAhead = PolarPoint(point, distance, ahead - normal);
        if (onPrevious || onNext) {
            line->points[i] = besideAhead;
        } else {
            // For parallel chords this is besideAhead too.
            IntersectLines(previous, point, besideBack, point, next, besideAhead, &line->points[i]);
        }
        previous = point;
    }
}

// Every second point as a corner; the last record has the final point, whichever point fell to it.
void WritePolyline(const Polyline& line, SegmentList* out) {
    out->count = 0;
    for (int i = 0; i < line.count; i += 2) {
        const DoublePoint& p = line.points[i];
        SetRecord(&out->segments[out->count++], p, p, p);
    }
    const DoublePoint& last = line.points[line.count - 1];
    SetRecord(&out->segments[out->count - 1], last, last, last);
}

}  // namespace

void OffsetSegment(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t, const DoublePoint* from,
                   const DoublePoint* to, std::int16_t side, double distance, SegmentList* out, std::int16_t fit) {
    const CurveControls c = ControlsOf(s, t);
    const double normal = side == kRightSide ? kHalfPi : -kHalfPi;
    out->count = 2;
    out->segments[0] = s;
    out->segments[1] = t;
    ArcCircle circle;
    if (IsStraightSegment(s, t)) {
        OffsetLine(c, from, to, normal, distance, out);
        return;
    }
    if (IsCircularArc(s, t, &circle.centre, &circle.radius)) {
        OffsetArc(c, circle.centre, from, to, normal, distance, out);
        return;
    }
    Polyline line;
    CutPolyline(tables, c, from, to, &line);
    if (distance != 0) OffsetPolyline(&line, normal, distance);
    if (fit == 0) {
        WritePolyline(line, out);
    } else {
        FitCubicsToPolyline(tables, line.points, line.count, out);
    }
}

}  // namespace quorvel
