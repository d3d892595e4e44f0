// The linear tools: where the dimension line runs, what a span is made of, and how presses and releases become points.
#include "plugin/dimensioning/linear.h"

#include <gtest/gtest.h>

#include <cmath>

#include "plugin/dimensioning/graphics.h"
#include "tests/support/drafting_table.h"

namespace quorvel::tests {
namespace {

constexpr double kNear = 2e-4;

template <typename Point>
void expectPoint(const Point& point, double h, double v) {
    EXPECT_NEAR(point.h, h, kNear);
    EXPECT_NEAR(point.v, v, kNear);
}

class Feet : public testing::Test {
  protected:
    std::int32_t project(const DoublePoint& E) {
        std::int32_t found = 0;
        table.inside([&] { found = ProjectFeet(E, P1, P2, &A, &B, &tmpPos, stopCount, S, &axisWord); });
        return found;
    }
    bool isUpright() const { return A.h == B.h; }
    bool isLevel() const { return A.v == B.v; }

    DraftingTable table;
    DoublePoint P1{100, 100}, P2{200, 150}, A, B, tmpPos, S[4];
    std::int16_t stopCount = 0, axisWord = 0;
};

TEST_F(Feet, ObliqueLineRunsParallel) {
    table.prefs().flDistanceMode = kObliqueMode;
    P1 = {0, 0};
    P2 = {30, 40};
    stopCount = 1;
    S[0] = {10, 0};
    // E lies 5 to the left of the line, above its middle; every foot lies there on its own perpendicular.
    ASSERT_EQ(project({15 - 4, 20 + 3}), 1);
    expectPoint(A, -4, 3);
    expectPoint(B, 26, 43);
    expectPoint(S[1], 3.6 - 4, 4.8 + 3);  // (10, 0) lies 6 along the line
    EXPECT_EQ(axisWord, 0);
    // Level and upright measures have no slope to divide by.
    P2 = {30, 0};
    project({7, 12});
    expectPoint(A, 0, 12);
    expectPoint(B, 30, 12);
    P2 = {0, 40};
    project({7, 12});
    expectPoint(A, 7, 0);
    expectPoint(B, 7, 40);
}

TEST_F(Feet, EqualPointsHaveNone) {
    P2 = P1;
    EXPECT_EQ(project({0, 0}), 0);
}

TEST_F(Feet, StraightLineStandsAcrossTheWayOfTheHand) {
    table.prefs().flDistanceMode = kStraightMode;
    const struct {
        DoublePoint E;
        bool upright;
    } rows[] = {{{180, 110}, true}, {{20, 110}, true},  {{110, 180}, false},
                {{110, 20}, false}, {{150, 149}, true}, {{149, 150}, false}};
    for (const auto& row : rows) {
        axisWord = 0;
        ASSERT_EQ(project(row.E), 1);
        EXPECT_EQ(isUpright(), row.upright) << row.E.h << " " << row.E.v;
        EXPECT_EQ(isLevel(), !row.upright);
        EXPECT_EQ(axisWord, row.upright ? 2 : 1);
        EXPECT_EQ(tmpPos.h, row.E.h);
    }
    expectPoint(A, 100, 150);
    expectPoint(B, 200, 150);
}

TEST_F(Feet, StraightAxisHoldsForFivePixels) {
    table.prefs().flDistanceMode = kStraightMode;
    table.host().setZoom(0.5F);  // a pixel is two points: the axis holds for 10
    project({180, 100});
    ASSERT_TRUE(isUpright());
    project({180, 110});  // exactly 10 away, straight up
    EXPECT_TRUE(isUpright());
    expectPoint(tmpPos, 180, 100);
    project({180, 110.5});
    EXPECT_TRUE(isLevel());
    expectPoint(tmpPos, 180, 110.5);
    project({183, 107});  // held again, about the new place
    EXPECT_TRUE(isLevel());
}

TEST_F(Feet, PointsOnOneLevelAreMeasuredAlongIt) {
    table.prefs().flDistanceMode = kStraightMode;
    P2 = {200, 101};  // one pixel off is on it
    project({500, 100});
    EXPECT_TRUE(isLevel());
    EXPECT_EQ(axisWord, 2);  // what the hand chose is kept
    P2 = {200, 101.5};
    axisWord = 0;
    project({500, 100});
    EXPECT_TRUE(isUpright());
    P2 = {100.5, 100.5};  // both within a pixel: upright wins
    axisWord = 0;
    project({100, 500});
    EXPECT_TRUE(isUpright());
}

class Span : public testing::Test {
  protected:
    // 100 wide, the line 40 above the points, unless the test says otherwise.
    std::vector<Piece> build(double width, std::int32_t index = 0) { return build(0, width, index); }
    std::vector<Piece> build(double left, double right, std::int32_t index) {
        return table.pieces(table.newGroup([&](AIArtHandle group) {
            BuildSpan(group, {left, 0}, {right, 0}, {left, 40}, {right, 40}, &start, &end, index);
        }));
    }
    void SetUp() override {
        table.prefs().flScOfst = 3;
        table.prefs().flArAngle = 30;
        table.prefs().flArUnit = 5;
    }
    DraftingTable table;
    DoublePoint start, end;
};

TEST_F(Span, HeadsInside) {
    for (std::int16_t shape : {kArrowOpen, kArrowTriangular}) {
        table.prefs().flArType = shape;
        const std::vector<Piece> art = build(100);
        ASSERT_EQ(art.size(), 5U);
        expectPoint(art[0].segments[0].p, 0, 3);
        expectPoint(art[0].segments[1].p, 0, 50);
        expectPoint(art[1].segments[0].p, 100, 3);
        expectPoint(art[1].segments[1].p, 100, 50);
        expectPoint(art[2].segments[0].p, 8.660254, 45);
        expectPoint(art[2].segments[1].p, 0, 40);
        expectPoint(art[2].segments[2].p, 8.660254, 35);
        expectPoint(art[3].segments[0].p, 91.339746, 35);
        expectPoint(art[3].segments[2].p, 91.339746, 45);
        EXPECT_EQ(art[3].style.fillPaint, shape == kArrowTriangular ? 1 : 0);
        EXPECT_EQ(art[4].text, u"100");
        expectPoint(art[4].place, 50, 42);
        expectPoint(start, 0, 40);
        expectPoint(end, 100, 40);
    }
}

TEST_F(Span, NarrowSpanTurnsItsHeadsOut) {
    std::vector<Piece> art = build(29.9);
    expectPoint(art[2].segments[0].p, -8.660254, 35);
    expectPoint(art[3].segments[0].p, 29.9 + 8.660254, 45);
    expectPoint(start, -10, 40);
    expectPoint(end, 39.9, 40);
    // A later span of a series adds no lead in front, nor a first extension line.
    art = build(29.9, 1);
    EXPECT_EQ(art.size(), 4U);
    expectPoint(start, -10, 40);
    // At the limit the heads stay in.
    build(30);
    expectPoint(start, 0, 40);
    expectPoint(end, 30, 40);
}

TEST_F(Span, SlashesAndDotsNeverGoOutside) {
    table.prefs().flArType = kArrowObliqueLine;
    std::vector<Piece> art = build(20);
    expectPoint(art[2].segments[0].p, 8.660254, 45);
    expectPoint(art[2].segments[2].p, -8.660254, 35);
    expectPoint(art[3].segments[0].p, 20 - 8.660254, 35);
    expectPoint(start, 0, 40);
    table.prefs().flArType = kArrowDot;
    art = build(20);
    ASSERT_EQ(art.size(), 5U);
    EXPECT_TRUE(art[2].closed);
    expectPoint(art[3].segments[0].p, 21, 40);
    expectPoint(end, 20, 40);
}

TEST_F(Span, GapEatsAtMostTheWayToTheFoot) {
    table.prefs().flScOfst = 60;
    const std::vector<Piece> art = build(100);
    expectPoint(art[0].segments[0].p, 0, 40);
    expectPoint(art[0].segments[1].p, 0, 50);
}

TEST_F(Span, TextTurnsOverWithTheOrderOfThePoints) {
    const Piece text = build(100, 0, 0).back();
    EXPECT_NEAR(std::fabs(text.angle), std::acos(-1), 1e-6);
    EXPECT_NEAR(text.place.v, 38, kNear);
}

class Run : public testing::Test {
  protected:
    void SetUp() override {
        PrefsRecord& prefs = table.prefs();
        prefs.flUseGrid = prefs.flUseFcur = prefs.flUseFcrs = prefs.flUseFops = prefs.flUseFrad = prefs.flUseFcnt = 0;
        table.choose("Oblique Dimension Tool");
    }
    void track(float h, float v) { table.track({h, v}); }
    void press(bool alt = false) { table.down(alt ? kAltModifier : 0); }
    void release(bool alt = false) { table.up(alt ? kAltModifier : 0); }
    DraftingTable table;
    ToolState& live = table.globals().liveState;
};

TEST_F(Run, PointsFollowTheCursorUntilTheyStand) {
    press();
    EXPECT_EQ(live.toolStep, 0);  // nothing was tracked yet
    track(10, 10);
    expectPoint(live.fromPoint, 10, 10);
    expectPoint(live.toPoint, 10, 10);
    press();
    EXPECT_EQ(live.toolStep, 1);
    track(90, 10);
    expectPoint(live.fromPoint, 10, 10);
    expectPoint(live.toPoint, 90, 10);
    EXPECT_EQ(live.toKind, kSnapFree);
    release();
    EXPECT_EQ(live.toolStep, 2);
    track(40, 60);
    expectPoint(live.toPoint, 90, 10);
    EXPECT_EQ(table.globals().hitKind, kSnapFree);
    EXPECT_EQ(table.globals().drawnState.toolStep, 2);
}

TEST_F(Run, ReleaseOnTheFirstPointEndsTheRun) {
    track(10, 10);
    press();
    release();
    EXPECT_EQ(live.toolStep, 0);
    EXPECT_EQ(live.toPoint.h, 0);
}

TEST_F(Run, StopsNeedAltAndThreePoints) {
    track(0, 0);
    press();
    track(20, 0);
    press();
    EXPECT_EQ(live.stopCount, 0);
    press(true);
    release(true);
    EXPECT_EQ(live.toolStep, 1);
    track(23, 3);
    press(true);
    EXPECT_EQ(live.stopCount, 1);
    track(23.5F, 0);
    press(true);
    EXPECT_EQ(live.stopCount, 2);
    // A stop within three points of the end is the end.
    track(25, 2);
    release();
    EXPECT_EQ(live.toolStep, 2);
    EXPECT_EQ(live.stopCount, 1);
    expectPoint(live.stops[0].point, 20, 0);
}

TEST_F(Run, ThirtyStopsAtMost) {
    track(0, 0);
    press();
    for (int i = 1; i <= 35; ++i) {
        track(static_cast<float>(10 * i), 0);
        press(true);
    }
    EXPECT_EQ(live.stopCount, 30);
    EXPECT_EQ(live.toolStep, 1);
}

// The copy of what is drawn must stay what it was when it is erased, and the axis shown be the axis built.
TEST_F(Run, AxisDecisionLivesInTheLiveState) {
    table.choose("Straight Dimension Tool");
    track(1, 0);
    press();
    track(100, 60);
    release();
    track(80, 5);
    EXPECT_EQ(live.axisWord, 2);
    track(82, 8);  // held
    expectPoint(live.tmpPos, 80, 5);
    expectPoint(table.globals().drawnState.tmpPos, 80, 5);
    track(80, 90);
    EXPECT_EQ(live.axisWord, 1);
    EXPECT_EQ(table.globals().drawnState.axisWord, 1);
}

}  // namespace
}  // namespace quorvel::tests
