// The Angle tool: press on one straight segment, let go on a second, click where the arc runs.
#pragma once

#include "hostapi/messages.h"
#include "plugin/shell/globals.h"

namespace quorvel {

AIErr AngleTrack(const AIToolMessage* message);
AIErr AngleDown(const AIToolMessage* message);
AIErr AngleUp(const AIToolMessage* message);

// 0 for parallel legs. Radians; startAngle lies above endAngle when the arc runs through the other side.
std::int32_t AngleGeometry(const DoublePoint& placement, const DoublePoint& from, const DoublePoint& to, double* radius,
                           double* startAngle, double* endAngle, DoublePoint* centre);
std::int32_t BuildAngleDimension(AIArtHandle oldGroup);

}  // namespace quorvel
