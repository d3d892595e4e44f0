// The Schedule tools' events: the grid and Shift at each move, the rubber band, press, release.
#include "plugin/frame/schedule.h"

#include "plugin/frame/frame_art.h"
#include "plugin/settings/info_panel.h"
#include "plugin/shell/services.h"
#include "plugin/snapping/preview.h"
#include "plugin/snapping/snap.h"

namespace quorvel {

namespace {

void PaintRubberBand(const PreviewPen& pen, PluginGlobals* /*globals*/, ToolState* state, bool /*isDrawn*/) {
    if (state->toolStep != 1) return;
    const platform::Pixel a = ViewPixel(pen, state->fromPoint), c = ViewPixel(pen, state->cursorPoint);
    platform::MoveTo(pen.surface, a);
    for (const platform::Pixel corner : {platform::Pixel{c.h, a.v}, c, platform::Pixel{a.h, c.v}, a})
        platform::LineTo(pen.surface, corner);
}

}  // namespace

AIErr ScheduleTrack(const AIToolMessage* /*message*/) {
    PluginGlobals* globals = gGlobals;
    const std::int16_t kind = SnapTwoPoints(globals, SnapFamily::schedule);
    RedrawPreview(globals, PaintRubberBand);
    SetPanelRun(globals->liveState);
    SetToolCursor(CursorForSnapKind(kind));
    return kNoErr;
}

AIErr ScheduleDown(const AIToolMessage* /*message*/) {
    PluginGlobals* globals = gGlobals;
    if (globals->liveState.toolStep != 0) return kNoErr;
    if (globals->hitKind != kSnapNothing)
        globals->liveState.toolStep = 1;
    else
        EndRunWithBeep(globals);
    return kNoErr;
}

AIErr ScheduleUp(const AIToolMessage* message) {
    PluginGlobals* globals = gGlobals;
    ToolState& live = globals->liveState;
    if (live.toolStep != 1) return kNoErr;
    CommitCursor(globals);
    RedrawPreview(globals, PaintRubberBand);
    if (PointsEqual(live.fromPoint, live.toPoint)) {
        Beep();
    } else {
        NameUndoForTool(message->tool);
        if (BuildSchedule() == 0) Beep();
    }
    ContextBracket(globals);
    return kNoErr;
}

}  // namespace quorvel
