// Dimensions follow the art they measure: the recalculation that a user asks for, and the tracking pass after a move.
#pragma once

#include "hostapi/types.h"

namespace quorvel {

// Asks first; works on the selected dimensions when any is selected, else on all.
void RecalculateDimensions();
// Rebuilds the dimension from its record on its art as it is now. tolerance: as in QuorvelRebuildMessage. The new
// group; null when none was made.
AIArtHandle RebuildDimension(AIArtHandle group, double tolerance);
// Asks nothing; rebuilds the linear dimensions whose measured art is selected.
void TrackMovedArt();

// The same for all kinds and for the art of stops; keeps the settings and what a running tool has so far.
void FollowSelectedArt();

}  // namespace quorvel
