// Values of dimensions and angles, scale texts, ruler texts: by the numbers that a draftsman would write.
#include "plugin/dimensioning/units.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "plugin/shell/suites.h"
#include "tests/support/drafting_table.h"

namespace quorvel::tests {
namespace {

class Units : public testing::Test {
  protected:
    std::string length(double points, LengthKind kind = LengthKind::plain) {
        char text[kValueTextSize];
        FormatLength(&table.globals(), points, kind, text);
        return text;
    }
    std::string angle(double radians) {
        char text[kValueTextSize];
        FormatAngle(&table.globals(), radians, text);
        return text;
    }
    void set(std::int16_t unit, std::int16_t digits, bool zeros, bool suffix) {
        table.prefs().flArUnit = unit;
        table.prefs().flScFix = digits;
        table.prefs().flUseZero = zeros;
        table.prefs().flUseTani = suffix;
    }
    void signs(std::uint16_t language, std::int16_t code) {
        table.globals().language = language;
        table.prefs().flArSpStr = code;
    }
    DraftingTable table;
};

TEST_F(Units, OneFootInEachUnit) {
    // 864 points are 12 inches: 304.8 mm.
    const char* plain[] = {"304.80mm", "30.48cm", "0.30m", "12.00\"", "1.00'", "864.00pt"};
    const char* doubled[] = {"609.60mm", "60.96cm", "0.61m", "24.00\"", "2.00'", "1728.00pt"};
    signs(kEnglish, 7);  // no such set of signs: a diameter bears none
    for (std::int16_t unit = 0; unit < kUnitCount; ++unit) {
        set(unit, 2, true, true);
        EXPECT_EQ(length(864), plain[unit]);
        EXPECT_EQ(length(864, LengthKind::diameter), doubled[unit]);
        EXPECT_EQ(length(864, LengthKind::radius), std::string("R") + plain[unit]);
        // The read-outs' factor says the same but for its last digits.
        const double factor = kLengthUnits[unit].factor;
        EXPECT_NEAR(864 * factor, std::strtod(plain[unit], nullptr), 0.006);
    }
}

TEST_F(Units, ScaleMakesTheRealLength) {
    table.prefs().flScale = 0.01F;
    EXPECT_EQ(length(72), "2540");
    table.prefs().flScale = 2.0F;
    set(5, 1, false, false);
    EXPECT_EQ(length(5), "2.5");
}

TEST_F(Units, TrailingZeros) {
    set(5, 3, false, false);
    EXPECT_EQ(length(12.5), "12.5");
    EXPECT_EQ(length(12.0), "12");
    EXPECT_EQ(length(100.0), "100");
    set(5, 3, true, false);
    EXPECT_EQ(length(12.0), "12.000");
    set(5, 0, false, false);
    EXPECT_EQ(length(100.0), "100");
    // Only 20 bytes are looked at: what stands there ends the text, or keeps it whole.
    set(5, 6, false, false);
    EXPECT_EQ(length(123456789012345.5), "123456789012345.5");
    EXPECT_EQ(length(18446744073709551616.0), "18446744073709551616.000000");
    set(5, 6, false, true);
    EXPECT_EQ(length(std::numeric_limits<double>::infinity()), "infpt");
    EXPECT_LT(length(1e308).size(), static_cast<std::size_t>(kValueTextSize));
}

TEST_F(Units, AnglesInDegrees) {
    set(2, 2, false, true);
    table.prefs().flScale = 0.01F;
    signs(kEnglish, 1);
    EXPECT_EQ(angle(3.141593 / 2), " 90\xB0");
    set(0, 5, true, false);
    EXPECT_EQ(angle(3.141593 / 8), " 22.500\xB0");
    set(0, 5, false, false);
    EXPECT_EQ(angle(1.0), " 57.296\xB0");
    set(0, 0, false, false);
    EXPECT_EQ(angle(3.141593 / 18 * 10), " 100\xB0");
}

TEST_F(Units, SignsByLanguage) {
    const struct {
        std::uint16_t language;
        std::int16_t code;
        const char *diameter, *degrees;  // null: not looked at
    } rows[] = {{kJapanese, 0,
                 "\x83\xD3"
                 "0",
                 " 0\x81\x4B"},
                {kJapanese, 1,
                 "\xBF"
                 "0",
                 nullptr},
                {kEnglish, 0, nullptr, " 0\xFB"},
                {kEnglish, 2, nullptr, " 0"},
                {kKorean, 0, nullptr, " 0\xA1\xC6"},
                {kKorean, 2,
                 "\xF8"
                 "0",
                 nullptr}};
    for (const auto& row : rows) {
        signs(row.language, row.code);
        if (row.diameter != nullptr) {
            EXPECT_EQ(length(0, LengthKind::diameter), row.diameter);
        }
        if (row.degrees != nullptr) {
            EXPECT_EQ(angle(0), row.degrees);
        }
    }
}

TEST(ScaleText, ReadAndWritten) {
    EXPECT_EQ(ParseScaleText("1/100"), 0.01);
    EXPECT_EQ(ParseScaleText("2"), 2.0);
    EXPECT_EQ(ParseScaleText(" 3 / 4 / 5"), 0.75);
    EXPECT_EQ(ParseScaleText(""), 0.0);
    EXPECT_TRUE(std::isinf(ParseScaleText("1/0")));
    const struct {
        double value;
        const char* text;
    } rows[] = {{0.0, "1 / 1"},          {-3.0, "1 / 1"},           {1.0, "1 / 1"},
                {2.5, "2.5 / 1"},        {0.25, "2.5 / 10"},        {0.1, "1 / 10"},
                {0.05, "5 / 100"},       {0.002, "2 / 1000"},       {0.0005, "5 / 10000"},
                {0.00002, "2 / 100000"}, {0.000004, "4 / 1000000"}, {0.0000003, "3 / 10000000"}};
    for (const auto& row : rows) {
        char text[64];
        FormatScaleText(row.value, text);
        EXPECT_STREQ(text, row.text);
    }
    char text[64];
    FormatScaleText(std::numeric_limits<double>::quiet_NaN(), text);
    EXPECT_STREQ(text, "1 / 1");
}

TEST_F(Units, LengthFieldsFollowTheRuler) {
    const auto parsed = [](const std::string& text) {
        float points = 0;
        ParsePointsWithUnit(text.c_str(), &points);
        return points;
    };
    const char* rows[][2] = {{"in", "1 in"},  {"cm", "2.54 cm"}, {"pt", "72 pt"},  {"pc", "6 pc"}, {"mm", "25.4 mm"},
                             {"px", "72 px"}, {"H", "101.6 H"},  {"ells", "72 pt"}};  // of 72 points
    for (const auto& row : rows) {
        const char *unit = row[0], *shown = row[1];  // clang 14 captures no structured bindings
        table.host().setRulerUnit(unit);
        table.inside([&] {
            AIUserSuite foreign = *sAIUser;
            foreign.FormatWithRulerUnit = [](float, std::int32_t, char* to, std::int32_t) {
                std::strcpy(to, "0 ells");
                return kNoErr;
            };
            const AIUserSuite* own = sAIUser;
            if (std::strcmp(unit, "ells") == 0) sAIUser = &foreign;
            char text[64];
            FormatPointsWithRulerUnit(72, text);
            EXPECT_STREQ(text, shown);
            EXPECT_NEAR(parsed(text), 72, 1e-4);
            // A bare number counts in the ruler's unit.
            EXPECT_NEAR(parsed(std::to_string(std::strtod(text, nullptr))), 72, 1e-4);
            sAIUser = own;
        });
    }
    table.host().setRulerUnit("mm");
    table.inside([&] {
        EXPECT_EQ(parsed("nonsense"), 0);
        EXPECT_NEAR(parsed("2 in" + std::string(100, ' ')), 2 * 72 / 25.4, 1e-4);  // the unit stands behind the limit
    });
    EXPECT_EQ(ParsePointsNoDefault("5"), 5.0F);
    EXPECT_EQ(ParsePointsNoDefault("0.5in"), 36.0F);
}

TEST(Power, BySquaring) {
    EXPECT_EQ(PowerBySquaring(3.0, 5), 243.0);
    EXPECT_EQ(PowerBySquaring(7.0, 0), 1.0);
    EXPECT_EQ(PowerBySquaring(2.0, -2), 0.25);
}

}  // namespace
}  // namespace quorvel::tests
