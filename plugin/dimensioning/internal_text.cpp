// From the bytes that the system keeps to the text that the host shows, and from the resources to such bytes. Degree
// and diameter signs are single bytes whose meaning depends on the language and on the chosen set of special
// characters.
#include <cstring>
#include <string_view>

#include "platform/text.h"
#include "plugin/dimensioning/units.h"
#include "plugin/resources/strings.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"

namespace quorvel {

namespace {

constexpr std::uint16_t kReplacementUnit = 0xFFFD;
constexpr std::int32_t kEnglishIdOffset = 100;

// What the lead byte of a character says: how many bytes it has and what their sum carries too much when each byte is
// added to six shifts of the former ones. Lead bytes of five and six are known, so that their tails are not taken for
// characters.
struct LeadRow {
    unsigned firstLead;
    std::size_t bytes;
    std::uint32_t offset;
};
constexpr LeadRow kLeadRows[] = {
    {0xFC, 6, 0x82082080U}, {0xF8, 5, 0xFA082080U}, {0xF0, 4, 0x03C82080U},
    {0xE0, 3, 0x000E2080U}, {0xC0, 2, 0x00003080U}, {0x00, 1, 0x00000000U},
};

const LeadRow& RowOfLead(unsigned char lead) {
    const LeadRow* row = kLeadRows;
    while (lead < row->firstLead) ++row;
    return *row;
}

void AppendCodePoint(std::uint32_t code, std::vector<std::uint16_t>* units) {
    if (code < 0x10000U) {
        units->push_back(static_cast<std::uint16_t>(code));
    } else if (code < 0x110000U) {
        units->push_back(static_cast<std::uint16_t>(0xD800U + ((code - 0x10000U) >> 10U)));
        units->push_back(static_cast<std::uint16_t>(0xDC00U + ((code - 0x10000U) & 0x3FFU)));
    } else {
        units->push_back(kReplacementUnit);
    }
}

void AppendUtf8(std::string_view utf8, std::vector<std::uint16_t>* units) {
    for (std::size_t i = 0; i < utf8.size();) {
        const LeadRow& row = RowOfLead(static_cast<unsigned char>(utf8[i]));
        std::uint32_t code = 0;
        for (std::size_t k = 0; k < row.bytes; ++k) {
            const unsigned char byte = i + k < utf8.size() ? static_cast<unsigned char>(utf8[i + k]) : 0;
            code = (code << 6U) + byte;
        }
        AppendCodePoint(code - row.offset, units);
        i += row.bytes;
    }
}

void AppendConverted(std::string_view bytes, std::vector<std::uint16_t>* units) {
    AppendUtf8(platform::ToUtf8(bytes, platform::kCodePageJapanese), units);
}

// Are bytes of 128 and above signs of the Mac table? Korean signs of two bytes are read by it too, one by one.
bool ReadsMacSigns(const PluginGlobals* globals) {
    return globals->prefs.flArSpStr == (globals->language == kJapanese ? 1 : 0);
}

}  // namespace

std::vector<std::uint16_t> UnitsFromInternal(const PluginGlobals* globals, const char* text) {
    std::vector<std::uint16_t> units;
    if (globals->language == kJapanese && globals->prefs.flArSpStr == 0) {
        AppendConverted(text, &units);
        return units;
    }
    const bool macSigns = ReadsMacSigns(globals);
    const char* run = text;
    for (const char* c = text;; ++c) {
        const auto byte = static_cast<std::uint8_t>(*c);
        if (byte >= 1 && byte <= 127) continue;
        AppendConverted(std::string_view(run, static_cast<std::size_t>(c - run)), &units);
        if (byte == 0) return units;
        units.push_back(macSigns ? platform::MacRomanToUnicode(byte) : byte);
        run = c + 1;
    }
}

void SetTextFromInternal(const PluginGlobals* globals, ATETextRangeRef range, const char* text) {
    const std::vector<std::uint16_t> units = UnitsFromInternal(globals, text);
    sATETextRange->InsertAfter(range, units.data(), static_cast<std::int32_t>(units.size()));
}

std::string LoadResourceString(const PluginGlobals* globals, std::int32_t id) {
    const char* utf8 = FindResourceString(globals->language == kEnglish ? id + kEnglishIdOffset : id);
    return utf8 != nullptr ? ToCodePage(utf8) : std::string();
}

std::vector<std::string> LoadStringRows(const PluginGlobals* globals, std::int32_t firstId, int count) {
    std::vector<std::string> rows;
    for (int i = 0; i < count; ++i) {
        std::string row = LoadResourceString(globals, firstId + i);
        if (row != "-") rows.push_back(std::move(row));
    }
    return rows;
}

}  // namespace quorvel
