// The Schedule tools' events: the grid and Shift at each move, the rubber band, press, release.
#include "plugin/frame/schedule.h"

#include "plugin/frame/frame_art.h"
#include "plugin/snapping/tool_steps.h"

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

AIErr ScheduleTrack(const AIToolMessage* /*message*/) { return TrackTwoPoints(SnapFamily::schedule, PaintRubberBand); }

AIErr ScheduleDown(const AIToolMessage* /*message*/) {
    PressFirstPoint(gGlobals);
    return kNoErr;
}

AIErr ScheduleUp(const AIToolMessage* message) {
    return ReleaseTwoStep(message, {PaintRubberBand, TwoPointsPicked, [] { return BuildSchedule() != 0; }});
}

}  // namespace quorvel
