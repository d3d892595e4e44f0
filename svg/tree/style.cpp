// The cascade in SVG's order: attributes, then style sheet rules, then style="", then what is marked important.
// Properties that the host has no word for are left where they are; a few are noted because new art would inherit them.
#include "svg/tree/style.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <pugixml.hpp>

#include "svg/values/color.h"
#include "svg/values/length.h"
#include "svg/values/number.h"
#include "svg/values/paint.h"

namespace quorvel::svg {
namespace {

// Of a list of font families, in bytes; each text that inherits it looks at all of it.
constexpr std::size_t kLongestFamilies = 2048;

enum class Property {
    kBaselineShift,
    kColor,
    kDisplay,
    kFill,
    kFillOpacity,
    kFont,
    kFontFamily,
    kFontSize,
    kFontStyle,
    kFontWeight,
    kLetterSpacing,
    kMarker,
    kStroke,
    kDashArray,
    kDashOffset,
    kLineCap,
    kLineJoin,
    kMiterLimit,
    kStrokeOpacity,
    kStrokeWidth,
    kTextAnchor,
    kVisibility,
    kWhiteSpace,
    kWordSpacing,
    kXmlSpace
};

struct PropertyName {
    std::string_view name;
    Property property;
};

constexpr std::array kProperties = {
    PropertyName{"baseline-shift", Property::kBaselineShift},
    PropertyName{"color", Property::kColor},
    PropertyName{"display", Property::kDisplay},
    PropertyName{"fill", Property::kFill},
    PropertyName{"fill-opacity", Property::kFillOpacity},
    PropertyName{"font", Property::kFont},
    PropertyName{"font-family", Property::kFontFamily},
    PropertyName{"font-size", Property::kFontSize},
    PropertyName{"font-style", Property::kFontStyle},
    PropertyName{"font-weight", Property::kFontWeight},
    PropertyName{"letter-spacing", Property::kLetterSpacing},
    PropertyName{"marker", Property::kMarker},
    PropertyName{"marker-end", Property::kMarker},
    PropertyName{"marker-mid", Property::kMarker},
    PropertyName{"marker-start", Property::kMarker},
    PropertyName{"stroke", Property::kStroke},
    PropertyName{"stroke-dasharray", Property::kDashArray},
    PropertyName{"stroke-dashoffset", Property::kDashOffset},
    PropertyName{"stroke-linecap", Property::kLineCap},
    PropertyName{"stroke-linejoin", Property::kLineJoin},
    PropertyName{"stroke-miterlimit", Property::kMiterLimit},
    PropertyName{"stroke-opacity", Property::kStrokeOpacity},
    PropertyName{"stroke-width", Property::kStrokeWidth},
    PropertyName{"text-anchor", Property::kTextAnchor},
    PropertyName{"visibility", Property::kVisibility},
    PropertyName{"white-space", Property::kWhiteSpace},
    PropertyName{"word-spacing", Property::kWordSpacing},
    PropertyName{"xml:space", Property::kXmlSpace},
};
static_assert(std::ranges::is_sorted(kProperties, {}, &PropertyName::name));

std::optional<Property> propertyOf(std::string_view name) {
    const auto row = std::ranges::lower_bound(kProperties, name, {}, &PropertyName::name);
    if (row == kProperties.end() || row->name != name) return std::nullopt;
    return row->property;
}

void readDashes(std::string_view value, const LengthContext& context, SvgStyle* style) {
    style->dashCount = 0;
    if (value == "none") return;
    const auto isGap = [](char c) { return c == ',' || c == ' ' || c == '\t' || c == '\n'; };
    for (std::size_t at = 0; at < value.size() && style->dashCount < 6;) {
        std::size_t end = at;
        while (end < value.size() && !isGap(value[end])) ++end;
        if (end > at) {
            const std::optional<double> dash = parseLength(value.substr(at, end - at), context);
            if (!dash || !(*dash >= 0)) {
                style->dashCount = 0;
                return;
            }
            style->dashes[style->dashCount++] = *dash;
        }
        at = end + 1;
    }
    if (std::all_of(style->dashes, style->dashes + style->dashCount, [](double dash) { return dash == 0; })) {
        style->dashCount = 0;
    }
}

void readFontSize(std::string_view value, const SvgStyle& parent, SvgStyle* style) {
    struct Keyword {
        std::string_view name;
        double pixels;
    };
    static constexpr Keyword kKeywords[] = {{"xx-small", 9}, {"x-small", 10}, {"small", 13},   {"medium", 16},
                                            {"large", 18},   {"x-large", 24}, {"xx-large", 32}};
    for (const Keyword& keyword : kKeywords) {
        if (keyword.name == value) {
            style->fontSize = keyword.pixels;
            return;
        }
    }
    if (value == "larger") style->fontSize = parent.fontSize * 1.2;
    if (value == "smaller") style->fontSize = parent.fontSize / 1.2;
    const std::optional<double> size = parseLength(value, {parent.fontSize, parent.fontSize});
    if (size && *size >= 0 && *size < 1e9) style->fontSize = *size;
}

void readFontWeight(std::string_view value, const SvgStyle& parent, SvgStyle* style) {
    if (value == "normal") {
        style->fontWeight = 400;
    } else if (value == "bold") {
        style->fontWeight = 700;
    } else if (value == "bolder") {
        style->fontWeight = parent.fontWeight < 400 ? 400 : parent.fontWeight < 600 ? 700 : 900;
    } else if (value == "lighter") {
        style->fontWeight = parent.fontWeight < 600 ? 100 : parent.fontWeight < 800 ? 400 : 700;
    } else if (const std::optional<double> weight = readWholeNumber(value); weight && *weight >= 1 && *weight <= 1000) {
        style->fontWeight = static_cast<int>(*weight);
    }
}

// "italic bold 12px/1.2 'DejaVu Sans', sans-serif": the words before the size are weight and slant.
void readFont(std::string_view value, const SvgStyle& parent, SvgStyle* style) {
    style->fontWeight = 400;
    style->italic = false;
    for (std::size_t at = 0; at < value.size();) {
        std::size_t end = value.find(' ', at);
        if (end == std::string_view::npos) end = value.size();
        const std::string_view word = value.substr(at, end - at);
        at = end + 1;
        if (word == "italic" || word == "oblique") {
            style->italic = true;
        } else if (parseLength(word.substr(0, word.find('/')), {}) &&
                   lengthUnit(word.substr(0, word.find('/'))) != "") {
            readFontSize(word.substr(0, word.find('/')), parent, style);
            if (end < value.size()) style->fontFamily = trimmed(value.substr(end)).substr(0, kLongestFamilies);
            return;
        } else {
            readFontWeight(word, parent, style);
        }
    }
}

void readBaselineShift(std::string_view value, const SvgStyle& parent, SvgStyle* style) {
    double shift = 0;
    if (value == "super") {
        shift = parent.fontSize / 3;
    } else if (value == "sub") {
        shift = -parent.fontSize / 5;
    } else {
        shift = parseLength(value, {parent.fontSize, style->fontSize}).value_or(0);
    }
    style->baselineShift = parent.baselineShift + shift;
}

void note(bool odd, UnmodelledProperty oddity, SvgStyle* style) {
    style->unmodelledProperties =
        static_cast<std::uint8_t>(odd ? style->unmodelledProperties | oddity : style->unmodelledProperties & ~oddity);
}

bool isFull(std::string_view opacity) { return opacity == "1" || opacity == "1.0" || opacity == "100%"; }

// The words in the order of the host's numbers.
std::optional<std::uint8_t> indexOf(std::string_view value, std::array<std::string_view, 3> words) {
    const auto found = std::ranges::find(words, value);
    if (found == words.end()) return std::nullopt;
    return static_cast<std::uint8_t>(found - words.begin());
}

}  // namespace

void StyleResolver::apply(std::string_view name, std::string_view value, const SvgStyle& parent, SvgStyle* style) {
    const std::optional<Property> property = propertyOf(name);
    if (!property) return;
    const bool inherit = value == "inherit";
    const LengthContext widths{style->diagonal, style->fontSize};
    switch (*property) {
        case Property::kFill:
            style->fill = inherit ? parent.fill : parsePaint(value);
            break;
        case Property::kStroke:
            style->stroke = inherit ? parent.stroke : parsePaint(value);
            break;
        case Property::kColor:
            style->color = inherit ? parent.color : parseColor(value).value_or(style->color);
            break;
        case Property::kStrokeWidth:
            if (const auto width = parseLength(value, widths); width && *width >= 0) style->strokeWidth = *width;
            if (inherit) style->strokeWidth = parent.strokeWidth;
            break;
        case Property::kMiterLimit:
            // Below 1 is no CSS, but the host's own paths may have it.
            if (const auto limit = readWholeNumber(value); limit && *limit >= 0) style->miterLimit = *limit;
            break;
        case Property::kLineCap:
            style->cap = inherit ? parent.cap : indexOf(value, kCapWords).value_or(style->cap);
            break;
        case Property::kLineJoin:
            style->join = inherit ? parent.join : indexOf(value, kJoinWords).value_or(style->join);
            break;
        case Property::kDashArray:
            if (!inherit) readDashes(value, widths, style);
            break;
        case Property::kDashOffset:
            style->dashOffset = inherit ? parent.dashOffset : parseLength(value, widths).value_or(style->dashOffset);
            break;
        case Property::kDisplay:
            style->displayed = inherit ? parent.displayed : value != "none";
            break;
        case Property::kVisibility:
            style->visible = inherit ? parent.visible : value == "visible";
            note(!style->visible, kInvisible, style);
            break;
        case Property::kFont:
            if (!inherit) readFont(value, parent, style);
            break;
        case Property::kFontFamily:
            style->fontFamily = inherit ? parent.fontFamily : value.substr(0, kLongestFamilies);
            break;
        case Property::kFontSize:
            if (!inherit) readFontSize(value, parent, style);
            break;
        case Property::kFontWeight:
            if (!inherit) readFontWeight(value, parent, style);
            break;
        case Property::kFontStyle:
            style->italic = inherit ? parent.italic : value == "italic" || value.starts_with("oblique");
            break;
        case Property::kTextAnchor:
            if (value == "start") style->anchor = kJustifyLeft;
            if (value == "middle") style->anchor = kJustifyCenter;
            if (value == "end") style->anchor = kJustifyRight;
            break;
        case Property::kBaselineShift:
            readBaselineShift(value, parent, style);
            break;
        case Property::kXmlSpace:
            style->preserveSpace = value == "preserve";
            break;
        case Property::kWhiteSpace:
            if (value.starts_with("pre") || value == "break-spaces") style->preserveSpace = true;
            if (value == "normal" || value == "nowrap") style->preserveSpace = false;
            break;
        case Property::kFillOpacity:
            if (!inherit) note(!isFull(value), kFillOpacity, style);
            break;
        case Property::kStrokeOpacity:
            if (!inherit) note(!isFull(value), kStrokeOpacity, style);
            break;
        case Property::kMarker:
            if (value != "none" && !inherit) note(true, kMarkers, style);
            break;
        case Property::kLetterSpacing:
        case Property::kWordSpacing:
            if (value != "normal" && value != "0" && value != "0px" && !inherit) note(true, kLetterSpacing, style);
            break;
    }
}

bool StyleResolver::compute(const pugi::xml_node& element, const SvgStyle& parent, SvgStyle* style) {
    const char* inlineStyle = nullptr;
    const char* id = "";
    const char* classes = "";
    const char* font = nullptr;
    bool presented = false;
    for (const pugi::xml_attribute& attribute : element.attributes()) {
        const std::string_view name = attribute.name();
        if (name == "style") {
            inlineStyle = attribute.value();
        } else if (name == "id") {
            id = attribute.value();
        } else if (name == "class") {
            classes = attribute.value();
        } else if (name == "font-size") {
            font = attribute.value();
        } else if (name != "d") {
            presented = presented || propertyOf(name);
        }
    }
    // Most drawings repeat one style attribute over and over.
    const bool alone = sheet.empty() && !font && !presented && parent.serial != 0;
    const std::string_view inlineText = inlineStyle ? inlineStyle : "";
    if (alone && parent.serial == lastParent_ && inlineText == lastInline_) {
        *style = last_;
        return true;
    }
    *style = parent;
    style->displayed = true;
    style->serial = ++serial_;
    // Sizes first: other lengths may be relative to them.
    if (font) apply("font-size", trimmed(font), parent, style);
    if (presented) {
        for (const pugi::xml_attribute& attribute : element.attributes()) {
            const std::string_view name = attribute.name();
            if (name != "d" && name != "font-size") apply(name, trimmed(attribute.value()), parent, style);
        }
    }
    fromSheet_.clear();
    if (!sheet.empty()) {
        const std::string_view name = element.name();
        const std::string_view type = name.substr(name.find(':') + 1);
        if (!sheet.match(type, id, classes, &fromSheet_)) return false;
    }
    fromAttribute_.clear();
    parseDeclarations(inlineText, &fromAttribute_);
    for (const bool important : {false, true}) {
        for (const auto* declarations : {&fromSheet_, &fromAttribute_}) {
            for (const CssDeclaration& declaration : *declarations) {
                if (declaration.important != important) continue;
                apply(declaration.property, declaration.value, parent, style);
                passedTransform |= declaration.property == "transform" && declaration.value != "none";
            }
        }
    }
    if (alone) {
        lastParent_ = parent.serial;
        lastInline_ = inlineText;
        last_ = *style;
    }
    return true;
}

}  // namespace quorvel::svg
