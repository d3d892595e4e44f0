// Values of dimensions and angles, scale texts, ruler texts: by the numbers that a draftsman would write.
#include "plugin/dimensioning/units.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/fake_suites.h"

namespace quorvel::tests {
namespace {

class Units : public testing::Test {
  protected:
    std::string length(double points, LengthKind kind = LengthKind::plain) {
        char text[kValueTextSize];
        FormatLength(&host.globals(), points, kind, text);
        return text;
    }
    std::string angle(double radians) {
        char text[kValueTextSize];
        FormatAngle(&host.globals(), radians, text);
        return text;
    }
    void set(std::int16_t unit, std::int16_t digits, bool zeros, bool suffix) {
        host.prefs().flArUnit = unit;
        host.prefs().flScFix = digits;
        host.prefs().flUseZero = zeros;
        host.prefs().flUseTani = suffix;
    }
    void signs(std::uint16_t language, std::int16_t code) {
        host.globals().language = language;
        host.prefs().flArSpStr = code;
    }
    FakeHost host;
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
    host.prefs().flScale = 0.01F;
    EXPECT_EQ(length(72), "2540");
    host.prefs().flScale = 2.0F;
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
    host.prefs().flScale = 0.01F;
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
    signs(kJapanese, 0);
    EXPECT_EQ(length(0, LengthKind::diameter),
              "\x83\xD3"
              "0");
    EXPECT_EQ(angle(0), " 0\x81\x4B");
    signs(kJapanese, 1);
    EXPECT_EQ(length(0, LengthKind::diameter),
              "\xBF"
              "0");
    signs(kEnglish, 0);
    EXPECT_EQ(angle(0), " 0\xFB");
    signs(kKorean, 0);
    EXPECT_EQ(angle(0), " 0\xA1\xC6");
    signs(kKorean, 2);
    EXPECT_EQ(length(0, LengthKind::diameter),
              "\xF8"
              "0");
    signs(kEnglish, 2);
    EXPECT_EQ(angle(0), " 0");
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
    const struct {
        const char* shown;
        const char* text;  // of 72 points
    } rows[] = {{"0 in", "1 in"},    {"0 cm", "2.54 cm"}, {"0 pt", "72 pt"},  {"0p0", "6 pc"},
                {"0 mm", "25.4 mm"}, {"0 px", "72 px"},   {"0 H", "101.6 H"}, {"0 ells", "72 pt"}};
    for (const auto& row : rows) {
        host.rulerText = row.shown;
        char text[64];
        FormatPointsWithRulerUnit(72, text);
        EXPECT_STREQ(text, row.text);
        float points = 0;
        ParsePointsWithUnit(text, &points);
        EXPECT_NEAR(points, 72, 1e-4);
        // A bare number counts in the ruler's unit.
        ParsePointsWithUnit(std::to_string(std::strtod(text, nullptr)).c_str(), &points);
        EXPECT_NEAR(points, 72, 1e-4);
    }
    float points = 0;
    host.rulerText = "0 mm";
    ParsePointsWithUnit("nonsense", &points);
    EXPECT_EQ(points, 0);
    ParsePointsWithUnit(("2 in" + std::string(100, ' ')).c_str(), &points);  // the unit stands behind the limit
    EXPECT_NEAR(points, 2 * 72 / 25.4, 1e-4);
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
