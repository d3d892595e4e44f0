// Viewports: what a viewBox and the sides of an svg element do to what is in it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "svg/markup/xml.h"
#include "svg/values/affine.h"

namespace quorvel::svg {

// In user units of what is in it: what percentages are of.
struct Viewport {
    double width = 0, height = 0;
    double diagonal() const;  // by the square root of 2: for lengths that run neither across nor down
    bool operator==(const Viewport&) const = default;
};

// The values of viewBox and preserveAspectRatio, each empty for none.
struct ViewBox {
    std::string_view box, fit;
};
ViewBox viewBoxOf(const XmlNode& element);

// Maps the box into a viewport at the origin; the identity when there is no sound box, or one too far from the origin.
// *size becomes the box's size.
Affine viewBoxMap(const ViewBox& viewBox, const Viewport& viewport, Viewport* size);

constexpr double kPointsPerPixel = 0.75;

// What the root says of the page.
struct Page {
    double width = 0, height = 0;  // points
    Affine map;                    // from the root's user space, y down, to points, y up
    Viewport viewport;
    std::string unit;  // "mm", "in", "cm", "pt", "px" or "pc", of the width; "pt" when it has none of these
};
Page readPage(const XmlNode& root);

// The attribute as a length in user units; nothing when there is none.
std::optional<double> lengthAttribute(const XmlNode& element, std::string_view name, double percentOf);

}  // namespace quorvel::svg
