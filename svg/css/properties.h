// The properties of CSS that are computed: one row each, with the functions that read and inherit it.
#pragma once

#include <cstdint>
#include <string_view>

#include "svg/css/computed_style.h"
#include "svg/css/style_table.h"

namespace quorvel::svg {

// The right side of a declaration, or the value of an attribute, and what it is relative to.
struct PropertyValue {
    std::string_view text;  // trimmed, and none of CSS's words for all properties
    const ComputedStyle& parent;
    double diagonal = 0;  // of the viewport, user units: what percentages of widths are of
    StyleTable& styles;   // keeps texts
    double rootFontSize = 16;
};

struct Property {
    std::string_view name;
    std::uint8_t group = 0;  // of StyleTable, one or several
    bool inherited = true;
    bool comesFirst = false;  // it sets other properties: it comes first among an element's attributes
    // A value that is not understood changes nothing.
    void (*read)(const PropertyValue& value, ComputedStyle* style) = nullptr;
    void (*copy)(const ComputedStyle& from, ComputedStyle* style) = nullptr;
    bool setsFontSize = false;
    bool hasNames = false;  // its words are names, in which capitals count
};

// Null for a name that is no property, or one that is not computed.
const Property* findProperty(std::string_view name);

// Sets the property, also by CSS's words inherit, initial and unset.
void applyProperty(const Property& property, const PropertyValue& value, ComputedStyle* style);

}  // namespace quorvel::svg
