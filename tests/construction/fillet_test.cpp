// The Fillet tools on a drawing: what becomes of the corner by mode, and when nothing is built.
#include "plugin/construction/fillet.h"

#include <cmath>

#include "plugin/geometry/bezier.h"
#include "tests/construction/tool_rig.h"
#include "tests/support/errors.h"

namespace quorvel::tests {
namespace {

constexpr char kAddition[] = "Fillet Tool [Addition]";
constexpr char kSeparate[] = "Fillet Tool [Separate]";
constexpr char kReplace[] = "Fillet Tool [Replace]";

class Fillet : public ToolRig {
  protected:
    void SetUp() override {
        ToolRig::SetUp();
        plugin.prefs().flRadius = 50;
    }
    // Up from (100, 100) and to the right: the corner stands at (100, 200), the legs are 100 and 120 long.
    doc::ArtId addCorner() { return plugin.addPath({{100, 100}, {100, 200}, {220, 200}}, false, false); }
    bool roundCorner() { return drag({100, 150}, {160, 200}); }
    void expectArc(const PathSegment* records) {
        ExpectAt(records[0].p, 100, 150);
        ExpectAt(records[1].p, 150 - 50 / std::sqrt(2), 150 + 50 / std::sqrt(2));
        ExpectAt(records[2].p, 150, 200);
    }
};

TEST_F(Fillet, AdditionLeavesThePathAlone) {
    const doc::ArtId path = addCorner();
    const std::vector<PathSegment> before = segments(path);
    take(kAddition);
    ASSERT_TRUE(roundCorner());
    EXPECT_EQ(plugin.host().lastUndoName(), "Undo Fillet Tool [Addition]");
    ASSERT_EQ(artCount(), 2);
    ASSERT_EQ(segments(path).size(), before.size());
    EXPECT_EQ(document().find(path)->above, topArt());
    ASSERT_EQ(segments(topArt()).size(), 3U);
    expectArc(segments(topArt()).data());
    EXPECT_EQ(document().find(topArt())->path->style->strokeWidth, document().find(path)->path->style->strokeWidth);
}

TEST_F(Fillet, ReplacePutsTheArcIntoThePath) {
    const doc::ArtId path = addCorner();
    take(kReplace);
    ASSERT_TRUE(drag({160, 200}, {100, 150}));  // against the path's direction
    EXPECT_EQ(artCount(), 1);
    const std::vector<PathSegment>& now = segments(path);
    ASSERT_EQ(now.size(), 5U);
    ExpectAt(now[0].p, 100, 100);
    expectArc(&now[1]);
    ExpectAt(now[4].p, 220, 200);
    EXPECT_TRUE(now[1].out.v > now[1].p.v && now[3].in.h < now[3].p.h);
    // Only next to the path's own ends may the joint stay a corner, and the end of the list counts one further.
    EXPECT_TRUE(now[1].corner && !now[2].corner && !now[3].corner);
}

TEST_F(Fillet, SeparateKeepsTheCornerAsAPath) {
    const doc::ArtId path = addCorner();
    take(kSeparate);
    ASSERT_TRUE(roundCorner());
    ASSERT_EQ(segments(path).size(), 5U);
    expectArc(&segments(path)[1]);
    ASSERT_EQ(artCount(), 2);
    const std::vector<PathSegment>& corner = segments(topArt());
    ASSERT_EQ(corner.size(), 3U);
    ExpectAt(corner[0].p, 100, 150);
    ExpectAt(corner[1].p, 100, 200, 0);
    ExpectAt(corner[2].p, 150, 200);
    for (const PathSegment& segment : corner)
        EXPECT_TRUE(PointsEqual(segment.p, segment.in) && PointsEqual(segment.p, segment.out));
    EXPECT_TRUE(corner[0].corner && !corner[1].corner && corner[2].corner);
}

TEST_F(Fillet, WhatCannotBePutIntoThePathIsAdded) {
    const doc::ArtId path = addCorner();
    plugin.prefs().flRadius = 110;  // longer than the leg of 100
    for (const char* tool : {kSeparate, kReplace}) {
        take(tool);
        EXPECT_TRUE(roundCorner());
        EXPECT_EQ(segments(path).size(), 3U);
    }
    EXPECT_EQ(artCount(), 3);
    // Two paths that touch in the corner are two paths.
    plugin.prefs().flRadius = 20;
    const doc::ArtId one = plugin.addPath({{300, 100}, {300, 200}}, false, false);
    plugin.addPath({{300, 200}, {400, 200}}, false, false);
    EXPECT_TRUE(drag({300, 150}, {350, 200}));
    EXPECT_EQ(artCount(), 6);
    EXPECT_EQ(segments(one).size(), 2U);
    EXPECT_EQ(document().find(one)->above, document().find(document().find(topArt())->below)->id);
}

TEST_F(Fillet, EachCornerOfAClosedPathIsANeighbourhood) {
    // The sides' middles; side k ends at anchor k, and side 0 closes the path.
    const RealPoint sides[] = {{100, 200}, {200, 100}, {300, 200}, {200, 300}};
    for (int corner = 0; corner < 4; ++corner) {
        for (const bool forward : {true, false}) {
            SCOPED_TRACE(corner);
            plugin.newDrawing();
            const doc::ArtId path = plugin.addPath({{100, 100}, {300, 100}, {300, 300}, {100, 300}}, true, false);
            take(kReplace);
            const RealPoint &one = sides[corner], &other = sides[(corner + 1) % 4];
            ASSERT_TRUE(drag(forward ? one : other, forward ? other : one));
            ASSERT_EQ(segments(path).size(), 6U);
            // The square less the spandrel of a quarter circle; a path that ran criss-cross would miss it.
            const double area = 40000 - 2500 * (1 - 3.14159265 / 4);
            EXPECT_NEAR(ClosedPathArea(segments(path).data(), 6), area, 3);
            EXPECT_EQ(artCount(), 1);
        }
    }
}

TEST_F(Fillet, LineAndQuarterArcMeet) {
    // A circle of 100 about (300, 200), its upper right quarter; a level line through the middle. A rounding inside
    // both touches the line at height 200 and the arc from within: (100 - 20)^2 = 20^2 + t^2.
    const float k = 55.22847F;
    addSegments({{{400, 200}, {400, 200}, {400, 200 + k}, 0}, {{300, 300}, {300 + k, 300}, {300, 300}, 0}}, false);
    plugin.addPath({{200, 200}, {450, 200}}, false, false);
    plugin.prefs().flRadius = 20;
    take(kReplace);
    ASSERT_TRUE(drag({370.71068F, 270.71068F}, {340, 200}));
    ASSERT_EQ(artCount(), 3);
    const doc::ArtId arc = document().find(document().find(topArt())->below)->id;
    ASSERT_EQ(segments(arc).size(), 3U);
    const double t = std::sqrt(6000.0);
    ExpectAt(segments(arc)[0].p, 300 + t * 100 / 80, 220 + 20 * 20 / 80.0, 0.05);
    ExpectAt(segments(arc)[2].p, 300 + t, 200, 0.05);
}

TEST_F(Fillet, RefusalsBeepAndChangeNothing) {
    addCorner();
    plugin.addPath({{300, 100}, {300, 200}}, false, false);
    const float k = 20;  // handles of unlike length: no arc
    addSegments({{{400, 100}, {400, 100}, {400 + k, 100}, 0}, {{500, 200}, {500, 200 - 3 * k}, {500, 200}, 0}}, false);
    const int arts = artCount();
    take(kAddition);
    EXPECT_FALSE(drag({100, 150}, {300, 150}));  // parallel
    EXPECT_FALSE(drag({100, 150}, {100, 150}));  // one point
    EXPECT_FALSE(drag({100, 150}, {250, 50}));   // let go over nothing
    EXPECT_FALSE(drag({250, 50}, {160, 200}));   // pressed over nothing
    EXPECT_EQ(plugin.user().lastCursor(), 16104);
    move({470, 150});
    EXPECT_EQ(plugin.user().lastCursor(), 16102);
    change([](doc::Document& document) { return document.setLayerEditable(document.currentLayer(), false); });
    EXPECT_FALSE(roundCorner());
    EXPECT_EQ(artCount(), arts);
    EXPECT_EQ(plugin.user().visiblePixels(), 0U);
}

TEST_F(Fillet, RadiusZeroIsAskedForWhileBuilding) {
    using Step = platform::DialogStep;
    addCorner();
    plugin.prefs().flRadius = 0;
    take(kAddition);
    plugin.user().queueDialog({16260, {{Step::Kind::press, 2, "", 0}}});
    EXPECT_FALSE(roundCorner());
    EXPECT_EQ(artCount(), 1);
    plugin.user().queueDialog({16260,
                               {{Step::Kind::setText, 5, "0", 0},
                                {Step::Kind::press, 1, "", 0},
                                {Step::Kind::setText, 5, "50pt", 0},
                                {Step::Kind::press, 1, "", 0}}});
    EXPECT_FALSE(roundCorner());  // the beep is the dialog's, over the 0
    EXPECT_EQ(said(plugin.user().takeFaults()), "");
    ASSERT_EQ(artCount(), 2);
    expectArc(segments(topArt()).data());
}

}  // namespace
}  // namespace quorvel::tests
