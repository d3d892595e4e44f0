// A drawing in lines: the page, each layer, each art, indented by depth, the topmost first. A change of one dimension
// changes its lines alone.
//   group #quorvel-7 [145.582,202.588 251.356,83.9828] TAG='4000,0,150'   left,top right,bottom
//   path closed stroke 1 w0.1 = 10,20 30,40(28,40 32,40)~                 points, (in out), ~ for a smooth one
//   text #id center [..] matrix(1,0,0,1,20,30) = "30" "DejaVu Sans" 12 fill 1
// Absent is what an art is without: a paint, a miter limit of 4, scales of 1, a shift of 0. Numbers have six digits.
#pragma once

#include <string>

#include "document/document.h"

namespace quorvel::tests {

enum class Selection { kShown, kLeftOut };  // a file does not keep it

std::string compactDump(const doc::Document& document, const std::string& rulerUnit,
                        Selection selection = Selection::kShown);
// The first line that differs, as both have it; empty when none does. Numbers outside quotes may differ by 1e-4 of the
// number, or of 1 below it.
std::string firstDifference(const std::string& expected, const std::string& actual);

}  // namespace quorvel::tests
