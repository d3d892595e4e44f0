// The cascade: attributes, style sheets and the style attribute in SVG's order, and inheritance.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "svg/css/computed_style.h"
#include "svg/css/properties.h"
#include "svg/css/style_sheet.h"
#include "svg/css/style_table.h"
#include "svg/markup/xml.h"

namespace quorvel::svg {

class Cascade {
  public:
    // The styles must live as long.
    explicit Cascade(StyleTable* styles) : styles_(*styles) {}

    StyleSheet sheet;
    double rootFontSize = 16;      // of the root element, CSS pixels
    bool passedTransform = false;  // CSS would have moved an element; only the attribute does here

    // The style of an element whose parent has this one, with its numbers. diagonal: of the viewport, in user units.
    // False when the style sheets ask for too much work.
    [[nodiscard]] bool compute(const XmlNode& element, const ComputedStyle& parent, double diagonal,
                               ComputedStyle* style);
    // Of the element in its place: that of its ancestors from the outermost on, then its own.
    [[nodiscard]] bool computeInPlace(const XmlNode& element, double diagonal, ComputedStyle* style);

    StyleTable& styles() { return styles_; }

  private:
    struct Attributes {
        std::string_view inlineStyle, id, classes;
    };
    using Declared = std::pair<const Property*, std::string_view>;
    Attributes takeAttributes(const XmlNode& element);
    void orderDeclarations();
    void apply(const Declared& declared, const ComputedStyle& parent, ComputedStyle* style);
    void applyAll(const ComputedStyle& parent, ComputedStyle* style);

    StyleTable& styles_;
    std::vector<Declared> declared_;  // of the element: its attributes, then also the declarations, weakest first
    std::vector<CssDeclaration> fromSheet_, fromAttribute_;
    double diagonal_ = 0;
    unsigned changed_ = 0;  // groups of the style that is made
    // The last style that came from a style attribute alone: what it was computed from, and it.
    bool hasLast_ = false;
    std::uint32_t lastParent_ = 0;
    double lastDiagonal_ = 0;
    std::string lastInline_;
    ComputedStyle last_;
};

}  // namespace quorvel::svg
