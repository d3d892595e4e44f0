// Colours of CSS.
#pragma once

#include <optional>
#include <string_view>

namespace quorvel::svg {

// Channels from 0 to 1.
struct CssColor {
    double r = 0, g = 0, b = 0;
    bool operator==(const CssColor&) const = default;
};
// A name, #rgb, #rrggbb, rgb() with numbers or percentages, also with an alpha, which is passed over.
std::optional<CssColor> parseColor(std::string_view text);

}  // namespace quorvel::svg
