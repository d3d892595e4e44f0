// Declaration lists of CSS, and what all scans of CSS share.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace quorvel::svg {

// Views into the text that was parsed.
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

}  // namespace quorvel::svg
