// Dimensions that follow their art: by hand what a moved, turned or deleted path does to each kind.
#include "plugin/record/recalculate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/support/drafting_table.h"
#include "tests/support/errors.h"

namespace quorvel::tests {
namespace {

using doc::ArtId;
using doc::Document;

constexpr double kNear = 3e-3;
constexpr char kTrack[] = "2644-3993-9293-3747-5729-7605", kRecalculate[] = "2644-3993-9293-3747-5729-5825";
constexpr char kAction[] = "Recalculate_Dimension_lines";

void expectPoint(const RealPoint& point, double h, double v) {
    EXPECT_NEAR(point.h, h, kNear);
    EXPECT_NEAR(point.v, v, kNear);
}

using Texts = std::vector<std::u16string>;

class Recalculate : public testing::Test {
  protected:
    void SetUp() override { setUp(table.prefs()); }
    static void setUp(PrefsRecord& prefs) {
        prefs.flUseFcrs = prefs.flUseFops = prefs.flUseFrad = 0;
        prefs.flArUnit = 5;
        prefs.flArSpStr = 1;
    }
    ArtId linear(const char* tool, RealPoint from, RealPoint to, RealPoint placement,
                 const std::vector<RealPoint>& stops = {}) {
        table.measure(tool, from, to, placement, stops);
        return table.dimensions().front();
    }
    ArtId oblique(RealPoint from, RealPoint to, RealPoint placement, const std::vector<RealPoint>& stops = {}) {
        return linear("Oblique Dimension Tool", from, to, placement, stops);
    }
    // By the action, agreeing.
    void recalculate() {
        table.user().queueAnswer(true);
        EXPECT_EQ(table.host().playAction(kAction), kNoErr);
        EXPECT_EQ(said(table.user().takeFaults()), "");
        EXPECT_FALSE(table.user().hasRepliesLeft());
    }
    void turn(ArtId art, RealPoint about) {  // a quarter, anticlockwise
        table.change([&](Document& document) {
            return document.transform(art, {0, 1, -1, 0, about.h + about.v, about.v - about.h}, 1);
        });
    }
    // The dimension line of one without stops is its last art.
    void expectLine(ArtId group, RealPoint start, RealPoint end) {
        const std::vector<Piece> art = table.pieces(group);
        ASSERT_FALSE(art.empty());
        ASSERT_EQ(art.back().segments.size(), 2U);
        expectPoint(art.back().segments[0].p, start.h, start.v);
        expectPoint(art.back().segments[1].p, end.h, end.v);
    }
    std::vector<std::u16string> texts(ArtId group) {
        std::vector<std::u16string> found;
        for (const Piece& piece : table.pieces(group))
            if (!piece.text.empty()) found.push_back(piece.text);
        return found;
    }

    DraftingTable table;
};

// --- linear
// -----------------------------------------------------------------------------------------------------------

TEST_F(Recalculate, BothEndsFollowAndTheLineKeepsItsPlace) {
    const ArtId box = table.drawLines({{100, 100}, {300, 100}, {300, 200}, {100, 200}}, true);
    oblique({100, 100}, {300, 100}, {210, 50});
    expectLine(table.dimension(), {100, 50}, {300, 50});
    table.move(box, 10, 20);
    recalculate();
    expectLine(table.dimension(), {110, 70}, {310, 70});
    EXPECT_EQ(table.host().lastUndoName(), "Undo Recalculate(Dimension lines)");
    // A quarter turn about (210, 120): the ends come to (210, 20) and (210, 220), the line to their right.
    turn(box, {210, 120});
    recalculate();
    expectLine(table.dimension(), {260, 20}, {260, 220});
    EXPECT_EQ(texts(table.dimension()), Texts{u"200"});
}

TEST_F(Recalculate, ALevelLineOfTheStraightToolEndsUpUpright) {
    const ArtId line = table.drawLines({{100, 100}, {300, 160}}, false);
    linear("Straight Dimension Tool", {100, 100}, {300, 160}, {150, 10});
    expectLine(table.dimension(), {100, 10}, {300, 10});
    turn(line, {100, 100});
    table.move(line, 200, -100);
    recalculate();
    // The ends now stand at (300, 0) and (240, 200), and the placement (120, -50) off their middle: it has gone right.
    EXPECT_EQ(texts(table.dimension()), Texts{u"200"});
    expectLine(table.dimension(), {390, 0}, {390, 200});
}

// The mode stands twice in a record, and the one beside the kind decides.
TEST_F(Recalculate, TheModeBesideTheKindDecides) {
    table.drawLines({{100, 100}, {300, 160}}, false);
    const ArtId made = oblique({100, 100}, {300, 160}, {150, 10});
    table.change([&](Document& document) { return document.setTag(made, "QUORVEL_TOOLCNF", "5001,0,0,0,0"); });
    recalculate();
    expectLine(table.dimension(), {100, 10}, {300, 10});
    EXPECT_EQ(table.tag(table.dimension(), "QUORVEL_TOOLCNF"), "5001,0,0,0,0");
}

TEST_F(Recalculate, OneLostEndMovesAlongAndTwoStay) {
    const ArtId left = table.drawLines({{100, 100}, {100, 200}}, false);
    const ArtId right = table.drawLines({{300, 100}, {300, 200}}, false);
    oblique({100, 100}, {300, 100}, {210, 50});
    table.change([&](Document& document) { return document.removeArt(left); });
    table.move(right, 5, 7);
    recalculate();
    expectLine(table.dimension(), {105, 57}, {305, 57});
    EXPECT_EQ(table.tag(table.dimension(), "QUORVEL_FROMCELL"), "(none)");
    table.change([&](Document& document) { return document.removeArt(right); });
    recalculate();
    expectLine(table.dimension(), {105, 57}, {305, 57});
    EXPECT_EQ(table.tag(table.dimension(), "QUORVEL_TOCELL"), "(none)");
}

TEST_F(Recalculate, StopsFollowTheirArtOrKeepTheirPolarPlace) {
    const ArtId line = table.drawLines({{100, 100}, {300, 100}}, false);
    const ArtId mark = table.drawLines({{250, 100}, {250, 140}}, false);
    // Clicked from right to left; the first stands on the mark, the second on nothing.
    oblique({100, 100}, {300, 100}, {200, 50}, {{250, 100}, {150, 100}});
    EXPECT_EQ(texts(table.dimension()), (Texts{u"150", u"100", u"150"}));
    recalculate();
    EXPECT_EQ(texts(table.dimension()), (Texts{u"150", u"100", u"150"})) << "in the order in which they were clicked";
    // Turned and moved: the free stop stays 50 from the first point, the other stays on its mark.
    turn(line, {100, 100});
    table.move(line, 0, 10);
    table.move(mark, -150, 140);
    recalculate();
    expectLine(table.dimension(), {150, 110}, {150, 310});
    EXPECT_EQ(texts(table.dimension()), (Texts{u"130", u"80", u"150"}));
    EXPECT_EQ(table.tag(table.dimension(), "QUORVEL_STOPCELL02"), "0,100,160");
    // The mark passes the free stop: they are put in order from the first point on.
    table.move(mark, 0, -110);
    recalculate();
    EXPECT_EQ(texts(table.dimension()), (Texts{u"20", u"30", u"150"}));
    EXPECT_EQ(table.tag(table.dimension(), "QUORVEL_STOPCELL01"),
              table.tag(mark, "quorvel_object_id") + ",0,0,100,130");
}

TEST_F(Recalculate, CurveKindsStayCurves) {
    const ArtId path = table.drawLines({{100, 100}, {200, 100}, {200, 200}}, false);
    linear("Curve Dimension Tool", {100, 100}, {200, 200}, {160, 80});
    EXPECT_EQ(texts(table.dimension()), Texts{u"200"});
    table.choose("Oblique Dimension Tool");
    table.change([&](Document& document) {
        const PathSegment far[] = {Corner({200, 250})};
        return document.setSegments(path, 2, far);
    });
    recalculate();
    EXPECT_EQ(texts(table.dimension()), Texts{u"250"});
    EXPECT_EQ(table.tag(table.dimension(), "QUORVEL_TOOLCNF").substr(0, 6), "14003,");
    // The settings of the dimension that was read last stay in force.
    EXPECT_EQ(table.prefs().flDistanceMode, kCurveMode);
}

// --- angle, radius, diameter
// ------------------------------------------------------------------------------------------

TEST_F(Recalculate, AngleKeepsItsPointsOnTheLegs) {
    const ArtId level = table.drawLines({{100, 100}, {300, 100}}, false);
    const ArtId upright = table.drawLines({{100, 100}, {100, 300}}, false);
    table.measure("Angle Tool", {250, 100}, {100, 250}, {205, 215});
    table.move(level, 0, 30);
    recalculate();
    // The press points now are (250, 130) and (100, 250); the placement stood 50 off their middle in the direction
    // (3, 4), and has turned with the line between them.
    const double turned = std::atan2(120, -150) - std::atan2(150, -150), direction = std::atan2(40, 30) + turned;
    const double h = 175 + 50 * std::cos(direction), v = 190 + 50 * std::sin(direction);
    const std::vector<Piece> art = table.pieces(table.dimension());
    EXPECT_EQ(art.back().text, u" 90°");
    expectPoint(art[0].segments[0].p, 100 + std::hypot(h - 100, v - 130), 130);
    // A lost leg ends it.
    const ArtId kept = table.dimension();
    table.change([&](Document& document) { return document.removeArt(upright); });
    table.move(level, 0, 30);
    recalculate();
    EXPECT_EQ(table.dimension(), kept);
}

TEST_F(Recalculate, RoundLabelsFollowTheCircle) {
    table.prefs().flUseFcur = 0;
    const ArtId circle = table.drawCircle({200, 200}, 50);
    for (const char* tool : {"Radius Tool", "Diameter Tool"}) table.pull(tool, {235.35534F, 235.35534F}, {260, 280});
    table.change([&](Document& document) { return document.transform(circle, {2, 0, 0, 2, -200, -200}, 1); });
    recalculate();
    // The placement stays (35, 55) off the middle of the segment's ends, which went from (225, 225) to (250, 250).
    const std::vector<ArtId> both = table.dimensions();
    ASSERT_EQ(both.size(), 2U);
    const std::vector<Piece> radius = table.pieces(both[1]), diameter = table.pieces(both[0]);
    EXPECT_EQ(radius.back().text + diameter.back().text, u"R100ø200");
    expectPoint(radius[0].segments[0].p, 200, 200);
    for (const std::vector<Piece>& art : {radius, diameter}) expectPoint(art[0].segments[1].p, 285, 305);
    const double reach = std::hypot(85, 105);
    expectPoint(diameter[0].segments[0].p, 200 - 100 * 85 / reach, 200 - 100 * 105 / reach);
    EXPECT_EQ(table.tag(both[0], "QUORVEL_TOCELL"), table.tag(circle, "quorvel_object_id") + ",0,0,300,200");
}

// --- who is asked, who is rebuilt
// -----------------------------------------------------------------------------------------

TEST_F(Recalculate, OnlySelectedDimensionsWhenAnyIs) {
    const ArtId box = table.drawLines({{100, 100}, {300, 100}, {300, 200}, {100, 200}}, true);
    const ArtId first = oblique({100, 100}, {300, 100}, {200, 50}),
                second = oblique({100, 200}, {300, 200}, {200, 250});
    table.move(box, 10, 0);
    table.select(first, true);
    table.user().takeTranscript();
    recalculate();
    EXPECT_EQ(table.user().takeTranscript().front(),
              "question \"Are you sure you want to recalculate selected dimension-lines?\" yes");
    std::vector<ArtId> now = table.dimensions();
    EXPECT_EQ(std::count(now.begin(), now.end(), first), 0);
    EXPECT_EQ(std::count(now.begin(), now.end(), second), 1);
    // A no leaves all as it is; the notification asks as the action does.
    table.user().queueAnswer(false);
    EXPECT_EQ(table.host().notify(kRecalculate), kNoErr);
    EXPECT_EQ(table.user().takeTranscript().front(),
              "question \"Are you sure you want to recalculate all dimension-lines?\" no");
    EXPECT_EQ(table.dimensions(), now);
}

// Also where new dimensions go to a layer of their own.
TEST_F(Recalculate, ARebuiltDimensionKeepsItsNameAndItsPlaceAmongItsSiblings) {
    const ArtId box = table.drawLines({{100, 100}, {300, 100}, {300, 200}, {100, 200}}, true);
    const ArtId inside = oblique({100, 100}, {300, 100}, {200, 50}),
                above = oblique({100, 200}, {300, 200}, {200, 250});
    ArtId holder = 0;
    table.change([&](Document& document) {
        holder = document.insertArt(kGroupArt, kPlaceBelow, above);
        return document.moveArt(inside, kPlaceInsideOnTop, holder) && document.setName(inside, "width");
    });
    const ArtId note = table.drawLines({{0, 0}, {10, 10}}, false);
    const std::string name = table.document().find(above)->name;
    table.move(box, 10, 0);
    table.prefs().flOutLayer = 1;
    recalculate();
    const Document& document = table.document();
    const ArtId rebuilt = document.findByName("width"), second = document.findByName(name);
    ASSERT_NE(rebuilt, 0U);
    EXPECT_NE(rebuilt, inside);
    EXPECT_EQ(document.find(rebuilt)->parent, holder);
    EXPECT_NE(second, above);
    EXPECT_EQ(document.find(second)->above, note);
    EXPECT_EQ(document.find(second)->below, holder);
    EXPECT_EQ(document.layers().size(), 1U);
}

TEST_F(Recalculate, NothingToDoAsksNothing) {
    EXPECT_EQ(table.host().playAction(kAction), kNoErr);
    EXPECT_EQ(said(table.user().takeFaults()), "");
    table.drawLines({{100, 100}, {300, 100}}, false);
    const ArtId made = oblique({100, 100}, {300, 100}, {200, 50});
    const doc::LayerId layer = table.document().currentLayer();
    table.change([&](Document& document) { return document.setLayerEditable(layer, false); });
    EXPECT_EQ(table.host().playAction(kAction), kNoErr);
    EXPECT_EQ(said(table.user().takeFaults()), "");
    EXPECT_EQ(table.dimension(), made);
}

TEST(RecalculateInJapanese, AsksInJapanese) {
    PluginHostOptions options;
    options.language = "JAPANESE";
    DraftingTable table(std::move(options));
    table.drawLines({{100, 100}, {300, 100}}, false);
    table.measure("斜め寸法線ツール", {100, 100}, {300, 100}, {200, 50});
    for (const char* question : {"question \"全ての寸法線を再計算します。\\rよろしいですか？\" yes",
                                 "question \"選択された寸法線を再計算します。\\rよろしいですか？\" yes"}) {
        table.user().queueAnswer(true);
        table.user().takeTranscript();
        EXPECT_EQ(table.host().playAction(kAction), kNoErr);
        EXPECT_EQ(table.user().takeTranscript().front(), question);
        EXPECT_EQ(table.host().lastUndoName(), "再計算(寸法線)の取り消し");
        table.select(table.dimension(), true);
    }
}

TEST_F(Recalculate, TrackingRebuildsLinearDimensionsOfSelectedArt) {
    const ArtId box = table.drawLines({{100, 100}, {300, 100}, {300, 200}, {100, 200}}, true);
    const ArtId mark = table.drawLines({{200, 100}, {200, 160}}, false);
    const ArtId circle = table.drawCircle({500, 500}, 50);
    oblique({100, 100}, {300, 100}, {210, 50}, {{200, 100}});
    table.pull("Radius Tool", {535.35534F, 535.35534F}, {600, 600});
    const std::vector<ArtId> made = table.dimensions();
    for (ArtId art : {box, circle, mark}) table.move(art, 10, 0);
    // A selected stop's art does not count, nor does a round label's.
    table.select(mark, true);
    table.select(circle, true);
    table.prefs().flScLead = 17;
    EXPECT_EQ(table.host().notify(kTrack), kNoErr);
    EXPECT_EQ(table.dimensions(), made);
    EXPECT_EQ(table.prefs().flScLead, 2);  // read, so its settings are in force
    table.select(box, true);
    EXPECT_EQ(table.host().notify(kTrack), kNoErr);
    EXPECT_EQ(table.host().lastUndoName(), "") << "a notification names no step";
    EXPECT_EQ(said(table.user().takeFaults()), "");
    const std::vector<ArtId> now = table.dimensions();
    ASSERT_EQ(now.size(), 2U);
    EXPECT_EQ(std::count(now.begin(), now.end(), made[0]), 1);
    EXPECT_EQ(std::count(now.begin(), now.end(), made[1]), 0);
    expectLine(now[0] == made[0] ? now[1] : now[0], {110, 50}, {310, 50});
}

}  // namespace
}  // namespace quorvel::tests
