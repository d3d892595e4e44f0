// Which of its three shapes a segment has: straight, circular arc or general curve. Everything the user measures or
// picks on a path depends on this answer, so the tests and their tolerances are exact.
#include <array>
#include <cmath>
#include <limits>

#include "plugin/geometry/bezier.h"
#include "plugin/geometry/sampled_curve.h"

namespace quorvel {

namespace {

void FillBasis(double* b0, double* b1, int n) {
    b0[0] = 1.0;
    b1[0] = 0.0;
    for (int k = 1; k < n; ++k) {
        const double t = static_cast<double>(k) / n;
        b0[k] = PowerOf(1 - t, 3);
        b1[k] = t * PowerOf(t - 1, 2) * 3.0;
    }
    b0[n] = 0.0;
    b1[n] = 0.0;
}

DoublePoint WeightedPoint(const double* b0, const double* b1, int n, int k, const CurveControls& c) {
    return {b0[k] * c.p0.h + b1[k] * c.p1.h + b1[n - k] * c.p2.h + b0[n - k] * c.p3.h,
            b0[k] * c.p0.v + b1[k] * c.p1.v + b1[n - k] * c.p2.v + b0[n - k] * c.p3.v};
}

// The arc test looks at five points of the curve, at sixths of its parameter.
constexpr int kArcTestSteps = 6;
struct ArcTestBasis {
    double b0[kArcTestSteps + 1], b1[kArcTestSteps + 1];
    ArcTestBasis() { FillBasis(b0, b1, kArcTestSteps); }
};

// Slope and intercept of the line through the point, perpendicular to the direction that leads from it to the other.
struct Line {
    double slope = 0, intercept = 0;
};

Line NormalAt(const DoublePoint& point, double rise, double run) {
    Line line;
    line.slope = -run / rise;
    line.intercept = point.v - line.slope * point.h;
    return line;
}

Line Bisector(const DoublePoint& a, const DoublePoint& b) {
    Line line;
    line.slope = -(b.h - a.h) / (b.v - a.v);
    line.intercept = (a.v + b.v) / 2 - line.slope * (a.h + b.h) / 2;
    return line;
}

}  // namespace

void BuildBezierBasisTables(BezierBasisTables* tables) {
    FillBasis(tables->b0n32, tables->b1n32, 32);
    FillBasis(tables->b0n256, tables->b1n256, 256);
    FillBasis(tables->b0n64, tables->b1n64, 64);
}

DoublePoint BezierSample(const BezierBasisTables& tables, int n, int k, const DoublePoint& p0, const DoublePoint& p1,
                         const DoublePoint& p2, const DoublePoint& p3) {
    const CurveControls controls{p0, p1, p2, p3};
    if (n == 256) return WeightedPoint(tables.b0n256, tables.b1n256, n, k, controls);
    if (n == 64) return WeightedPoint(tables.b0n64, tables.b1n64, n, k, controls);
    return WeightedPoint(tables.b0n32, tables.b1n32, n, k, controls);
}

bool IsStraightSegment(const PathSegment& s, const PathSegment& t) {
    return PointsEqual(s.p, s.out) && PointsEqual(t.in, t.p);
}

bool CircleThroughPoints(const DoublePoint& a, const DoublePoint& b, const DoublePoint& c, DoublePoint* centre,
                         double* radius) {
    *radius = 0;
    const bool firstLevel = a.v == b.v, secondLevel = b.v == c.v;
    if (firstLevel && secondLevel) return false;
    const Line first = firstLevel ? Line{} : Bisector(a, b);
    const Line second = secondLevel ? Line{} : Bisector(b, c);
    if (firstLevel) {
        centre->h = (a.h + b.h) / 2;
        centre->v = centre->h * second.slope + second.intercept;
    } else {
        if (secondLevel) {
            centre->h = (b.h + c.h) / 2;
        } else {
            if (first.slope == second.slope) return false;
            centre->h = (first.intercept - second.intercept) / (second.slope - first.slope);
        }
        centre->v = centre->h * first.slope + first.intercept;
    }
    *radius = DistanceBetweenPoints(*centre, a);
    return true;
}

bool ArcCenterFromNormals(const PathSegment& s, const PathSegment& t, DoublePoint* centre, double* radius) {
    const CurveControls c = ControlsOf(s, t);
    const bool firstLevel = c.p0.v == c.p1.v, secondLevel = c.p2.v == c.p3.v;
    if (firstLevel && secondLevel) return false;
    const Line first = firstLevel ? Line{} : NormalAt(c.p0, c.p1.v - c.p0.v, c.p1.h - c.p0.h);
    const Line second = secondLevel ? Line{} : NormalAt(c.p3, c.p3.v - c.p2.v, c.p3.h - c.p2.h);
    DoublePoint found;
    if (firstLevel) {
        found.h = c.p0.h;
        found.v = found.h * second.slope + second.intercept;
    } else {
        found.h = secondLevel ? c.p3.h : (first.intercept - second.intercept) / (second.slope - first.slope);
        found.v = found.h * first.slope + first.intercept;
    }
    const double toStart = DistanceBetweenPoints(found, c.p0), toEnd = DistanceBetweenPoints(found, c.p3);
    const double tolerance = toStart > 100.0 ? toStart / 10000.0 : 0.01;
    // Parallel normals put the centre nowhere: neither infinity nor what is no number may pass.
    const bool common =
        AbsOf(toStart - toEnd) <= tolerance && toStart + toEnd < std::numeric_limits<double>::infinity();
    if (!common) return false;
    *centre = found;
    *radius = (toStart + toEnd) / 2.0;
    return true;
}

bool IsCircularArc(const PathSegment& s, const PathSegment& t, DoublePoint* centre, double* radius) {
    static const ArcTestBasis basis;
    const CurveControls c = ControlsOf(s, t);
    const double startHandle = DistanceBetweenPoints(c.p0, c.p1), endHandle = DistanceBetweenPoints(c.p3, c.p2);
    if (!(startHandle >= 0.1 && endHandle >= 0.1)) return false;
    if (!(AbsOf(startHandle - endHandle) <= 0.01)) return false;

    // The circle runs through the second control point and not through the end: the test for a bulge relies on it.
    const DoublePoint middle = WeightedPoint(basis.b0, basis.b1, kArcTestSteps, 3, c);
    DoublePoint roughCentre;
    double roughRadius = 0;
    if (!CircleThroughPoints(c.p0, middle, c.p2, &roughCentre, &roughRadius)) return false;
    const DoublePoint chordMiddle{(c.p0.h + c.p3.h) / 2, (c.p0.v + c.p3.v) / 2};
    if (!(AbsOf(roughRadius - DistanceBetweenPoints(roughCentre, chordMiddle)) >= 0.01)) return false;
    const double tolerance = MaxOf(roughRadius / 3000.0, 0.05);

    if (c.p0.h == c.p1.h && c.p2.h == c.p3.h) return false;
    DoublePoint foundCentre;
    double foundRadius = 0;
    if (!ArcCenterFromNormals(s, t, &foundCentre, &foundRadius)) return false;
    for (int i = 1; i < kArcTestSteps; ++i) {
        const DoublePoint sample = WeightedPoint(basis.b0, basis.b1, kArcTestSteps, i, c);
        if (!(AbsOf(DistanceBetweenPoints(foundCentre, sample) - foundRadius) <= tolerance)) return false;
    }
    *centre = foundCentre;
    *radius = foundRadius;
    return true;
}

double ArcHandleRatio(double delta) { return SinOf(kHalfPiWide - delta) / 8.0 + 0.552277; }

}  // namespace quorvel
