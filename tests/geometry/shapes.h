// Segments for the tests of the geometry kernel: arcs made by its own handle ratio, and curves of every kind at random.
#pragma once

#include <cmath>
#include <cstring>
#include <random>
#include <utility>
#include <vector>

#include "plugin/geometry/bezier.h"

namespace quorvel {

struct Segment {
    PathSegment s, t;
};

inline Segment MakeSegment(RealPoint p0, RealPoint p1, RealPoint p2, RealPoint p3) {
    Segment segment;
    segment.s.p = segment.s.in = p0;
    segment.s.out = p1;
    segment.t.in = p2;
    segment.t.p = segment.t.out = p3;
    return segment;
}

// An arc of delta radians (negative: clockwise) whose handles are the ratio times the way to the tangents' crossing.
inline Segment MakeArc(DoublePoint centre, double radius, double start, double delta, double ratio) {
    const double reach = radius * std::tan(delta / 2) * ratio, end = start + delta;
    const DoublePoint a = PolarPoint(centre, radius, start), b = PolarPoint(centre, radius, end);
    return MakeSegment(ToRealPoint(a), ToRealPoint({a.h - reach * std::sin(start), a.v + reach * std::cos(start)}),
                       ToRealPoint({b.h + reach * std::sin(end), b.v - reach * std::cos(end)}), ToRealPoint(b));
}

inline Segment MakeKernelArc(DoublePoint centre, double radius, double start, double delta) {
    return MakeArc(centre, radius, start, delta, ArcHandleRatio(std::fabs(delta)));
}

inline const BezierBasisTables& Tables() {
    static const BezierBasisTables tables = [] {
        BezierBasisTables built;
        BuildBezierBasisTables(&built);
        return built;
    }();
    return tables;
}

inline bool SameBits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }
inline bool SameBits(const DoublePoint& a, const DoublePoint& b) { return SameBits(a.h, b.h) && SameBits(a.v, b.v); }

// Curves as drawings have them and as nobody draws them: smooth, looped, folded onto a line, level, upright, with one
// handle retracted, with controls that coincide, tiny, huge, far from the origin.
class CurveSource {
  public:
    explicit CurveSource(unsigned seed) : engine_(seed) {}

    double Uniform(double low, double high) { return std::uniform_real_distribution<double>(low, high)(engine_); }
    int Pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(engine_); }

    Segment Next() {
        static const double kSizes[] = {1e-4, 0.3, 20, 300, 300, 300, 15000, 1e9, 1e30};
        static const double kOffsets[] = {0, 0, 0, 500, 14000, 1e7};
        const double size = kSizes[Pick(9)], away = kOffsets[Pick(6)];
        float c[8];
        for (float& x : c) x = static_cast<float>(away + Uniform(-size, size));
        // Controls that take the place of others, as (to, from): a retracted handle, level, upright, a loop, a point,
        // folded onto the diagonal.
        using Copies = std::vector<std::pair<int, int>>;
        static const Copies kCopies[] = {{{2, 0}, {3, 1}},
                                         {{4, 6}, {5, 7}},
                                         {{1, 7}, {3, 7}, {5, 7}},
                                         {{0, 6}, {2, 6}, {4, 6}},
                                         {{6, 0}, {7, 1}},
                                         {{2, 0}, {4, 0}, {6, 0}, {3, 1}, {5, 1}, {7, 1}},
                                         {{1, 0}, {3, 2}, {5, 4}, {7, 6}}};
        const int kind = Pick(10);
        if (kind < 7)
            for (const auto& [to, from] : kCopies[kind]) c[to] = c[from];
        // One float step from straight.
        if (kind == 7) c[2] = std::nextafter(c[0], c[6]), c[3] = c[1], c[4] = c[6], c[5] = c[7];
        return MakeSegment({c[0], c[1]}, {c[2], c[3]}, {c[4], c[5]}, {c[6], c[7]});
    }

    // A point on, near or far from the curve; some stand exactly where samples do, where ties are.
    DoublePoint PointFor(const Segment& curve) {
        const DoublePoint c[4] = {ToDoublePoint(curve.s.p), ToDoublePoint(curve.s.out), ToDoublePoint(curve.t.in),
                                  ToDoublePoint(curve.t.p)};
        const int kind = Pick(6);
        if (kind == 0) return c[Pick(4)];
        if (kind == 1) return {(c[0].h + c[3].h) / 2, (c[0].v + c[3].v) / 2};
        DoublePoint p = BezierSample(Tables(), 256, Pick(257), c[0], c[1], c[2], c[3]);
        const double spread = std::fabs(c[0].h - c[3].h) + std::fabs(c[1].v - c[2].v);
        const double away[] = {0, 1e-5, 1.5, spread};
        const double reach = away[kind - 2];
        return {p.h + Uniform(-reach, reach), p.v + Uniform(-reach, reach)};
    }

  private:
    std::mt19937 engine_;
};

}  // namespace quorvel
