// The grid, the eighth turns and the spacing of dimension lines, by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "plugin/snapping/snap.h"

namespace quorvel {
namespace {

struct Spacing : testing::Test {
    std::unique_ptr<PluginGlobals> globals = std::make_unique<PluginGlobals>();

    Spacing() {
        globals->prefs.flGrDistance = 10;
        globals->liveState.fromPoint = {0, 0};
        globals->liveState.toPoint = {100, 0};
    }
    RealPoint At(RealPoint cursor) {
        SnapGridSpacing(globals.get(), &cursor);
        return cursor;
    }
};

void ExpectPoint(const RealPoint& point, double h, double v) {
    EXPECT_NEAR(point.h, h, 1e-4);
    EXPECT_NEAR(point.v, v, 1e-4);
}

TEST(Grid, RoundsEachAxisByItsOwnStep) {
    PrefsRecord prefs{};
    prefs.flGrWidth = prefs.flGrHeight = 14.17323f;
    RealPoint point = {-7.0867f, -7.0865f};  // half a step is 7.086615
    SnapToGrid(prefs, &point);
    EXPECT_EQ(point.h, -14.17323f);
    EXPECT_EQ(point.v, 0.0f);
    prefs.flGrWidth = 10;
    prefs.flGrHeight = 4;
    point = {15, 5.9f};
    SnapToGrid(prefs, &point);
    ExpectPoint(point, 20, 4);
    for (const float step : {0.0f, -5.0f, NAN, 1e-30f}) {
        prefs.flGrHeight = step;
        point = {4, 5.9f};
        SnapToGrid(prefs, &point);
        ExpectPoint(point, 0, 5.9);
    }
}

TEST(Constraint, KeepsTheLengthAndTakesTheNearestEighthTurn) {
    RealPoint point = {13, 24};
    ConstrainDirection(kAltModifier, {10, 20}, &point);
    ExpectPoint(point, 13, 24);
    ConstrainDirection(kShiftModifier, {10, 20}, &point);  // length 5, 53 degrees
    ExpectPoint(point, 10 + 5 * std::sqrt(0.5), 20 + 5 * std::sqrt(0.5));
    point = {6, 19};
    ConstrainDirection(kShiftModifier | kAltModifier, {10, 20}, &point);
    ExpectPoint(point, 10 - std::sqrt(17), 20);
    point = {10, 20};
    ConstrainDirection(kShiftModifier, {10, 20}, &point);
    ExpectPoint(point, 10, 20);
}

TEST_F(Spacing, ObliqueStandsOffTheMeasuredSegment) {
    ExpectPoint(At({30, 24}), 30, 20);
    ExpectPoint(At({30, -26}), 30, -30);
    ExpectPoint(At({30, 4}), 30, 0);
    ExpectPoint(At({130, 45}), 100 + 30 * 50 / std::hypot(30, 45), 45 * 50 / std::hypot(30, 45));  // 54 from the end
    globals->liveState.toPoint = {0, 0};
    ExpectPoint(At({0, 14}), 0, 10);  // nothing measured yet
    globals->prefs.flGrDistance = 0;
    ExpectPoint(At({3, 14}), 3, 14);
}

TEST_F(Spacing, OneAxisStartsFromTheNearerPoint) {
    globals->prefs.flDistanceMode = 2;
    ExpectPoint(At({-14, 7}), -10, 7);
    ExpectPoint(At({96, 7}), 100, 7);
    ExpectPoint(At({126, 7}), 130, 7);
    globals->liveState.toPoint = {33, 0};
    ExpectPoint(At({16.5f, 7}), 20, 7);  // a tie goes to the first point
}

TEST_F(Spacing, AtThePlacingStepDisplacesTheGrid) {
    globals->prefs.flUseGrid = globals->prefs.flUseFdis = 1;
    globals->prefs.flGrWidth = globals->prefs.flGrHeight = 7;
    const auto chain = [&](std::int16_t step) {
        globals->liveState.toolStep = step;
        globals->liveState.cursorPoint = {30, 24};
        EXPECT_EQ(RunSnapChain(globals.get(), SnapFamily::linear).kind, kSnapNothing);
        return globals->liveState.cursorPoint;
    };
    ExpectPoint(chain(1), 28, 21);
    ExpectPoint(chain(2), 30, 20);
    globals->prefs.flUseFdis = 0;
    ExpectPoint(chain(2), 28, 21);
    globals->prefs.flUseGrid = 0;
    ExpectPoint(chain(0), 30, 24);
}

}  // namespace
}  // namespace quorvel
