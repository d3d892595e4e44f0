#include "svg/css/style_text.h"

#include <cmath>
#include <string_view>

#include "svg/values/number.h"

namespace quorvel::svg {
namespace {

class Declarations {
  public:
    void add(std::string_view property, std::string_view value) {
        if (value.empty()) return;
        text_ += property;
        text_ += ':';
        text_ += value;
        text_ += ';';
    }
    void add(std::string_view property, double value, std::string_view unit = "") {
        std::string text;
        appendNumber(&text, value);
        add(property, text.append(unit));
    }
    std::string take() { return std::move(text_); }

  private:
    std::string text_;
};

std::string hexOf(const CssColor& color) {
    std::string text = "#";
    for (const double channel : {color.r, color.g, color.b}) {
        const long byte = std::lround(channel * 255);
        text += "0123456789abcdef"[byte >> 4 & 15];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

std::string wordOf(const SvgPaint& paint) {
    switch (paint.kind) {
        case SvgPaint::kColor:
            return hexOf(paint.color);
        case SvgPaint::kCurrentColor:
            return "currentColor";
        case SvgPaint::kReference:
            return std::string(paint.reference);
        case SvgPaint::kNone:
            break;
    }
    return "none";
}

double alphaOf(const SvgPaint& paint) { return paint.kind == SvgPaint::kColor ? paint.color.a : 1; }

std::string_view wordOf(FillRule rule) { return rule == FillRule::kEvenOdd ? "evenodd" : "nonzero"; }

void addPaint(const ComputedStyle& style, Declarations* to) {
    to->add("color", hexOf(style.color));
    to->add("fill", wordOf(style.fill));
    to->add("fill-opacity", style.fillOpacity * alphaOf(style.fill));
    to->add("fill-rule", wordOf(style.fillRule));
    to->add("clip-rule", wordOf(style.clipRule));
    to->add("stroke", wordOf(style.stroke));
    to->add("stroke-opacity", style.strokeOpacity * alphaOf(style.stroke));
    to->add("stroke-width", style.strokeWidth);
    to->add("stroke-miterlimit", style.miterLimit);
    to->add("stroke-linecap", kCapWords[style.cap]);
    to->add("stroke-linejoin", kJoinWords[style.join]);
    to->add("stroke-dashoffset", style.dashOffset);
    std::string dashes;
    for (std::size_t i = 0; i < style.dashCount; ++i) {
        if (i > 0) dashes += ',';
        appendNumber(&dashes, style.dashes[i]);
    }
    to->add("stroke-dasharray", dashes.empty() ? "none" : dashes);
}

void addText(const ComputedStyle& style, Declarations* to) {
    static constexpr std::string_view kAnchors[] = {"start", "end", "middle"};
    to->add("font-family", style.fontFamily);
    to->add("font-size", style.fontSize, "px");
    to->add("font-style", style.italic ? "italic" : "normal");
    to->add("font-weight", style.fontWeight);
    to->add("letter-spacing", style.letterSpacing, "px");
    to->add("word-spacing", style.wordSpacing, "px");
    to->add("text-anchor", kAnchors[style.anchor]);
    to->add("visibility", style.visible ? "visible" : "hidden");
}

}  // namespace

std::string inheritedDeclarations(const ComputedStyle& style) {
    Declarations declarations;
    addPaint(style, &declarations);
    addText(style, &declarations);
    return declarations.take();
}

}  // namespace quorvel::svg
