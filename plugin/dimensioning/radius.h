// The Radius tool: press on an arc, drag to where the label goes, let go. The Diameter tool shares its events and its
// builder; what differs stands in a RoundTool.
#pragma once

#include "hostapi/messages.h"
#include "plugin/dimensioning/units.h"
#include "plugin/shell/globals.h"
#include "plugin/snapping/tool_steps.h"

namespace quorvel {

AIErr RadiusEditOptions(const AIToolMessage* message);
AIErr RadiusTrack(const AIToolMessage* message);
AIErr RadiusDown(const AIToolMessage* message);
AIErr RadiusUp(const AIToolMessage* message);

// The circle of a segment, from the normals at its two ends. 0 when it is no circular arc.
std::int32_t CircleFromTangents(const PathSegment& prevSegment, const PathSegment& segment, DoublePoint* centre,
                                double* radius);
// The circle of the segment that fromCells[0] of liveState names.
std::int32_t ArcFromSegment(DoublePoint* centre, double* radius);
// r the radius, P0 the leader's inner end, S the point on the circle, T the leader's outer end.
std::int32_t RadiusGeometry(const DoublePoint& placement, double* r, DoublePoint* P0, DoublePoint* S, DoublePoint* T);
std::int32_t BuildRadiusDimension(AIArtHandle oldGroup);

// What the two round tools differ in.
struct RoundTool {
    std::int16_t kind;  // of the record
    SnapFamily family;
    std::int16_t PrefsRecord::*mode;  // 0 show centre, 1 show surface
    LengthKind length;
    bool truncatesWings;  // arrow lengths are cut to whole points
    bool crossesCircle;   // with mode 0 the leader starts on the far side, with a head there too
};
extern const RoundTool kRadiusRoundTool, kDiameterRoundTool;

// The leader of a placement, and the circle it stands on.
struct RoundLeader {
    DoublePoint centre;
    double radius = 0;
    DoublePoint P0, S, T;
};
bool SolveRoundLeader(const RoundTool& tool, const SnapCell& cell, const DoublePoint& placement, RoundLeader* leader);
void TrackRound(const RoundTool& tool, PreviewPainter painter);
// The second point is never set by these tools: only a pick at the origin equals it.
bool RoundPickIsPlaced(const PluginGlobals* globals);
void PaintRound(const RoundTool& tool, const PreviewPen& pen, const ToolState& state);
std::int32_t BuildRound(const RoundTool& tool, AIArtHandle oldGroup);

}  // namespace quorvel
