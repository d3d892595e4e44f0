// Lengths of CSS and SVG.
#pragma once

#include <optional>
#include <string_view>

namespace quorvel::svg {

// What a relative length is relative to, in user units.
struct LengthContext {
    double percentOf = 0;
    double fontSize = 16;
    double rootFontSize = 16;
    double pageWidth = 0, pageHeight = 0;  // CSS pixels
};
// A length in user units (CSS pixels). Nothing when it is no length.
std::optional<double> parseLength(std::string_view text, const LengthContext& context);
// The unit behind the number of a length: "" for a plain number.
std::string_view lengthUnit(std::string_view text);

}  // namespace quorvel::svg
