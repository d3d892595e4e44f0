// What all scans of markup share.
#pragma once

#include <cstddef>
#include <string_view>

namespace quorvel::svg {

// Behind the first mark from there on; the end of the text when there is none.
inline std::size_t behind(std::string_view text, std::string_view mark, std::size_t from) {
    const std::size_t at = text.find(mark, from);
    return at == std::string_view::npos ? text.size() : at + mark.size();
}

}  // namespace quorvel::svg
