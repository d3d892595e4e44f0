// Attributes beside an outline that say what path data cannot.
#pragma once

#include <string_view>

#include "svg/values/affine.h"
#include "svg/values/path_data.h"

namespace quorvel::interchange {

// Which anchors are corners: a character for each anchor, one more for a closed piece where the writer repeats its
// first. Any other number of them changes nothing.
void readNodeTypes(std::string_view types, svg::PathShape* shape);
// "x,y x,y" for each piece, parted by ";": the first anchor's arriving and the last one's leaving handle.
void readEnds(std::string_view ends, const svg::Affine& map, svg::PathShape* shape);

}  // namespace quorvel::interchange
