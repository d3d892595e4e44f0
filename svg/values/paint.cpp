#include "svg/values/paint.h"

#include "svg/values/color.h"
#include "svg/values/number.h"

namespace quorvel::svg {

SvgPaint parsePaint(std::string_view value) {
    value = trimmed(value);
    if (value == "none" || value == "transparent") return {};
    if (value == "currentColor" || value == "currentcolor") return {SvgPaint::kCurrentColor, {}, {}};
    if (const std::optional<CssColor> color = parseColor(value)) return {SvgPaint::kColor, *color, {}};
    // Each element that inherits a reference looks at all of it.
    constexpr std::size_t kLongestReference = 4096;
    if (value.size() > kLongestReference) return {};
    return {SvgPaint::kReference, {}, value};
}

}  // namespace quorvel::svg
