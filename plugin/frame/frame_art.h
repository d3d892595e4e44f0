// The art of a drawing frame: the outer rectangle, the title block in its lower right corner and the parts table. All
// sizes follow from the row height, which is the text size plus two points.
#pragma once

#include "plugin/shell/globals.h"

namespace quorvel {

// Makes the frame of liveState's two points on the current layer. 0 when that is hidden or locked, else 1.
std::int32_t BuildSchedule();

// mode: 0 the table is on the title block, 1 it hangs from the frame's top edge.
void DrawTitleBlock(AIArtHandle group, const DoublePoint& from, const DoublePoint& to);
void DrawPartsTable(AIArtHandle group, const DoublePoint& from, const DoublePoint& to, std::int16_t mode);
void AddFrameRect(AIArtHandle group, double x, double y, double w, double h);  // h may be negative
void AddFrameLine(AIArtHandle group, double x, double y, double dx, double dy, bool heavy);
// One text cell on the base line a to b (internal bytes), shrunk evenly to fit.
void AddCellText(AIArtHandle group, const DoublePoint& a, const DoublePoint& b, const char* text, bool centred);

}  // namespace quorvel
