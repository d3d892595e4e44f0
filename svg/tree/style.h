// How an element is painted and set: the cascade of attributes, style sheets and style="", and inheritance.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "hostapi/types.h"
#include "svg/css/declarations.h"
#include "svg/css/style_sheet.h"
#include "svg/values/color.h"
#include "svg/values/paint.h"

namespace pugi {
class xml_node;
}

namespace quorvel::svg {

// Reasons that keep new art from looking as its own style says, inherited by a container's content.
enum UnmodelledProperty : std::uint8_t {
    kFillOpacity = 1,
    kStrokeOpacity = 2,
    kMarkers = 4,
    kLetterSpacing = 8,
    kInvisible = 16,  // visibility
};

// Computed for one element, in its user space. Texts are views into the file's text or its style sheets.
struct SvgStyle {
    SvgPaint fill{SvgPaint::kColor, {}, {}}, stroke;
    CssColor color;
    double strokeWidth = 1, miterLimit = 4, dashOffset = 0;
    double dashes[6] = {};
    std::uint8_t dashCount = 0, cap = 0, join = 0;
    bool visible = true, displayed = true;  // display is not inherited
    bool preserveSpace = false;
    std::uint8_t unmodelledProperties = 0;  // SvgOddity
    std::string_view fontFamily;
    double fontSize = 16;
    int fontWeight = 400;
    bool italic = false;
    ATEJustification anchor = kJustifyLeft;
    double baselineShift = 0;  // of all around together
    double diagonal = 0;       // of the viewport: what percentages of widths are of
    std::uint64_t serial = 0;  // equal only for equal styles; 0 for one that was not computed
};

// The words of stroke-linecap and stroke-linejoin in the order of the host's numbers.
inline constexpr std::array<std::string_view, 3> kCapWords = {"butt", "round", "square"};
inline constexpr std::array<std::string_view, 3> kJoinWords = {"miter", "round", "bevel"};

class StyleResolver {
  public:
    StyleSheet sheet;
    // Full names by family list, weight and slant, as they were found.
    std::map<std::tuple<std::string, int, bool>, std::string> fontNames;
    bool passedTransform = false;  // CSS would have moved an element; only the attribute does here
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

}  // namespace quorvel::svg
