// Texts that the user types into the settings and reads there again: the drawing scale ("1/100") and lengths with or
// without a unit behind them ("5 mm"). What is no number reads as 0; nothing here complains.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "plugin/dimensioning/units.h"
#include "plugin/shell/suites.h"

namespace quorvel {

namespace {

constexpr std::size_t kFieldTextSize = 64;
constexpr std::size_t kTypedTextLimit = 80;

// A unit of the host's rulers. shown: how the host ends a length in it; suffix: how this system writes and reads it.
struct RulerUnit {
    const char* shown;
    const char* suffix;
    double points;
};
constexpr RulerUnit kRulerUnits[] = {
    {"in", "in", 72.0},
    {"cm", "cm", 28.346456692913385},
    {"pt", "pt", 1.0},
    {"p0", "pc", 12.0},
    {"mm", "mm", 2.8346456692913384},
    {"px", "px", 1.0},
    {"H", "H", 0.7086614173228346},
};
constexpr const RulerUnit& kPointsRuler = kRulerUnits[2];

const RulerUnit& RulerUnitInForce() {
    char text[kFieldTextSize] = {};
    sAIUser->FormatWithRulerUnit(0.0F, -1, text, sizeof text);
    const std::string_view shown(text);
    for (const RulerUnit& unit : kRulerUnits) {
        if (shown.ends_with(unit.shown)) return unit;
    }
    return kPointsRuler;
}

// Cuts the suffix off; null when there is none.
const RulerUnit* CutSuffix(std::string* text) {
    for (const RulerUnit& unit : kRulerUnits) {
        if (!text->ends_with(unit.suffix)) continue;
        text->resize(text->size() - std::strlen(unit.suffix));
        return &unit;
    }
    return nullptr;
}

std::string CopyTyped(const char* text) { return {text, strnlen(text, kTypedTextLimit)}; }

// The first row whose bound lies above the value prints it; the factor brings it to at least 1 there.
struct ScaleRow {
    double below;
    const char* format;
    double factor;
};
constexpr ScaleRow kScaleRows[] = {
    {0.000001, "%g / 10000000", 10000000.0},
    {0.00001, "%g / 1000000", 1000000.0},
    {0.0001, "%g / 100000", 100000.0},
    {0.001, "%g / 10000", 10000.0},
    {0.01, "%g / 1000", 1000.0},
    {0.1, "%g / 100", 100.0},
    {1.0, "%g / 10", 10.0},
};

}  // namespace

double ParseScaleText(const char* text) {
    const char* slash = std::strchr(text, '/');
    if (slash == nullptr) return std::atof(text);
    return std::atof(std::string(text, slash).c_str()) / std::atof(slash + 1);
}

void FormatScaleText(double value, char* text) {
    const double v = value > 0.0 ? value : 1.0;
    for (const ScaleRow& row : kScaleRows) {
        if (!(v < row.below)) continue;
        std::snprintf(text, kFieldTextSize, row.format, v * row.factor);
        return;
    }
    std::snprintf(text, kFieldTextSize, "%g / 1", v);
}

void FormatPointsWithRulerUnit(double points, char* text) {
    const RulerUnit& unit = RulerUnitInForce();
    std::snprintf(text, kFieldTextSize, "%g %s", points / unit.points, unit.suffix);
}

void ParsePointsWithUnit(const char* text, float* points) {
    std::string typed = CopyTyped(text);
    const RulerUnit* unit = CutSuffix(&typed);
    if (unit == nullptr) unit = &RulerUnitInForce();
    *points = static_cast<float>(std::atof(typed.c_str()) * unit->points);
}

float ParsePointsNoDefault(const char* text) {
    std::string typed = CopyTyped(text);
    const RulerUnit* unit = CutSuffix(&typed);
    return static_cast<float>(std::atof(typed.c_str()) * (unit != nullptr ? unit->points : 1.0));
}

}  // namespace quorvel
