// The kernel's roads that reject and overlap give what the plain walk over the table gives, to the last bit.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tests/geometry/shapes.h"
#include "tests/support/plain_bezier.h"
#include "tests/support/sanitized.h"

namespace quorvel {
namespace {

bool IsGeneral(const Segment& c) {
    ArcCircle circle;
    return !IsStraightSegment(c.s, c.t) && !IsCircularArc(c.s, c.t, &circle.centre, &circle.radius);
}

std::string Describe(const Segment& c, const DoublePoint& p) {
    char text[400];
    std::snprintf(text, sizeof text, "%a %a  %a %a  %a %a  %a %a at %a %a", c.s.p.h, c.s.p.v, c.s.out.h, c.s.out.v,
                  c.t.in.h, c.t.in.v, c.t.p.h, c.t.p.v, p.h, p.v);
    return text;
}

TEST(FastRoad, LineDistance) {
    CurveSource random(1);
    for (int i = 0; i < 50000; ++i) {
        const Segment c = random.Next();
        const DoublePoint a = ToDoublePoint(c.s.p), b = ToDoublePoint(c.t.p), p = random.PointFor(c);
        DoublePoint fast, slow, fastSnap = p, slowSnap = p;
        ASSERT_TRUE(SameBits(PointToLineSegment(a, b, p, &fast), plain::LineDistance(a, b, p, &slow)))
            << Describe(c, p);
        ASSERT_TRUE(SameBits(fast, slow)) << Describe(c, p);
        ASSERT_EQ(SnapPointToChord(&fastSnap, a, b, 2), plain::SnapToChord(&slowSnap, a, b, 2)) << Describe(c, p);
        ASSERT_TRUE(SameBits(fastSnap, slowSnap)) << Describe(c, p);
    }
}

TEST(FastRoad, Nearest) {
    CurveSource random(2);
    for (int i = 0; i < tests::rounds(20000); ++i) {
        const Segment c = random.Next();
        if (!IsGeneral(c)) continue;
        for (int j = 0; j < 3; ++j) {
            const DoublePoint p = random.PointFor(c);
            DoublePoint fast, slow;
            std::int16_t fastSide = -1, slowSide = -1;
            const double distance = DistanceToSegment(Tables(), c.s, c.t, p, &fast, &fastSide);
            ASSERT_TRUE(SameBits(distance, plain::DistanceToCurve(Tables(), c.s, c.t, p, &slow, &slowSide)))
                << Describe(c, p);
            ASSERT_EQ(fastSide, slowSide) << Describe(c, p);
            if (distance < kNoDistance) {
                ASSERT_TRUE(SameBits(fast, slow)) << Describe(c, p);
            }
        }
    }
}

// Points of a lattice beside symmetric curves on the same lattice: several chords at one distance, the first must win.
TEST(FastRoad, NearestOfMany) {
    CurveSource random(3);
    for (int i = 0; i < tests::rounds(20000); ++i) {
        const auto near = [&] { return static_cast<float>(random.Pick(9) - 4); };
        const float h = near(), v = near(), w = near();
        const Segment c =
            i % 2 ? MakeSegment({-h, 0}, {-v, w}, {v, w}, {h, 0}) : MakeSegment({h, v}, {v, w}, {w, v}, {v, h});
        if (!IsGeneral(c)) continue;
        const DoublePoint p{i % 4 == 1 ? 0.0 : near(), near() / 2.0};
        DoublePoint fast, slow;
        std::int16_t fastSide = -1, slowSide = -1;
        const double distance = DistanceToSegment(Tables(), c.s, c.t, p, &fast, &fastSide);
        ASSERT_TRUE(SameBits(distance, plain::DistanceToCurve(Tables(), c.s, c.t, p, &slow, &slowSide)))
            << Describe(c, p);
        ASSERT_TRUE(SameBits(fast, slow) && fastSide == slowSide) << Describe(c, p);
    }
}

TEST(FastRoad, LengthAndPointAtLength) {
    CurveSource random(4);
    for (int i = 0; i < 10000; ++i) {
        const Segment c = random.Next();
        if (!IsGeneral(c)) continue;
        const double length = SegmentLength(Tables(), c.s, c.t, nullptr);
        ASSERT_TRUE(SameBits(length, plain::CurveLength(Tables(), c.s, c.t, nullptr))) << Describe(c, {});
        DoublePoint fast = random.PointFor(c), slow = fast;
        const double toStop = SegmentLength(Tables(), c.s, c.t, &fast);
        ASSERT_TRUE(SameBits(toStop, plain::CurveLength(Tables(), c.s, c.t, &slow))) << Describe(c, slow);
        ASSERT_TRUE(SameBits(fast, slow)) << Describe(c, slow);
        double fastAngle = 0, slowAngle = 0;
        const double reach = length * random.Uniform(-0.1, 1.1);
        ASSERT_EQ(PointAtLength(Tables(), c.s, c.t, reach, &fast, &fastAngle),
                  plain::PointAtCurveLength(Tables(), c.s, c.t, reach, &slow, &slowAngle));
        ASSERT_TRUE(SameBits(fast, slow) && SameBits(fastAngle, slowAngle)) << Describe(c, slow);
    }
}

TEST(FastRoad, Snap) {
    CurveSource random(5);
    int hits = 0;
    for (int i = 0; i < 40000; ++i) {
        const Segment c = random.Next();
        const DoublePoint p = random.PointFor(c);
        const double tolerances[] = {0.0001, 0.5, 2, 40};
        const double tolerance = tolerances[random.Pick(4)];
        DoublePoint fast = p, slow = p;
        const bool hit = SnapPointToChords(Tables(), &fast, c.s, c.t, tolerance);
        ASSERT_EQ(hit, plain::SnapToChords(Tables(), &slow, c.s, c.t, tolerance)) << Describe(c, p);
        ASSERT_TRUE(SameBits(fast, slow)) << Describe(c, p);
        hits += hit;
    }
    EXPECT_GT(hits, 4000);
}

TEST(FastRoad, OffsetAndFit) {
    CurveSource random(6);
    for (int i = 0; i < tests::rounds(4000); ++i) {
        const Segment c = random.Next();
        if (!IsGeneral(c)) continue;
        const DoublePoint from = random.PointFor(c), to = random.PointFor(c);
        const DoublePoint* cuts[2] = {i % 3 ? &from : nullptr, i % 5 ? &to : nullptr};
        const double distance = i % 7 ? random.Uniform(-30, 30) : 0;
        const std::int16_t side = i % 2 ? kLeftSide : kRightSide;
        const std::vector<DoublePoint> points =
            plain::OffsetCurve(Tables(), c.s, c.t, cuts[0], cuts[1], side, distance);
        SegmentList fast, slow;
        OffsetSegment(Tables(), c.s, c.t, cuts[0], cuts[1], side, distance, &fast, 0);
        ASSERT_EQ(fast.count, (static_cast<int>(points.size()) + 1) / 2);
        for (int k = 0; k < fast.count; ++k) {
            const RealPoint expected = ToRealPoint(k + 1 < fast.count ? points[2 * k] : points.back());
            ASSERT_EQ(std::memcmp(&expected, &fast.segments[k].p, sizeof expected), 0) << Describe(c, from);
        }
        if (i % 80 != 0) continue;  // the fit is slow on the plain road
        OffsetSegment(Tables(), c.s, c.t, cuts[0], cuts[1], side, distance, &fast, 1);
        plain::FitCubics(Tables(), points, &slow);
        ASSERT_EQ(fast.count, slow.count) << Describe(c, from);
        ASSERT_EQ(std::memcmp(fast.segments, slow.segments, sizeof(PathSegment) * slow.count), 0) << Describe(c, from);
    }
}

// What is not finite gives the same on both roads too, and never more records than there is room for.
TEST(FastRoad, NotFinite) {
    const float bad[] = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                         -std::numeric_limits<float>::infinity(), 3e38F};
    CurveSource random(7);
    for (int i = 0; i < tests::rounds(4000); ++i) {
        Segment c = random.Next();
        float* numbers[] = {&c.s.p.h, &c.s.out.v, &c.t.in.h, &c.t.p.v, &c.s.p.v, &c.t.p.h};
        *numbers[random.Pick(6)] = bad[random.Pick(4)];
        if (!IsGeneral(c)) continue;
        const DoublePoint p = i % 5 ? random.PointFor(c) : DoublePoint{bad[random.Pick(4)], 1};
        DoublePoint fast, slow;
        std::int16_t fastSide = -1, slowSide = -1;
        const double distance = DistanceToSegment(Tables(), c.s, c.t, p, &fast, &fastSide);
        const double expected = plain::DistanceToCurve(Tables(), c.s, c.t, p, &slow, &slowSide);
        ASSERT_TRUE(distance == expected || (std::isnan(distance) && std::isnan(expected))) << Describe(c, p);
        fast = slow = p;
        ASSERT_EQ(SnapPointToChords(Tables(), &fast, c.s, c.t, 2), plain::SnapToChords(Tables(), &slow, c.s, c.t, 2))
            << Describe(c, p);
        SegmentList out;
        OffsetSegment(Tables(), c.s, c.t, &p, nullptr, kLeftSide, 5, &out, i % 40 == 0);
        EXPECT_LE(out.count, kSegmentListCapacity);
    }
}

}  // namespace
}  // namespace quorvel
