// Fonts and the setting of text.
#include "svg/css/property_readers.h"
#include "svg/values/length.h"
#include "svg/values/number.h"

namespace quorvel::svg {
namespace {

// Of a list of font families, in bytes; each text that inherits it looks at all of it.
constexpr std::size_t kLongestFamilies = 2048;

void setFamilies(std::string_view families, const PropertyValue& value, ComputedStyle* style) {
    style->fontFamily = value.styles.keep(families.substr(0, kLongestFamilies));
}

void setFontSize(std::string_view text, const PropertyValue& value, ComputedStyle* style) {
    const ComputedStyle& parent = value.parent;
    static constexpr Keyword<double> kSizes[] = {{"xx-small", 9}, {"x-small", 10}, {"small", 13},   {"medium", 16},
                                                 {"large", 18},   {"x-large", 24}, {"xx-large", 32}};
    if (const std::optional<double> pixels = valueOf<double>(text, kSizes)) {
        style->fontSize = *pixels;
        return;
    }
    if (text == "larger") style->fontSize = parent.fontSize * 1.2;
    if (text == "smaller") style->fontSize = parent.fontSize / 1.2;
    const std::optional<double> size = parseLength(text, {parent.fontSize, parent.fontSize, value.rootFontSize});
    if (size && *size >= 0 && *size < 1e9) style->fontSize = *size;
}

void setFontWeight(std::string_view text, const ComputedStyle& parent, ComputedStyle* style) {
    const int around = parent.fontWeight;
    int weight = style->fontWeight;
    if (text == "normal") {
        weight = 400;
    } else if (text == "bold") {
        weight = 700;
    } else if (text == "bolder") {
        weight = around < 350 ? 400 : around < 550 ? 700 : 900;
    } else if (text == "lighter") {
        weight = around < 550 ? 100 : around < 750 ? 400 : 700;
    } else if (const auto number = readWholeNumber(text); number && *number >= 1 && *number <= 1000) {
        weight = static_cast<int>(*number);
    }
    style->fontWeight = static_cast<std::int16_t>(weight);
}

double spacingOf(const PropertyValue& value, const ComputedStyle& style, double otherwise) {
    if (value.text == "normal") return 0;
    return parseLength(value.text, {style.fontSize, style.fontSize}).value_or(otherwise);
}

}  // namespace

void readFontSize(const PropertyValue& value, ComputedStyle* style) { setFontSize(value.text, value, style); }
void readFontWeight(const PropertyValue& value, ComputedStyle* style) {
    setFontWeight(value.text, value.parent, style);
}
void readFontFamily(const PropertyValue& value, ComputedStyle* style) { setFamilies(value.text, value, style); }
void readFontStyle(const PropertyValue& value, ComputedStyle* style) {
    style->italic = value.text == "italic" || value.text.starts_with("oblique");
}

// "italic bold 12px/1.2 'DejaVu Sans', sans-serif": the words before the size are weight and slant. Without a size it
// is no font.
void readFont(const PropertyValue& value, ComputedStyle* style) {
    const auto weight = style->fontWeight;
    const bool isItalic = style->italic;
    style->fontWeight = 400;
    style->italic = false;
    for (std::size_t at = 0; at < value.text.size();) {
        const std::size_t end = std::min(value.text.find_first_of(kBlanks, at), value.text.size());
        const std::string_view word = value.text.substr(at, end - at);
        const std::string_view size = word.substr(0, word.find('/'));
        at = end + 1;
        if (word == "italic" || word == "oblique") {
            style->italic = true;
        } else if (parseLength(size, {}) && lengthUnit(size) != "") {
            setFontSize(size, value, style);
            if (end < value.text.size()) setFamilies(trimmed(value.text.substr(end)), value, style);
            return;
        } else {
            setFontWeight(word, value.parent, style);
        }
    }
    style->fontWeight = weight;
    style->italic = isItalic;
}

void readBaselineShift(const PropertyValue& value, ComputedStyle* style) {
    const double around = value.parent.fontSize;
    double shift = 0;
    if (value.text == "super") {
        shift = around / 3;
    } else if (value.text == "sub") {
        shift = -around / 5;
    } else {
        shift = parseLength(value.text, {around, style->fontSize}).value_or(0);
    }
    style->baselineShift = value.parent.baselineShift + shift;
}

void readLetterSpacing(const PropertyValue& value, ComputedStyle* style) {
    style->letterSpacing = spacingOf(value, *style, style->letterSpacing);
}
void readWordSpacing(const PropertyValue& value, ComputedStyle* style) {
    style->wordSpacing = spacingOf(value, *style, style->wordSpacing);
}

void readXmlSpace(const PropertyValue& value, ComputedStyle* style) { style->preserveSpace = value.text == "preserve"; }
void readWhiteSpace(const PropertyValue& value, ComputedStyle* style) {
    if (value.text.starts_with("pre") || value.text == "break-spaces") style->preserveSpace = true;
    if (value.text == "normal" || value.text == "nowrap") style->preserveSpace = false;
}

}  // namespace quorvel::svg
