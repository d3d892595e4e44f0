// Errors at a line of a text.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/error.h"

namespace quorvel::svg {

// The line of the place in the text, from 1.
inline std::int64_t lineAt(std::string_view text, std::size_t offset) {
    return std::ranges::count(text.substr(0, std::min(offset, text.size())), '\n') + 1;
}

inline Error atLine(std::string_view text, std::size_t offset, Error error) {
    error.line = lineAt(text, offset);
    return error;
}

inline Error atLine(std::string_view text, std::size_t offset, ErrorCode code) {
    return atLine(text, offset, makeError(code));
}

}  // namespace quorvel::svg
