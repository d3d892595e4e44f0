// Code pages by the system's own converter, so that a Japanese or Korean text reads here as it does everywhere else.
// Broken input never stops a conversion: what cannot be read or written becomes a sign that the user sees.
#include "platform/text.h"

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <utility>

namespace quorvel::platform {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// The Windows variants: plain SHIFT_JIS lacks the vendor rows and reads 0x5C and 0x7E as yen and overline.
const char* CharsetName(std::int32_t codePage) {
    switch (codePage) {
        case kCodePageJapanese:
            return "CP932";
        case kCodePageKorean:
            return "CP949";
        case kCodePageUtf8:
            return "UTF-8";
        default:
            return "ASCII";
    }
}

// One open converter. Opening costs far more than converting a short text, so each thread keeps those it has used.
class Converter {
  public:
    Converter(const char* to, const char* from) : handle_(iconv_open(to, from)) {}
    ~Converter() {
        if (IsUsable()) iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool IsUsable() const { return handle_ != reinterpret_cast<iconv_t>(-1); }
    void Restart() { iconv(handle_, nullptr, nullptr, nullptr, nullptr); }
    // Moves from input to output until the end (true) or a byte that cannot be converted (false).
    bool Run(std::string_view* input, std::string* output) {
        while (true) {
            char buffer[512];
            char* in = const_cast<char*>(input->data());
            char* out = buffer;
            std::size_t inLeft = input->size(), outLeft = sizeof buffer;
            const std::size_t result = iconv(handle_, &in, &inLeft, &out, &outLeft);
            const int cause = errno;
            output->append(buffer, sizeof buffer - outLeft);
            input->remove_prefix(input->size() - inLeft);
            if (result != static_cast<std::size_t>(-1)) return true;
            if (cause != E2BIG) return false;
        }
    }

  private:
    iconv_t handle_;
};

Converter& ConverterFor(const char* to, const char* from) {
    thread_local std::map<std::pair<std::string, std::string>, Converter> converters;
    return converters.try_emplace({to, from}, to, from).first->second;
}

std::size_t OneByte(std::string_view) { return 1; }

// A lead byte with those of its followers that are there; anything else alone.
std::size_t OneUtf8Character(std::string_view text) {
    const auto lead = static_cast<std::uint8_t>(text[0]);
    const std::size_t wanted = lead >= 0xF0 && lead <= 0xF4  ? 4
                               : lead >= 0xE0 && lead < 0xF0 ? 3
                               : lead >= 0xC2 && lead < 0xE0 ? 2
                                                             : 1;
    std::size_t length = 1;
    while (length < wanted && length < text.size() && (static_cast<std::uint8_t>(text[length]) & 0xC0) == 0x80)
        ++length;
    return length;
}

std::string Replacement(std::string_view) { return std::string(kReplacement); }

// U+F780 to U+F7FF mean the bytes 0x80 to 0xFF: no code page has characters there.
constexpr char kPrivateLead = '\xEF';
constexpr unsigned kPrivateSecond = 0x9E;

std::string PrivateCharacter(std::string_view text) {
    const auto byte = static_cast<std::uint8_t>(text[0]);
    if (byte < 0x80) return Replacement(text);
    return {kPrivateLead, static_cast<char>(kPrivateSecond + (byte >> 6 & 1)), static_cast<char>(0x80 | (byte & 0x3F))};
}

std::string PrivateByte(std::string_view character) {
    if (character.size() < 3 || character[0] != kPrivateLead) return "?";
    const unsigned second = static_cast<std::uint8_t>(character[1]) - kPrivateSecond;
    if (second > 1) return "?";
    return {static_cast<char>(0x80 | second << 6 | (static_cast<std::uint8_t>(character[2]) & 0x3F))};
}

std::string Convert(std::string_view input, const char* to, const char* from,
                    std::string (*substitute)(std::string_view), std::size_t (*skipped)(std::string_view)) {
    std::string output;
    Converter& converter = ConverterFor(to, from);
    if (!converter.IsUsable()) return output;
    converter.Restart();
    output.reserve(input.size() * 3 / 2);
    while (!converter.Run(&input, &output)) {
        output += substitute(input);
        input.remove_prefix(skipped(input));
        converter.Restart();
    }
    return output;
}

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::uint32_t CodePointAt(std::string_view utf8) {
    const auto byte = [&](std::size_t i) { return i < utf8.size() ? static_cast<std::uint8_t>(utf8[i]) : 0U; };
    const std::uint32_t lead = byte(0);
    if (lead < 0x80) return lead;
    if (lead < 0xE0) return (lead & 0x1F) << 6 | (byte(1) & 0x3F);
    if (lead < 0xF0) return (lead & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F);
    return (lead & 0x07) << 18 | (byte(1) & 0x3F) << 12 | (byte(2) & 0x3F) << 6 | (byte(3) & 0x3F);
}

UnwritableCharacter CharacterAt(std::string_view text, std::size_t offset) {
    UnwritableCharacter found{1, 1, CodePointAt(text.substr(offset))};
    bool inQuotes = false;
    for (const char sign : text.substr(0, offset)) {
        if (sign == '"') inQuotes = !inQuotes;
        if (sign == ',' && !inQuotes) ++found.column;
        if (sign != '\n') continue;
        inQuotes = false;
        found.column = 1;
        ++found.row;
    }
    return found;
}

// Source: Apple's published ROMAN.TXT, in the version with the euro sign at 0xDB.
constexpr std::uint16_t kMacRoman[128] = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5,
    0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3, 0x00F2, 0x00F4,
    0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6,
    0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8, 0x221E, 0x00B1, 0x2264, 0x2265,
    0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8, 0x00BF,
    0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB, 0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5,
    0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044,
    0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02, 0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1,
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4, 0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9,
    0x0131, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,
};

}  // namespace

std::string ToUtf8(std::string_view bytes, std::int32_t codePage) {
    return Convert(bytes, "UTF-8", CharsetName(codePage), Replacement, OneByte);
}

std::string ToUtf8AndBack(std::string_view bytes, std::int32_t codePage) {
    return Convert(bytes, "UTF-8", CharsetName(codePage), PrivateCharacter, OneByte);
}

std::string FromUtf8(std::string_view utf8, std::int32_t codePage) {
    return Convert(utf8, CharsetName(codePage), "UTF-8", PrivateByte, OneUtf8Character);
}

std::size_t FindUnwritable(std::string_view utf8, std::int32_t codePage) {
    Converter& converter = ConverterFor(CharsetName(codePage), "UTF-8");
    if (!converter.IsUsable()) return 0;
    converter.Restart();
    std::string_view rest = utf8;
    std::string output;
    return converter.Run(&rest, &output) ? std::string_view::npos : utf8.size() - rest.size();
}

std::optional<UnwritableCharacter> FirstUnwritable(std::string_view utf8, std::int32_t codePage) {
    const std::size_t offset = FindUnwritable(utf8, codePage);
    if (offset == std::string_view::npos) return std::nullopt;
    return CharacterAt(utf8, offset);
}

bool IsUtf8List(std::string_view text) {
    if (text.starts_with(kByteOrderMark)) return true;
    const bool isAscii =
        std::all_of(text.begin(), text.end(), [](char c) { return static_cast<std::uint8_t>(c) < 0x80; });
    return !isAscii && FindUnwritable(text, kCodePageUtf8) == std::string_view::npos;
}

std::string_view WithoutByteOrderMark(std::string_view text) {
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    return text;
}

std::uint16_t MacRomanToUnicode(std::uint8_t byte) { return byte < 0x80 ? byte : kMacRoman[byte - 0x80]; }

}  // namespace quorvel::platform
