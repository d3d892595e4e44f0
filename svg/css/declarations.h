// Declaration lists of CSS, and what all scans of CSS share.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel::svg {

// The value is a view into the text that was parsed, and so is the name, but for a known one in capitals, which is that
// of the table of properties.
struct CssDeclaration {
    std::string_view property, value;
    bool important = false;
};

// Appends the declarations of a style attribute or of a rule's block.
void parseDeclarations(std::string_view block, std::vector<CssDeclaration>* declarations);

// The place of the first of the stops outside quotes, brackets and comments; the text's end when there is none.
std::size_t findOutside(std::string_view text, std::size_t from, std::string_view stops);
// Trimmed; empty when a comment does not end.
std::string_view withoutLeadingComments(std::string_view text);
// With a blank for each comment outside quotes.
std::string withoutComments(std::string_view text);
// In small letters. CSS takes no notice of capitals but in the names that a file gives.
std::string lowerCase(std::string_view text);
bool hasCapitals(std::string_view text);

}  // namespace quorvel::svg
