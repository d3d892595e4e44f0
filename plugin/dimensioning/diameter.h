// The Diameter tool: the Radius tool with a doubled value and, in "Show Center", a second arrowhead.
#pragma once

#include "hostapi/messages.h"
#include "plugin/shell/globals.h"

namespace quorvel {

AIErr DiameterEditOptions(const AIToolMessage* message);
AIErr DiameterTrack(const AIToolMessage* message);
AIErr DiameterDown(const AIToolMessage* message);
AIErr DiameterUp(const AIToolMessage* message);

std::int32_t DiameterGeometry(const DoublePoint& placement, double* r, DoublePoint* P0, DoublePoint* S, DoublePoint* T);
std::int32_t BuildDiameterDimension(AIArtHandle oldGroup);

}  // namespace quorvel
