// Fields of a CSV file that a spreadsheet would take for formulas.
#pragma once

#include <string>
#include <string_view>

namespace quorvel {

// A field between quotes, in the system code page. A field that a spreadsheet would run as a formula gets an apostrophe
// in front, and quotes within one that holds such a field are doubled; numbers with a sign stay as they are.
std::string QuotedCsvField(std::string_view field);
// Without the apostrophe.
std::string_view PlainCsvField(std::string_view field);

}  // namespace quorvel
