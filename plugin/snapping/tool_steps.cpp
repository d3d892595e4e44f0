// The steps that a run of two points shares between the tool families: press, drag, release into placing.
#include "plugin/snapping/tool_steps.h"

#include "plugin/settings/info_panel.h"
#include "plugin/shell/services.h"

namespace quorvel {

bool TwoPointsPicked(const PluginGlobals* globals) {
    const ToolState& live = globals->liveState;
    return globals->hitKind != kSnapNothing && !PointsEqual(live.fromPoint, live.toPoint);
}

void PressFirstPoint(PluginGlobals* globals) {
    if (globals->liveState.toolStep != 0) return;
    if (globals->hitKind != kSnapNothing)
        globals->liveState.toolStep = 1;
    else
        EndRunWithBeep(globals);
}

AIErr TrackTwoPoints(SnapFamily family, PreviewPainter painter) {
    PluginGlobals* globals = gGlobals;
    const std::int16_t kind = SnapTwoPoints(globals, family);
    RedrawPreview(globals, painter);
    SetPanelRun(globals->liveState);
    SetToolCursor(CursorForSnapKind(kind));
    return kNoErr;
}

void PaintRubberLine(const PreviewPen& pen, PluginGlobals* /*globals*/, ToolState* state, bool /*isDrawn*/) {
    if (state->toolStep == 1 && !PointsEqual(state->fromPoint, state->cursorPoint))
        DrawPreviewLine(pen, state->fromPoint, state->cursorPoint);
}

AIErr ReleaseTwoStep(const AIToolMessage* message, const TwoStepRun& run) {
    PluginGlobals* globals = gGlobals;
    if (globals->liveState.toolStep != 1) return kNoErr;
    CommitCursor(globals);
    RedrawPreview(globals, run.painter);
    if (run.mayBuild(globals)) {
        NameUndoForTool(message->tool);
        if (!run.build()) Beep();
    } else {
        Beep();
    }
    ContextBracket(globals);
    return kNoErr;
}

AIErr ReleaseIntoPlacing(PreviewPainter painter) {
    PluginGlobals* globals = gGlobals;
    if (globals->liveState.toolStep != 1) return kNoErr;
    CommitCursor(globals);
    RedrawPreview(globals, painter);
    if (TwoPointsPicked(globals))
        globals->liveState.toolStep = 2;
    else
        EndRunWithBeep(globals);
    return kNoErr;
}

std::int16_t SnapTwoPicks(PluginGlobals* globals, SnapFamily family) {
    ToolState& live = globals->liveState;
    const SnapResult result = RunSnapChain(globals, family);
    if (result.kind != kSnapNothing) {
        if (live.toolStep == 0) {
            live.fromKind = result.kind;
            live.fromPoint = live.cursorPoint;
        }
        live.toKind = result.kind;
        live.toPoint = live.cursorPoint;
    }
    if (live.toolStep == 0) live.fromCells[0] = result.cells[0];
    live.toCells[0] = result.cells[0];
    return result.kind;
}

}  // namespace quorvel
