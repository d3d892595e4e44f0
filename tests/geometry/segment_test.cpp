// Shapes, snaps and measures of segments: values by hand, and properties that hold for every arc and line.
#include <gtest/gtest.h>

#include <array>
#include <numbers>

#include "tests/geometry/shapes.h"

namespace quorvel {
namespace {

using std::numbers::pi;

double Distance(const RealPoint& a, const DoublePoint& b) { return std::hypot(a.h - b.h, a.v - b.v); }

TEST(Shape, CirclesByThreePoints) {
    // Each of the three ways on which a level pair of points leads, round (3, 4) with radius 5.
    const DoublePoint circles[][3] = {{{0, 0}, {6, 0}, {0, 8}}, {{0, 8}, {0, 0}, {6, 0}}, {{0, 0}, {8, 4}, {3, 9}}};
    for (const auto& p : circles) {
        DoublePoint centre;
        double radius = 0;
        ASSERT_TRUE(CircleThroughPoints(p[0], p[1], p[2], &centre, &radius));
        EXPECT_NEAR(centre.h, 3, 1e-12);
        EXPECT_NEAR(centre.v, 4, 1e-12);
        EXPECT_NEAR(radius, 5, 1e-12);
    }
    DoublePoint centre;
    double radius = 7;
    EXPECT_FALSE(CircleThroughPoints({0, 1}, {5, 1}, {9, 1}, &centre, &radius));
    EXPECT_EQ(radius, 0);
    EXPECT_FALSE(CircleThroughPoints({0, 0}, {1, 1}, {2, 2}, &centre, &radius));
}

TEST(Shape, KernelArcsAreArcs) {
    CurveSource random(11);
    for (int i = 0; i < 5000; ++i) {
        const double radius = std::pow(10, random.Uniform(0.4, 3.5)), start = random.Uniform(-pi, pi);
        const double turn = random.Uniform(0.3, 1.6) * (i % 2 ? 1 : -1);
        const DoublePoint middle{random.Uniform(-900, 900), random.Uniform(-900, 900)};
        const Segment arc = MakeKernelArc(middle, radius, start, turn);
        ArcCircle found;
        ASSERT_TRUE(IsCircularArc(arc.s, arc.t, &found.centre, &found.radius)) << radius << ' ' << start << ' ' << turn;
        EXPECT_NEAR(found.radius, radius, 0.001 * radius + 0.001);
        // Half-way along the arc is where the construction puts it.
        DoublePoint point;
        double angle = 0;
        const double length = SegmentLength(Tables(), arc.s, arc.t, nullptr);
        EXPECT_NEAR(length, radius * std::fabs(turn), 0.001 * radius + 0.001);
        ASSERT_TRUE(PointAtLength(Tables(), arc.s, arc.t, length / 2, &point, &angle));
        EXPECT_LT(Distance(ToRealPoint(point), PolarPoint(middle, radius, start + turn / 2)), 0.001 * radius + 0.001);
        // The angle points back along the path.
        const double travel = start + turn / 2 + (turn > 0 ? pi / 2 : -pi / 2);
        EXPECT_LT(std::cos(angle - travel), -0.999999);
    }
}

TEST(Shape, WhatIsNoArc) {
    DoublePoint centre;
    double radius = 0;
    Segment arc = MakeKernelArc({0, 0}, 100, 0.4, pi / 2);
    ASSERT_TRUE(IsCircularArc(arc.s, arc.t, &centre, &radius));
    const double handle = Distance(arc.s.out, ToDoublePoint(arc.s.p));
    arc.s.out.h += static_cast<float>((arc.s.out.h - arc.s.p.h) / handle * 0.02);
    arc.s.out.v += static_cast<float>((arc.s.out.v - arc.s.p.v) / handle * 0.02);
    EXPECT_FALSE(IsCircularArc(arc.s, arc.t, &centre, &radius));

    // Parallel normals: the handles of an S run the same way at both ends.
    const Segment wave = MakeSegment({0, 0}, {10, 10}, {20, 0}, {30, 10});
    EXPECT_FALSE(ArcCenterFromNormals(wave.s, wave.t, &centre, &radius));
    EXPECT_FALSE(IsCircularArc(wave.s, wave.t, &centre, &radius));

    // One float step from straight: a curve, and no arc for its short handle.
    const Segment almost = MakeSegment({10, 10}, {std::nextafter(10.0F, 20.0F), 10}, {50, 20}, {50, 20});
    RealPoint point{30, 15};
    EXPECT_FALSE(IsStraightSegment(almost.s, almost.t));
    EXPECT_FALSE(IsCircularArc(almost.s, almost.t, &centre, &radius));
    EXPECT_FALSE(SnapToStraightSegment(&point, almost.s, almost.t, 2));
    EXPECT_FALSE(SnapToCurvedSegment(Tables(), &point, almost.s, almost.t, 2));
    EXPECT_TRUE(SnapToSegment(Tables(), &point, almost.s, almost.t, 2, kAnyCurve));
}

TEST(Snap, FlatLinesMoveOneAxis) {
    RealPoint p{10, 6};
    EXPECT_TRUE(SnapPointToFlatLine(&p, {0, 0}, {20, 10}, 2));  // slope exactly one half
    EXPECT_TRUE(PointsEqual(p, RealPoint{10, 5}));
    p = {10, 6};
    EXPECT_TRUE(SnapPointToFlatLine(&p, {0, 0}, {20, 10.0002F}, 4));
    EXPECT_EQ(p.v, 6);
    EXPECT_NEAR(p.h, 6 / 0.50001, 1e-4);
    p = {5.5F, 3};
    EXPECT_TRUE(SnapPointToFlatLine(&p, {5, 0}, {5, 9}, 1));
    EXPECT_TRUE(PointsEqual(p, RealPoint{5, 3}));
    p = {9.5F, 4.5F};
    EXPECT_TRUE(SnapPointToFlatLine(&p, {0, 4}, {9, 4}, 1));  // behind the end, inside the grown box
    EXPECT_TRUE(PointsEqual(p, RealPoint{9.5F, 4}));
    p = {6, 3};
    EXPECT_FALSE(SnapPointToFlatLine(&p, {5, 0}, {5, 9}, 1));  // the tolerance itself is out
    p.h = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(SnapPointToFlatLine(&p, {0, 0}, {20, 10}, 2));
}

TEST(Snap, PointsAndCentresTakeTheBound) {
    RealPoint p{3, 4};
    EXPECT_TRUE(SnapToPoint(&p, {5, 2}, 2));
    EXPECT_TRUE(PointsEqual(p, RealPoint{5, 2}));
    p = {3, 4};
    EXPECT_FALSE(SnapToPoint(&p, {5.01F, 4}, 2));
    EXPECT_TRUE(SnapToRectCenter(&p, {0, 10, 8, 0}, 1));
    EXPECT_TRUE(PointsEqual(p, RealPoint{4, 5}));
}

TEST(Snap, ChordSnapEndsOnTheChord) {
    CurveSource random(5);
    int hits = 0;
    for (int i = 0; i < 20000; ++i) {
        const DoublePoint a{random.Uniform(-50, 50), random.Uniform(-50, 50)};
        const DoublePoint b = i % 7 == 0 ? DoublePoint{a.h, random.Uniform(-50, 50)}
                                         : DoublePoint{random.Uniform(-50, 50), random.Uniform(-50, 50)};
        const DoublePoint given{random.Uniform(-50, 50), random.Uniform(-50, 50)};
        DoublePoint p = given;
        if (!SnapPointToChord(&p, a, b, 4)) continue;
        ++hits;
        // Independently of slopes: the component across the chord vanishes, and the foot is nearest inside its box.
        const double length = std::hypot(b.h - a.h, b.v - a.v);
        const double across = ((p.h - a.h) * (b.v - a.v) - (p.v - a.v) * (b.h - a.h)) / length;
        const bool inside = p.h > std::min(a.h, b.h) && p.h < std::max(a.h, b.h) && p.v > std::min(a.v, b.v) &&
                            p.v < std::max(a.v, b.v);
        if (inside) {
            EXPECT_NEAR(across, 0, 1e-6);
        }
        EXPECT_LT(std::hypot(p.h - given.h, p.v - given.v), 4);
        EXPECT_TRUE(p.h >= std::min(a.h, b.h) && p.h <= std::max(a.h, b.h));
        EXPECT_TRUE(p.v >= std::min(a.v, b.v) && p.v <= std::max(a.v, b.v));
    }
    EXPECT_GT(hits, 500);
}

TEST(Snap, ArcsTakeOnlyTheirOwnSide) {
    // Quarter circles round the whole turn, also over the wrap of atan2 at the left.
    for (int i = 0; i < 16; ++i) {
        const double start = -pi + i * pi / 8;
        const Segment arc = MakeKernelArc({0, 0}, 50, start, pi / 2);
        for (const double turn : {0.05, 0.8, 1.5}) {
            RealPoint p = ToRealPoint(PolarPoint({0, 0}, 51, start + turn));
            EXPECT_TRUE(SnapToCurvedSegment(Tables(), &p, arc.s, arc.t, 2)) << i;
            EXPECT_LT(Distance(p, PolarPoint({0, 0}, 50, start + turn)), 0.02);
        }
        for (const double turn : {-0.1, 1.7, 3.1}) {
            RealPoint p = ToRealPoint(PolarPoint({0, 0}, 50, start + turn));
            EXPECT_FALSE(SnapToCurvedSegment(Tables(), &p, arc.s, arc.t, 2)) << i;
        }
    }
}

TEST(Measure, SideAndDistance) {
    std::int16_t side = -1;
    DoublePoint nearest;
    const Segment line = MakeSegment({0, 0}, {0, 0}, {10, 0}, {10, 0});
    EXPECT_EQ(DistanceToSegment(Tables(), line.s, line.t, {4, 3}, &nearest, &side), 3);
    EXPECT_EQ(side, kLeftSide);
    EXPECT_TRUE(PointsEqual(nearest, DoublePoint{4, 0}));
    EXPECT_EQ(DistanceToSegment(Tables(), line.s, line.t, {4, -3}, nullptr, &side), 3);
    EXPECT_EQ(side, kRightSide);
    EXPECT_EQ(DistanceToSegment(Tables(), line.s, line.t, {4, 0}, nullptr, &side), 0);
    EXPECT_EQ(side, kRightSide);

    for (const double turn : {pi / 2, -pi / 2}) {
        const Segment arc = MakeKernelArc({0, 0}, 50, 0.2, turn);
        const DoublePoint inside = PolarPoint({0, 0}, 40, 0.2 + turn / 3),
                          beyond = PolarPoint({0, 0}, 50, 0.2 - turn / 3);
        EXPECT_NEAR(DistanceToSegment(Tables(), arc.s, arc.t, inside, &nearest, &side), 10, 0.02);
        EXPECT_EQ(side, turn > 0 ? kLeftSide : kRightSide);
        EXPECT_NEAR(DistanceToSegment(Tables(), arc.s, arc.t, beyond, &nearest, &side), 2 * 50 * std::sin(pi / 12),
                    0.02);
        EXPECT_LT(Distance(arc.s.p, nearest), 1e-9);
    }
    // A parabola's arch from (0, 0) over (50, 25) to (100, 0), travelled to the right.
    const Segment arch = MakeSegment({0, 0}, {20, 20}, {70, 26}, {100, 0});
    EXPECT_GT(DistanceToSegment(Tables(), arch.s, arch.t, {50, 60}, &nearest, &side), 30);
    EXPECT_EQ(side, kLeftSide);
    DistanceToSegment(Tables(), arch.s, arch.t, {50, 1}, &nearest, &side);
    EXPECT_EQ(side, kRightSide);
    // Nothing is farther than the mark for "none".
    EXPECT_EQ(DistanceToSegment(Tables(), arch.s, arch.t, {50, 1e6}, nullptr, &side), kNoDistance);
}

TEST(Measure, LengthsAndStops) {
    const Segment line = MakeSegment({0, 0}, {0, 0}, {30, 40}, {30, 40});
    DoublePoint stop{3.00003, 3.99999};
    EXPECT_EQ(SegmentLength(Tables(), line.s, line.t, nullptr), 50);
    EXPECT_NEAR(SegmentLength(Tables(), line.s, line.t, &stop), 5, 1e-4);
    EXPECT_NEAR(stop.v * 3, stop.h * 4, 1e-12);  // it has been moved onto the line
    stop = {3, 5};                               // off the line: at its foot, (3 * 30 + 5 * 40) / 50 along
    EXPECT_NEAR(SegmentLength(Tables(), line.s, line.t, &stop), 5.8, 1e-12);
    stop = {-1, -1};
    EXPECT_EQ(SegmentLength(Tables(), line.s, line.t, &stop), 0);

    // 200 degrees measure as their complement of 160; only a small arc of that size passes as one.
    const double turn = 200 * pi / 180;
    const Segment wide = MakeArc({0, 0}, 1, -turn / 2, turn, 4.0 / 3 * std::tan(turn / 4) / std::tan(turn / 2));
    DoublePoint centre;
    double radius = 0;
    ASSERT_TRUE(IsCircularArc(wide.s, wide.t, &centre, &radius));
    EXPECT_NEAR(SegmentLength(Tables(), wide.s, wide.t, nullptr), 160 * pi / 180, 1e-5);

    // A curve drawn as a straight line with uneven handles: its length is known, whatever its samples.
    const Segment even = MakeSegment({0, 0}, {30, 0}, {60, 0}, {120, 0});
    EXPECT_NEAR(SegmentLength(Tables(), even.s, even.t, nullptr), 120, 1e-9);
    stop = {45, 0};
    EXPECT_NEAR(SegmentLength(Tables(), even.s, even.t, &stop), 45, 1e-9);
    for (const double v : {0.0, 3.0}) {  // on the last chord, and beside the curve
        stop = {119.9, v};
        EXPECT_NEAR(SegmentLength(Tables(), even.s, even.t, &stop), 119.9, 1e-9);
    }
}

TEST(Measure, PointAtLengthInvertsSegmentLength) {
    CurveSource random(23);
    int general = 0;
    for (int i = 0; i < 4000; ++i) {
        Segment segment = random.Next();
        if (i % 4 == 0) {
            segment.s.out = segment.s.p;
            segment.t.in = segment.t.p;
        }
        const double size = std::fabs(segment.s.p.h) + std::fabs(segment.t.p.v) + std::fabs(segment.t.in.h);
        ArcCircle circle;
        if (size > 20000 || IsCircularArc(segment.s, segment.t, &circle.centre, &circle.radius)) continue;
        const double whole = SegmentLength(Tables(), segment.s, segment.t, nullptr);
        DoublePoint point;
        double angle = 0;
        ASSERT_TRUE(PointAtLength(Tables(), segment.s, segment.t, whole, &point, &angle));
        EXPECT_LT(Distance(segment.t.p, point), 1e-6);
        EXPECT_FALSE(PointAtLength(Tables(), segment.s, segment.t, whole * 1.0001 + 0.001, &point, &angle));

        // Curves that come back over themselves meet the stop on an earlier pass; those that only go forward do not.
        const double low = std::min(segment.s.p.h, segment.t.p.h), high = std::max(segment.s.p.h, segment.t.p.h);
        const bool forward = segment.s.out.h >= low && segment.t.in.h <= high && segment.s.out.h <= segment.t.in.h &&
                             segment.s.p.h < segment.t.p.h;
        const double length = whole * random.Uniform(0, 0.98);
        if (!forward || whole < 1) continue;
        ++general;
        ASSERT_TRUE(PointAtLength(Tables(), segment.s, segment.t, length, &point, &angle));
        EXPECT_NEAR(SegmentLength(Tables(), segment.s, segment.t, &point), length, 0.0003);
    }
    EXPECT_GT(general, 100);
}

TEST(Measure, AreasByHand) {
    const RealPoint corners[3] = {{0, 0}, {10, 0}, {0, 6}};
    std::array<PathSegment, 3> triangle;
    for (int i = 0; i < 3; ++i) triangle[i].p = triangle[i].in = triangle[i].out = corners[i];
    EXPECT_EQ(ClosedPathArea(triangle.data(), 3), 30);
    std::swap(triangle[0], triangle[1]);
    EXPECT_EQ(ClosedPathArea(triangle.data(), 3), 30);
    EXPECT_EQ(ClosedPathArea(triangle.data(), 1), 0);

    // Under y = x (1 - x) / 25 from 0 to 100 in cubic form: the area of a parabola is two thirds of its box.
    std::array<PathSegment, 2> arch;
    arch[0].p = arch[0].in = {0, 0};
    arch[0].out = {100.0F / 3, 40};
    arch[1].in = {200.0F / 3, 40};
    arch[1].p = arch[1].out = {100, 0};
    EXPECT_NEAR(ClosedPathArea(arch.data(), 2), 100 * 30 * 2.0 / 3, 0.2);
}

}  // namespace
}  // namespace quorvel
