// Maps between a drawing's user space and document points, kept in doubles, and the numbers that a file is written
// with: the fewest digits that come back to the very same 32-bit coordinates.
#pragma once

#include <cmath>
#include <string>
#include <string_view>

#include "hostapi/types.h"

namespace quorvel::host {

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

// A number of SVG's grammar at *at, which moves behind it. False for anything else, also "nan", "inf" and numbers too
// large for a double; numbers too small for one are 0.
[[nodiscard]] bool readNumber(const char** at, const char* end, double* number);
// 0 where a float cannot hold it.
float finiteFloat(double value);
// Skips blanks and at most one comma.
void skipSeparator(const char** at, const char* end);

// A transform attribute. False when it is no list of transforms or leads to infinity.
[[nodiscard]] bool parseTransform(std::string_view text, Affine* map);

// Shortest decimal form that reads back to the same double.
void appendNumber(std::string* out, double value);

// Rounds to ever more decimals until accept(rounded) holds; gives value itself when none does.
template <class Accept>
double fewestDecimals(double value, Accept accept) {
    static constexpr double kPowers[] = {1,   1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                         1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    for (double power : kPowers) {
        const double scaled = std::nearbyint(value * power);
        if (!(std::abs(scaled) < 9007199254740992.0)) break;  // beyond it the quotient is not the written decimal
        const double rounded = scaled / power + 0.0;
        if (accept(rounded)) return rounded;
    }
    return value;
}

struct LocalPoint {
    double x = 0, y = 0;
};
// The point of user space, with the fewest decimals, that map takes to exactly this document point.
LocalPoint localPoint(const Affine& map, const Affine& inverse, RealPoint target);
// The length, with the fewest decimals, that times scale is exactly this 32-bit value.
double localLength(double scale, float target);

}  // namespace quorvel::host
