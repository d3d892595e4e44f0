#include "svg/values/length.h"

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
    if (unit == "%") return number / 100 * context.percentOf;
    if (unit == "em" || unit == "rem") return number * context.fontSize;
    if (unit == "ex") return number * context.fontSize / 2;
    return std::nullopt;
}

}  // namespace quorvel::svg
