#include "svg/values/length.h"

#include <algorithm>
#include <utility>

#include "svg/values/number.h"

namespace quorvel::svg {

std::string_view lengthUnit(std::string_view text) {
    text = trimmed(text);
    const char* at = text.data();
    const char* end = at + text.size();
    double number = 0;
    if (!readNumber(&at, end, &number)) return {};
    return trimmed({at, static_cast<std::size_t>(end - at)});
}

namespace {

// The units of a font are taken as CSS has them where no font is at hand; a line is 1.2 em high.
std::optional<double> relativeLength(double number, std::string_view unit, const LengthContext& context) {
    const double em = context.fontSize, rem = context.rootFontSize;
    const double width = context.pageWidth, height = context.pageHeight;
    const std::pair<std::string_view, double> units[] = {{"%", context.percentOf / 100},
                                                         {"em", em},
                                                         {"rem", rem},
                                                         {"ex", em / 2},
                                                         {"ch", em / 2},
                                                         {"cap", em * 0.7},
                                                         {"ic", em},
                                                         {"lh", em * 1.2},
                                                         {"rlh", rem * 1.2},
                                                         {"vw", width / 100},
                                                         {"vh", height / 100},
                                                         {"vmin", std::min(width, height) / 100},
                                                         {"vmax", std::max(width, height) / 100}};
    for (const auto& [name, size] : units)
        if (name == unit) return number * size;
    return std::nullopt;
}

}  // namespace

std::optional<double> parseLength(std::string_view text, const LengthContext& context) {
    text = trimmed(text);
    const char* at = text.data();
    const char* end = at + text.size();
    double number = 0;
    if (!readNumber(&at, end, &number)) return std::nullopt;
    struct Unit {
        std::string_view name;
        double pixels;
    };
    static constexpr Unit kUnits[] = {{"", 1},    {"px", 1},         {"pt", 96.0 / 72},
                                      {"pc", 16}, {"mm", 96 / 25.4}, {"cm", 96 / 2.54},
                                      {"in", 96}, {"Q", 96 / 101.6}, {"q", 96 / 101.6}};
    const std::string_view unit = trimmed({at, static_cast<std::size_t>(end - at)});
    for (const Unit& row : kUnits) {
        if (row.name == unit) return number * row.pixels;
    }
    return relativeLength(number, unit, context);
}

}  // namespace quorvel::svg
