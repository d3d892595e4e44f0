// The Diameter tool: a round tool whose value is doubled and whose leader, in "Show Center", crosses the whole circle.
#include "plugin/dimensioning/diameter.h"

#include "plugin/dimensioning/radius.h"
#include "plugin/settings/small_dialogs.h"

namespace quorvel {

namespace {

void PaintDiameter(const PreviewPen& pen, PluginGlobals* /*globals*/, ToolState* state, bool /*isDrawn*/) {
    PaintRound(kDiameterRoundTool, pen, *state);
}

}  // namespace

AIErr DiameterEditOptions(const AIToolMessage* /*message*/) {
    RunDiameterDialog(gGlobals);
    return kNoErr;
}

AIErr DiameterTrack(const AIToolMessage* /*message*/) {
    TrackRound(kDiameterRoundTool, PaintDiameter);
    return kNoErr;
}

AIErr DiameterDown(const AIToolMessage* /*message*/) {
    PressFirstPoint(gGlobals);
    return kNoErr;
}

AIErr DiameterUp(const AIToolMessage* message) {
    return ReleaseTwoStep(message,
                          {PaintDiameter, RoundPickIsPlaced, [] { return BuildDiameterDimension(nullptr) != 0; }});
}

std::int32_t DiameterGeometry(const DoublePoint& placement, double* r, DoublePoint* P0, DoublePoint* S,
                              DoublePoint* T) {
    RoundLeader leader;
    if (!SolveRoundLeader(kDiameterRoundTool, gGlobals->liveState.fromCells[0], placement, &leader)) return 0;
    *r = leader.radius;
    *P0 = leader.P0;
    *S = leader.S;
    *T = leader.T;
    return 1;
}

std::int32_t BuildDiameterDimension(AIArtHandle oldGroup) { return BuildRound(kDiameterRoundTool, oldGroup); }

}  // namespace quorvel
