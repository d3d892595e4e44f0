// Texts of the system's code pages, UTF-8 and UTF-16. What cannot be read becomes U+FFFD.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quorvel::host {

constexpr std::int32_t kSystemCodePage = 932;

// codePage: 932, 949 or 65001; false for another.
bool codePageKnown(std::int32_t codePage);
std::u16string fromCodePage(std::string_view bytes, std::int32_t codePage);
std::u16string fromUtf8(std::string_view text);
std::string toUtf8(std::u16string_view text);
std::string systemTextToUtf8(std::string_view bytes);

}  // namespace quorvel::host
