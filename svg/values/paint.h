// The value of fill and stroke.
#pragma once

#include <cstdint>
#include <string_view>

#include "svg/values/color.h"

namespace quorvel::svg {

struct SvgPaint {
    enum Kind : std::uint8_t { kNone, kColor, kCurrentColor, kReference } kind = kNone;
    CssColor color;
    std::string_view reference;  // "url(#id)" with its fallback, or another paint that is kept as it is
    bool operator==(const SvgPaint&) const = default;
};
SvgPaint parsePaint(std::string_view value);

}  // namespace quorvel::svg
