// The characters that a text element of the drawing's file addresses, each with the style and the places that the
// element and its spans give it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "document/document.h"
#include "interchange/svg/source.h"
#include "svg/css/computed_style.h"

namespace quorvel::render {

struct TextCharacter {
    std::size_t style = 0;               // index into TextCharacters::styles
    std::size_t unit = 0;                // index of its first unit in the UTF-16 text
    std::optional<double> x, y, rotate;  // user units, degrees
    double dx = 0, dy = 0;
};

// The characters from begin up to end are as long as an element says.
struct TextLengthRange {
    std::size_t begin = 0, end = 0;
    double length = 0;  // user units
    bool hasStretchedGlyphs = false;
};

struct TextCharacters {
    std::u32string text;
    std::u16string units;  // the same text
    std::vector<TextCharacter> characters;
    std::vector<svg::ComputedStyle> styles;
    std::vector<TextLengthRange> lengths;  // inner ones before outer ones
    double x = 0, y = 0;                   // where the document's text begins
};

// Of the tree's text element; nothing for an element that cannot be read, or one that has our own exact text, whose
// places are the document's.
std::optional<TextCharacters> readTextCharacters(const interchange::SvgSource& source, std::int32_t element);

}  // namespace quorvel::render
