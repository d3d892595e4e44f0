// The linear dimension tools as the hand meets them: press, drag, stops with Alt, release, move, click. Each event
// reads the run's state, snaps the cursor, shows what would be made, and only the last click changes the drawing. The
// file goes the way of a click: handlers, snap chain, preview, and the click that hands over to the builder in
// linear_build.cpp.
#include "plugin/dimensioning/linear.h"

#include "plugin/dimensioning/curve.h"
#include "plugin/settings/info_panel.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"
#include "plugin/snapping/preview.h"
#include "plugin/snapping/snap.h"

namespace quorvel {

namespace {

constexpr double kSamePressDistance = 3.0;  // points: presses this near on both axes are one

void AddStop(ToolState* state);
bool LastStopIsAt(const ToolState& state, const RealPoint& point);
void PaintLinear(const PreviewPen& pen, PluginGlobals* globals, ToolState* state, bool isDrawn);
void PlaceDimension(PluginGlobals* globals, AIToolHandle tool);

bool AltHeld(const AIToolMessage* message) {
    return message->event != nullptr && (message->event->modifiers & kAltModifier) != 0;
}

void CopyCells(const SnapCell* from, SnapCell* to) {
    for (int i = 0; i < kSnapCellCount; ++i) to[i] = from[i];
}

}  // namespace

AIErr LinearTrack(const AIToolMessage* /*message*/) {
    PluginGlobals* globals = gGlobals;
    std::int16_t kind = kSnapNothing;
    LinearSnap(globals->liveState.toolStep == 1, &kind);
    RedrawPreview(globals, PaintLinear);
    SetPanelRun(globals->liveState);
    SetToolCursor(CursorForSnapKind(kind));
    return kNoErr;
}

AIErr LinearDown(const AIToolMessage* message) {
    PluginGlobals* globals = gGlobals;
    ToolState& live = globals->liveState;
    switch (live.toolStep) {
        case 0:
            if (globals->hitKind != kSnapNothing) {
                live.toolStep = 1;
            } else {
                EndRunWithBeep(globals);
            }
            break;
        case 1:
            if (AltHeld(message)) AddStop(&live);
            break;
        case 2:
            PlaceDimension(globals, message->tool);
            break;
        default:
            break;
    }
    return kNoErr;
}

AIErr LinearUp(const AIToolMessage* message) {
    PluginGlobals* globals = gGlobals;
    ToolState& live = globals->liveState;
    if (live.toolStep != 1 || AltHeld(message)) return kNoErr;
    CommitCursor(globals);
    RedrawPreview(globals, PaintLinear);
    if (globals->hitKind == kSnapNothing || PointsEqual(live.fromPoint, live.toPoint)) {
        EndRunWithBeep(globals);
        return kNoErr;
    }
    // The last press stood on the end point: it is no stop.
    if (LastStopIsAt(live, live.toPoint)) --live.stopCount;
    live.toolStep = 2;
    return kNoErr;
}

void LinearSnap(bool secondPoint, std::int16_t* kind) {
    PluginGlobals* globals = gGlobals;
    ToolState& live = globals->liveState;
    const SnapResult result = RunSnapChain(globals, SnapFamily::linear);
    *kind = result.kind != kSnapNothing ? result.kind : static_cast<std::int16_t>(kSnapFree);
    // While the dimension line is placed only the cursor moves: what is measured stands.
    if (live.toolStep != 2) {
        if (!secondPoint) {
            live.fromKind = *kind;
            live.fromPoint = live.cursorPoint;
            CopyCells(result.cells, live.fromCells);
        }
        live.toKind = *kind;
        live.toPoint = live.cursorPoint;
        CopyCells(result.cells, live.toCells);
    }
    globals->hitKind = static_cast<std::uint16_t>(*kind);
}

namespace {

bool LastStopIsAt(const ToolState& state, const RealPoint& point) {
    if (state.stopCount <= 0) return false;
    const DoublePoint last = ToDoublePoint(state.stops[state.stopCount - 1].point), press = ToDoublePoint(point);
    return AbsOf(press.h - last.h) <= kSamePressDistance && AbsOf(press.v - last.v) <= kSamePressDistance;
}

void AddStop(ToolState* state) {
    if (state->stopCount >= kStopLimit) {
        Beep();
        return;
    }
    if (LastStopIsAt(*state, state->toPoint)) return;
    StopRecord& stop = state->stops[state->stopCount];
    stop.point = state->toPoint;
    stop.kind = state->toKind;
    CopyCells(state->toCells, stop.cells);
    ++state->stopCount;
}

bool SamePixel(const platform::Pixel& a, const platform::Pixel& b) { return a.h == b.h && a.v == b.v; }

// From the first point through the stops to the cursor.
void PaintMeasuredPoints(const PreviewPen& pen, const ToolState& state) {
    if (PointsEqual(state.fromPoint, state.cursorPoint)) return;
    platform::Pixel at = ViewPixel(pen, state.fromPoint);
    platform::MoveTo(pen.surface, at);
    platform::LineTo(pen.surface, at);
    for (int i = 0; i < state.stopCount; ++i) {
        at = ViewPixel(pen, state.stops[i].point);
        platform::LineTo(pen.surface, at);
    }
    const platform::Pixel end = ViewPixel(pen, state.cursorPoint);
    if (!SamePixel(at, end)) platform::LineTo(pen.surface, end);
}

// The extension lines and the dimension line with the cursor as placement point. The axis that is decided here for
// liveState is the one that the build will find. drawnState holds the decision that its own drawing made: deciding from
// it again gives the same axis, and what that would store is dropped, so that erasing changes nothing.
void PaintFutureDimension(const PreviewPen& pen, PluginGlobals* globals, ToolState* state, bool isDrawn) {
    const DoublePoint E = ToDoublePoint(state->cursorPoint);
    const DoublePoint P1 = ToDoublePoint(state->fromPoint);
    const DoublePoint P2 = ToDoublePoint(state->toPoint);
    DoublePoint A, B;
    DoublePoint S[2 * kStopCapacity];
    for (int i = 0; i < state->stopCount; ++i) S[2 * i] = ToDoublePoint(state->stops[i].point);
    DoublePoint tmpPos = state->tmpPos;
    std::int16_t axisWord = state->axisWord;
    const std::int32_t found = ProjectFeet(E, P1, P2, &A, &B, &tmpPos, state->stopCount, S, &axisWord);
    if (!isDrawn) {
        state->tmpPos = tmpPos;
        state->axisWord = axisWord;
    }
    if (found == 0) return;
    if (globals->prefs.flDistanceMode == kCurveMode && CurveCaseHolds(*state)) {
        PaintCurvePreview(pen, globals, state, isDrawn);
        return;
    }
    DrawPreviewLine(pen, P1, A);
    DrawPreviewLine(pen, A, B);
    DrawPreviewLine(pen, B, P2);
    for (int i = 0; i < state->stopCount; ++i) DrawPreviewLine(pen, S[2 * i], S[2 * i + 1]);
}

void PaintLinear(const PreviewPen& pen, PluginGlobals* globals, ToolState* state, bool isDrawn) {
    if (state->toolStep == 1) PaintMeasuredPoints(pen, *state);
    if (state->toolStep == 2) PaintFutureDimension(pen, globals, state, isDrawn);
}

void PlaceDimension(PluginGlobals* globals, AIToolHandle tool) {
    CommitCursor(globals);
    RedrawPreview(globals, PaintLinear);
    // The axis that the preview showed stands, wherever the click fell.
    globals->liveState.tmpPos = ToDoublePoint(globals->liveState.endPoint);
    NameUndoForTool(tool);
    if (BuildLinearDimension(nullptr) == 0) Beep();
    ContextBracket(globals);
}

}  // namespace

}  // namespace quorvel
