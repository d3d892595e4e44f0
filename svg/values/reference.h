// References to elements of the same file.
#pragma once

#include <string_view>

#include "svg/values/number.h"

namespace quorvel::svg {

// "id" of "url(#id)", with or without quotes; empty when the value is no such reference.
inline std::string_view urlFragment(std::string_view value) {
    value = trimmed(value);
    if (!value.starts_with("url(")) return {};
    const std::size_t hash = value.find('#');
    const std::size_t end = value.find_first_of(")\"'", hash == std::string_view::npos ? 0 : hash);
    if (hash == std::string_view::npos || end == std::string_view::npos) return {};
    return value.substr(hash + 1, end - hash - 1);
}

}  // namespace quorvel::svg
