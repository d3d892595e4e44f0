// Texts on their way: bytes into the host's text, widths, resource lists and the byte helpers.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "plugin/dimensioning/units.h"
#include "plugin/settings/prefs_file.h"
#include "plugin/shell/suites.h"

namespace quorvel::tests {
namespace {

// The fonts of a host, by their number; widths are those of a character of one byte and of more.
struct Font {
    const char* name;
    float width = 0.5F, wideWidth = 1.0F;
};
std::vector<Font> fonts;
std::size_t numberOf(AIFontKey font) { return reinterpret_cast<std::size_t>(font) - 1; }

const AIFontSuite kFontSuite = [] {
    AIFontSuite suite = {};
    suite.CountFonts = [](std::int32_t* count) { return *count = static_cast<std::int32_t>(fonts.size()), kNoErr; };
    suite.GetNthFont = [](std::int32_t index, AIFontKey* font) {
        return *font = reinterpret_cast<AIFontKey>(static_cast<std::size_t>(index) + 1), kNoErr;
    };
    suite.GetFontName = [](AIFontKey font, char* name, std::int32_t size) {
        return std::snprintf(name, static_cast<std::size_t>(size), "%s", fonts.at(numberOf(font)).name), kNoErr;
    };
    suite.GetCharacterWidth = [](AIFontKey font, const char*, std::int32_t bytes, float* width) {
        const Font& measured = fonts.at(numberOf(font));
        return *width = bytes > 1 ? measured.wideWidth : measured.width, kNoErr;
    };
    return suite;
}();

class Texts : public testing::Test {
  protected:
    Texts() {
        StoreDefaults(globals.get());
        sAIFont = &kFontSuite;
    }
    ~Texts() override { sAIFont = nullptr; }
    std::u16string units(std::uint16_t language, std::int16_t code, const char* text) {
        globals->language = language;
        globals->prefs.flArSpStr = code;
        const std::vector<std::uint16_t> found = UnitsFromInternal(globals.get(), text);
        return {found.begin(), found.end()};
    }
    double width(const char* text) { return MeasureTextUnitWidth(globals.get(), text); }
    std::unique_ptr<PluginGlobals> globals = std::make_unique<PluginGlobals>();
    PrefsRecord& prefs = globals->prefs;
};

TEST_F(Texts, BytesBecomeTheHostsText) {
    const struct {
        std::uint16_t language;
        std::int16_t code;
        const char* bytes;
        std::u16string text;
    } rows[] = {// The sign for degrees in this set is the small circle of the kana.
                {kJapanese, 0,
                 "\x83\xD3"
                 "12\x81\x4B",
                 u"\u03C6"
                 u"12\u309C"},
                {kJapanese, 0, "\x90\xA1\x96\x40", u"\u5BF8\u6CD5"},
                {kJapanese, 1, " 90\xFB", u" 90\u02DA"},
                {kJapanese, 2, " 90\xB0", u" 90\u00B0"},
                {kEnglish, 0,
                 "\xBF"
                 "12",
                 u"\u00F8"
                 u"12"},
                {kEnglish, 1,
                 "\xF8"
                 "12",
                 u"\u00F8"
                 u"12"},
                {kEnglish, 0, "\xDB\xF0", u"\u20AC\uF8FF"},
                {kKorean, 0,
                 "\xAC\xE6"
                 "5\xA1\xC6",
                 u"\u00A8\u00CA"
                 u"5\u00B0\u2206"},
                {kEnglish, 0, "", u""}};
    for (const auto& row : rows) EXPECT_EQ(units(row.language, row.code, row.bytes), row.text) << row.bytes;
}

TEST_F(Texts, WidthIsTheSumOfTheCharacters) {
    fonts = {{"Standard", 0.5F, 1.0F}, {"Narrow", 0.25F, 0.75F}, {"narrow", 9, 9}, {"Narrow", 0.125F, 0.75F}};
    prefs.flArFSize = 12;
    EXPECT_EQ(width("12.5"), 2.0);
    // The last font of a name is meant; letters count.
    std::strcpy(prefs.flArFName, "Narrow");
    EXPECT_EQ(width("12.5"), 0.5);
    const char mixed[] =
        "\x83\xD3"
        "1";
    EXPECT_EQ(width(mixed), 0.875);
    EXPECT_EQ(MeasureTextWidth(globals.get(), mixed), 11);  // 10.5 rounds up
    EXPECT_EQ(MeasureTextWidth(globals.get(), ""), 0);
    globals->language = kKorean;
    EXPECT_EQ(width("\xB0\xA1"), 0.75);
    // 255 bytes at most, and no piece of a character: 85 characters of three bytes.
    globals->language = kJapanese;
    EXPECT_EQ(width(std::string(100, '\xB1').c_str()), 85 * 0.75);
    // A name that no font bears: the host's first font.
    std::strcpy(prefs.flArFName, "Nowhere");
    EXPECT_EQ(width("12.5"), 2.0);
}

TEST_F(Texts, FontNamesAreComparedInTheCodePage) {
    fonts = {{"Standard"}, {"IPA ゴシック"}, {"Last"}};
    std::strcpy(prefs.flArFName, "IPA \x83\x53\x83\x56\x83\x62\x83\x4E");
    EXPECT_EQ(numberOf(FindDimensionFont(globals.get())), 1U);
    fonts.clear();
    EXPECT_EQ(FindDimensionFont(globals.get()), nullptr);
}

TEST_F(Texts, ListsSkipSeparators) {
    const auto rows = [this](std::uint16_t language, std::int32_t first, int count) {
        globals->language = language;
        return LoadStringRows(globals.get(), first, count);
    };
    using Rows = std::vector<std::string>;
    EXPECT_EQ(rows(kEnglish, 16221, 13),
              (Rows{"1/100", "1/10", "1/5", "1/3", "1/2", "1/1", "2/1", "3/1", "4/1", "10/1", "100/1"}));
    EXPECT_EQ(rows(kEnglish, 16155, 10), (Rows{".25", ".5", "1", "5", "10", "20", "50", "100"}));
    EXPECT_EQ(rows(kJapanese, 16155, 10).front(), "0.25");
    EXPECT_EQ(rows(kEnglish, 16181, 2), (Rows{"Apple ASCII", "Microsoft ASCII"}));
    // Korean settings show the Japanese lists.
    EXPECT_EQ(rows(kKorean, 16181, 3), (Rows{"\x8A\xBF\x8E\x9A", "Apple ASCII", "Microsoft ASCII"}));
    EXPECT_EQ(rows(kEnglish, 16191, 4), (Rows{"Save", "Save As...", "Delete"}));
    EXPECT_EQ(LoadResourceString(globals.get(), 1), "");
}

TEST(ByteTexts, Compare) {
    EXPECT_EQ(CompareTexts("abc", "abc"), 0);
    EXPECT_EQ(CompareTexts("abd", "abc"), 1);
    EXPECT_EQ(CompareTexts("ab", "abc"), 65535);
    EXPECT_EQ(CompareTexts("\x81", "a"), 65535);  // signed bytes
}

TEST(ByteTexts, FindAndRemove) {
    EXPECT_EQ(FindInText("Length Comment Tool", "Comment"), 7);
    EXPECT_EQ(FindInText("Length Comment Tool", "tool"), -1);
    const std::string far(254, 'x');
    EXPECT_EQ(FindInText((far + "y").c_str(), "y"), 254);
    EXPECT_EQ(FindInText((far + "xy").c_str(), "y"), -1);
    char text[] = "one two one";
    RemoveFromText(text, "one");
    EXPECT_STREQ(text, " two one");
    RemoveFromText(text, "three");
    EXPECT_STREQ(text, " two one");
}

TEST(ByteTexts, CapsAndPrefixes) {
    const std::string endless(40000, 'a');
    EXPECT_EQ(TextLength(endless.c_str()), 32000);
    std::uint8_t pascal[8];
    TextToPascal("abcdefghij", pascal, sizeof pascal);
    EXPECT_EQ(pascal[0], 7);
    char text[5];
    PascalToText(pascal, text, sizeof text);
    EXPECT_STREQ(text, "abcd");
}

}  // namespace
}  // namespace quorvel::tests
