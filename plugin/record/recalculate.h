// Dimensions follow the art they measure: the recalculation that a user asks for, and the tracking pass after a move.
#pragma once

namespace quorvel {

// The recalculation as the host's Action Manager knows it; the panel's button plays it too.
constexpr char kRecalculateAction[] = "Recalculate_Dimension_lines";

// Asks first; works on the selected dimensions when any is selected, else on all.
void RecalculateDimensions();
// Asks nothing; rebuilds the linear dimensions whose measured art is selected.
void TrackMovedArt();

}  // namespace quorvel
