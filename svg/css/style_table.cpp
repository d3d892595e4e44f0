#include "svg/css/style_table.h"

#include <bit>
#include <functional>

namespace quorvel::svg {
namespace {

class Hash {
  public:
    Hash& add(std::uint64_t word) {
        value_ = (value_ ^ word) * 0x9E3779B97F4A7C15;
        value_ ^= value_ >> 32;
        return *this;
    }
    // 0 and -0 are equal.
    Hash& add(double value) { return add(std::bit_cast<std::uint64_t>(value + 0.0)); }
    Hash& add(std::string_view text) { return add(std::uint64_t{std::hash<std::string_view>()(text)}); }
    Hash& add(const CssColor& color) { return add(color.r).add(color.g).add(color.b).add(color.a); }
    Hash& add(const SvgPaint& paint) {
        add(std::uint64_t{paint.kind});
        if (paint.kind == SvgPaint::kColor) add(paint.color);
        return paint.reference.empty() ? *this : add(paint.reference);
    }
    // Up to eight small numbers in one word.
    template <class... Small>
    Hash& addSmall(Small... numbers) {
        std::uint64_t word = 0;
        ((word = word << 8 | static_cast<std::uint8_t>(numbers)), ...);
        return add(word);
    }
    std::uint64_t value() const { return value_; }

  private:
    std::uint64_t value_ = 0x243F6A8885A308D3;
};

}  // namespace

std::uint64_t PaintStyle::hash() const {
    Hash hash;
    hash.add(fill).add(stroke).add(color).add(strokeWidth).add(miterLimit).add(dashOffset);
    for (int i = 0; i < dashCount; ++i) hash.add(dashes[static_cast<std::size_t>(i)]);
    hash.add(fillOpacity).add(strokeOpacity);
    return hash.addSmall(dashCount, cap, join, fillRule, paintOrder[0], paintOrder[1]).value();
}

std::uint64_t TextStyle::hash() const {
    Hash hash;
    hash.add(fontFamily).add(fontSize).add(baselineShift).add(letterSpacing).add(wordSpacing);
    for (const std::string_view marker : markers) hash.add(std::uint64_t{std::hash<std::string_view>()(marker)});
    hash.add(static_cast<std::uint64_t>(fontWeight));
    return hash.addSmall(italic, preserveSpace, visible, anchor, writingMode, direction, clipRule, dominantBaseline)
        .value();
}

std::uint64_t ElementStyle::hash() const {
    Hash hash;
    hash.add(opacity).add(clipPath).add(mask).add(filter).add(stopColor).add(stopOpacity);
    return hash.addSmall(displayed, isolated, hasFixedStroke, blendMode, overflow, maskType, alignmentBaseline).value();
}

std::uint64_t StyleTable::Row::hash() const {
    return Hash().add(std::uint64_t{groups.paint} << 32 | groups.text).add(std::uint64_t{groups.element}).value();
}

StyleTable::StyleTable() {
    ComputedStyle initial;
    intern(&initial);
}

void StyleTable::intern(ComputedStyle* style, unsigned changed) {
    ComputedStyle::Number& groups = style->groups;
    if (changed & kPaint) groups.paint = paints_.numberOf(*style);
    if (changed & kText) groups.text = texts_.numberOf(*style);
    if (changed & kElement) groups.element = elements_.numberOf(*style);
    style->number = rows_.numberOf({groups});
}

ComputedStyle StyleTable::at(std::uint32_t number) const {
    ComputedStyle style;
    static_cast<PaintStyle&>(style) = paint(number);
    static_cast<TextStyle&>(style) = text(number);
    static_cast<ElementStyle&>(style) = element(number);
    style.groups = rows_[number].groups;
    style.number = number;
    return style;
}

std::string_view StyleTable::keep(std::string_view text) {
    if (text.empty()) return {};
    const auto found = kept_.find(text);
    return found != kept_.end() ? *found : *kept_.emplace(text).first;
}

}  // namespace quorvel::svg
