// Small operations on byte texts with fixed caps, so that a text that lost its closing zero cannot run away. They work
// on bytes, never on characters of a code page.
#include <algorithm>
#include <cstring>

#include "plugin/dimensioning/units.h"

namespace quorvel {

namespace {

constexpr std::int32_t kTextCap = 32000;
constexpr std::int32_t kSearchedPositions = 255;
constexpr int kPascalCap = 255;
constexpr std::uint16_t kLess = 65535;

}  // namespace

std::int32_t TextLength(const char* text) { return static_cast<std::int32_t>(strnlen(text, kTextCap)); }

std::uint16_t CompareTexts(const char* a, const char* b) {
    for (std::int32_t i = 0; i < kTextCap; ++i) {
        const auto left = static_cast<signed char>(a[i]);
        const auto right = static_cast<signed char>(b[i]);
        if (left != right) return left > right ? 1 : kLess;
        if (left == 0) break;
    }
    return 0;
}

void CopyText(char* to, const char* from) {
    const std::int32_t length = TextLength(from);
    std::memmove(to, from, static_cast<std::size_t>(length));
    to[length] = 0;
}

std::int32_t FindInText(const char* text, const char* part) {
    const auto size = static_cast<std::size_t>(TextLength(part));
    for (std::int32_t i = 0; i < kSearchedPositions; ++i) {
        if (std::strncmp(text + i, part, size) == 0) return i;
        if (text[i] == 0) break;
    }
    return -1;
}

void RemoveFromText(char* text, const char* part) {
    const std::int32_t at = FindInText(text, part);
    if (at >= 0) CopyText(text + at, text + at + TextLength(part));
}

void PascalToText(const std::uint8_t* from, char* to, int limit) {
    if (limit <= 0) return;
    const int length = std::min<int>(from[0], limit - 1);
    std::memcpy(to, from + 1, static_cast<std::size_t>(length));
    to[length] = 0;
}

void TextToPascal(const char* from, std::uint8_t* to, int limit) {
    if (limit <= 0) return;
    const int length = std::min({static_cast<int>(TextLength(from)), limit - 1, kPascalCap});
    std::memcpy(to + 1, from, static_cast<std::size_t>(length));
    to[0] = static_cast<std::uint8_t>(length);
}

}  // namespace quorvel
