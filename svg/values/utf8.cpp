#include "svg/values/utf8.h"

namespace quorvel::svg {

namespace {
constexpr char32_t kReplacement = 0xFFFD;
}  // namespace

char32_t takeCharacter(std::string_view text, std::size_t* at) {
    const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
    const unsigned lead = byte(*at);
    const int more = lead < 0x80 ? 0 : lead >= 0xF0 && lead < 0xF5 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC2 ? 1 : -1;
    if (more == 0) return text[(*at)++];
    if (more > 0 && lead < 0xF5) {
        char32_t code = lead & (0x3FU >> more);
        bool sound = true;
        for (int i = 1; i <= more; ++i) {
            const unsigned next = byte(*at + static_cast<std::size_t>(i));
            sound &= (next & 0xC0) == 0x80;
            code = code << 6 | (next & 0x3F);
        }
        static constexpr char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
        sound &= code >= kLeast[more] && code < 0x110000 && !(code >= 0xD800 && code < 0xE000);
        if (sound) {
            *at += static_cast<std::size_t>(more) + 1;
            return code;
        }
    }
    ++*at;
    return kReplacement;
}

void appendUtf16(std::u16string* out, char32_t code) {
    if (code < 0x10000) {
        *out += static_cast<char16_t>(code);
    } else {
        *out += static_cast<char16_t>(0xD7C0 + (code >> 10));
        *out += static_cast<char16_t>(0xDC00 | (code & 0x3FF));
    }
}

}  // namespace quorvel::svg
