// The number grammar that all of SVG's values share, and numbers in their shortest faithful form.
#pragma once

#include <cmath>
#include <optional>
#include <string>
#include <string_view>

namespace quorvel::svg {

constexpr std::string_view kBlanks = " \t\n\r\f";
constexpr bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }
std::string_view trimmed(std::string_view text);
void skipBlanks(const char** at, const char* end);
// A number of SVG's grammar at *at, which moves behind it. False for anything else, also "nan", "inf" and numbers too
// large for a double; numbers too small for one are 0.
[[nodiscard]] bool readNumber(const char** at, const char* end, double* number);
// 0 where a float cannot hold it.
float finiteFloat(double value);
// Skips blanks and at most one comma.
void skipSeparator(const char** at, const char* end);
// The number that is all of the text, but for blanks around it.
std::optional<double> readWholeNumber(std::string_view text);

// Shortest decimal form that reads back to the same double.
void appendNumber(std::string* out, double value);

// Rounds to ever more decimals until accept(rounded) holds; gives value itself when none does.
template <class Accept>
double fewestDecimals(double value, Accept accept) {
    static constexpr double kPowers[] = {1,   1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                         1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    for (double power : kPowers) {
        const double scaled = std::nearbyint(value * power);
        if (!(std::abs(scaled) < 9007199254740992.0)) break;  // beyond it the quotient is not the written decimal
        const double rounded = scaled / power + 0.0;
        if (accept(rounded)) return rounded;
    }
    return value;
}

}  // namespace quorvel::svg
