// The suite of the machine's fonts.
#include "fonts/fonts.h"
#include "host/code_page.h"
#include "host/host_state.h"

namespace quorvel::host {

const fonts::Font& fontAt(std::uint32_t number) {
    require(number <= fonts::fonts().size(), kStaleHandleErr);
    return fonts::fonts()[number - 1];
}

namespace {

AIErr countFonts(std::int32_t* count) {
    deref(count) = static_cast<std::int32_t>(fonts::fonts().size());
    return kNoErr;
}

AIErr getNthFont(std::int32_t index, AIFontKey* font) {
    require(index >= 0 && static_cast<std::size_t>(index) < fonts::fonts().size());
    deref(font) = makeHandle<AIFontKey>(static_cast<std::uint32_t>(index) + 1);
    return kNoErr;
}

template <auto member>
AIErr getName(AIFontKey font, char* name, std::int32_t size) {
    copyText(fontAt(numberOf(font)).*member, name, size);
    return kNoErr;
}

AIErr fontRefFromFontKey(AIFontKey font, ATEFontRef* textFont) {
    const std::uint32_t number = numberOf(font);
    fontAt(number);
    deref(textFont) = makeHandle<ATEFontRef>(number);
    return kNoErr;
}

AIErr getCharacterWidth(AIFontKey font, const char* utf8, std::int32_t bytes, float* width) {
    require(utf8 != nullptr && bytes > 0 && width != nullptr);
    const std::u16string units = fromUtf8({utf8, static_cast<std::size_t>(bytes)});
    require(!units.empty());
    char32_t character = units[0];
    if (units.size() > 1 && character >= 0xD800 && character < 0xDC00)
        character = 0x10000 + ((character - 0xD800) << 10) + (units[1] - 0xDC00u);
    *width = fonts::characterWidth(fontAt(numberOf(font)), character);
    return kNoErr;
}

}  // namespace

SuiteRecord fontSuite() {
    static const AIFontSuite suite = [] {
        auto s = refusingSuite<AIFontSuite>();
        s.CountFonts = slot<countFonts>;
        s.GetNthFont = slot<getNthFont>;
        s.GetFontName = slot<getName<&fonts::Font::fullName>>;
        s.GetFullFontName = slot<getName<&fonts::Font::fullName>>;
        s.GetSystemFontName = slot<getName<&fonts::Font::postScriptName>>;
        s.FontRefFromFontKey = slot<fontRefFromFontKey>;
        s.GetCharacterWidth = slot<getCharacterWidth>;
        return s;
    }();
    return recordOf(suite);
}

}  // namespace quorvel::host
