#include "plugin/dimensioning/shown_text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "plugin/geometry/vector.h"
#include "plugin/shell/suites.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

using Units = std::vector<std::uint16_t>;

// Of the group that is being rebuilt; rebuilding does not nest.
std::vector<Units> gShown;
double gTolerance = 0;

bool IsOfNumber(unsigned unit) { return (unit >= '0' && unit <= '9') || unit == '.' || unit == '-'; }

// The place of the number in a text of a sign, a number and a unit.
template <typename Text>
std::pair<std::size_t, std::size_t> NumberSpan(const Text& text) {
    std::size_t begin = 0;
    while (begin < text.size() && !IsOfNumber(static_cast<unsigned>(text[begin]))) ++begin;
    std::size_t end = begin;
    while (end < text.size() && IsOfNumber(static_cast<unsigned>(text[end]))) ++end;
    return {begin, end};
}

// The number of a shown text that is else the same as the one that would be shown now; empty when it is not.
std::string ShownNumber(const Units& shown, const Units& now) {
    const auto [begin, end] = NumberSpan(now);
    const std::size_t tail = now.size() - end;
    if (shown.size() < begin + tail + 1) return {};
    if (!std::equal(now.begin(), now.begin() + static_cast<std::ptrdiff_t>(begin), shown.begin()) ||
        !std::equal(now.end() - static_cast<std::ptrdiff_t>(tail), now.end(),
                    shown.end() - static_cast<std::ptrdiff_t>(tail)))
        return {};
    std::string number;
    for (std::size_t i = begin; i < shown.size() - tail; ++i) {
        if (!IsOfNumber(shown[i])) return {};
        number += static_cast<char>(shown[i]);
    }
    return number;
}

// As the formats print it.
std::string Printed(double value, int digits, bool strip) {
    char text[kValueTextSize];
    std::snprintf(text, sizeof text, "%1.*f", digits, value);
    if (digits > 0 && strip) StripTrailingZeros(text, digits);
    return text;
}

// Puts the shown number into the text when it is a rounding of the value, as near as slack tells. Both in the text's
// own unit.
void KeepShownNumber(const PluginGlobals* globals, std::size_t index, double value, double slack, int digits,
                     char* text) {
    if (gTolerance <= 0 || index >= gShown.size()) return;
    const std::string number = ShownNumber(gShown[index], UnitsFromInternal(globals, text));
    if (number.empty()) return;
    const double shown = std::atof(number.c_str());
    if (Printed(shown, digits, globals->prefs.flUseZero == 0) != number) return;
    if (!(std::fabs(shown - value) <= 0.5 * std::pow(10.0, -digits) + slack)) return;
    std::string kept = text;
    const auto [begin, end] = NumberSpan(kept);
    kept.replace(begin, end - begin, number);
    std::snprintf(text, kValueTextSize, "%s", kept.c_str());
}

}  // namespace

std::vector<std::vector<std::uint16_t>> TextsOf(AIArtHandle group) {
    std::vector<Units> texts;
    // The topmost child comes first and was made last.
    WalkChildren(
        group,
        [&](AIArtHandle child) {
            std::int16_t kind = kUnknownArt;
            const std::uint16_t* units = nullptr;
            std::int32_t count = 0;
            if (sAIArt->GetArtType(child, &kind) == kNoErr && kind == kTextFrameArt &&
                sDimension->GetText(child, &units, &count) == kNoErr)
                texts.emplace_back(units, units + count);
            return kNoErr;
        },
        [] { return false; });
    std::reverse(texts.begin(), texts.end());
    return texts;
}

ShownTexts::ShownTexts(AIArtHandle group, double tolerance) {
    gShown.clear();
    gTolerance = sDimension != nullptr ? tolerance : 0;
    if (gTolerance > 0) gShown = TextsOf(group);
}

ShownTexts::~ShownTexts() {
    gShown.clear();
    gTolerance = 0;
}

double ShownTextTolerance() { return gTolerance; }

void FormatLengthShown(const PluginGlobals* globals, int index, double length, LengthKind kind, double slack,
                       char* text) {
    FormatLength(globals, length, kind, text);
    const double value = LengthInUnit(globals, length, kind), off = LengthInUnit(globals, slack, kind);
    KeepShownNumber(globals, static_cast<std::size_t>(index), value, off, globals->prefs.flScFix, text);
}

void FormatAngleShown(const PluginGlobals* globals, double radians, double slack, char* text) {
    FormatAngle(globals, radians, text);
    const double perRadian = 180.0 / kPi;
    KeepShownNumber(globals, 0, radians * perRadian, slack * perRadian, AngleDigits(globals), text);
}

}  // namespace quorvel
