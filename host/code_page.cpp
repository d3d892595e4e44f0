// Reads texts of the code pages 932 and 949 and of UTF-8, character by character, so that one broken byte costs no more
// than itself.
#include "host/code_page.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <stdexcept>

namespace quorvel::host {

namespace {

struct CodePage {
    std::int32_t number;
    const char* iconvName;  // the vendor's tables; the national standards of the same bytes differ in a few signs
};

constexpr std::array kCodePages{CodePage{932, "CP932"}, CodePage{949, "CP949"}, CodePage{65001, "UTF-8"}};
constexpr char16_t kUnreadable = 0xFFFD;

class Converter {
  public:
    Converter(const char* to, const char* from) : descriptor_(iconv_open(to, from)) {
        if (descriptor_ == reinterpret_cast<iconv_t>(-1))
            throw std::runtime_error(std::string("no conversion from ") + from);
    }
    ~Converter() { iconv_close(descriptor_); }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    // UTF-16 units of this machine's byte order.
    std::u16string convert(std::string_view bytes) {
        iconv(descriptor_, nullptr, nullptr, nullptr, nullptr);
        std::u16string result;
        char* in = const_cast<char*>(bytes.data());
        std::size_t left = bytes.size();
        while (left > 0) {
            std::array<char16_t, 256> buffer;
            char* out = reinterpret_cast<char*>(buffer.data());
            std::size_t room = sizeof(buffer);
            const std::size_t done = iconv(descriptor_, &in, &left, &out, &room);
            const int cause = done == static_cast<std::size_t>(-1) ? errno : 0;
            result.append(buffer.data(), (sizeof(buffer) - room) / sizeof(char16_t));
            if (cause == 0 || cause == E2BIG) continue;
            result += kUnreadable;
            ++in;
            --left;
        }
        return result;
    }

  private:
    iconv_t descriptor_;
};

const CodePage* findCodePage(std::int32_t number) {
    const auto found = std::find_if(kCodePages.begin(), kCodePages.end(),
                                    [number](const CodePage& page) { return page.number == number; });
    return found == kCodePages.end() ? nullptr : &*found;
}

void appendUtf8(std::string* text, char32_t c) {
    if (c < 0x80) {
        *text += static_cast<char>(c);
        return;
    }
    const int followers = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    constexpr std::array<unsigned, 4> kLead{0, 0xC0, 0xE0, 0xF0};
    *text += static_cast<char>(kLead[followers] | static_cast<unsigned>(c >> 6 * followers));
    for (int i = followers - 1; i >= 0; --i)
        *text += static_cast<char>(0x80 | (static_cast<unsigned>(c >> 6 * i) & 0x3F));
}

}  // namespace

bool codePageKnown(std::int32_t codePage) { return findCodePage(codePage) != nullptr; }

std::u16string fromCodePage(std::string_view bytes, std::int32_t codePage) {
    const CodePage* page = findCodePage(codePage);
    if (page == nullptr) throw std::invalid_argument("unknown code page");
    // Opening one reads the system's tables; it is done once.
    thread_local std::array<std::optional<Converter>, kCodePages.size()> converters;
    std::optional<Converter>& converter = converters[static_cast<std::size_t>(page - kCodePages.data())];
    if (!converter.has_value()) converter.emplace("UTF-16LE", page->iconvName);
    return converter->convert(bytes);
}

std::u16string fromUtf8(std::string_view text) { return fromCodePage(text, 65001); }

std::string toUtf8(std::u16string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        const bool leads = c >= 0xD800 && c < 0xDC00, follows = c >= 0xDC00 && c < 0xE000;
        if (leads && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00);
        } else if (leads || follows) {
            c = kUnreadable;
        }
        appendUtf8(&result, c);
    }
    return result;
}

std::string systemTextToUtf8(std::string_view bytes) { return toUtf8(fromCodePage(bytes, kSystemCodePage)); }

}  // namespace quorvel::host
