#include "svg/markup/utf8.h"

#include <cstdint>
#include <cstring>

namespace quorvel::svg {

std::size_t firstForeignByte(std::string_view text) {
    const auto tail = [&](std::size_t at) { return at < text.size() && (text[at] & 0xC0) == 0x80; };
    for (std::size_t at = 0; at < text.size();) {
        // Nearly all of a drawing is ASCII: eight at a time.
        for (std::uint64_t eight = 0; at + 8 <= text.size(); at += 8) {
            std::memcpy(&eight, text.data() + at, 8);
            if (eight & 0x8080808080808080) break;
        }
        if (at == text.size()) break;
        const auto first = static_cast<unsigned char>(text[at]);
        const int more = first < 0x80 ? 0 : first >= 0xC2 && first < 0xE0 ? 1 : (first & 0xF0) == 0xE0 ? 2 : 3;
        if (more == 3 && (first < 0xF0 || first > 0xF4)) return at;
        for (int i = 1; i <= more; ++i)
            if (!tail(at + static_cast<std::size_t>(i))) return at;
        const auto second = static_cast<unsigned char>(more > 0 ? text[at + 1] : 0);
        if ((first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) || (first == 0xF0 && second < 0x90) ||
            (first == 0xF4 && second > 0x8F))
            return at;
        at += static_cast<std::size_t>(more) + 1;
    }
    return std::string_view::npos;
}

}  // namespace quorvel::svg
