// What a drawing says of itself: its page, what one unit of its coordinates is, what is in it and what it lacks.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "app/sentences.h"
#include "interchange/svg/svg.h"

namespace quorvel::app {

// One unit of the root's coordinates on the paper.
struct UserUnit {
    double width = 0, height = 0;  // mm; they differ where the viewBox is stretched
    // "mm", "cm", "in", "pt", "pc", "px" (96 dpi) or "px90" (the 90 dpi of old programs); empty when it is none of
    // these.
    std::string name;
    // What `flScale` is when the unit is meant as 1 mm, as its text: "1/50", "2/1", "1/2.5". Empty when the unit has a
    // name, is stretched, or gives no plain ratio.
    std::string scale;
};
// Both in mm.
UserUnit userUnitOf(double width, double height);

struct DrawingInformation {
    double pageWidth = 0, pageHeight = 0;  // mm
    UserUnit unit;
    // By their names in JSON, in the order of printing. A compound path's members are not counted as paths, nor are
    // the pieces of a dimension, comment or frame.
    std::vector<std::pair<const char*, std::size_t>> counts;
    std::vector<std::string> missingFonts;  // families that texts ask for first, in alphabetical order
    std::vector<Error> warnings;            // of opening
};

// The drawing is one that was read from a file.
DrawingInformation informationAbout(const interchange::SvgDrawing& drawing);
// A line with the file's name, then one for each fact.
std::string informationText(const std::string& file, const DrawingInformation& information, Language language);

}  // namespace quorvel::app
