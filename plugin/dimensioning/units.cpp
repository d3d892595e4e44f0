// The value of a dimension as the user reads it: a measured length in the drawing's scale and unit, or an angle, with
// its sign, its accuracy and its unit behind it.
#include "plugin/dimensioning/units.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "plugin/geometry/vector.h"

namespace quorvel {

// Chain and factor differ in their last digits; drawings made with either must keep their values, so both stay.
const LengthUnit kLengthUnits[kUnitCount] = {
    {1.0, true, "mm", 0.35277777777777775, "mm", "mm2"},    {10.0, true, "cm", 0.035277777777777776, "cm", "cm2"},
    {1000.0, true, "m", 0.00035277777777777776, "m", "m2"}, {1.0, false, "\"", 0.013888888888888888, "in", "in2"},
    {12.0, false, "'", 0.0011574074074074073, "ft", "ft2"}, {1.0, false, "pt", 1.0, "pt", "pt2"},
};

namespace {

constexpr int kPointsUnit = 5;
constexpr int kCountedTextLength = 20;
constexpr int kMaxAngleDigits = 3;

// How the degree and diameter signs are coded, by language and flArSpStr.
struct SignRow {
    std::uint16_t language;
    std::int16_t code;
    const char* degree;
    const char* diameter;
};
constexpr SignRow kSigns[] = {
    {kJapanese, 0, "\x81\x4B", "\x83\xD3"}, {kJapanese, 1, "\xFB", "\xBF"}, {kJapanese, 2, "\xB0", "\xF8"},
    {kEnglish, 0, "\xFB", "\xBF"},          {kEnglish, 1, "\xB0", "\xF8"},  {kKorean, 0, "\xA1\xC6", "\xAC\xE6"},
    {kKorean, 1, "\xFB", "\xBF"},           {kKorean, 2, "\xB0", "\xF8"},
};
constexpr SignRow kNoSigns = {0, 0, "", ""};

const SignRow& SignsInForce(const PluginGlobals* globals) {
    for (const SignRow& row : kSigns) {
        if (row.language == globals->language && row.code == globals->prefs.flArSpStr) return row;
    }
    return kNoSigns;
}

// A preference file may hold any number here; what is no row of the table counts as points.
int UnitIndex(std::int16_t unit) { return unit >= 0 && unit < kUnitCount ? unit : kPointsUnit; }

// The order of the operations decides the last digit and with it some rounded texts: multiply, divide by 72, by the
// scale, by the unit's divisor.
double ConvertLength(double length, LengthKind kind, int unit, double scale) {
    const LengthUnit& row = kLengthUnits[unit];
    double value = length;
    if (row.metric) value = value * 25.4;
    if (kind == LengthKind::diameter) value = value * 2.0;
    if (unit != kPointsUnit) value = value / 72.0;
    return value / scale / row.divisor;
}

const char* LengthPrefix(const PluginGlobals* globals, LengthKind kind) {
    switch (kind) {
        case LengthKind::radius:
            return "R";
        case LengthKind::diameter:
            return SignsInForce(globals).diameter;
        case LengthKind::plain:
            break;
    }
    return "";
}

void AppendToValue(char* text, const char* suffix) {
    const std::size_t length = std::strlen(text);
    std::snprintf(text + length, kValueTextSize - length, "%s", suffix);
}

}  // namespace

void StripTrailingZeros(char* text, int digits) {
    int length = 0;
    while (length < kCountedTextLength && text[length] != 0) ++length;
    for (int i = 0; i < digits && length > 0 && text[length - 1] == '0'; ++i) text[--length] = 0;
    if (length > 0 && text[length - 1] == '.') text[length - 1] = 0;
}

double LengthInUnit(const PluginGlobals* globals, double length, LengthKind kind) {
    const PrefsRecord& prefs = globals->prefs;
    return ConvertLength(length, kind, UnitIndex(prefs.flArUnit), static_cast<double>(prefs.flScale));
}

int AngleDigits(const PluginGlobals* globals) { return std::clamp<int>(globals->prefs.flScFix, 0, kMaxAngleDigits); }

void FormatLength(const PluginGlobals* globals, double length, LengthKind kind, char* text) {
    const PrefsRecord& prefs = globals->prefs;
    const int unit = UnitIndex(prefs.flArUnit);
    const double value = LengthInUnit(globals, length, kind);
    std::snprintf(text, kValueTextSize, "%s%1.*f", LengthPrefix(globals, kind), prefs.flScFix, value);
    if (prefs.flScFix > 0 && prefs.flUseZero == 0) StripTrailingZeros(text, prefs.flScFix);
    if (prefs.flUseTani != 0) AppendToValue(text, kLengthUnits[unit].suffix);
}

void FormatAngle(const PluginGlobals* globals, double radians, char* text) {
    const PrefsRecord& prefs = globals->prefs;
    const int digits = AngleDigits(globals);
    const double degrees = radians / kPi * 180.0;
    std::snprintf(text, kValueTextSize, " %1.*f", digits, degrees);
    if (digits > 0 && prefs.flUseZero == 0) StripTrailingZeros(text, digits);
    AppendToValue(text, SignsInForce(globals).degree);
}

double PowerBySquaring(double base, int exponent) {
    double result = 1.0;
    const bool reciprocal = exponent < 0;
    for (unsigned n = reciprocal ? 0U - static_cast<unsigned>(exponent) : static_cast<unsigned>(exponent); n != 0;
         n /= 2) {
        if (n & 1U) result *= base;
        base *= base;
    }
    return reciprocal ? 1.0 / result : result;
}

}  // namespace quorvel
