// The preview on a surface that counts its inverted pixels: whatever was drawn in a run, nothing is left at its end.
#include "plugin/snapping/preview.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "host/host.h"
#include "platform/headless/headless.h"
#include "plugin/shell/suites.h"

namespace quorvel {
namespace {

std::function<void()> job;

AIErr RunJob(const char*, const char*, void* message) {
    gBasic = static_cast<SPMessageData*>(message)->basic;
    EXPECT_EQ(AcquireSuites(), kNoErr);
    job();
    return ReleaseSuites();
}

struct Preview : testing::Test {
    platform::HeadlessBackend backend;
    host::Host host;
    std::unique_ptr<PluginGlobals> globals = std::make_unique<PluginGlobals>();
    std::vector<double> blockA, blockB;

    Preview() : blockA(kChainBlockSize / sizeof(double)), blockB(kChainBlockSize / sizeof(double)) {
        platform::installBackend(&backend);
        backend.screen().openView("drawing @ 100%", 1000, 800);
        host.callbacks.viewRepainted = [this] { backend.screen().repainted(); };
        host.attachPlugin(RunJob, nullptr);
        host.newDocument(600, 400);
        BuildBezierBasisTables(&globals->bezierTables);
        globals->workBufferA = reinterpret_cast<ChainBuffer*>(blockA.data());
        globals->workBufferB = reinterpret_cast<ChainBuffer*>(blockB.data());
        globals->drawnState.toolStep = -1;
        gGlobals = globals.get();
    }
    ~Preview() override {
        gGlobals = nullptr;
        platform::installBackend(nullptr);
    }

    void InMessage(const std::function<void()>& work) {
        job = work;
        SPMessageData message;
        EXPECT_EQ(host.send("Test", "Test", &message), kNoErr);
    }
    std::size_t Drawn(const std::function<void(const PreviewPen&)>& draw) {
        backend.screen().repainted();
        InMessage([&] {
            PreviewPen pen;
            sAIDocumentView->GetNthDocumentView(0, &pen.view);
            pen.surface = platform::BeginSurface(platform::GetTopWindow(nullptr));
            draw(pen);
            platform::EndSurface(pen.surface);
        });
        return backend.visiblePixels();
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
    InMessage([&] { RedrawPreview(globals.get(), PaintAll); });
}

TEST_F(Preview, LeavesNoTraceAtTheEndOfARun) {
    globals->liveState.fromPoint = {100, 100};
    for (const RealPoint cursor : {RealPoint{120, 130}, RealPoint{300, 90}, RealPoint{300, 90}, RealPoint{210, 222}}) {
        Track(1, cursor);
        EXPECT_GT(backend.visiblePixels(), 100u);
    }
    Track(0, {0, 0});
    EXPECT_EQ(backend.visiblePixels(), 0u);
}

TEST_F(Preview, LeavesNoTraceWhenTheViewWasRepaintedInBetween) {
    globals->liveState.fromPoint = {100, 100};
    Track(1, {300, 90});
    host.setZoom(2);
    EXPECT_EQ(backend.visiblePixels(), 0u);
    Track(1, {310, 90});
    Track(1, {150, 120});
    host.setCentre({120, 80});
    Track(0, {0, 0});
    EXPECT_EQ(backend.visiblePixels(), 0u);
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
}  // namespace quorvel
