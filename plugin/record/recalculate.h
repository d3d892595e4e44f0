// Dimensions follow the art they measure: the recalculation that a user asks for, and the tracking pass after a move.
#pragma once

#include "hostapi/types.h"

namespace quorvel {

// Asks first; works on the selected dimensions when any is selected, else on all.
void RecalculateDimensions();
// Rebuilds the dimension from its record as it stands on its art now. The new group; null when none was made.
AIArtHandle RebuildDimension(AIArtHandle group);
// Asks nothing; rebuilds the linear dimensions whose measured art is selected.
void TrackMovedArt();

}  // namespace quorvel
