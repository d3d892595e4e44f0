// Plain decimals take a fast path that rounds exactly as the standard's reader does.
#include "svg/values/number.h"

#include <array>
#include <charconv>
#include <cstdint>

namespace quorvel::svg {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// from_chars reports too large and too small alike. A number that is too small has a negative exponent or begins
// with zeros before its point.
bool isTooSmall(std::string_view digits) {
    const std::size_t exponent = digits.find_first_of("eE");
    if (exponent != std::string_view::npos) return exponent + 1 < digits.size() && digits[exponent + 1] == '-';
    return digits.find_first_not_of('0') == digits.find('.');
}

// Powers of ten that a double holds exactly.
constexpr double kExactPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int kExactDigits = 15;

// Plain decimals of up to 15 digits, which nearly all numbers of a drawing are: the digits and the power of ten are
// both exact in a double, so that one division rounds as any correct reader does (Clinger's fast path). Null: another
// form.
const char* readPlainDecimal(const char* at, const char* end, double* value) {
    std::uint64_t digits = 0;
    const char* start = at;
    for (; at != end && isDigit(*at); ++at) digits = digits * 10 + static_cast<std::uint64_t>(*at - '0');
    std::ptrdiff_t count = at - start;
    std::ptrdiff_t decimals = 0;
    if (at != end && *at == '.') {
        const char* point = ++at;
        for (; at != end && isDigit(*at); ++at) digits = digits * 10 + static_cast<std::uint64_t>(*at - '0');
        decimals = at - point;
        count += decimals;
    }
    if (count == 0 || count > kExactDigits || (at != end && (*at | 0x20) == 'e')) return nullptr;
    *value = static_cast<double>(digits) / kExactPowers[decimals];
    return at;
}

}  // namespace

void skipBlanks(const char** at, const char* end) {
    while (*at != end && isBlank(**at)) ++*at;
}

bool readNumber(const char** at, const char* end, double* number) {
    const char* start = *at;
    bool negative = false;
    if (start != end && (*start == '+' || *start == '-')) negative = *start++ == '-';
    if (start == end) return false;
    if (!isDigit(*start) && !(*start == '.' && start + 1 != end && isDigit(start[1]))) return false;
    double value = 0;
    if (const char* plainEnd = readPlainDecimal(start, end, &value)) {
        *number = negative ? -value : value;
        *at = plainEnd;
        return true;
    }
    const auto [stop, status] = std::from_chars(start, end, value);
    if (status == std::errc::result_out_of_range) {
        if (!isTooSmall({start, static_cast<std::size_t>(stop - start)})) return false;
        value = 0;
    } else if (status != std::errc()) {
        return false;
    }
    *number = negative ? -value : value;
    *at = stop;
    return true;
}

void skipSeparator(const char** at, const char* end) {
    skipBlanks(at, end);
    if (*at != end && **at == ',') {
        ++*at;
        skipBlanks(at, end);
    }
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

std::optional<double> readWholeNumber(std::string_view text) {
    text = trimmed(text);
    const char* at = text.data();
    const char* end = at + text.size();
    double value = 0;
    if (!readNumber(&at, end, &value) || at != end) return std::nullopt;
    return value;
}

float finiteFloat(double value) {
    const auto result = static_cast<float>(value);
    return std::isfinite(result) ? result + 0.0F : 0.0F;
}

void appendNumber(std::string* out, double value) {
    if (!std::isfinite(value)) value = 0;
    value += 0.0;  // no "-0"
    std::array<char, 64> buffer;
    const double size = std::abs(value);
    // Plain digits as long as they are short; the other form for the very small and the very large.
    const bool plain = size == 0 || (size >= 1e-7 && size < 1e15);
    const auto result = plain ? std::to_chars(buffer.begin(), buffer.end(), value, std::chars_format::fixed)
                              : std::to_chars(buffer.begin(), buffer.end(), value);
    out->append(buffer.data(), result.ptr);
}

}  // namespace quorvel::svg
