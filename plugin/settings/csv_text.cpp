#include "plugin/settings/csv_text.h"

#include <algorithm>
#include <cstdlib>

#include "platform/text.h"

namespace quorvel {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
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

std::uint32_t CodePointAt(std::string_view utf8) {
    const auto byte = [&](std::size_t i) { return i < utf8.size() ? static_cast<std::uint8_t>(utf8[i]) : 0U; };
    const std::uint32_t lead = byte(0);
    if (lead < 0x80) return lead;
    if (lead < 0xE0) return (lead & 0x1F) << 6 | (byte(1) & 0x3F);
    if (lead < 0xF0) return (lead & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F);
    return (lead & 0x07) << 18 | (byte(1) & 0x3F) << 12 | (byte(2) & 0x3F) << 6 | (byte(3) & 0x3F);
}

UnwritableCharacter CharacterAt(std::string_view text, std::size_t offset) {
    UnwritableCharacter found{1, 1, CodePointAt(text.substr(offset))};
    bool inQuotes = false;
    for (const char sign : text.substr(0, offset)) {
        if (sign == '"') inQuotes = !inQuotes;
        if (sign == ',' && !inQuotes) ++found.column;
        if (sign != '\n') continue;
        inQuotes = false;
        found.column = 1;
        ++found.row;
    }
    return found;
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

bool CsvIsUtf8(std::string_view text) {
    if (text.starts_with(kByteOrderMark)) return true;
    const bool isAscii =
        std::all_of(text.begin(), text.end(), [](char c) { return static_cast<std::uint8_t>(c) < 0x80; });
    return !isAscii && platform::FindUnwritable(text, platform::kCodePageUtf8) == std::string_view::npos;
}

std::optional<UnwritableCharacter> CsvFromUtf8(std::string* text) {
    if (text->starts_with(kByteOrderMark)) text->erase(0, kByteOrderMark.size());
    std::optional<UnwritableCharacter> unwritable;
    const std::size_t offset = platform::FindUnwritable(*text, platform::kCodePageJapanese);
    if (offset != std::string::npos) unwritable = CharacterAt(*text, offset);
    *text = platform::FromUtf8(*text, platform::kCodePageJapanese);
    return unwritable;
}

}  // namespace quorvel
