// The area that a closed path encloses, for the drawing's area comments: by the shoelace rule over anchors and, where a
// side is curved, over points of the curve kept as floats.
#include "plugin/geometry/bezier.h"

namespace quorvel {

namespace {

constexpr int kAreaSteps = 128;

double ShoelaceTerm(const RealPoint& a, const RealPoint& b) {
    const DoublePoint p = ToDoublePoint(a), q = ToDoublePoint(b);
    return (p.h * q.v - p.v * q.h) / 2.0;
}

struct AreaBasis {
    double b0[kAreaSteps + 1], b1[kAreaSteps + 1];

    AreaBasis() : b0{1.0}, b1{} {
        for (int i = 1; i < kAreaSteps; ++i) {
            const double t = static_cast<double>(i) / kAreaSteps;
            b0[i] = PowerOf(1 - t, 3);
            b1[i] = t * PowerOf(t - 1, 2) * 3.0;
        }
    }
};

double CurvedTerm(const PathSegment& s, const PathSegment& t) {
    static const AreaBasis basis;
    double sum = 0;
    RealPoint previous = s.p;
    for (int i = 1; i < kAreaSteps; ++i) {
        const double w0 = basis.b0[i], w1 = basis.b1[i], w2 = basis.b1[kAreaSteps - i], w3 = basis.b0[kAreaSteps - i];
        const RealPoint sample = ToRealPoint({w0 * s.p.h + w1 * s.out.h + w2 * t.in.h + w3 * t.p.h,
                                              w0 * s.p.v + w1 * s.out.v + w2 * t.in.v + w3 * t.p.v});
        sum += ShoelaceTerm(previous, sample);
        previous = sample;
    }
    return sum + ShoelaceTerm(previous, t.p);
}

}  // namespace

double ClosedPathArea(const PathSegment* segments, int count) {
    double area = 0;
    for (int i = 0; i < count; ++i) {
        const PathSegment& previous = segments[i == 0 ? count - 1 : i - 1];
        const PathSegment& current = segments[i];
        area +=
            IsStraightSegment(previous, current) ? ShoelaceTerm(previous.p, current.p) : CurvedTerm(previous, current);
    }
    return AbsOf(area);
}

}  // namespace quorvel
