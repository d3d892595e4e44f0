// The text of a CSV file around its fields: the encoding that it comes in, and fields that a spreadsheet would take for
// formulas.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

// A field between quotes, in the system code page. A field that a spreadsheet would run as a formula gets an apostrophe
// in front, and quotes within one that holds such a field are doubled; numbers with a sign stay as they are.
std::string QuotedCsvField(std::string_view field);
// Without the apostrophe.
std::string_view PlainCsvField(std::string_view field);

// A character that the system code page lacks.
struct UnwritableCharacter {
    int row = 0, column = 0;  // of the file, from 1
    std::uint32_t codePoint = 0;
};
// True for a text with a byte order mark, and for valid UTF-8 that is not ASCII alone.
bool CsvIsUtf8(std::string_view text);
// Converts a text in UTF-8 into the system code page; what that lacks becomes "?". Gives the first such character.
std::optional<UnwritableCharacter> CsvFromUtf8(std::string* text);

}  // namespace quorvel
