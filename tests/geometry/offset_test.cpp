// Parallel copies keep their distance, on the side that was asked for, and cubics keep to the points they are laid
// through.
#include <gtest/gtest.h>

#include <numbers>
#include <vector>

#include "tests/geometry/shapes.h"

namespace quorvel {
namespace {

using std::numbers::pi;

DoublePoint CubicAt(const PathSegment& s, const PathSegment& t, double u) {
    const double w[4] = {(1 - u) * (1 - u) * (1 - u), 3 * u * (1 - u) * (1 - u), 3 * u * u * (1 - u), u * u * u};
    return {w[0] * s.p.h + w[1] * s.out.h + w[2] * t.in.h + w[3] * t.p.h,
            w[0] * s.p.v + w[1] * s.out.v + w[2] * t.in.v + w[3] * t.p.v};
}

TEST(Offset, LinesAndTheirCuts) {
    const Segment line = MakeSegment({0, 0}, {0, 0}, {30, 40}, {30, 40});
    const DoublePoint from{6, 8}, to{24, 32}, off{7, 8};
    SegmentList out;
    OffsetSegment(Tables(), line.s, line.t, &from, &to, kRightSide, 10, &out, 0);
    ASSERT_EQ(out.count, 2);
    EXPECT_NEAR(out.segments[0].p.h, 14, 1e-4);  // to the right of (3, 4) lies (4, -3)
    EXPECT_NEAR(out.segments[0].p.v, 2, 1e-4);
    EXPECT_NEAR(out.segments[1].p.h, 32, 1e-4);
    EXPECT_NEAR(out.segments[1].p.v, 26, 1e-4);
    EXPECT_TRUE(IsStraightSegment(out.segments[0], out.segments[1]));
    EXPECT_TRUE(out.segments[0].corner && out.segments[1].corner);
    OffsetSegment(Tables(), line.s, line.t, &off, nullptr, kLeftSide, 0, &out, 0);
    EXPECT_TRUE(PointsEqual(out.segments[0].p, line.s.p));  // a cut beside the line is none
    EXPECT_TRUE(PointsEqual(out.segments[1].p, line.t.p));
}

TEST(Offset, ArcsStayArcs) {
    CurveSource random(31);
    for (int i = 0; i < 2000; ++i) {
        const double radius = random.Uniform(40, 400), start = random.Uniform(-pi, pi);
        const double turn = random.Uniform(0.6, 1.55) * (i % 2 ? 1 : -1), distance = random.Uniform(-20, 20);
        const std::int16_t side = i % 3 ? kLeftSide : kRightSide;
        const DoublePoint middle{random.Uniform(-300, 300), random.Uniform(-300, 300)};
        const Segment arc = MakeKernelArc(middle, radius, start, turn);
        const DoublePoint from = PolarPoint(middle, radius, start + turn * 0.1);
        const DoublePoint to = PolarPoint(middle, radius, start + turn * 0.9);
        SegmentList out;
        OffsetSegment(Tables(), arc.s, arc.t, &from, &to, side, distance, &out, 0);
        ASSERT_EQ(out.count, 2);
        // The right side of a turn to the left is the outside.
        const double expected = radius + ((side == kRightSide) == (turn > 0) ? distance : -distance);
        for (int k = 0; k <= 8; ++k) {
            const DoublePoint p = CubicAt(out.segments[0], out.segments[1], k / 8.0);
            EXPECT_NEAR(DistanceBetweenPoints(middle, p), expected, 0.002 * expected);
        }
        const DoublePoint first = PolarPoint(middle, expected, start + turn * 0.1);
        EXPECT_LT(DistanceBetweenPoints(ToDoublePoint(out.segments[0].p), first), 0.002 * expected);
        ArcCircle circle;
        EXPECT_TRUE(IsCircularArc(out.segments[0], out.segments[1], &circle.centre, &circle.radius));
    }
}

TEST(Offset, CurvesKeepTheirDistance) {
    const Segment wave = MakeSegment({0, 0}, {60, 90}, {120, -70}, {200, 20});
    for (const std::int16_t side : {kRightSide, kLeftSide}) {
        SegmentList out;
        OffsetSegment(Tables(), wave.s, wave.t, nullptr, nullptr, side, 6, &out, 0);
        ASSERT_EQ(out.count, 128);  // every second of P0, 254 samples and P3
        // The last chord is longer than the others, so its neighbours lean a little.
        for (int i = 0; i < out.count - 2; ++i) {
            std::int16_t found = -1;
            const DoublePoint p = ToDoublePoint(out.segments[i].p);
            EXPECT_NEAR(DistanceToSegment(Tables(), wave.s, wave.t, p, nullptr, &found), 6, 0.01) << i;
            if (i > 0) {
                EXPECT_EQ(found, side) << i;
            }
        }
        OffsetSegment(Tables(), wave.s, wave.t, nullptr, nullptr, side, 6, &out, 1);
        ASSERT_GT(out.count, 1);
        EXPECT_LT(out.count, 12);
        for (int i = 1; i < out.count; ++i)
            for (int k = 0; k <= 8; ++k) {
                const DoublePoint p = CubicAt(out.segments[i - 1], out.segments[i], k / 8.0);
                EXPECT_NEAR(DistanceToSegment(Tables(), wave.s, wave.t, p, nullptr, nullptr), 6, 1.0) << i << ' ' << k;
            }
    }
}

TEST(Offset, DistanceZeroCopiesThePiece) {
    const Segment wave = MakeSegment({0, 0}, {60, 90}, {120, -70}, {200, 20});
    DoublePoint from, to;
    double angle = 0;
    ASSERT_TRUE(PointAtLength(Tables(), wave.s, wave.t, 50, &from, &angle));
    ASSERT_TRUE(PointAtLength(Tables(), wave.s, wave.t, 90, &to, &angle));
    SegmentList out;
    OffsetSegment(Tables(), wave.s, wave.t, &from, &to, kRightSide, 0, &out, 0);
    EXPECT_TRUE(PointsEqual(out.segments[0].p, ToRealPoint(from)));
    EXPECT_TRUE(PointsEqual(out.segments[out.count - 1].p, ToRealPoint(to)));
    double length = 0;
    for (int i = 1; i < out.count; ++i)
        length += DistanceBetweenPoints(ToDoublePoint(out.segments[i - 1].p), ToDoublePoint(out.segments[i].p));
    EXPECT_NEAR(length, 40, 0.05);
    // Two cuts on one chord leave a single record: the polyline has two points, of which every second is taken.
    OffsetSegment(Tables(), wave.s, wave.t, &from, &from, kRightSide, 0, &out, 0);
    EXPECT_EQ(out.count, 1);
}

TEST(Fit, FewPoints) {
    const DoublePoint points[] = {{0, 0}, {10, 5}, {20, 0}};
    SegmentList out;
    FitCubicsToPolyline(Tables(), points, 1, &out);
    ASSERT_EQ(out.count, 1);
    EXPECT_TRUE(PointsEqual(out.segments[0].in, RealPoint{0, 0}) && PointsEqual(out.segments[0].out, RealPoint{0, 0}));
    FitCubicsToPolyline(Tables(), points, 3, &out);
    ASSERT_EQ(out.count, 2);
    EXPECT_TRUE(PointsEqual(out.segments[1].p, RealPoint{20, 0}));
    EXPECT_TRUE(PointsEqual(out.segments[1].out, out.segments[1].p));
}

}  // namespace
}  // namespace quorvel
