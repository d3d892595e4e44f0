// Radius and Diameter on a circle of 50 about (200, 200), placed along the direction (0.6, 0.8), so that all points can
// be computed by hand: the picked surface point is (230, 240), 100 away from the centre stands (260, 280).
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "plugin/dimensioning/diameter.h"
#include "plugin/dimensioning/radius.h"
#include "tests/support/drafting_table.h"

namespace quorvel::tests {
namespace {

constexpr double kNear = 2e-3;
constexpr RealPoint kCentre{200, 200}, kOnArc{235.35534F, 235.35534F};
constexpr RealPoint kSurface{230, 240}, kFarSurface{170, 160}, kOutside{260, 280}, kInside{212, 216};
constexpr std::int16_t kShowCenter = 0, kShowSurface = 1;

void expectPoint(const RealPoint& point, double h, double v) {
    EXPECT_NEAR(point.h, h, kNear);
    EXPECT_NEAR(point.v, v, kNear);
}
void expectPoint(const RealPoint& point, const RealPoint& expected) { expectPoint(point, expected.h, expected.v); }

class Round : public testing::Test {
  protected:
    void SetUp() override {
        PrefsRecord& prefs = table.prefs();
        prefs.flUseFcur = prefs.flUseFcrs = prefs.flUseFops = prefs.flUseFrad = 0;
        prefs.flArUnit = 5;
        std::strcpy(prefs.flArFName, "DejaVu Sans");
    }

    // What a pick at the first and a release at the second point make; empty when nothing.
    std::vector<Piece> label(const char* tool, RealPoint pick, RealPoint placement, std::uint16_t modifiers = 0) {
        table.removeDimensions();
        table.pull(tool, pick, placement, {}, modifiers);
        const std::vector<doc::ArtId> made = table.dimensions();
        return made.empty() ? std::vector<Piece>{} : table.pieces(made.front());
    }

    // A head of 10 and 15 degrees at the tip, trailing towards (h, v).
    void expectHead(const Piece& head, RealPoint tip, double h, double v, double length = 10) {
        ASSERT_EQ(head.segments.size(), 3U);
        const double d = std::atan2(v - tip.v, h - tip.h), a = std::acos(-1) / 12;
        expectPoint(head.segments[0].p, tip.h + length * std::cos(d + a), tip.v + length * std::sin(d + a));
        expectPoint(head.segments[1].p, tip);
        expectPoint(head.segments[2].p, tip.h + length * std::cos(d - a), tip.v + length * std::sin(d - a));
    }

    DraftingTable table;
    doc::ArtId circle = table.drawCircle(kCentre, 50);
};

struct Placing {
    std::int16_t mode;
    RealPoint placement, leaderStart, leaderEnd;
    double towardsH, towardsV;  // where the head trails
    RealPoint text;
};

TEST_F(Round, RadiusPlacedOutsideInsideAndOnTheCircle) {
    // The text stands 2 to the left of its stretch: the middle plus (-1.6, 1.2).
    const Placing rows[] = {
        {kShowCenter, kOutside, kCentre, kOutside, 200, 200, {243.4F, 261.2F}},
        {kShowCenter, kInside, kCentre, kSurface, 200, 200, {213.4F, 221.2F}},
        {kShowCenter, kSurface, kCentre, kSurface, 200, 200, {213.4F, 221.2F}},
        {kShowSurface, kOutside, kSurface, kOutside, 260, 280, {243.4F, 261.2F}},
        {kShowSurface, kInside, kSurface, kInside, 212, 216, {219.4F, 229.2F}},
    };
    for (const Placing& row : rows) {
        SCOPED_TRACE(testing::Message() << row.mode << " " << row.placement.h);
        table.prefs().flRadiusMode = row.mode;
        const std::vector<Piece> art = label("Radius Tool", kOnArc, row.placement);
        ASSERT_EQ(art.size(), 3U);
        ASSERT_EQ(art[0].segments.size(), 2U);
        expectPoint(art[0].segments[0].p, row.leaderStart);
        expectPoint(art[0].segments[1].p, row.leaderEnd);
        expectHead(art[1], kSurface, row.towardsH, row.towardsV);
        EXPECT_EQ(art[2].text, u"R50");
        expectPoint(art[2].place, row.text);
        EXPECT_NEAR(art[2].angle, std::atan2(0.8, 0.6), 1e-5);
    }
}

// On the circle counts as inside: the leader's end is then the computed surface point, not the placement, to the bit.
TEST_F(Round, OnTheCircleIsInside) {
    const doc::ArtId about = table.drawCircle({0, 0}, 65);
    for (const auto& [h, v] :
         {std::pair{16, 63}, {63, 16}, {33, 56}, {56, 33}, {25, 60}, {60, 25}, {39, 52}, {52, 39}}) {
        const DoublePoint placement{double(h), double(v)};
        double r = 0;
        DoublePoint inner, surface, outer;
        table.inside([&] {
            table.globals().liveState.fromCells[0] = {table.handle(about), 1};
            ASSERT_EQ(RadiusGeometry(placement, &r, &inner, &surface, &outer), 1);
        });
        ASSERT_EQ(r, 65);
        EXPECT_TRUE(PointsEqual(outer, surface)) << h << " " << v;
    }
}

TEST_F(Round, TextReadsFromLeftToRightOnTheOtherSideToo) {
    const std::vector<Piece> art = label("Radius Tool", kOnArc, {140, 120});
    expectPoint(art[1].segments[1].p, kFarSurface);
    expectPoint(art[2].place, 153.4, 141.2);
    EXPECT_NEAR(art[2].angle, std::atan2(0.8, 0.6), 1e-5);
}

// "R50" is 23.6 wide at 12 points in this font: 24, and 5 on each side.
TEST_F(Round, SubLineIsAsLongAsTheText) {
    table.prefs().flRdSpos = 1;
    std::vector<Piece> art = label("Radius Tool", kOnArc, kOutside);
    ASSERT_EQ(art[0].segments.size(), 3U);
    expectPoint(art[0].segments[1].p, kOutside);
    expectPoint(art[0].segments[2].p, 226, 280);
    expectPoint(art[2].place, 243, 282);
    EXPECT_NEAR(art[2].angle, 0, 1e-6);
    table.prefs().flRdSpos = 2;
    art = label("Radius Tool", kOnArc, kOutside);
    expectPoint(art[0].segments[2].p, 294, 280);
    expectPoint(art[2].place, 277, 282);
    // Inside and on the surface, the shelf starts from the placement.
    table.prefs().flRdSpos = 1;
    table.prefs().flRadiusMode = kShowSurface;
    art = label("Radius Tool", kOnArc, kInside);
    expectPoint(art[0].segments[0].p, 178, 216);
    expectPoint(art[0].segments[1].p, kInside);
    expectPoint(art[0].segments[2].p, kSurface);
    expectPoint(art[2].place, 195, 218);
}

TEST_F(Round, DiameterCrossesTheCircleInCenterMode) {
    std::vector<Piece> art = label("Diameter Tool", kOnArc, kOutside);
    ASSERT_EQ(art.size(), 4U);
    expectPoint(art[0].segments[0].p, kFarSurface);
    expectPoint(art[0].segments[1].p, kOutside);
    expectHead(art[1], kSurface, 170, 160);
    expectHead(art[2], kFarSurface, 230, 240);
    EXPECT_EQ(art[3].text, u"ø100");
    expectPoint(art[3].place, 243.4, 261.2);
    art = label("Diameter Tool", kOnArc, kInside);
    expectPoint(art[0].segments[0].p, kFarSurface);
    expectPoint(art[0].segments[1].p, kSurface);
    expectPoint(art[3].place, 198.4, 201.2);
    table.prefs().flDiameterMode = kShowSurface;
    art = label("Diameter Tool", kOnArc, kOutside);
    ASSERT_EQ(art.size(), 3U);
    expectPoint(art[0].segments[0].p, kSurface);
}

TEST_F(Round, WingsOfRadiusAreWholePointsAndDotsFollowTheHeads) {
    table.prefs().flArSize1 = 10.9F;
    expectHead(label("Radius Tool", kOnArc, kOutside)[1], kSurface, 200, 200, 10);
    expectHead(label("Diameter Tool", kOnArc, kOutside)[2], kFarSurface, 230, 240, 10.9);
    // Slashes of a diameter are parallel.
    table.prefs().flArType = 2;
    std::vector<Piece> art = label("Diameter Tool", kOnArc, kOutside);
    const auto stroke = [&](int i) {
        const std::vector<PathSegment>& s = art[i].segments;
        return RealPoint{s[2].p.h - s[0].p.h, s[2].p.v - s[0].p.v};
    };
    EXPECT_NEAR(stroke(1).h * stroke(2).v, stroke(1).v * stroke(2).h, 0.01);
    EXPECT_NEAR(std::hypot(stroke(1).h, stroke(1).v), 20, kNear);
    table.prefs().flArType = 3;
    const auto dots = [&](const char* tool) {
        int count = 0;
        for (const Piece& piece : label(tool, kOnArc, kOutside)) count += piece.closed && piece.filled ? 1 : 0;
        return count;
    };
    EXPECT_EQ(dots("Radius Tool"), 1);
    EXPECT_EQ(dots("Diameter Tool"), 2);
    table.prefs().flDiameterMode = kShowSurface;
    EXPECT_EQ(dots("Diameter Tool"), 1);
}

TEST_F(Round, ValueIsDoubledBeforeTheConversion) {
    table.drawCircle({600, 600}, 36);
    table.prefs().flArUnit = 0;
    table.prefs().flScFix = 2;
    EXPECT_EQ(label("Diameter Tool", {636, 602}, {700, 640}).back().text, u"ø25.4");
    EXPECT_EQ(label("Radius Tool", {636, 602}, {700, 640}).back().text, u"R12.7");
}

TEST_F(Round, ShiftTurnsThePlacementAboutTheCentre) {
    const std::vector<Piece> art = label("Radius Tool", kOnArc, {260, 281}, kShiftModifier);
    const double reach = std::hypot(60, 81) / std::sqrt(2);
    expectPoint(art[0].segments[1].p, 200 + reach, 200 + reach);
}

TEST_F(Round, RecordLinksBothEndsOfTheSegment) {
    const auto listsFor = [&](RealPoint pick) {
        label("Diameter Tool", pick, kOutside);
        const doc::ArtId group = table.dimension();
        EXPECT_EQ(table.tag(group, "QUORVEL_TOOLCNF"), "2000,0,0,0,0");
        EXPECT_EQ(table.tag(group, "QUORVEL_TOPOS"), "32000,0,0,0");
        return table.tag(group, "QUORVEL_FROMCELL") + " " + table.tag(group, "QUORVEL_TOCELL");
    };
    const std::string first = listsFor(kOnArc);
    const std::string id = table.tag(circle, "quorvel_object_id");
    EXPECT_EQ(first, id + ",1,0,200,250 " + id + ",0,0,250,200");
    // The closing segment ends in the first anchor.
    EXPECT_EQ(listsFor({235.35534F, 164.64466F}), id + ",0,0,250,200 " + id + ",3,0,200,150");
    // The second link is lent to the record alone.
    ToolState& live = table.globals().liveState;
    live.fromCells[0] = {table.handle(circle), 1};
    live.toCells[0] = {nullptr, 7};
    live.endPoint = kOutside;
    table.inside([] { EXPECT_EQ(BuildRadiusDimension(nullptr), 1); });
    EXPECT_EQ(live.toCells[0].art, nullptr);
    EXPECT_EQ(live.toCells[0].index, 7);
}

TEST_F(Round, RefusalsBeepAndMakeNothing) {
    const auto beepsFor = [&](RealPoint pick) {
        const int before = table.beeps();
        EXPECT_TRUE(label("Radius Tool", pick, kOutside).empty());
        return table.beeps() - before;
    };
    EXPECT_EQ(beepsFor({210, 200}), 1);  // nothing under the cursor
    table.drawLines({{500, 500}, {600, 560}}, false);
    EXPECT_EQ(beepsFor({550, 530}), 1);  // straight
    // Half a circle of two anchors has no centre when both tangents are level.
    table.draw({{{700, 250}, {700, 250}, {766, 250}, 0}, {{700, 150}, {766, 150}, {700, 150}, 0}}, false);
    EXPECT_EQ(beepsFor({750, 200}), 1);
    table.change([](doc::Document& document) { return document.setLayerEditable(document.currentLayer(), false); });
    EXPECT_EQ(beepsFor(kOnArc), 1);
}

// A level and an upright tangent put the centre at (0, 0), whatever the radii are.
TEST(CircleFromTangentsTest, ToleranceGrowsAboveAHundred) {
    const auto found = [](float ra, float rb) {
        const PathSegment a{{0, ra}, {0, ra}, {ra / 2, ra}, 0}, b{{rb, 0}, {rb, rb / 2}, {rb, 0}, 0};
        DoublePoint centre;
        double radius = 0;
        const bool circle = CircleFromTangents(a, b, &centre, &radius) == 1;
        EXPECT_NEAR(radius, circle ? (double{ra} + rb) / 2 : radius, 1e-9);
        return circle;
    };
    EXPECT_TRUE(found(50, 50.0099F));
    EXPECT_FALSE(found(50, 50.0101F));
    EXPECT_TRUE(found(200, 200.0199F));
    EXPECT_FALSE(found(200, 200.0201F));
    // Parallel normals cross nowhere.
    const PathSegment up{{0, 0}, {0, 0}, {0, 60}, 0}, down{{100, 0}, {100, 60}, {100, 0}, 0};
    DoublePoint centre;
    double radius = 0;
    EXPECT_EQ(CircleFromTangents(up, down, &centre, &radius), 0);
}

}  // namespace
}  // namespace quorvel::tests
