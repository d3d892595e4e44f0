// Characters of UTF-8 and UTF-16.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorvel::svg {

// The character at *at, which moves behind it; what is none counts as one replacement character a byte.
char32_t takeCharacter(std::string_view text, std::size_t* at);
void appendUtf16(std::u16string* out, char32_t code);

}  // namespace quorvel::svg
