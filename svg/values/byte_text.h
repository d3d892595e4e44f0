// Bytes as printable text.
#pragma once

#include <string>
#include <string_view>

namespace quorvel::svg {

// Printable ASCII but "%" as it is, every other byte as %XX.
std::string encodeBytes(std::string_view bytes);
std::string decodeBytes(std::string_view text);
// Bytes after the mark in two hexadecimal digits; a mark without them is itself.
std::string decodeBytes(std::string_view text, char mark);
void appendEncoded(std::string* out, char mark, char byte);

}  // namespace quorvel::svg
