// Gradients, resolved: with the stops and attributes of those that they take them from.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "svg/values/affine.h"
#include "svg/values/color.h"

namespace quorvel::svg {

// A length in user units, or a share of something that is known where it is used.
struct Coordinate {
    double value = 0;
    bool isShare = false;
    double of(double whole) const { return isShare ? value * whole : value; }
};

struct GradientStop {
    double offset = 0;  // from 0 to 1
    CssColor color;     // with its opacity
};

struct Gradient {
    enum class Spread : std::uint8_t { kPad, kReflect, kRepeat };

    bool isRadial = false;
    bool inUserSpace = false;  // else in shares of the art's box
    Spread spread = Spread::kPad;
    Affine map;  // into user space, or into the box
    // Of a linear one: where its line begins and ends.
    Coordinate x1{0, true}, y1{0, true}, x2{1, true}, y2{0, true};
    // Of a radial one: its circle, and the one that it begins with.
    Coordinate cx{0.5, true}, cy{0.5, true}, r{0.5, true}, fx, fy, fr;
    std::vector<GradientStop> stops;  // as they are written; empty: it paints nothing
};

}  // namespace quorvel::svg
