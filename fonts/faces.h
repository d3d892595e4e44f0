// The faces in which texts are painted: chosen by fontconfig as other programs choose them, shaped by HarfBuzz.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct hb_font_t;

namespace quorvel::fonts {

// An open face, for the life of the process. Measures are in shares of the font size, y up.
struct Face {
    std::string file;
    int index = 0;
    std::string variations;     // of a variable font, as fontconfig writes them: "wght=700,wdth=75"
    double slant = 0;           // x per y, of an upright face that is set as an italic one
    hb_font_t* font = nullptr;  // scaled to unitsPerEm
    double unitsPerEm = 1000;
    double ascent = 0.8, descent = -0.2, xHeight = 0.5;
};

struct FaceQuery {
    std::string_view families;  // a CSS list; empty: what programs take where nothing is said
    int weight = 400;           // CSS
    bool isItalic = false;
    bool operator==(const FaceQuery&) const = default;
};

// The first face of the query's order of substitutes that has the character; the first of all when none has it. Null
// only where no font is installed.
const Face* faceFor(const FaceQuery& query, char32_t character);

struct ShapedGlyph {
    std::uint32_t id = 0;
    std::uint32_t cluster = 0;  // index of the first character that it shows
    double advance = 0;
    double x = 0, y = 0;  // from the pen
};

struct ShapingRun {
    const Face* face = nullptr;
    std::size_t begin = 0, end = 0;  // characters
    bool isRightToLeft = false;
    bool hasLigatures = true;
};

// The run's glyphs from left to right. The text around the run joins its letters.
std::vector<ShapedGlyph> shape(std::u32string_view text, const ShapingRun& run);

// Levels of the Unicode bidirectional algorithm, one a character: odd ones run from right to left.
std::vector<signed char> bidiLevels(std::u32string_view text, bool isRightToLeft);

// A number for the script of a character, that of what is around for marks, blanks and digits: 0.
std::uint32_t scriptOf(char32_t character);

}  // namespace quorvel::fonts
