// The pieces of a dimension: heads, dots, arcs and texts.
#include "plugin/dimensioning/graphics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

#include "tests/support/drafting_table.h"

namespace quorvel::tests {
namespace {

// Short pi constants put points off by some 1e-6 of their distance.
constexpr double kNear = 1e-4;

void expectPoint(const DoublePoint& point, double h, double v) {
    EXPECT_NEAR(point.h, h, kNear);
    EXPECT_NEAR(point.v, v, kNear);
}
void expectPoint(const RealPoint& point, double h, double v) { expectPoint(ToDoublePoint(point), h, v); }

class Graphics : public testing::Test {
  protected:
    using Draw = std::function<void(AIArtHandle)>;
    std::vector<Piece> drawn(const Draw& draw) { return table.pieces(table.newGroup(draw)); }
    DraftingTable table;
};

TEST_F(Graphics, WingsOfEachShape) {
    table.prefs().flArAngle = 30;
    table.prefs().flArSize3 = 20;
    DoublePoint wing1, wing2;
    // Trailing to the right: 10 (cos 30, sin 30).
    ArrowWings({100, 50}, 0, kArrowOpen, 10, &wing1, &wing2);
    expectPoint(wing1, 108.660254, 55);
    expectPoint(wing2, 108.660254, 45);
    ArrowWings({100, 50}, std::acos(-1) / 2, kArrowTriangular, 4, &wing1, &wing2);
    expectPoint(wing1, 98, 53.464102);
    expectPoint(wing2, 102, 53.464102);
    // The slash is one straight stroke of 20 through the tip, at either end of the line the same.
    ArrowWings({0, 0}, 0, kArrowObliqueLine, 999, &wing1, &wing2);
    expectPoint(wing1, 8.660254, 5);
    expectPoint(wing2, -8.660254, -5);
    ArrowWings({0, 0}, kPi, kArrowObliqueLine, 999, &wing1, &wing2);
    expectPoint(wing1, -8.660254, -5);
    expectPoint(wing2, 8.660254, 5);
}

TEST_F(Graphics, WingLengthBelongsToTheShape) {
    table.prefs().flArSize1 = 2.5F;
    table.prefs().flArSize2 = 7.75F;
    table.prefs().flArType = kArrowOpen;
    EXPECT_EQ(ArrowWingLength(table.prefs(), false), 2.5);
    EXPECT_EQ(ArrowWingLength(table.prefs(), true), 2.0);
    table.prefs().flArType = kArrowTriangular;
    EXPECT_EQ(ArrowWingLength(table.prefs(), true), 7.0);
}

TEST_F(Graphics, MarksFillWhatTheyShould) {
    const std::vector<Piece> marks = drawn([&](AIArtHandle group) {
        for (std::int16_t shape = kArrowOpen; shape <= kArrowDot; ++shape) {
            table.prefs().flArType = shape;
            AddArrowMark(group, {0, 0}, 0, 10);
        }
    });
    ASSERT_EQ(marks.size(), 4U);
    const int fills[] = {0, 1, 0, 1};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(marks[i].style.fillPaint, fills[i]);
        EXPECT_EQ(marks[i].style.strokePaint, 1);
        EXPECT_EQ(marks[i].style.stroke.gray, 1.0F);
        EXPECT_EQ(marks[i].style.strokeWidth, 0.1F);
        EXPECT_EQ(marks[i].style.miterLimit, 4.0F);
        EXPECT_EQ(marks[i].closed, i == 3);
        EXPECT_EQ(marks[i].segments.size(), i == 3 ? 4U : 3U);
    }
    expectPoint(marks[0].segments[1].p, 0, 0);  // the tip is the middle
}

TEST_F(Graphics, DotIsACircleThatGoesAnticlockwise) {
    const Piece dot = drawn([](AIArtHandle group) { AddDot(group, {10, 20}, 8, false); }).at(0);
    EXPECT_EQ(dot.style.fillPaint, 0);
    ASSERT_EQ(dot.segments.size(), 4U);
    for (int i = 0; i < 4; ++i) {
        const PathSegment& s = dot.segments[i];
        const double angle = i * std::acos(-1) / 2;
        expectPoint(s.p, 10 + 4 * std::cos(angle), 20 + 4 * std::sin(angle));
        // Handles of 4 x 0.552277 along the tangent, the leaving one ahead.
        expectPoint(s.out, s.p.h - 2.209108 * std::sin(angle), s.p.v + 2.209108 * std::cos(angle));
        expectPoint(s.in, s.p.h + 2.209108 * std::sin(angle), s.p.v - 2.209108 * std::cos(angle));
        EXPECT_EQ(s.corner, 0);
    }
}

// Along the tangents, each as long as the ratio says of the way to their crossing, which is r tan(d / 2) away.
TEST_F(Graphics, ArcSpanBendsLikeACircle) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> any(-1, 1);
    for (int i = 0; i < 2000; ++i) {
        const DoublePoint c = {any(random) * 500, any(random) * 500};
        const double radius = 20 + std::fabs(any(random)) * 100;
        const double start = any(random) * 3, sweep = any(random) * 1.5;
        if (std::fabs(sweep) < 0.05) continue;
        const DoublePoint p = PolarPoint(c, radius, start), q = PolarPoint(c, radius, start + sweep);
        RealPoint pOut, qIn;
        AddArcSpan(c, p, q, &pOut, &qIn);
        const double ratio = std::sin(std::acos(-1) / 2 - std::fabs(sweep)) / 8 + 0.552277;
        const double handle = radius * std::tan(sweep / 2) * ratio;
        const DoublePoint out = PolarPoint(p, handle, start + std::acos(-1) / 2);
        const DoublePoint in = PolarPoint(q, -handle, start + sweep + std::acos(-1) / 2);
        EXPECT_NEAR(pOut.h, out.h, 0.02) << "start " << start << " sweep " << sweep;
        EXPECT_NEAR(pOut.v, out.v, 0.02);
        EXPECT_NEAR(qIn.h, in.h, 0.02);
        EXPECT_NEAR(qIn.v, in.v, 0.02);
    }
}

TEST_F(Graphics, ArcSpanOfQuartersAndOfLevelRadii) {
    RealPoint out, in;
    AddArcSpan({0, 0}, {10, 0}, {0, 10}, &out, &in);  // ratio 0.552277: sin(quarter - quarter) is 0
    expectPoint(out, 10, 5.52277);
    expectPoint(in, 5.52277, 10);
    // Both radii level: nothing is known, the handles stay.
    AddArcSpan({0, 0}, {-10, 0}, {10, 0}, &out, &in);
    expectPoint(out, 10, 5.52277);
    expectPoint(in, 5.52277, 10);
    // Across the seam of atan2 the shorter way counts: from 170 to -170 degrees is 20.
    const DoublePoint p = PolarPoint({0, 0}, 10, 170 * kPi / 180), q = PolarPoint({0, 0}, 10, -170 * kPi / 180);
    AddArcSpan({0, 0}, p, q, &out, &in);
    const double handle = 10 * std::tan(kPi / 18) * (std::sin(70 * kPi / 180) / 8 + 0.552277);
    EXPECT_NEAR(std::hypot(out.h - p.h, out.v - p.v), handle, 1e-3);
}

TEST_F(Graphics, DimensionArcRunsByPlainInterpolation) {
    // The long way down from a raised start.
    const Piece arc = drawn([](AIArtHandle group) { AddDimensionArc(group, 50, kTwoPi, kPi / 2, {0, 0}); }).at(0);
    ASSERT_EQ(arc.segments.size(), 5U);
    EXPECT_FALSE(arc.closed);
    const double degrees[] = {360, 292.5, 225, 157.5, 90};
    for (int i = 0; i < 5; ++i) {
        const double angle = degrees[i] * std::acos(-1) / 180;
        EXPECT_NEAR(arc.segments[i].p.h, 50 * std::cos(angle), 1e-3);
        EXPECT_NEAR(arc.segments[i].p.v, 50 * std::sin(angle), 1e-3);
        EXPECT_EQ(arc.segments[i].corner, i == 0 || i == 4 ? 1 : 0);
    }
    EXPECT_EQ(arc.segments[0].in.h, arc.segments[0].p.h);
    EXPECT_EQ(arc.segments[4].out.v, arc.segments[4].p.v);
}

TEST_F(Graphics, TextStandsOnTheMiddleInTheDirectionGiven) {
    std::strcpy(table.prefs().flArFName, "DejaVu Sans Mono");
    table.prefs().flArFSize = 9;
    const Piece text = drawn([](AIArtHandle group) { AddDimensionText(group, {10, 10}, {10, 30}, "20"); }).at(0);
    EXPECT_EQ(text.text, u"20");
    EXPECT_EQ(text.data.runs.at(0).features.font, "DejaVu Sans Mono");
    EXPECT_EQ(text.data.runs.at(0).features.size, 9.0F);
    EXPECT_EQ(text.data.justification, kJustifyCenter);
    EXPECT_NEAR(text.angle, std::acos(-1) / 2, 1e-6);
    expectPoint(text.place, 10, 20);
}

TEST_F(Graphics, RefusedArtLeavesThePieceOut) {
    const auto pieces = drawn([&](AIArtHandle group) {
        table.document().setLayerEditable(table.document().currentLayer(), false);
        AddLine2(group, {0, 0}, {1, 1});
        AddDot(group, {0, 0});
        AddDimensionText(group, {0, 0}, {1, 1}, "1");
    });
    EXPECT_TRUE(pieces.empty());
}

}  // namespace
}  // namespace quorvel::tests
