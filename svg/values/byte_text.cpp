#include "svg/values/byte_text.h"

#include <charconv>

namespace quorvel::svg {

void appendEncoded(std::string* out, char mark, char byte) {
    constexpr char kHex[] = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    *out += mark;
    *out += kHex[value >> 4];
    *out += kHex[value & 15];
}

std::string decodeBytes(std::string_view text, char mark) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned value = 0;
        if (text[i] == mark && i + 2 < text.size() &&
            std::from_chars(text.data() + i + 1, text.data() + i + 3, value, 16).ptr == text.data() + i + 3) {
            out += static_cast<char>(value);
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

std::string encodeBytes(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (char c : bytes) {
        if (c >= ' ' && c <= '~' && c != '%') {
            out += c;
        } else {
            appendEncoded(&out, '%', c);
        }
    }
    return out;
}

std::string decodeBytes(std::string_view text) { return decodeBytes(text, '%'); }

}  // namespace quorvel::svg
