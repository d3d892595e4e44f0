// What the rows of the table of properties are made of.
#pragma once

#include <algorithm>
#include <optional>
#include <span>
#include <string_view>

#include "svg/css/properties.h"

namespace quorvel::svg {

// Copies members from one style to another.
template <auto... kMembers>
void copyMembers(const ComputedStyle& from, ComputedStyle* style) {
    ((style->*kMembers = from.*kMembers), ...);
}

template <class Value>
struct Keyword {
    std::string_view word;
    Value value;
};

template <class Value>
std::optional<Value> valueOf(std::string_view word, std::span<const Keyword<Value>> keywords) {
    const auto row = std::ranges::find(keywords, word, &Keyword<Value>::word);
    if (row == keywords.end()) return std::nullopt;
    return row->value;
}

// Reads a property whose value is one of the words.
template <auto kMember, const auto& kKeywords>
void readKeyword(const PropertyValue& value, ComputedStyle* style) {
    const auto row = std::ranges::find(kKeywords, value.text, [](const auto& keyword) { return keyword.word; });
    if (row != std::end(kKeywords)) style->*kMember = row->value;
}

// --- paint_properties.cpp ------------------------------------------------------------------------------------------
void readFill(const PropertyValue& value, ComputedStyle* style);
void readStroke(const PropertyValue& value, ComputedStyle* style);
void readColor(const PropertyValue& value, ComputedStyle* style);
void readStrokeWidth(const PropertyValue& value, ComputedStyle* style);
void readMiterLimit(const PropertyValue& value, ComputedStyle* style);
void readLineCap(const PropertyValue& value, ComputedStyle* style);
void readLineJoin(const PropertyValue& value, ComputedStyle* style);
void readDashes(const PropertyValue& value, ComputedStyle* style);
void readDashOffset(const PropertyValue& value, ComputedStyle* style);
void readPaintOrder(const PropertyValue& value, ComputedStyle* style);
void readStopColor(const PropertyValue& value, ComputedStyle* style);

// A share of 1, also as a percentage.
std::optional<double> parseShare(std::string_view text);

template <auto kMember>
void readShare(const PropertyValue& value, ComputedStyle* style) {
    if (const std::optional<double> share = parseShare(value.text)) style->*kMember = *share;
}

// --- text_properties.cpp -------------------------------------------------------------------------------------------
void readFont(const PropertyValue& value, ComputedStyle* style);
void readFontFamily(const PropertyValue& value, ComputedStyle* style);
void readFontSize(const PropertyValue& value, ComputedStyle* style);
void readFontStyle(const PropertyValue& value, ComputedStyle* style);
void readFontWeight(const PropertyValue& value, ComputedStyle* style);
void readBaselineShift(const PropertyValue& value, ComputedStyle* style);
void readLetterSpacing(const PropertyValue& value, ComputedStyle* style);
void readWordSpacing(const PropertyValue& value, ComputedStyle* style);
void readWhiteSpace(const PropertyValue& value, ComputedStyle* style);
void readXmlSpace(const PropertyValue& value, ComputedStyle* style);

}  // namespace quorvel::svg
