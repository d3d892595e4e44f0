// What a drawing frame keeps in tags on its outer group, so that it can be found, reopened in the dialog and drawn
// anew.
#pragma once

#include "plugin/shell/globals.h"

namespace quorvel {

void WriteScheduleRecord(AIArtHandle art);
// Clears the schedule block and fills it from the tags.
void ReadScheduleRecord(AIArtHandle art);
// The outer group of a selected frame on a visible and editable layer, or null.
AIArtHandle FindSelectedFrame();
// Adds to rect the bounds of all paths below art; a rect of zero width is replaced. Texts do not count.
void ArtPathBounds(AIArtHandle art, RealRect* rect);

}  // namespace quorvel
