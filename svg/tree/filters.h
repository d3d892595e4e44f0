// What the filter property of an element asks for: what has to be known before another renderer computes its pixels.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "svg/tree/excerpt.h"
#include "svg/tree/viewport.h"

namespace quorvel::svg {

struct FilterRegion {
    bool inBox = true;  // shares of the element's box, else user units
    double x = -0.1, y = -0.1, width = 1.2, height = 1.2;
};

struct Filter {
    std::string value;  // the property as it is written
    ExcerptParts parts;
    std::vector<FilterRegion> regions;  // of the filter elements in it
    double reach = 0;                   // user units by which the functions in it leave the element's box
    // Work from above: nanoseconds of a dot, those that grow with the dots of a square user unit, and pictures that are
    // kept at one time.
    double ofADot = 0, ofAScaledDot = 0, pictures = 0;
    // False for what must not be given to another renderer: its content is too large or may multiply itself.
    bool isSound = true;
};

Filter readFilter(File* file, std::string_view value, double fontSize);

}  // namespace quorvel::svg
