#include "plugin/settings/csv_text.h"

#include <algorithm>
#include <cstdlib>

namespace quorvel {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
// The signs that begin a formula, also as wide characters of code page 932.
constexpr std::string_view kFormulaSigns[] = {"=", "+", "-", "@", "\x81\x81", "\x81\x7B", "\x81\x7C", "\x81\x97"};

bool IsNumber(const std::string& text) {
    if (text.find_first_not_of("0123456789.eE+-") != std::string::npos) return false;
    char* end = nullptr;
    std::strtod(text.c_str(), &end);
    return end != text.c_str() && *end == '\0';
}

// A sign alone is no formula, nor is a number.
bool IsFormula(std::string_view field) {
    field.remove_prefix(std::min(field.find_first_not_of(kBlanks), field.size()));
    for (const std::string_view sign : kFormulaSigns)
        if (field.starts_with(sign)) return field.size() > sign.size() && !IsNumber(std::string(field));
    return false;
}

// Apostrophes and a formula behind them.
bool IsQuotedFormula(std::string_view field) {
    return IsFormula(field.substr(std::min(field.find_first_not_of('\''), field.size())));
}

// Whether a quote within the field would end it, so that a formula begins behind it.
bool BreaksIntoFormula(std::string_view field) {
    for (std::size_t quote = field.find('"'); quote != std::string_view::npos; quote = field.find('"', quote + 1)) {
        const std::size_t cut = field.find_first_of(",;\t\n", quote);
        if (cut == std::string_view::npos) return false;
        const std::size_t begin = field.find_first_not_of("\",; \t\r\n", cut);
        if (begin != std::string_view::npos && IsFormula(field.substr(begin))) return true;
    }
    return false;
}

}  // namespace

std::string QuotedCsvField(std::string_view field) {
    std::string text = "\"";
    if (IsQuotedFormula(field)) text += '\'';
    const bool doubled = BreaksIntoFormula(field);
    for (const char sign : field) {
        text += sign;
        if (sign == '"' && doubled) text += sign;
    }
    return text + '"';
}

std::string_view PlainCsvField(std::string_view field) {
    if (field.starts_with('\'') && IsQuotedFormula(field)) field.remove_prefix(1);
    return field;
}

}  // namespace quorvel
