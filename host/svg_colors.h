// Colours both ways between SVG's paints and the document.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/css.h"
#include "host/document.h"
#include "host/svg_affine.h"

namespace quorvel::host {

struct SvgPaint {
    enum Kind : std::uint8_t { kNone, kColor, kCurrentColor, kReference } kind = kNone;
    CssColor color;
    std::string_view reference;  // "url(#id)" with its fallback, or another paint that is kept as it is
    bool operator==(const SvgPaint&) const = default;
};
SvgPaint parsePaint(std::string_view value);

// Turns url() paints into colours of the document.
class PaintLookup {
  public:
    virtual ~PaintLookup() = default;
    virtual AIColor paintOf(std::string_view reference, const Affine& toDocument) = 0;
};

AIColor colorOf(const CssColor& color);
// The paint on its own: AIColor() with gray 1 when it is none.
AIColor colorOf(const SvgPaint& paint, const CssColor& currentColor, const Affine& toDocument, PaintLookup* lookup);

// --- writing -------------------------------------------------------------------------------------------------------

using PaintSources = std::vector<std::string>;

// "none", "#rrggbb" where that is exact, rgb() with percentages else, or the text of a reference.
std::string cssPaint(bool on, const AIColor& color, const PaintSources& sources);
// What CSS cannot say of a paint: for an attribute of our own, with the CSS value that it stands for. Empty when
// nothing is lost.
std::string exactPaint(const AIColor& color, const PaintSources& sources);
// The colour itself when the attribute stands for another CSS value than the one in force.
AIColor withExactPaint(const AIColor& plain, const SvgPaint& paint, std::string_view attribute);
std::string colorSpec(const AIColor& color);
std::optional<AIColor> parseColorSpec(std::string_view spec);

}  // namespace quorvel::host
