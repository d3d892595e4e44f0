// The linear tools: where the dimension line runs, what a span is made of, and how presses and releases become points.
#include "plugin/dimensioning/linear.h"

#include <gtest/gtest.h>

#include <cmath>

#include "plugin/dimensioning/graphics.h"
#include "tests/support/fake_suites.h"

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
        return ProjectFeet(E, P1, P2, &A, &B, &tmpPos, stopCount, S, &axisWord);
    }
    bool isUpright() const { return A.h == B.h; }
    bool isLevel() const { return A.v == B.v; }

    FakeHost host;
    DoublePoint P1{100, 100}, P2{200, 150}, A, B, tmpPos, S[4];
    std::int16_t stopCount = 0, axisWord = 0;
};

TEST_F(Feet, ObliqueLineRunsParallel) {
    host.prefs().flDistanceMode = kObliqueMode;
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
    host.prefs().flDistanceMode = kStraightMode;
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
    host.prefs().flDistanceMode = kStraightMode;
    host.zoom = 0.5F;  // a pixel is two points: the axis holds for 10
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
    host.prefs().flDistanceMode = kStraightMode;
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
    std::vector<FakeArt> build(double width, std::int32_t index = 0) {
        const AIArtHandle group = host.newGroup();
        BuildSpan(group, {0, 0}, {width, 0}, {0, 40}, {width, 40}, &start, &end, index);
        return host.piecesOf(group);
    }
    void SetUp() override {
        host.prefs().flScOfst = 3;
        host.prefs().flArAngle = 30;
        host.prefs().flArUnit = 5;
    }
    FakeHost host;
    DoublePoint start, end;
};

TEST_F(Span, HeadsInside) {
    for (std::int16_t shape : {kArrowOpen, kArrowTriangular}) {
        host.prefs().flArType = shape;
        const std::vector<FakeArt> art = build(100);
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
        EXPECT_NEAR(art[4].transforms.at(1).tx, 50, kNear);
        EXPECT_NEAR(art[4].transforms.at(1).ty, 42, kNear);
        expectPoint(start, 0, 40);
        expectPoint(end, 100, 40);
    }
}

TEST_F(Span, NarrowSpanTurnsItsHeadsOut) {
    std::vector<FakeArt> art = build(29.9);
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
    host.prefs().flArType = kArrowObliqueLine;
    std::vector<FakeArt> art = build(20);
    expectPoint(art[2].segments[0].p, 8.660254, 45);
    expectPoint(art[2].segments[2].p, -8.660254, 35);
    expectPoint(art[3].segments[0].p, 20 - 8.660254, 35);
    expectPoint(start, 0, 40);
    host.prefs().flArType = kArrowDot;
    art = build(20);
    ASSERT_EQ(art.size(), 5U);
    EXPECT_TRUE(art[2].closed);
    expectPoint(art[3].segments[0].p, 21, 40);
    expectPoint(end, 20, 40);
}

TEST_F(Span, GapEatsAtMostTheWayToTheFoot) {
    host.prefs().flScOfst = 60;
    const std::vector<FakeArt> art = build(100);
    expectPoint(art[0].segments[0].p, 0, 40);
    expectPoint(art[0].segments[1].p, 0, 50);
}

TEST_F(Span, TextTurnsOverWithTheOrderOfThePoints) {
    const AIArtHandle group = host.newGroup();
    BuildSpan(group, {100, 0}, {0, 0}, {100, 40}, {0, 40}, &start, &end, 0);
    const FakeArt text = host.piecesOf(group).back();
    EXPECT_NEAR(text.transforms.at(0).a, -1, 1e-6);
    EXPECT_NEAR(text.transforms.at(1).ty, 38, kNear);
}

class Run : public testing::Test {
  protected:
    void SetUp() override {
        PrefsRecord& prefs = host.prefs();
        prefs.flUseGrid = prefs.flUseFcur = prefs.flUseFcrs = prefs.flUseFops = prefs.flUseFrad = prefs.flUseFcnt = 0;
    }
    void track(float h, float v) {
        live.cursorPoint = {h, v};
        LinearTrack(&message);
    }
    void press(bool alt = false) {
        event.modifiers = alt ? kAltModifier : 0;
        LinearDown(&message);
    }
    void release(bool alt = false) {
        event.modifiers = alt ? kAltModifier : 0;
        LinearUp(&message);
    }
    FakeHost host;
    ToolState& live = host.globals().liveState;
    AIEvent event;
    AIToolMessage message = [this] {
        AIToolMessage made;
        made.event = &event;
        return made;
    }();
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
    EXPECT_EQ(host.globals().hitKind, kSnapFree);
    EXPECT_EQ(host.globals().drawnState.toolStep, 2);
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
    host.prefs().flDistanceMode = kStraightMode;
    track(0, 0);
    press();
    track(100, 60);
    release();
    track(80, 5);
    EXPECT_EQ(live.axisWord, 2);
    track(82, 8);  // held
    expectPoint(live.tmpPos, 80, 5);
    expectPoint(host.globals().drawnState.tmpPos, 80, 5);
    track(80, 90);
    EXPECT_EQ(live.axisWord, 1);
    EXPECT_EQ(host.globals().drawnState.axisWord, 1);
}

}  // namespace
}  // namespace quorvel::tests
