// Where the characters of text elements are, against sums of the fonts' advances.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "fonts/fonts.h"
#include "interchange/svg/svg.h"
#include "render/text/text_layout.h"

namespace quorvel::tests {
namespace {

double width(std::u32string_view text) {
    double sum = 0;
    for (const char32_t character : text)
        sum += double(fonts::characterWidth(fonts::matchFont("DejaVu Sans Mono", 400, false), character)) * 10;
    return sum;
}

// By character: where its glyphs begin, at a size of 10.
std::map<std::uint32_t, QPointF> places(const std::string& attributes, const std::string& content) {
    auto drawing = interchange::readSvg(
        "<svg xmlns='http://www.w3.org/2000/svg' width='200' height='100'><text "
        "font-family='DejaVu Sans Mono' font-size='10' " +
        attributes + ">" + content + "</text></svg>");
    EXPECT_TRUE(drawing);
    const auto* source = interchange::svgSource(*drawing->document);
    std::map<std::uint32_t, QPointF> found;
    const auto characters = render::readTextCharacters(*source, 1);
    for (const render::GlyphRun& run : render::layOut(*characters).runs)
        for (const render::PlacedGlyph& glyph : run.glyphs)
            found.try_emplace(glyph.cluster, glyph.place.map(QPointF(0, 0)));
    return found;
}

TEST(TextLayout, PlacesCharactersByTheirFontsAdvances) {
    const double m = width(U"m");  // of each character
    struct Row {
        const char *attributes, *content;
        std::vector<QPointF> places;
    };
    const Row rows[] = {
        {"x='5' y='7'", "abc", {{5, 7}, {5 + m, 7}, {5 + 2 * m, 7}}},
        {"text-anchor='end' x='50'",
         "ab<tspan x='9' y='4'>cd</tspan>",
         {{50 - 2 * m, 0}, {50 - m, 0}, {9 - 2 * m, 4}, {9 - m, 4}}},
        {"text-anchor='middle' x='50' dx='3 4'", "ab", {{51 - m, 0}, {55, 0}}},
        {"letter-spacing='2' word-spacing='5'", "a b", {{0, 0}, {m + 2, 0}, {2 * m + 9, 0}}},
        {"textLength='40'", "abc", {{0, 0}, {20 - m / 2, 0}, {40 - m, 0}}},
        {"textLength='40' lengthAdjust='spacingAndGlyphs'", "abcd", {{0, 0}, {10, 0}, {20, 0}, {30, 0}}},
        // Inner places win; blanks that collapse and the two units of one character count once.
        {"x='1 2 3 4'", "a  <tspan x='30'>\xF0\x9D\x94\xB8</tspan>b", {{1, 0}, {2, 0}, {30, 0}, {4, 0}}},
        {"x='10%' y='1em'", "a", {{20, 10}}},
        {"dominant-baseline='text-bottom'", "a<tspan alignment-baseline='baseline'>b</tspan>", {{0, -2.3584}, {m, 0}}},
        // Hebrew: the first character is the rightmost.
        {"", "a&#x5D0;&#x5D1;b", {{0, 0}, {m + width(U"\u05D1"), 0}, {m, 0}, {m + width(U"\u05D0\u05D1"), 0}}},
    };
    for (const Row& row : rows) {
        const auto found = places(row.attributes, row.content);
        ASSERT_EQ(found.size(), row.places.size()) << row.content;
        for (std::uint32_t i = 0; i < found.size(); ++i) {
            EXPECT_NEAR(found.at(i).x(), row.places[i].x(), 1e-3) << row.attributes << row.content << i;
            EXPECT_NEAR(found.at(i).y(), row.places[i].y(), 1e-3) << row.attributes << row.content << i;
        }
    }
}

}  // namespace
}  // namespace quorvel::tests
