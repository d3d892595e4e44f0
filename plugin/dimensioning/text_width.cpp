// How wide a text will stand on the drawing: the font of dimensions as the host knows it, and the sum of the widths of
// a text's characters in it.
#include <cstring>
#include <limits>
#include <string>

#include "platform/text.h"
#include "plugin/dimensioning/units.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"

namespace quorvel {

namespace {

constexpr int kFontNameSize = 256;
constexpr std::size_t kMeasuredBytes = 255;

// The stored name is in the system code page, the host's in UTF-8: they differ only in names that are not plain ASCII,
// and only those are worth the conversion.
bool IsFontName(const char* hostName, const char* storedName) {
    for (const char* c = hostName; *c != 0; ++c) {
        if (static_cast<unsigned char>(*c) >= 0x80) return ToCodePage(hostName) == storedName;
    }
    return std::strcmp(hostName, storedName) == 0;
}

std::size_t CharacterSize(char leadByte) {
    const auto lead = static_cast<unsigned char>(leadByte);
    if (lead >= 0xC0 && lead <= 0xDF) return 2;
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    return 1;
}

}  // namespace

AIFontKey FindDimensionFont(const PluginGlobals* globals) {
    std::int32_t count = 0;
    sAIFont->CountFonts(&count);
    std::int32_t found = 0;
    for (std::int32_t i = 0; i < count; ++i) {
        AIFontKey font = nullptr;
        char name[kFontNameSize] = {};
        if (sAIFont->GetNthFont(i, &font) != kNoErr) continue;
        if (sAIFont->GetFontName(font, name, kFontNameSize) != kNoErr) continue;
        if (IsFontName(name, globals->prefs.flArFName)) found = i;
    }
    AIFontKey font = nullptr;
    if (count > 0) sAIFont->GetNthFont(found, &font);
    return font;
}

double MeasureTextUnitWidth(const PluginGlobals* globals, const char* text) {
    const bool korean = globals->language != kJapanese && globals->language != kEnglish;
    const std::string utf8 = platform::ToUtf8(text, korean ? platform::kCodePageKorean : platform::kCodePageJapanese);
    const std::size_t end = utf8.size() < kMeasuredBytes ? utf8.size() : kMeasuredBytes;
    const AIFontKey font = FindDimensionFont(globals);
    double sum = 0;
    for (std::size_t i = 0; i < end;) {
        const std::size_t size = CharacterSize(utf8[i]);
        if (i + size > end) break;  // the limit fell inside a character
        float width = 0;
        sAIFont->GetCharacterWidth(font, utf8.data() + i, static_cast<std::int32_t>(size), &width);
        sum += static_cast<double>(width);
        i += size;
    }
    return sum;
}

std::int32_t MeasureTextWidth(const PluginGlobals* globals, const char* text) {
    const double width = MeasureTextUnitWidth(globals, text) * static_cast<double>(globals->prefs.flArFSize) + 0.5;
    if (!(width < std::numeric_limits<std::int32_t>::max())) return std::numeric_limits<std::int32_t>::max();
    if (!(width > std::numeric_limits<std::int32_t>::min())) return std::numeric_limits<std::int32_t>::min();
    return static_cast<std::int32_t>(width);
}

}  // namespace quorvel
