// A selected frame is read into the settings, edited there and drawn anew; without one the dialog edits what the next
// frame will say.
#include "plugin/frame/schedule_edit.h"

#include "plugin/frame/frame_art.h"
#include "plugin/frame/schedule_dialog.h"
#include "plugin/frame/schedule_record.h"
#include "plugin/shell/suites.h"

namespace quorvel {

AIErr ScheduleEditOptions(const AIToolMessage* /*message*/) {
    PluginGlobals* globals = gGlobals;
    AIArtHandle frame = FindSelectedFrame();
    if (frame != nullptr) ReadScheduleRecord(frame);
    if (!RunScheduleDialog(globals) || frame == nullptr) return kNoErr;
    RealRect rect{};
    ArtPathBounds(frame, &rect);
    if (rect.right - rect.left == 0) return kNoErr;
    globals->liveState.fromPoint = {rect.left, rect.top};
    globals->liveState.toPoint = {rect.right, rect.bottom};
    globals->liveState.endPoint = globals->liveState.toPoint;
    // The old frame goes whatever became of the new one.
    static_cast<void>(BuildSchedule());
    sAIArt->DisposeArt(frame);
    return kNoErr;
}

}  // namespace quorvel
