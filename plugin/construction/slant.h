// The Slant tool levels the selection: draw a line over what should be level, and all that is selected turns about the
// line's first point until the line lies level. The direction of the drawing matters.
#pragma once

#include "hostapi/messages.h"
#include "plugin/shell/globals.h"

namespace quorvel {

AIErr SlantTrack(const AIToolMessage* message);
AIErr SlantDown(const AIToolMessage* message);
AIErr SlantUp(const AIToolMessage* message);

// About fromPoint by the opposite of the direction to toPoint, in all layers, hidden and locked ones too. Always true;
// a host error ends it where it is.
bool LevelSelection();
// The selected art below and at art; dimensions stay where they are. Radians: the angle that becomes level.
AIErr TurnArt(AIArtHandle art, const DoublePoint& pivot, double angle);
void TurnPoint(RealPoint* point, const DoublePoint& pivot, double angle);

}  // namespace quorvel
