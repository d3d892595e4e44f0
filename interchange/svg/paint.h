// Colours both ways between SVG's paints and the document.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "document/document.h"
#include "svg/values/affine.h"
#include "svg/values/color.h"
#include "svg/values/paint.h"

namespace quorvel::interchange {

// Turns url() paints into colours of the document.
class PaintLookup {
  public:
    virtual ~PaintLookup() = default;
    virtual AIColor paintOf(std::string_view reference, const svg::Affine& toDocument) = 0;
};

AIColor colorOf(const svg::CssColor& color);
// The paint on its own: AIColor() with gray 1 when it is none.
AIColor colorOf(const svg::SvgPaint& paint, const svg::CssColor& currentColor, const svg::Affine& toDocument,
                PaintLookup* lookup);

// --- writing -------------------------------------------------------------------------------------------------------

using PaintSources = std::vector<std::string>;

// "none", "#rrggbb" where that is exact, rgb() with percentages else, or the text of a reference.
std::string cssPaint(bool on, const AIColor& color, const PaintSources& sources);
// What CSS cannot say of a paint: for an attribute of our own, with the CSS value that it stands for. Empty when
// nothing is lost.
std::string exactPaint(const AIColor& color, const PaintSources& sources);
// The colour itself when the attribute was written for another CSS value than the current one.
AIColor withExactPaint(const AIColor& plain, const svg::SvgPaint& paint, std::string_view attribute);
std::string colorSpec(const AIColor& color);
std::optional<AIColor> parseColorSpec(std::string_view spec);

}  // namespace quorvel::interchange
