// The Angle tool on two lines that cross at (100, 100): all four quadrants, the reflex side, upright and parallel legs.
#include "plugin/dimensioning/angle.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/drafting_table.h"

namespace quorvel::tests {
namespace {

constexpr double kNear = 2e-3;
const double kTurn = 2 * std::acos(-1);

void expectPoint(const RealPoint& point, double h, double v) {
    EXPECT_NEAR(point.h, h, kNear);
    EXPECT_NEAR(point.v, v, kNear);
}
void expectPolar(const RealPoint& point, double radius, double degrees) {
    const double a = degrees * kTurn / 360;
    expectPoint(point, 100 + radius * std::cos(a), 100 + radius * std::sin(a));
}

class Angle : public testing::Test {
  protected:
    void SetUp() override {
        PrefsRecord& prefs = table.prefs();
        prefs.flUseFcur = prefs.flUseFcrs = prefs.flUseFops = 0;
        prefs.flArSpStr = 1;
    }
    std::vector<Piece> measure(RealPoint from, RealPoint to, RealPoint placement) {
        table.removeDimensions();
        table.measure("Angle Tool", from, to, placement);
        const std::vector<doc::ArtId> made = table.dimensions();
        return made.empty() ? std::vector<Piece>{} : table.pieces(made.front());
    }
    // Where the text stands: 2 outside the arc at its middle, running clockwise.
    void expectText(const Piece& text, const char16_t* value, double radius, double middleDegrees) {
        EXPECT_EQ(text.text, value);
        expectPolar(text.place, radius + 2, middleDegrees);
        EXPECT_NEAR(std::remainder(text.angle - (middleDegrees - 90) * kTurn / 360, kTurn), 0, 1e-5);
    }
    DraftingTable table;
    doc::ArtId level = table.drawLines({{0, 100}, {300, 100}}, false);
    doc::ArtId upright = table.drawLines({{100, 0}, {100, 300}}, false);
};

constexpr RealPoint kEast{180, 100}, kNorth{100, 180}, kWest{20, 100}, kSouth{100, 20};

TEST_F(Angle, PartsInTheirOrder) {
    const std::vector<Piece> art = measure(kEast, kNorth, {180, 160});  // radius 100
    ASSERT_EQ(art.size(), 4U);
    ASSERT_EQ(art[0].segments.size(), 5U);
    for (int i = 0; i < 5; ++i) expectPolar(art[0].segments[i].p, 100, 22.5 * i);
    // At the ends of the arc, trailing along it.
    const double wing = kTurn / 24;
    expectPoint(art[1].segments[0].p, 200 - 10 * std::sin(wing), 100 + 10 * std::cos(wing));
    expectPoint(art[1].segments[1].p, 200, 100);
    expectPoint(art[2].segments[1].p, 100, 200);
    expectPoint(art[2].segments[2].p, 100 + 10 * std::cos(wing), 200 - 10 * std::sin(wing));
    expectText(art[3], u" 90°", 100, 45);
    EXPECT_EQ(table.tag(table.dimension(), "QUORVEL_TOOLCNF"), "4000,0,180,160,0");
}

TEST_F(Angle, EachQuadrantBetweenItsArms) {
    const struct {
        RealPoint from, to, placement;
        double middle;
    } rows[] = {
        {kEast, kNorth, {180, 160}, 45}, {kNorth, kEast, {180, 160}, 45}, {kNorth, kWest, {20, 160}, 135},
        {kWest, kNorth, {40, 180}, 135}, {kSouth, kEast, {160, 20}, -45}, {kWest, kSouth, {40, 20}, 225},
    };
    for (const auto& row : rows) expectText(measure(row.from, row.to, row.placement).back(), u" 90°", 100, row.middle);
}

TEST_F(Angle, ElsewhereTheReflexSideIsShown) {
    for (const RealPoint& placement : {RealPoint{20, 40}, RealPoint{40, 180}, RealPoint{180, 40}}) {
        const std::vector<Piece> art = measure(kEast, kNorth, placement);
        expectText(art.back(), u" 270°", 100, 225);
        for (int i = 0; i < 5; ++i) expectPolar(art[0].segments[i].p, 100, 360 - 67.5 * i);
        // The heads trail into the arc that is shown.
        EXPECT_LT(art[1].segments[0].p.v, 100);
        EXPECT_LT(art[2].segments[0].p.h, 100);
    }
    // West and south: what lies between their directions as numbers is the three quarters.
    expectText(measure(kWest, kSouth, {160, 180}).back(), u" 270°", 100, 45);
}

TEST_F(Angle, CentreOfAnUprightAndASlantedLeg) {
    // v = 20 + 0.8 h crosses h = 100 at 100.
    table.change([&](doc::Document& document) { return document.removeArt(level); });
    const doc::ArtId slanted = table.drawLines({{0, 20}, {300, 260}}, false);
    const double slope = std::atan(0.8) * 360 / kTurn;
    for (const auto& [from, to] : {std::pair{kNorth, RealPoint{200, 180}}, std::pair{RealPoint{200, 180}, kNorth}}) {
        const std::vector<Piece> art = measure(from, to, {160, 180});
        expectPolar(art[0].segments[0].p, 100, slope);
        expectPolar(art[0].segments[4].p, 100, 90);
        EXPECT_EQ(art.back().text, u" 51°");  // 51.34
    }
    EXPECT_EQ(table.tag(table.dimension(), "QUORVEL_FROMCELL"),
              table.tag(slanted, "quorvel_object_id") + ",1,0,300,260");
}

TEST_F(Angle, ClosingSegmentCountsToTheLastAnchor) {
    const doc::ArtId triangle = table.drawLines({{600, 100}, {800, 100}, {600, 300}}, true);
    const std::vector<Piece> art = measure({700, 100}, {600, 200}, {660, 140});
    EXPECT_EQ(art.back().text, u" 90°");
    const std::string id = table.tag(triangle, "quorvel_object_id");
    EXPECT_EQ(table.tag(table.dimension(), "QUORVEL_FROMCELL"), id + ",1,0,800,100");
    EXPECT_EQ(table.tag(table.dimension(), "QUORVEL_TOCELL"), id + ",0,0,600,100");
}

TEST_F(Angle, WingsAreWholePointsAndDotsStandAtBothEnds) {
    table.prefs().flArSize1 = 10.9F;
    std::vector<Piece> art = measure(kEast, kNorth, {180, 160});
    const PathSegment* head = art[1].segments.data();
    EXPECT_NEAR(std::hypot(head[0].p.h - head[1].p.h, head[0].p.v - head[1].p.v), 10, kNear);
    table.prefs().flArType = 3;
    art = measure(kEast, kNorth, {180, 160});
    ASSERT_EQ(art.size(), 4U);
    EXPECT_TRUE(art[1].closed && art[2].closed);
    expectPoint(art[1].segments[0].p, 201, 100);
    expectPoint(art[2].segments[0].p, 101, 200);
}

TEST_F(Angle, RefusalsBeep) {
    const auto beepsFor = [&](RealPoint from, RealPoint to) {
        const int before = table.beeps();
        EXPECT_TRUE(measure(from, to, {180, 160}).empty());
        return table.beeps() - before;
    };
    EXPECT_EQ(beepsFor({250, 100}, {150, 100}), 1);  // one line: refused at the click
    table.drawLines({{400, 0}, {400, 300}}, false);
    EXPECT_EQ(beepsFor(kNorth, {400, 180}), 1);  // both upright
    table.drawLines({{0, 400}, {300, 400.02F}}, false);
    EXPECT_EQ(beepsFor(kEast, {200, 400}), 1);  // slopes that hardly differ
    // Refused at the release or at the press; the click on free paper is refused too then.
    EXPECT_EQ(beepsFor({250, 100}, {250, 100}), 2);
    EXPECT_EQ(beepsFor(kEast, {500, 500}), 2);
    EXPECT_EQ(beepsFor({500, 500}, kEast), 2);
    EXPECT_EQ(table.globals().liveState.toolStep, 0);
}

}  // namespace
}  // namespace quorvel::tests
