// The crossing of two lines, of a line and an arc, or of two arcs, solved; of anything with a general curve, found
// among the curve's chords. How near the cursor the crossing has to be, and by which measure, differs from case to
// case.
#include "plugin/snapping/crossing.h"

namespace quorvel {

namespace {

constexpr int kChords = 256;

struct Circle {
    DoublePoint centre;
    double radius = 0;
};

// The end points of a curve and the table's samples between them.
struct Polyline {
    DoublePoint points[kChords + 1];
};

struct Neighbourhood {
    DoublePoint cursor;
    double tolerance;
};

bool WithinDistance(const Neighbourhood& near, const DoublePoint& point) {
    return DistanceBetweenPoints(near.cursor, point) <= near.tolerance;
}

bool WithinAxes(const Neighbourhood& near, const DoublePoint& point) {
    return AbsOf(point.h - near.cursor.h) <= near.tolerance && AbsOf(point.v - near.cursor.v) <= near.tolerance;
}

bool Between(double value, double a, double b) { return MinOf(a, b) <= value && value <= MaxOf(a, b); }

bool InBox(const DoublePoint& point, const DoublePoint& a, const DoublePoint& b) {
    return Between(point.h, a.h, b.h) && Between(point.v, a.v, b.v);
}

// No point of the box a, b lies within the tolerance: such a chord needs no crossing computed. The differences round
// the same way as those of WithinAxes, so that no crossing is lost.
bool FarFromBox(const Neighbourhood& near, const DoublePoint& a, const DoublePoint& b) {
    return MinOf(a.h, b.h) - near.cursor.h > near.tolerance || near.cursor.h - MaxOf(a.h, b.h) > near.tolerance ||
           MinOf(a.v, b.v) - near.cursor.v > near.tolerance || near.cursor.v - MaxOf(a.v, b.v) > near.tolerance;
}

DoublePoint StartOf(const SegmentHit& hit) { return ToDoublePoint(hit.previous.p); }
DoublePoint EndOf(const SegmentHit& hit) { return ToDoublePoint(hit.segment.p); }

bool CircleOf(const SegmentHit& hit, Circle* circle) {
    return ArcCenterFromNormals(hit.previous, hit.segment, &circle->centre, &circle->radius);
}

void SampleCurve(const BezierBasisTables& tables, const SegmentHit& hit, Polyline* line) {
    const DoublePoint p0 = StartOf(hit), p1 = ToDoublePoint(hit.previous.out);
    const DoublePoint p2 = ToDoublePoint(hit.segment.in), p3 = EndOf(hit);
    line->points[0] = p0;
    for (int k = 1; k < kChords; ++k) line->points[k] = BezierSample(tables, kChords, k, p0, p1, p2, p3);
    line->points[kChords] = p3;
}

// With one of the two lines vertical the crossing is taken wherever it lies.
bool CrossLines(const SegmentHit& first, const SegmentHit& second, const Neighbourhood& near, DoublePoint* crossing) {
    const DoublePoint a0 = StartOf(first), a1 = EndOf(first), b0 = StartOf(second), b1 = EndOf(second);
    if (!IntersectLines(a0, a1, a0, b0, b1, b0, crossing)) return false;
    return a0.h == a1.h || b0.h == b1.h || WithinDistance(near, *crossing);
}

// The nearer of two candidates, the first when they are level.
DoublePoint NearerOf(const Neighbourhood& near, const DoublePoint& a, const DoublePoint& b) {
    return DistanceBetweenPoints(near.cursor, b) < DistanceBetweenPoints(near.cursor, a) ? b : a;
}

bool CrossLineWithCircle(const SegmentHit& line, const Circle& circle, const Neighbourhood& near,
                         DoublePoint* crossing) {
    const DoublePoint centre = circle.centre;
    const DoublePoint a = {StartOf(line).h - centre.h, StartOf(line).v - centre.v};
    const DoublePoint b = {EndOf(line).h - centre.h, EndOf(line).v - centre.v};
    const double square = circle.radius * circle.radius;
    DoublePoint root1, root2;
    if (StartOf(line).h == EndOf(line).h) {
        const double rest = square - a.h * a.h;
        if (!(rest >= 0.0)) return false;
        root1 = {a.h, SqrtOf(rest)};
        root2 = {a.h, -SqrtOf(rest)};
    } else {
        const double m = (b.v - a.v) / (b.h - a.h), c = a.v - m * a.h;
        const double slopes = m * m + 1.0, discriminant = square * slopes - c * c;
        if (!(discriminant >= 0.0)) return false;
        root1.h = (-m * c + SqrtOf(discriminant)) / slopes;
        root2.h = (-m * c - SqrtOf(discriminant)) / slopes;
        root1.v = m * root1.h + c;
        root2.v = m * root2.h + c;
    }
    *crossing = NearerOf(near, {root1.h + centre.h, root1.v + centre.v}, {root2.h + centre.h, root2.v + centre.v});
    return WithinDistance(near, *crossing);
}

bool CrossLineWithChords(const BezierBasisTables& tables, const SegmentHit& line, const SegmentHit& curve,
                         const Neighbourhood& near, DoublePoint* crossing) {
    const DoublePoint a = StartOf(line), b = EndOf(line);
    Polyline samples;
    SampleCurve(tables, curve, &samples);
    for (int k = 1; k <= kChords; ++k) {
        const DoublePoint &c = samples.points[k - 1], &d = samples.points[k];
        if (FarFromBox(near, c, d) || !IntersectLines(a, b, a, c, d, c, crossing)) continue;
        if (InBox(*crossing, c, d) && InBox(*crossing, a, b) && WithinAxes(near, *crossing)) return true;
    }
    return false;
}

bool CrossCircles(const Circle& first, const Circle& second, const Neighbourhood& near, DoublePoint* crossing) {
    const double d = DistanceBetweenPoints(first.centre, second.centre);
    if (d == 0.0) return false;
    const double r1 = first.radius, r2 = second.radius;
    const double a = (d * d + r1 * r1 - r2 * r2) / (2.0 * d);
    const double rest = r1 * r1 - a * a;
    if (!(a <= r1) || !(rest >= 0.0)) return false;
    const double t = Atan2Of(SqrtOf(rest), a), u = AngleBetweenPoints(first.centre, second.centre);
    *crossing = NearerOf(near, PolarPoint(first.centre, r1, u + t), PolarPoint(first.centre, r1, u - t));
    return WithinAxes(near, *crossing);
}

bool CrossChords(const BezierBasisTables& tables, const SegmentHit& first, const SegmentHit& second,
                 const Neighbourhood& near, DoublePoint* crossing) {
    Polyline one, two;
    SampleCurve(tables, first, &one);
    SampleCurve(tables, second, &two);
    for (int i = 1; i <= kChords; ++i) {
        const DoublePoint &a = one.points[i - 1], &b = one.points[i];
        if (FarFromBox(near, a, b)) continue;
        for (int k = 1; k <= kChords; ++k) {
            const DoublePoint &c = two.points[k - 1], &d = two.points[k];
            if (FarFromBox(near, c, d) || !IntersectLines(a, b, a, c, d, c, crossing)) continue;
            if (InBox(*crossing, a, b) && InBox(*crossing, c, d) && WithinAxes(near, *crossing)) return true;
        }
    }
    return false;
}

bool CrossLineWithCurve(const BezierBasisTables& tables, const SegmentHit& line, const SegmentHit& curve,
                        const Neighbourhood& near, DoublePoint* crossing) {
    Circle circle;
    return CircleOf(curve, &circle) ? CrossLineWithCircle(line, circle, near, crossing)
                                    : CrossLineWithChords(tables, line, curve, near, crossing);
}

bool CrossCurves(const BezierBasisTables& tables, const SegmentHit& first, const SegmentHit& second,
                 const Neighbourhood& near, DoublePoint* crossing) {
    Circle one, two;
    return CircleOf(first, &one) && CircleOf(second, &two) ? CrossCircles(one, two, near, crossing)
                                                           : CrossChords(tables, first, second, near, crossing);
}

}  // namespace

bool FindCrossing(const BezierBasisTables& tables, const SegmentHit& first, const SegmentHit& second,
                  const RealPoint& cursor, double tolerance, RealPoint* crossing) {
    const Neighbourhood near = {ToDoublePoint(cursor), tolerance};
    const bool firstStraight = IsStraightSegment(first.previous, first.segment);
    const bool secondStraight = IsStraightSegment(second.previous, second.segment);
    DoublePoint found;
    bool crosses = false;
    if (firstStraight && secondStraight) {
        crosses = CrossLines(first, second, near, &found);
    } else if (firstStraight) {
        crosses = CrossLineWithCurve(tables, first, second, near, &found);
    } else if (secondStraight) {
        crosses = CrossLineWithCurve(tables, second, first, near, &found);
    } else {
        crosses = CrossCurves(tables, first, second, near, &found);
    }
    if (crosses) *crossing = ToRealPoint(found);
    return crosses;
}

}  // namespace quorvel
