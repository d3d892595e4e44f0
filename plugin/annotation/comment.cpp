// The annotation tools' events, in the order of a click: options, the chain and the preview at each move, press,
// release.
#include "plugin/annotation/comment.h"

#include "plugin/settings/info_panel.h"
#include "plugin/settings/small_dialogs.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"
#include "plugin/snapping/preview.h"
#include "plugin/snapping/snap.h"

namespace quorvel {

namespace {

void PaintComment(const PreviewPen& pen, PluginGlobals* /*globals*/, ToolState* state, bool /*isDrawn*/) {
    if (state->toolStep == 1 && !PointsEqual(state->fromPoint, state->cursorPoint))
        DrawPreviewLine(pen, state->fromPoint, state->cursorPoint);
}

}  // namespace

AIErr CommentEditOptions(const AIToolMessage* /*message*/) {
    PluginGlobals* globals = gGlobals;
    if (globals->prefs.flMarkMode == kCommentMark) RunCommentDialog(globals);
    if (globals->prefs.flMarkMode == kObjectNumberMark) RunObjectNumberDialog(globals);
    return kNoErr;
}

AIErr CommentTrack(const AIToolMessage* /*message*/) {
    PluginGlobals* globals = gGlobals;
    const std::int16_t kind = SnapTwoPoints(globals, SnapFamily::comment);
    RedrawPreview(globals, PaintComment);
    SetPanelRun(globals->liveState);
    SetToolCursor(CursorForSnapKind(kind));
    return kNoErr;
}

AIErr CommentDown(const AIToolMessage* /*message*/) {
    PluginGlobals* globals = gGlobals;
    if (globals->liveState.toolStep != 0) return kNoErr;
    if (globals->hitKind != kSnapNothing)
        globals->liveState.toolStep = 1;
    else
        EndRunWithBeep(globals);
    return kNoErr;
}

AIErr CommentUp(const AIToolMessage* message) {
    PluginGlobals* globals = gGlobals;
    if (globals->liveState.toolStep != 1) return kNoErr;
    CommitCursor(globals);
    RedrawPreview(globals, PaintComment);
    NameUndoForTool(message->tool);
    if (BuildMarkArt() == 0) Beep();
    ContextBracket(globals);
    return kNoErr;
}

}  // namespace quorvel
