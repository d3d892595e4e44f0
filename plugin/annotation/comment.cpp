// The annotation tools' events, in the order of a click: options, the chain and the preview at each move, press,
// release.
#include "plugin/annotation/comment.h"

#include "plugin/settings/small_dialogs.h"
#include "plugin/snapping/tool_steps.h"

namespace quorvel {

AIErr CommentEditOptions(const AIToolMessage* /*message*/) {
    PluginGlobals* globals = gGlobals;
    if (globals->prefs.flMarkMode == kCommentMark) RunCommentDialog(globals);
    if (globals->prefs.flMarkMode == kObjectNumberMark) RunObjectNumberDialog(globals);
    return kNoErr;
}

AIErr CommentTrack(const AIToolMessage* /*message*/) { return TrackTwoPoints(SnapFamily::comment, PaintRubberLine); }

AIErr CommentDown(const AIToolMessage* /*message*/) {
    PressFirstPoint(gGlobals);
    return kNoErr;
}

// A click without a drag builds too.
AIErr CommentUp(const AIToolMessage* message) {
    return ReleaseTwoStep(
        message, {PaintRubberLine, [](const PluginGlobals*) { return true; }, [] { return BuildMarkArt() != 0; }});
}

}  // namespace quorvel
