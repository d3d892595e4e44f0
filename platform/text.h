// Code pages: conversion between the byte texts of the system and Unicode.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quorvel::platform {

constexpr std::int32_t kCodePageJapanese = 932;
constexpr std::int32_t kCodePageKorean = 949;
constexpr std::int32_t kCodePageUtf8 = 65001;

// A byte that is no character of the code page becomes U+FFFD.
std::string ToUtf8(std::string_view bytes, std::int32_t codePage);
// The same for a text that comes back: a byte that is no character, such as half of one, becomes a private one that
// FromUtf8 turns into the byte again.
std::string ToUtf8AndBack(std::string_view bytes, std::int32_t codePage);
// A character that the code page lacks becomes "?".
std::string FromUtf8(std::string_view utf8, std::int32_t codePage);
// The offset of the first character that the code page lacks, or of a byte that is no UTF-8; npos when there is none.
std::size_t FindUnwritable(std::string_view utf8, std::int32_t codePage);
// A character that a code page lacks.
struct UnwritableCharacter {
    int row = 0, column = 0;  // of a list whose fields are parted by commas, from 1
    std::uint32_t codePoint = 0;
};
std::optional<UnwritableCharacter> FirstUnwritable(std::string_view utf8, std::int32_t codePage);
// Whether a list is in UTF-8: with a byte order mark, or valid UTF-8 that is not ASCII alone.
bool IsUtf8List(std::string_view text);
std::string_view WithoutByteOrderMark(std::string_view text);
// The published Mac OS Roman table for bytes 0x80 to 0xFF (0xDB is U+20AC, 0xF0 is U+F8FF); below 0x80 the byte itself.
std::uint16_t MacRomanToUnicode(std::uint8_t byte);

}  // namespace quorvel::platform
