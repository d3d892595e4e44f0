// The preview on a surface that counts its inverted pixels: whatever was drawn in a run, nothing is left at its end.
#include "plugin/snapping/preview.h"

#include <gtest/gtest.h>

#include <functional>

#include "plugin/shell/suites.h"
#include "tests/support/drafting_table.h"

namespace quorvel::tests {
namespace {

struct Preview : testing::Test {
    DraftingTable table;
    PluginGlobals* globals = &table.globals();

    std::size_t visible() { return table.user().visiblePixels(); }
    std::size_t Drawn(const std::function<void(const PreviewPen&)>& draw) {
        table.user().screen().repainted();
        table.inside([&] {
            PreviewPen pen;
            sAIDocumentView->GetNthDocumentView(0, &pen.view);
            pen.surface = platform::BeginSurface(platform::GetTopWindow(nullptr));
            draw(pen);
            platform::EndSurface(pen.surface);
        });
        return visible();
    }
    void Track(std::int16_t step, RealPoint cursor);
};

// A curve of the chain that belongs to the state, a line and an arc to the cursor.
void PaintAll(const PreviewPen& pen, PluginGlobals* globals, ToolState* state, bool isDrawn) {
    if (state->toolStep != 1) return;
    const ChainBuffer* chain = isDrawn ? globals->workBufferB : globals->workBufferA;
    DrawPreviewCurve(pen, globals->bezierTables, chain->segments[0], chain->segments[1]);
    DrawPreviewLine(pen, state->fromPoint, state->cursorPoint);
    DrawPreviewArc(pen, ToDoublePoint(state->cursorPoint), 40, 0.5, state->cursorPoint.h > 200 ? 2.5 : -1.5);
}

void Preview::Track(std::int16_t step, RealPoint cursor) {
    ChainBuffer* chain = globals->workBufferA;
    chain->count = 2;
    chain->segments[0] = {{50, 50}, {50, 50}, {cursor.h, 60}, 0};
    chain->segments[1] = {{250, cursor.v}, {200, cursor.v - 70}, {250, cursor.v}, 0};
    globals->liveState.toolStep = step;
    globals->liveState.cursorPoint = cursor;
    table.inside([&] { RedrawPreview(globals, PaintAll); });
}

TEST_F(Preview, LeavesNoTraceAtTheEndOfARun) {
    globals->liveState.fromPoint = {100, 100};
    for (const RealPoint cursor : {RealPoint{120, 130}, RealPoint{300, 90}, RealPoint{300, 90}, RealPoint{210, 222}}) {
        Track(1, cursor);
        EXPECT_GT(visible(), 100u);
    }
    Track(0, {0, 0});
    EXPECT_EQ(visible(), 0u);
}

TEST_F(Preview, LeavesNoTraceWhenTheViewWasRepaintedInBetween) {
    globals->liveState.fromPoint = {100, 100};
    Track(1, {300, 90});
    table.host().setZoom(2);
    EXPECT_EQ(visible(), 0u);
    Track(1, {310, 90});
    Track(1, {150, 120});
    table.host().setCentre({120, 80});
    Track(0, {0, 0});
    EXPECT_EQ(visible(), 0u);
}

TEST_F(Preview, ShapesReachAsFarAsTheyShould) {
    const RealPoint a = {300, 200}, b = {340, 200};
    EXPECT_EQ(Drawn([&](const PreviewPen& pen) { DrawPreviewLine(pen, a, a); }), 1u);
    EXPECT_EQ(Drawn([&](const PreviewPen& pen) { DrawPreviewLine(pen, a, b); }), 40u);  // all but the last
    const auto corner = [&](const PreviewPen& pen) {
        DrawPreviewLine(pen, a, b);
        DrawPreviewLine(pen, b, RealPoint{340, 170});
    };
    EXPECT_EQ(Drawn(corner), 70u) << "no hole";
    const DoublePoint centre = {300, 200};
    const std::size_t quarter = Drawn([&](const PreviewPen& pen) { DrawPreviewArc(pen, centre, 60, 0, kHalfPi); });
    EXPECT_EQ(Drawn([&](const PreviewPen& pen) { DrawPreviewArc(pen, centre, 60, kHalfPi, 0); }), quarter);
    const std::size_t rest = Drawn([&](const PreviewPen& pen) { DrawPreviewArc(pen, centre, 60, kHalfPi, kTwoPi); });
    EXPECT_NEAR(static_cast<double>(rest), 3.0 * static_cast<double>(quarter), 0.1 * static_cast<double>(rest));
}

}  // namespace
}  // namespace quorvel::tests
