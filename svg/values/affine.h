// Maps between a drawing's user space and document points, in doubles, and the transform attribute's grammar.
#pragma once

#include <cmath>
#include <string>
#include <string_view>

#include "hostapi/types.h"
#include "svg/values/number.h"

namespace quorvel::svg {

// (x, y) -> (a x + c y + e, b x + d y + f).
struct Affine {
    double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;
    bool operator==(const Affine&) const = default;

    double x(double px, double py) const { return a * px + c * py + e; }
    double y(double px, double py) const { return b * px + d * py + f; }
    // On a grid far finer than 32-bit floats of any use, so that a corner on the page's edge lies at 0 and not at the
    // rounding error of the sum; a zero has one sign only.
    static float coordinate(double value) {
        // The sum's last bit is 2^-40. Doubles beyond 2048 are no finer by themselves.
        constexpr double kShift = 0x1.8p12;
        return static_cast<float>(std::abs(value) < 2048 ? value + kShift - kShift : value) + 0.0F;
    }
    RealPoint point(double px, double py) const { return {coordinate(x(px, py)), coordinate(y(px, py))}; }
    double determinant() const { return a * d - b * c; }
    // What a width is multiplied with: the root of the area's scale.
    double scale() const { return std::sqrt(std::abs(determinant())); }
    bool finite() const;
};

// First inner, then outer.
Affine compose(const Affine& outer, const Affine& inner);
// False when the map is flat or not finite.
[[nodiscard]] bool invert(const Affine& map, Affine* inverse);

// A transform attribute. False when it is no list of transforms or leads to infinity.
[[nodiscard]] bool parseTransform(std::string_view text, Affine* map);

struct LocalPoint {
    double x = 0, y = 0;
};
// The point of user space, with the fewest decimals, that map takes to exactly this document point.
LocalPoint localPoint(const Affine& map, const Affine& inverse, RealPoint target);
// The length, with the fewest decimals, that times scale is exactly this 32-bit value.
double localLength(double scale, float target);

}  // namespace quorvel::svg
