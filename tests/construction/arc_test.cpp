// The Arc tools: the solver on random points, the cubics of an arc, and the tools' steps on a drawing.
#include "plugin/construction/arc.h"

#include <cmath>
#include <numbers>
#include <random>

#include "tests/construction/tool_rig.h"

namespace quorvel::tests {
namespace {

constexpr double kRealPi = std::numbers::pi;
constexpr int kCases = 10000;

struct ArcCases : testing::Test {
    std::mt19937 random{5};
    CircleArc arc;
    DoublePoint previous;
    double direction = kNoDistance;

    DoublePoint somewhere() {
        std::uniform_real_distribution<float> place(-300, 300);
        std::uniform_int_distribution<> snapped(0, 3);  // often level or upright to each other
        const auto number = [&] { return snapped(random) == 0 ? 60.0F * snapped(random) : place(random); };
        const float h = number(), v = number();
        return {h, v};
    }
    bool solve(std::int16_t mode, const DoublePoint& first, const DoublePoint& second, const DoublePoint& third) {
        return SolveArc(mode, third, first, second, &arc, &previous, &direction);
    }
    DoublePoint at(double t) const { return PolarPoint(arc.centre, arc.radius, arc.start + (arc.end - arc.start) * t); }
    double gap(const DoublePoint& p) const { return std::fabs(DistanceBetweenPoints(arc.centre, p) - arc.radius); }
    // Where along the sweep (0 to 1) the direction to p lies; the constants' short digits are allowed for.
    bool sweeps(const DoublePoint& p) const {
        const double low = std::min(arc.start, arc.end) - 1e-5, high = std::max(arc.start, arc.end) + 1e-5;
        const double angle = AngleBetweenPoints(arc.centre, p);
        for (const double turn : {-2 * kRealPi, 0.0, 2 * kRealPi})
            if (angle + turn >= low && angle + turn <= high) return true;
        return false;
    }
    bool endsAt(const DoublePoint& a, const DoublePoint& c) const {
        const double slack = 0.01 + arc.radius * 1e-4;
        const auto near = [&](const DoublePoint& p, const DoublePoint& q) {
            return DistanceBetweenPoints(p, q) < slack;
        };
        return (near(at(0), a) && near(at(1), c)) || (near(at(0), c) && near(at(1), a));
    }
};

double TwiceArea(const DoublePoint& a, const DoublePoint& b, const DoublePoint& c) {
    return std::fabs((b.h - a.h) * (c.v - a.v) - (b.v - a.v) * (c.h - a.h));
}

TEST_F(ArcCases, ThreePointArcsPassThroughTheirPoints) {
    int solved = 0;
    for (int i = 0; i < kCases && !HasFailure(); ++i) {
        const DoublePoint a = somewhere(), b = somewhere(), c = somewhere();
        SCOPED_TRACE(i);
        if (!solve(kArcThreePoints, a, b, c)) {
            EXPECT_LT(TwiceArea(a, b, c), 1.0);
            continue;
        }
        if (arc.radius > 1e5) continue;  // as good as straight
        ++solved;
        EXPECT_LT(gap(b), 1e-3 + arc.radius * 1e-4);
        EXPECT_TRUE(endsAt(a, c));
        EXPECT_TRUE(sweeps(b));
        EXPECT_LT(std::fabs(arc.end - arc.start), 2 * kRealPi + 1e-5);
    }
    EXPECT_GT(solved, kCases / 2);
}

TEST_F(ArcCases, TangentialArcsLeaveAlongTheirTangent) {
    int solved = 0;
    for (int i = 0; i < kCases && !HasFailure(); ++i) {
        const DoublePoint a = somewhere(), b = somewhere(), c = somewhere();
        SCOPED_TRACE(i);
        if (!solve(kArcTangential, a, b, c)) {
            EXPECT_LT(TwiceArea(a, b, c), 1.0);
            continue;
        }
        if (arc.radius > 1e5 || PointsEqual(a, c)) continue;
        ++solved;
        EXPECT_TRUE(endsAt(a, c));
        const double tangent = AngleBetweenPoints(a, b), inward = AngleBetweenPoints(a, arc.centre);
        EXPECT_NEAR(std::fabs(std::sin(tangent - inward)), 1, 1e-5);
        // A step along the arc from a leads towards b.
        const bool fromA = DistanceBetweenPoints(at(0), a) < DistanceBetweenPoints(at(1), a);
        const DoublePoint step = fromA ? at(1e-3) : at(1 - 1e-3);
        EXPECT_GT((step.h - a.h) * (b.h - a.h) + (step.v - a.v) * (b.v - a.v), 0);
    }
    EXPECT_GT(solved, kCases / 2);
}

TEST_F(ArcCases, CenterArcsFollowTheCursor) {
    // From the right of the centre round by small steps, up to a full turn; then back and below. The sense holds.
    for (const double sense : {1.0, -1.0}) {
        for (const double base : {0.0, 0.7, kRealPi / 2, 3.0}) {
            direction = kNoDistance;
            const DoublePoint centre{100, 100}, start = PolarPoint(centre, 50, base);
            for (int degrees = 5; degrees < 355; degrees += 5) {
                const double turn = sense * degrees * kRealPi / 180;
                ASSERT_TRUE(solve(kArcCenter, centre, start, PolarPoint(centre, 70, base + turn)));
                EXPECT_NEAR(std::fabs(arc.end - arc.start), degrees * kRealPi / 180, 1e-5) << base << " " << degrees;
                EXPECT_TRUE(sweeps(PolarPoint(centre, 50, base + turn / 2)));
            }
            EXPECT_DOUBLE_EQ(arc.radius, 50);
            solve(kArcCenter, centre, start, PolarPoint(centre, 60, base + sense * 0.3));
            EXPECT_NEAR(std::fabs(arc.end - arc.start), 0.3, 1e-5);
            solve(kArcCenter, centre, start, PolarPoint(centre, 60, base - sense * 0.3));
            EXPECT_NEAR(std::fabs(arc.end - arc.start), 0.3, 1e-5) << "through the start the sense turns";
        }
    }
}

TEST_F(ArcCases, PointsWithoutAnArc) {
    for (const std::int16_t mode : {kArcTangential, kArcThreePoints}) {
        EXPECT_FALSE(solve(mode, {0, 5}, {10, 5}, {20, 5}));
        EXPECT_FALSE(solve(mode, {0, 0}, {10, 20}, {30, 60}));
        EXPECT_FALSE(solve(mode, {3, 4}, {3, 4}, {9, 9}));
    }
    EXPECT_FALSE(solve(kArcCenter, {3, 4}, {3, 4}, {9, 9}));
}

TEST_F(ArcCases, TheMiddlePointChoosesTheWayRound) {
    ASSERT_TRUE(solve(kArcThreePoints, {100, 0}, {0, 100}, {-100, 0}));
    EXPECT_NEAR(arc.radius, 100, 1e-9);
    EXPECT_NEAR(std::fabs(arc.end - arc.start), kRealPi, 1e-5);
    ASSERT_TRUE(solve(kArcThreePoints, {100, 0}, {0, -100}, {0, 100}));
    EXPECT_NEAR(std::fabs(arc.end - arc.start), 1.5 * kRealPi, 1e-5);
}

TEST(ArcPiece, HandlesFollowTheRatioRule) {
    PathSegment first, second;
    ArcPieceToCubic({0, 0}, {100, 0}, {0, 100}, &first, &second);
    ExpectAt(first.out, 100, 55.2277);
    ExpectAt(second.in, 55.2277, 100);
    // An eighth: the tangents cross tan(22.5) from the ends, the ratio is sin(45) / 8 + 0.552277.
    const double leg = 100 * std::tan(kRealPi / 8) * (std::sqrt(0.5) / 8 + 0.552277);
    ArcPieceToCubic({0, 0}, {100, 0}, PolarPoint({0, 0}, 100, -kRealPi / 4), &first, &second);
    ExpectAt(first.out, 100, -leg);
    ExpectAt(second.in, 100 * std::sqrt(0.5) + leg * std::sqrt(0.5), -100 * std::sqrt(0.5) + leg * std::sqrt(0.5));
    const PathSegment kept = first;
    ArcPieceToCubic({0, 0}, {100, 0}, {-100, 0}, &first, &second);
    EXPECT_TRUE(PointsEqual(first.out, kept.out));
}

class ArcTools : public ToolRig {
  protected:
    // The path in the new group on top.
    const std::vector<PathSegment>& drawn() { return segments(document().find(topArt())->firstChild); }
};

TEST_F(ArcTools, AClickDrawsTheArcIntoItsGroup) {
    take("Arc Tool [Center and Two Points]");
    ASSERT_TRUE(drag({200, 200}, {300, 200}));
    EXPECT_EQ(artCount(), 0);
    for (const RealPoint to : {RealPoint{295, 230}, {260, 280}, {200, 290}}) move(to);
    EXPECT_GT(plugin.user().visiblePixels(), 50U);
    press();
    EXPECT_EQ(plugin.host().lastUndoName(), "Undo Arc Tool [Center and Two Points]");
    release();
    EXPECT_EQ(plugin.user().visiblePixels(), 0U);
    ASSERT_EQ(artCount(), 2);
    EXPECT_EQ(document().find(topArt())->kind, kGroupArt);
    ASSERT_EQ(drawn().size(), 5U);
    for (int i = 0; i < 5; ++i) {
        const double angle = i * 22.5 * kRealPi / 180;
        ExpectAt(drawn()[i].p, 200 + 100 * std::cos(angle), 200 + 100 * std::sin(angle));
        EXPECT_EQ(drawn()[i].corner != 0, i == 0 || i == 4);
    }
    EXPECT_TRUE(PointsEqual(drawn()[0].in, drawn()[0].p) && PointsEqual(drawn()[4].out, drawn()[4].p));
}

TEST_F(ArcTools, ClockwiseArcsOfTheThreeTools) {
    take("Arc Tool [Center and Two Points]");
    ASSERT_TRUE(drag({200, 200}, {300, 200}));
    for (const RealPoint to : {RealPoint{295, 170}, {200, 110}, {105, 170}, {110, 230}, {200, 290}}) move(to);
    press();
    ExpectAt(drawn()[2].p, 200 - 100 * std::sqrt(0.5), 200 - 100 * std::sqrt(0.5));
    take("Arc Tool [Three Points]");
    ASSERT_TRUE(drag({100, 300}, {150, 350}));
    move({200, 300});
    press();
    ExpectAt(drawn()[2].p, 150, 350);
    take("Arc Tool [Tangential Line]");
    ASSERT_TRUE(drag({400, 100}, {400, 150}));
    move({500, 100});
    press();
    ExpectAt(drawn()[2].p, 450, 150);
}

TEST_F(ArcTools, ShiftTurnsAboutTheArcsCenter) {
    take("Arc Tool [Center and Two Points]");
    ASSERT_TRUE(drag({200, 200}, {300, 200}));
    move({260, 250}, kShiftModifier);
    ExpectAt(plugin.globals().liveState.cursorPoint, 200 + std::hypot(60, 50) * std::sqrt(0.5),
             200 + std::hypot(60, 50) * std::sqrt(0.5));
}

TEST_F(ArcTools, ErasingMatchesDrawingOnTheStartRay) {
    plugin.prefs().flUseFcur = plugin.prefs().flUseFops = plugin.prefs().flUseFrad = 0;
    take("Arc Tool [Center and Two Points]");
    ASSERT_TRUE(drag({200, 200}, {300, 200}));
    for (const RealPoint to :
         {RealPoint{300.1F, 200}, {280, 190.3F}, {283.3F, 200}, {250, 233}, {250, 200}, {300, 200}})
        move(to);
    press();
    EXPECT_EQ(plugin.user().visiblePixels(), 0U);
}

TEST_F(ArcTools, RefusalsBeep) {
    take("Arc Tool [Three Points]");
    const auto ends = [&](RealPoint third) {
        const int beeps = plugin.user().beeps();
        move(third);
        press();
        return plugin.user().beeps() == beeps;
    };
    EXPECT_FALSE(drag({100, 100}, {100, 100}));
    ASSERT_TRUE(drag({100, 100}, {200, 100}));
    EXPECT_FALSE(ends({300, 100}));
    change([](doc::Document& document) { return document.setLayerEditable(document.currentLayer(), false); });
    ASSERT_TRUE(drag({100, 100}, {200, 100}));
    EXPECT_FALSE(ends({300, 200}));
    EXPECT_EQ(artCount(), 0);
    EXPECT_EQ(plugin.globals().liveState.toolStep, 0);
}

}  // namespace
}  // namespace quorvel::tests
