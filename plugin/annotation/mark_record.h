// What a comment, a balloon, a length or area comment keeps of the art at the tip of its leader, so that the leader
// follows and the value can be held against it.
#pragma once

#include <string>
#include <vector>

#include "hostapi/dimensions.h"

namespace quorvel {

// Of the art in fromCells[0], with the text (internal bytes) that the mark was given. Empties toCells.
void WriteMarkRecord(AIArtHandle group, const std::string& text);
// The tip, and the text when it was edited since.
std::vector<DimensionEnd> ExamineMark(AIArtHandle group);
// Builds the mark again where its art is now. Null, and nothing has changed, when its text was edited or its art is
// lost. Keeps the settings and what a running tool has so far.
AIArtHandle RebuildMark(AIArtHandle group);

}  // namespace quorvel
