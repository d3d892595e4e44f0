// How an element is painted and set: the cascade of attributes, style sheets and style="", inheritance, and both ways
// between SVG's properties and the host's path style.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "host/css.h"
#include "host/document.h"
#include "host/svg_affine.h"

namespace pugi {
class xml_node;
}

namespace quorvel::host {

struct SvgPaint {
    enum Kind : std::uint8_t { kNone, kColor, kCurrentColor, kReference } kind = kNone;
    CssColor color;
    std::string_view reference;  // "url(#id)" with its fallback, or another paint that is kept as it is
    bool operator==(const SvgPaint&) const = default;
};
SvgPaint parsePaint(std::string_view value);

// Computed for one element, in its user space. Texts are views into the file's text or its style sheets.
struct SvgStyle {
    SvgPaint fill{SvgPaint::kColor, {}, {}}, stroke;
    CssColor color;
    double strokeWidth = 1, miterLimit = 4, dashOffset = 0;
    double dashes[6] = {};
    std::uint8_t dashCount = 0, cap = 0, join = 0;
    bool visible = true, displayed = true;  // display is not inherited
    bool preserveSpace = false;
    std::uint8_t oddities = 0;  // SvgOddity
    std::string_view fontFamily;
    double fontSize = 16;
    int fontWeight = 400;
    bool italic = false;
    ATEJustification anchor = kJustifyLeft;
    double baselineShift = 0;  // of all around together
    double diagonal = 0;       // of the viewport: what percentages of widths are of
    std::uint64_t serial = 0;  // equal only for equal styles; 0 for one that was not computed
};

// Turns url() paints into colours of the document.
class PaintLookup {
  public:
    virtual ~PaintLookup() = default;
    virtual AIColor paintOf(std::string_view reference, const Affine& toDocument) = 0;
};

class StyleResolver {
  public:
    StyleSheet sheet;
    // Full names by family list, weight and slant, as they were found.
    std::map<std::tuple<std::string, int, bool>, std::string> fontNames;
    // The style of an element whose parent has this one. False when the style sheets ask for too much work.
    [[nodiscard]] bool compute(const pugi::xml_node& element, const SvgStyle& parent, SvgStyle* style);
    // Before the text that the last elements stood in goes away.
    void forget() { lastParent_ = 0; }

  private:
    void apply(std::string_view property, std::string_view value, const SvgStyle& parent, SvgStyle* style);
    std::vector<CssDeclaration> fromSheet_, fromAttribute_;
    // The last style that came from a style attribute alone: what it was computed from, and it.
    std::uint64_t serial_ = 0, lastParent_ = 0;
    std::string lastInline_;
    SvgStyle last_;
};

AIColor colorOf(const CssColor& color);
// The paint on its own: AIColor() with gray 1 when it is none.
AIColor colorOf(const SvgPaint& paint, const CssColor& currentColor, const Affine& toDocument, PaintLookup* lookup);
AIPathStyle pathStyleOf(const SvgStyle& style, const Affine& toDocument, PaintLookup* lookup);

// Gives equal styles one object and one number.
class StyleTable {
  public:
    explicit StyleTable(std::vector<StylePtr>* styles) : styles_(styles) {}
    std::int32_t add(const AIPathStyle& style);

  private:
    std::vector<StylePtr>* styles_;
    std::unordered_map<std::uint64_t, std::int32_t> byFingerprint_;
};

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

struct StyleProperty {
    std::string_view name;
    std::string value;
};
// Properties in which the style differs from what is in force; all when there is nothing to compare with. The scale
// is user units to points.
std::vector<StyleProperty> styleProperties(const AIPathStyle& style, const AIPathStyle* inForce, double scale,
                                           const PaintSources& sources);
// Properties that undo what a container would do to new art.
std::vector<StyleProperty> resetProperties(std::uint8_t oddities);
std::string joinProperties(const std::vector<StyleProperty>& properties);

}  // namespace quorvel::host
