// The comparisons and the straight-line primitives, by values worked out by hand.
#include "plugin/geometry/vector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace quorvel {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(Vector, ScalarsAtTheirEdges) {
    EXPECT_EQ(SignOf(0.0), 1);
    EXPECT_EQ(SignOf(-0.0), 1);
    EXPECT_EQ(SignOf(-1e-300), -1);
    EXPECT_EQ(RoundToInt(-0.5), -1);
    EXPECT_EQ(RoundToInt(0.49), 0);
    EXPECT_EQ(RoundToInt(2.5), 3);
    EXPECT_EQ(RoundToInt(-2.4), -2);
    EXPECT_EQ(RoundToInt(2147483646.6), 2147483647);
    EXPECT_EQ(RoundToInt(1e300), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(RoundToInt(kNan), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(PowerOf(0, 0), 1);
    EXPECT_EQ(PowerOf(7, -3), 1);
    EXPECT_EQ(PowerOf(-2, 3), -8);
    EXPECT_TRUE(NearlyEqual(1.0, 1.00009));
    EXPECT_FALSE(NearlyEqual(1.0, 1.00011));
    EXPECT_FALSE(NearlyEqual(1.0, kNan));
    EXPECT_TRUE(std::isnan(MinOf(1, kNan)));
    EXPECT_EQ(MinOf(kNan, 1), 1);
    EXPECT_EQ(AngleBetweenPoints({3, 4}, {3, 4}), 0);
}

TEST(Vector, DistanceToALine) {
    DoublePoint nearest{-1, -1};
    EXPECT_DOUBLE_EQ(PointToLineSegment({0, 0}, {10, 10}, {0, 10}, &nearest), std::sqrt(50.0));
    EXPECT_NEAR(nearest.h, 5, 1e-12);
    EXPECT_NEAR(nearest.v, 5, 1e-12);
    EXPECT_EQ(PointToLineSegment({2, 0}, {2, 8}, {5, 8}, &nearest), 3);  // a foot on the very end
    EXPECT_TRUE(PointsEqual(nearest, DoublePoint{2, 8}));
    EXPECT_EQ(PointToLineSegment({0, 3}, {8, 3}, {12, 6}, &nearest), 5);
    EXPECT_TRUE(PointsEqual(nearest, DoublePoint{8, 3}));
    // Without a place to stand a point is its own line, and nearest keeps its value.
    nearest = {-1, -1};
    EXPECT_EQ(PointToLineSegment({3, 4}, {3, 4}, {0, 0}, &nearest), 5);
    EXPECT_TRUE(PointsEqual(nearest, DoublePoint{-1, -1}));
    EXPECT_EQ(PointToLineSegment({3, 4}, {3, 5}, {0, 0}, nullptr), 5);
}

TEST(Vector, CrossingOfLines) {
    DoublePoint x;
    EXPECT_TRUE(IntersectLines({0, 0}, {1, 1}, {5, 0}, {0, 0}, {1, -1}, {0, 3}, &x));  // h - 5 = 3 - h
    EXPECT_DOUBLE_EQ(x.h, 4);
    EXPECT_DOUBLE_EQ(x.v, -1);
    EXPECT_TRUE(IntersectLines({0, 0}, {0, 9}, {7, 1}, {0, 0}, {2, 1}, {1, 1}, &x));
    EXPECT_TRUE(PointsEqual(x, DoublePoint{7, 4}));
    EXPECT_TRUE(IntersectLines({0, 0}, {2, 1}, {1, 1}, {0, 0}, {0, 9}, {7, 1}, &x));
    EXPECT_TRUE(PointsEqual(x, DoublePoint{7, 4}));
    EXPECT_FALSE(IntersectLines({0, 0}, {0, 1}, {4, 4}, {0, 0}, {0, 5}, {4, 6}, &x));  // the same upright line
    EXPECT_TRUE(PointsEqual(x, DoublePoint{4, 6}));
    EXPECT_FALSE(IntersectLines({0, 0}, {2, 1}, {0, 0}, {0, 0}, {4, 2}, {0, 9}, &x));
    EXPECT_TRUE(PointsEqual(x, DoublePoint{0, 9}));
}

}  // namespace
}  // namespace quorvel
