// Whether bytes are UTF-8.
#pragma once

#include <cstddef>
#include <string_view>

namespace quorvel::svg {

// The place of the first byte that is no UTF-8, npos when all are (RFC 3629: no overlong forms, no surrogates).
std::size_t firstForeignByte(std::string_view text);

}  // namespace quorvel::svg
