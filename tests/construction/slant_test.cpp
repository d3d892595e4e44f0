// Levelling: what turns, what stays, and that turning back gives the drawing back.
#include "plugin/construction/slant.h"

#include <cmath>
#include <random>

#include "tests/construction/tool_rig.h"

namespace quorvel::tests {
namespace {

TEST(TurnPoint, TurnsBackToWhereItWas) {
    std::mt19937 random(11);
    std::uniform_real_distribution<float> size(-600, 600);
    for (int i = 0; i < 5000; ++i) {
        const DoublePoint pivot{size(random), size(random)};
        const double angle = size(random) / 100;
        const RealPoint from{size(random), size(random)};
        RealPoint point = from;
        TurnPoint(&point, pivot, angle);
        // A turn by the opposite of the angle, by its matrix.
        const double h = from.h - pivot.h, v = from.v - pivot.v;
        ExpectAt(point, pivot.h + h * std::cos(angle) + v * std::sin(angle),
                 pivot.v - h * std::sin(angle) + v * std::cos(angle));
        TurnPoint(&point, pivot, -angle);
        ExpectAt(point, from.h, from.v, 2e-4);
    }
    RealPoint atPivot{10, 20};
    TurnPoint(&atPivot, {10, 20}, 1);
    ExpectAt(atPivot, 10, 20, 0);
}

class Slant : public ToolRig {
  protected:
    void SetUp() override {
        ToolRig::SetUp();
        take("Slant Tool");
    }
};

TEST_F(Slant, TheDrawnLineComesToLieLevel) {
    const doc::ArtId path = plugin.addPath({{100, 100}, {180, 160}, {120, 300}}, false, true);
    const doc::ArtId other = plugin.addPath({{300, 100}, {400, 200}}, false, false);
    ASSERT_TRUE(drag({100, 100}, {180, 160}));
    EXPECT_EQ(plugin.host().lastUndoName(), "Undo Slant Tool");
    ExpectAt(segments(path)[0].p, 100, 100);
    ExpectAt(segments(path)[1].p, 200, 100);
    ExpectAt(segments(path)[2].p, 100 + 20 * 0.8 + 200 * 0.6, 100 - 20 * 0.6 + 200 * 0.8);
    ExpectAt(segments(other)[1].p, 400, 200, 0);
    // Back by a line that falls as the first one rose.
    ASSERT_TRUE(drag({100, 100}, {180, 40}));
    ExpectAt(segments(path)[1].p, 180, 160);
    ExpectAt(segments(path)[2].p, 120, 300);
}

TEST_F(Slant, FromRightToLeftTurnsUpsideDown) {
    const doc::ArtId path = plugin.addPath({{100, 100}, {200, 150}}, false, true);
    ASSERT_TRUE(drag({400, 350}, {300, 350}));
    ExpectAt(segments(path)[0].p, 700, 600);
    ExpectAt(segments(path)[1].p, 600, 550);
}

TEST_F(Slant, HiddenLayersTurnAndDimensionsStay) {
    const doc::ArtId hidden = plugin.addPath({{100, 100}, {200, 100}}, false, true);
    doc::ArtId dimension = 0, member = 0, compound = 0, hole = 0;
    change([&](doc::Document& d) {
        d.setLayerVisible(d.currentLayer(), false);
        d.setLayerEditable(d.currentLayer(), false);
        d.setCurrentLayer(d.insertLayer("upper", 0));
        const PathSegment line[] = {{{100, 0}, {100, 0}, {100, 0}, 1}, {{200, 0}, {200, 0}, {200, 0}, 1}};
        dimension = d.insertArt(kGroupArt, kPlaceAboveAll, 0);
        member = d.insertArt(kPathArt, kPlaceInsideOnTop, dimension);
        compound = d.insertArt(kCompoundPathArt, kPlaceAboveAll, 0);
        hole = d.insertArt(kPathArt, kPlaceInsideOnTop, compound);
        for (const doc::ArtId path : {member, hole}) d.setSegments(path, 0, line), d.setSelected(path, true);
        return d.setTag(dimension, "QUORVEL_TOOLCNF", "1");
    });
    ASSERT_TRUE(drag({10, 0}, {10, 50}));  // upright becomes level
    ExpectAt(segments(hidden)[1].p, 110, -190);
    ExpectAt(segments(hole)[1].p, 10, -190);
    ExpectAt(segments(member)[1].p, 200, 0, 0);
}

TEST_F(Slant, TextAndGradientsTurnAlong) {
    const doc::ArtId path = plugin.addPath({{100, 100}, {200, 100}}, false, true);
    doc::ArtId text = 0;
    change([&](doc::Document& d) {
        AIPathStyle style = *d.find(path)->path->style;
        style.fillPaint = style.strokePaint = 1;
        style.fill.kind = style.stroke.kind = kGradientPaint;
        style.fill.gradientAngle = 10;
        style.fill.gradientHiliteAngle = 20;
        text = d.insertArt(kTextFrameArt, kPlaceAboveAll, 0);
        doc::TextData data;
        data.matrix = {1, 0, 0, 1, 100, 50};
        data.text = u"12";
        data.runs.push_back({2, {}});
        return d.setStyle(path, style) && d.setText(text, data) && d.setSelected(text, true);
    });
    ASSERT_TRUE(drag({100, 0}, {100, 90}));
    const AIPathStyle& turned = *document().find(path)->path->style;
    EXPECT_NEAR(turned.fill.gradientAngle, -80, 1e-3);
    EXPECT_NEAR(turned.fill.gradientHiliteAngle, -70, 1e-3);
    EXPECT_NEAR(turned.stroke.gradientAngle, -90, 1e-3);
    const RealMatrix& matrix = document().find(text)->text->matrix;
    ExpectAt({matrix.tx, matrix.ty}, 150, 0);
    ExpectAt({matrix.a, matrix.b}, 0, -1);
}

TEST_F(Slant, NothingSelectedIsStillAStepByName) {
    const doc::ArtId path = plugin.addPath({{100, 100}, {200, 100}}, false, false);
    ASSERT_TRUE(drag({300, 300}, {350, 350}));
    EXPECT_EQ(plugin.host().lastUndoName(), "Undo Slant Tool");
    ExpectAt(segments(path)[1].p, 200, 100, 0);
    EXPECT_FALSE(drag({300, 300}, {300, 300}));
    EXPECT_EQ(plugin.user().visiblePixels(), 0U);
}

}  // namespace
}  // namespace quorvel::tests
