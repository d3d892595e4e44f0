// Crossings of segments under the cursor: the solved cases by hand, the sampled ones against a reading of the curve
// that shares nothing with the tables.
#include "plugin/snapping/crossing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <random>

namespace quorvel {
namespace {

const BezierBasisTables& Tables() {
    static const BezierBasisTables tables = [] {
        BezierBasisTables built;
        BuildBezierBasisTables(&built);
        return built;
    }();
    return tables;
}

SegmentHit Curve(RealPoint p0, RealPoint p1, RealPoint p2, RealPoint p3) {
    SegmentHit hit;
    hit.previous = {p0, p0, p1, 1};
    hit.segment = {p3, p2, p3, 1};
    return hit;
}

SegmentHit Line(RealPoint a, RealPoint b) { return Curve(a, a, b, b); }

// A quarter of the circle about c, from the direction (sh, 0) to the direction (0, sv).
SegmentHit Quarter(RealPoint c, float r, float sh, float sv) {
    const float k = 0.552277f * r;
    return Curve({c.h + sh * r, c.v}, {c.h + sh * r, c.v + sv * k}, {c.h + sh * k, c.v + sv * r}, {c.h, c.v + sv * r});
}

// x = 30 t, y = 60 t (1 - t) (1 - 2 t): its end normals are parallel, so it is no arc.
SegmentHit Wave(float sign = 1) { return Curve({0, 0}, {10, 20 * sign}, {20, -20 * sign}, {30, 0}); }

std::optional<RealPoint> Cross(const SegmentHit& a, const SegmentHit& b, RealPoint cursor, double tolerance = 2) {
    RealPoint point;
    if (!FindCrossing(Tables(), a, b, cursor, tolerance, &point)) return std::nullopt;
    return point;
}

void ExpectAt(const std::optional<RealPoint>& found, double h, double v, double slack = 1e-5) {
    ASSERT_TRUE(found.has_value());
    EXPECT_NEAR(found->h, h, slack);
    EXPECT_NEAR(found->v, v, slack);
}

TEST(Crossing, OfLinesIsMeasuredByTrueDistance) {
    const SegmentHit rising = Line({0, 0}, {10, 10}), falling = Line({0, 10}, {10, 0});
    ExpectAt(Cross(rising, falling, {5.5, 5}), 5, 5);
    ExpectAt(Cross(rising, falling, {5, 7}), 5, 5);
    EXPECT_FALSE(Cross(rising, falling, {6.5, 6.5}));  // 2.12 away, though each axis is within 2
    EXPECT_FALSE(Cross(rising, Line({5, 5}, {20, 20}), {7, 7}));
}

TEST(Crossing, WithOneVerticalLineIsTakenWhereverItLies) {
    const SegmentHit vertical = Line({3, 0}, {3, 10}), rising = Line({0, 0}, {10, 10});
    ExpectAt(Cross(vertical, rising, {100, 100}), 3, 3);
    ExpectAt(Cross(rising, vertical, {100, 100}), 3, 3);
    EXPECT_FALSE(Cross(vertical, Line({4, 0}, {4, 10}), {3, 5}));
}

TEST(Crossing, OfLineAndArc) {
    const SegmentHit arc = Quarter({0, 0}, 10, 1, 1);
    ExpectAt(Cross(arc, Line({6, -20}, {6, 20}), {6.5, 7}), 6, 8);
    ExpectAt(Cross(Line({6, -20}, {6, 20}), arc, {6.5, -7}), 6, -8);  // the whole circle counts
    ExpectAt(Cross(arc, Line({-20, 10}, {20, 10}), {1, 9}), 0, 10);   // a tangent: one crossing
    EXPECT_FALSE(Cross(arc, Line({-20, 10.5}, {20, 10.5}), {0, 10}));
    EXPECT_FALSE(Cross(arc, Line({11, -20}, {11, 20}), {10, 0}));
    EXPECT_FALSE(Cross(arc, Line({6, -20}, {6, 20}), {7.5, 9.5}));  // by true distance
    // 3-4-5 on a slope, moved off the origin.
    ExpectAt(Cross(Quarter({100, 50}, 10, 1, 1), Line({100, 50}, {106, 58}), {106, 57}), 106, 58);
}

TEST(Crossing, OfTwoArcs) {
    const SegmentHit left = Quarter({0, 0}, 10, 1, 1), right = Quarter({12, 0}, 10, -1, 1);
    ExpectAt(Cross(left, right, {6.5, 8.5}), 6, 8);
    ExpectAt(Cross(right, left, {7.9f, 9.9f}), 6, 8);  // per axis: 2.7 away by true distance
    ExpectAt(Cross(left, right, {6, -7}), 6, -8);
    EXPECT_FALSE(Cross(left, right, {6, 0}));
    EXPECT_FALSE(Cross(left, Quarter({0, 0}, 8, 1, 1), {6, 7}));      // about one centre
    EXPECT_FALSE(Cross(left, Quarter({30, 0}, 10, -1, 1), {15, 0}));  // apart
    EXPECT_FALSE(Cross(left, Quarter({1, 0}, 3, -1, 1), {4, 0}));     // one inside the other
}

TEST(Crossing, OfCurvesIsFoundAmongTheChords) {
    ExpectAt(Cross(Wave(), Line({15, -5}, {15, 5}), {16, 1}), 15, 0);
    ExpectAt(Cross(Line({20, -9}, {20, 9}), Wave(), {20, -4}), 20, -40.0 / 9.0, 1e-3);
    EXPECT_FALSE(Cross(Line({20, -3}, {20, 9}), Wave(), {20, -4}));  // the line ends before the curve
    ExpectAt(Cross(Wave(), Wave(-1), {15.5, 0.5}), 15, 0);
    EXPECT_FALSE(Cross(Wave(), Wave(-1), {8, 5}));
    EXPECT_FALSE(Cross(Wave(), Line({15, -5}, {15, 5}), {17.5, 0}));
}

DoublePoint PointOn(const SegmentHit& hit, double t) {
    const auto mix = [t](DoublePoint a, DoublePoint b) {
        return DoublePoint{a.h + (b.h - a.h) * t, a.v + (b.v - a.v) * t};
    };
    const DoublePoint p0 = ToDoublePoint(hit.previous.p), p1 = ToDoublePoint(hit.previous.out);
    const DoublePoint p2 = ToDoublePoint(hit.segment.in), p3 = ToDoublePoint(hit.segment.p);
    const DoublePoint a = mix(p0, p1), b = mix(p1, p2), c = mix(p2, p3);
    return mix(mix(a, b), mix(b, c));
}

TEST(Crossing, OfRandomCurvesWithLinesLiesOnBoth) {
    std::mt19937 random(11);
    std::uniform_real_distribution<float> place(0, 100);
    const auto point = [&] { return RealPoint{place(random), place(random)}; };
    int crossings = 0;
    for (int round = 0; round < 300; ++round) {
        const SegmentHit curve = Curve(point(), point(), point(), point()), line = Line(point(), point());
        const DoublePoint a = ToDoublePoint(line.previous.p), b = ToDoublePoint(line.segment.p);
        const auto side = [&](const DoublePoint& p) { return (b.h - a.h) * (p.v - a.v) - (b.v - a.v) * (p.h - a.h); };
        for (int i = 0; i < 2000; ++i) {
            const DoublePoint p = PointOn(curve, i / 2000.0), q = PointOn(curve, (i + 1) / 2000.0);
            const double along = ((p.h - a.h) * (b.h - a.h) + (p.v - a.v) * (b.v - a.v)) /
                                 ((b.h - a.h) * (b.h - a.h) + (b.v - a.v) * (b.v - a.v));
            if ((side(p) > 0) == (side(q) > 0) || along < 0.02 || along > 0.98) continue;
            ++crossings;
            const auto found = Cross(curve, line, ToRealPoint(p), 0.5);
            ASSERT_TRUE(found) << "round " << round;
            EXPECT_LE(std::hypot(found->h - p.h, found->v - p.v), 0.75);
            EXPECT_LE(std::fabs(side(ToDoublePoint(*found))) / std::hypot(b.h - a.h, b.v - a.v), 1e-3);
        }
    }
    EXPECT_GT(crossings, 100);
}

// All pairs of chords, without passing over any.
std::optional<RealPoint> CrossAllChords(const SegmentHit& first, const SegmentHit& second, RealPoint cursor,
                                        double tolerance) {
    const auto sample = [](const SegmentHit& hit, int k) {
        if (k == 0) return ToDoublePoint(hit.previous.p);
        if (k == 256) return ToDoublePoint(hit.segment.p);
        return BezierSample(Tables(), 256, k, ToDoublePoint(hit.previous.p), ToDoublePoint(hit.previous.out),
                            ToDoublePoint(hit.segment.in), ToDoublePoint(hit.segment.p));
    };
    const auto between = [](double x, double a, double b) { return std::min(a, b) <= x && x <= std::max(a, b); };
    for (int i = 1; i <= 256; ++i) {
        const DoublePoint a = sample(first, i - 1), b = sample(first, i);
        for (int k = 1; k <= 256; ++k) {
            const DoublePoint c = sample(second, k - 1), d = sample(second, k);
            DoublePoint x;
            if (!IntersectLines(a, b, a, c, d, c, &x)) continue;
            if (between(x.h, a.h, b.h) && between(x.v, a.v, b.v) && between(x.h, c.h, d.h) && between(x.v, c.v, d.v) &&
                std::fabs(x.h - cursor.h) <= tolerance && std::fabs(x.v - cursor.v) <= tolerance) {
                return ToRealPoint(x);
            }
        }
    }
    return std::nullopt;
}

TEST(Crossing, PassingOverFarChordsLosesNoBit) {
    std::mt19937 random(5);
    std::uniform_real_distribution<float> place(0, 20);
    const auto point = [&] { return RealPoint{place(random), place(random)}; };
    int found = 0;
    for (int round = 0; round < 100; ++round) {
        const SegmentHit a = Curve(point(), point(), point(), point()), b = Curve(point(), point(), point(), point());
        const RealPoint cursor = ToRealPoint(PointOn(a, place(random) / 20));
        const auto fast = Cross(a, b, cursor, 3), plain = CrossAllChords(a, b, cursor, 3);
        ASSERT_EQ(fast.has_value(), plain.has_value()) << "round " << round;
        if (!fast) continue;
        ++found;
        EXPECT_EQ(fast->h, plain->h);
        EXPECT_EQ(fast->v, plain->v);
    }
    EXPECT_GT(found, 10);
}

}  // namespace
}  // namespace quorvel
