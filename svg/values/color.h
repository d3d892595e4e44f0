// Colours of CSS.
#pragma once

#include <optional>
#include <string_view>

namespace quorvel::svg {

// Channels and alpha from 0 to 1.
struct CssColor {
    double r = 0, g = 0, b = 0, a = 1;
    bool operator==(const CssColor&) const = default;
};
// A name, # with 3, 4, 6 or 8 digits, rgb(), rgba(), hsl() or hsla(), their arguments parted by commas or by blanks.
std::optional<CssColor> parseColor(std::string_view text);

}  // namespace quorvel::svg
