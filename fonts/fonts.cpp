// Lists the machine's fonts and measures their characters. Widths are those of the design, unhinted, so that a text is
// as long on every machine and at every zoom.
#include "fonts/fonts.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_ADVANCES_H

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

namespace quorvel::fonts {

namespace {

constexpr char kStandardFont[] = "DejaVu Sans";
constexpr float kUnknownWidth = 0.5f;  // em, of a character that no font has
constexpr int kMostFamilies = 64;      // of one CSS list that are looked for
// Fonts without a Latin bias come first for the scripts of East Asia, whose characters others may have a few of.
constexpr const char* kEastAsianFonts[] = {"IPAGothic", "IPAexGothic", "TakaoGothic", "VL Gothic", "Noto Sans CJK JP"};

struct Release {
    void operator()(FcConfig* config) const { FcConfigDestroy(config); }
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
    void operator()(FcFontSet* set) const { FcFontSetDestroy(set); }
    void operator()(FcObjectSet* set) const { FcObjectSetDestroy(set); }
    void operator()(FcCharSet* set) const { FcCharSetDestroy(set); }
};
template <typename T>
using Owned = std::unique_ptr<T, Release>;

// What the list does not show: how a face is matched, what it covers, and the open face itself.
struct Face {
    std::set<std::string> families;  // in lower case, in all languages
    int width = FC_WIDTH_NORMAL;
    Owned<FcCharSet> characters;
    bool tried = false;
    FT_Face open = nullptr;  // for the life of the process
    std::unordered_map<char32_t, std::optional<float>> widths;
};

struct FontEntry {
    Font font;
    Face face;
};

struct FontList {
    std::vector<Font> fonts;
    std::vector<Face> faces;                                 // by font
    std::map<std::string, std::size_t, std::less<>> byName;  // full name
    // In lower case, as CSS names them: the fonts of a family, and the first font with a full name.
    std::unordered_map<std::string, std::vector<std::size_t>> byFamily;
    std::unordered_map<std::string, std::size_t> byLowerName;
    std::unordered_map<char32_t, float> fallbackWidths;
};

std::string lowered(std::string_view text) {
    std::string result(text);
    for (char& c : result) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return result;
}

// The English name where there is one, else the first.
std::string englishName(FcPattern* pattern, const char* object, const char* languageObject) {
    FcChar8* text = nullptr;
    FcChar8* language = nullptr;
    for (int i = 0; FcPatternGetString(pattern, languageObject, i, &language) == FcResultMatch; ++i) {
        if (std::string_view(reinterpret_cast<const char*>(language)) != "en") continue;
        if (FcPatternGetString(pattern, object, i, &text) == FcResultMatch) return reinterpret_cast<const char*>(text);
    }
    if (FcPatternGetString(pattern, object, 0, &text) == FcResultMatch) return reinterpret_cast<const char*>(text);
    return {};
}

std::string firstText(FcPattern* pattern, const char* object) {
    FcChar8* text = nullptr;
    return FcPatternGetString(pattern, object, 0, &text) == FcResultMatch ? reinterpret_cast<const char*>(text) : "";
}

int number(FcPattern* pattern, const char* object, int absent) {
    int value = 0;
    return FcPatternGetInteger(pattern, object, 0, &value) == FcResultMatch ? value : absent;
}

FontEntry readEntry(FcPattern* pattern) {
    FontEntry entry;
    Font& font = entry.font;
    font.family = englishName(pattern, FC_FAMILY, FC_FAMILYLANG);
    font.fullName = englishName(pattern, FC_FULLNAME, FC_FULLNAMELANG);
    if (font.fullName.empty()) font.fullName = font.family;
    font.postScriptName = firstText(pattern, FC_POSTSCRIPT_NAME);
    font.file = firstText(pattern, FC_FILE);
    font.faceIndex = number(pattern, FC_INDEX, 0);
    font.weight = FcWeightToOpenType(number(pattern, FC_WEIGHT, FC_WEIGHT_REGULAR));
    font.italic = number(pattern, FC_SLANT, FC_SLANT_ROMAN) != FC_SLANT_ROMAN;
    entry.face.width = number(pattern, FC_WIDTH, FC_WIDTH_NORMAL);
    FcChar8* family = nullptr;
    for (int i = 0; FcPatternGetString(pattern, FC_FAMILY, i, &family) == FcResultMatch; ++i)
        entry.face.families.insert(lowered(reinterpret_cast<const char*>(family)));
    FcCharSet* characters = nullptr;
    if (FcPatternGetCharSet(pattern, FC_CHARSET, 0, &characters) == FcResultMatch)
        entry.face.characters.reset(FcCharSetCopy(characters));
    return entry;
}

std::vector<FontEntry> readEntries(FcConfig* config) {
    std::vector<FontEntry> entries;
    const Owned<FcPattern> scalable(FcPatternCreate());
    FcPatternAddBool(scalable.get(), FC_SCALABLE, FcTrue);
    const Owned<FcObjectSet> wanted(FcObjectSetBuild(FC_FAMILY, FC_FAMILYLANG, FC_FULLNAME, FC_FULLNAMELANG,
                                                     FC_POSTSCRIPT_NAME, FC_FILE, FC_INDEX, FC_WEIGHT, FC_WIDTH,
                                                     FC_SLANT, FC_CHARSET, FC_VARIABLE, nullptr));
    const Owned<FcFontSet> set(FcFontList(config, scalable.get(), wanted.get()));
    for (int i = 0; set != nullptr && i < set->nfont; ++i) {
        FcBool variable = FcFalse;  // the axes themselves; the named instances are listed beside them
        FcPatternGetBool(set->fonts[i], FC_VARIABLE, 0, &variable);
        FontEntry entry = readEntry(set->fonts[i]);
        if (!variable && !entry.font.fullName.empty()) entries.push_back(std::move(entry));
    }
    return entries;
}

// The full name of the standard font: the one that is the same everywhere, else the system's own sans.
std::string standardName(FcConfig* config, const std::vector<FontEntry>& entries) {
    for (const FontEntry& entry : entries)
        if (entry.font.fullName == kStandardFont) return kStandardFont;
    const Owned<FcPattern> sans(FcNameParse(reinterpret_cast<const FcChar8*>("sans-serif:scalable=true")));
    FcConfigSubstitute(config, sans.get(), FcMatchPattern);
    FcDefaultSubstitute(sans.get());
    FcResult result = FcResultNoMatch;
    const Owned<FcPattern> match(FcFontMatch(config, sans.get(), &result));
    const std::string file = match != nullptr ? firstText(match.get(), FC_FILE) : std::string{};
    for (const FontEntry& entry : entries)
        if (entry.font.file == file) return entry.font.fullName;
    return {};
}

// Texts need some font, even where none is installed.
FontEntry placeholder() {
    FontEntry entry;
    entry.font.fullName = entry.font.postScriptName = entry.font.family = "Sans";
    return entry;
}

FontList readFonts() {
    // A configuration of our own, so that nothing of it stays behind.
    const Owned<FcConfig> config(FcInitLoadConfigAndFonts());
    std::vector<FontEntry> entries = readEntries(config.get());
    if (entries.empty()) entries.push_back(placeholder());
    const std::string standard = standardName(config.get(), entries);
    // Among several of one name the first file counts, so that the list does not hang on the order of the folders.
    std::sort(entries.begin(), entries.end(), [&](const FontEntry& a, const FontEntry& b) {
        const auto key = [&](const FontEntry& one) {
            return std::tuple(one.font.fullName != standard, std::string_view(one.font.fullName),
                              std::string_view(one.font.file), one.font.faceIndex);
        };
        return key(a) < key(b);
    });
    FontList list;
    for (FontEntry& entry : entries) {
        const std::size_t number = list.fonts.size();
        if (!list.byName.emplace(entry.font.fullName, number).second) continue;
        list.byLowerName.emplace(lowered(entry.font.fullName), number);
        for (const std::string& family : entry.face.families) list.byFamily[family].push_back(number);
        list.fonts.push_back(std::move(entry.font));
        list.faces.push_back(std::move(entry.face));
    }
    return list;
}

FontList& fontList() {
    static FontList list = readFonts();
    return list;
}

// --- measuring
// -------------------------------------------------------------------------------------------------------------

FT_Library freeType() {
    static const FT_Library library = [] {
        FT_Library made = nullptr;
        return FT_Init_FreeType(&made) == 0 ? made : nullptr;
    }();
    return library;
}

FT_Face openFace(FontList& list, std::size_t index) {
    Face& face = list.faces[index];
    if (face.tried) return face.open;
    face.tried = true;
    const Font& font = list.fonts[index];
    if (freeType() == nullptr || FT_New_Face(freeType(), font.file.c_str(), font.faceIndex, &face.open) != 0)
        face.open = nullptr;
    return face.open;
}

// Nothing when the font has no such character.
std::optional<float> widthIn(FontList& list, std::size_t index, char32_t character) {
    Face& face = list.faces[index];
    const auto known = face.widths.find(character);
    if (known != face.widths.end()) return known->second;
    std::optional<float> width;
    if (const FT_Face open = openFace(list, index); open != nullptr && open->units_per_EM > 0) {
        const FT_UInt glyph = FT_Get_Char_Index(open, character);
        FT_Fixed advance = 0;
        if (glyph != 0 && FT_Get_Advance(open, glyph, FT_LOAD_NO_SCALE, &advance) == 0)
            width = static_cast<float>(static_cast<double>(advance) / open->units_per_EM);
    }
    face.widths.emplace(character, width);
    return width;
}

bool isEastAsian(char32_t c) {
    return (c >= 0x2E80 && c <= 0xA4CF) || (c >= 0xAC00 && c <= 0xD7A3) || (c >= 0xF900 && c <= 0xFAFF) ||
           (c >= 0xFE30 && c <= 0xFE4F) || (c >= 0xFF00 && c <= 0xFFEF) || (c >= 0x20000 && c <= 0x3FFFF);
}

std::optional<float> widthInFirst(FontList& list, char32_t character) {
    for (std::size_t i = 0; i < list.fonts.size(); ++i) {
        const FcCharSet* characters = list.faces[i].characters.get();
        if (characters == nullptr || !FcCharSetHasChar(characters, character)) continue;
        if (const std::optional<float> width = widthIn(list, i, character)) return width;
    }
    return std::nullopt;
}

std::optional<float> widthInEastAsian(FontList& list, char32_t character) {
    for (const char* name : kEastAsianFonts) {
        const auto found = list.byName.find(name);
        if (found == list.byName.end()) continue;
        if (const std::optional<float> width = widthIn(list, found->second, character)) return width;
    }
    return std::nullopt;
}

float fallbackWidth(FontList& list, char32_t character) {
    const auto known = list.fallbackWidths.find(character);
    if (known != list.fallbackWidths.end()) return known->second;
    std::optional<float> width = isEastAsian(character) ? widthInEastAsian(list, character) : std::nullopt;
    if (!width.has_value()) width = widthInFirst(list, character);
    return list.fallbackWidths.emplace(character, width.value_or(kUnknownWidth)).first->second;
}

// --- matching
// --------------------------------------------------------------------------------------------------------------

std::string_view unquoted(std::string_view name) {
    constexpr std::string_view around = " \t\r\n\"'";
    const std::size_t first = name.find_first_not_of(around);
    if (first == std::string_view::npos) return {};
    return name.substr(first, name.find_last_not_of(around) - first + 1);
}

// Takes the first name from a CSS list, without quotes and blanks around it, in lower case; empty when it is none.
std::string takeFamily(std::string_view* list) {
    const std::size_t comma = list->find(',');
    const std::string_view name = list->substr(0, comma);
    list->remove_prefix(comma == std::string_view::npos ? list->size() : comma + 1);
    return lowered(unquoted(name));
}

// How far a font is from what is wanted: the slant weighs most, then the width, then the weight.
int distance(const Font& font, const Face& face, int weight, bool italic) {
    return (font.italic != italic ? 100000 : 0) + std::abs(face.width - FC_WIDTH_NORMAL) * 1000 +
           std::abs(font.weight - weight);
}

const Font* closest(const FontList& list, const std::string& family, int weight, bool italic) {
    const auto members = list.byFamily.find(family);
    if (members == list.byFamily.end()) return nullptr;
    const auto away = [&](std::size_t i) { return distance(list.fonts[i], list.faces[i], weight, italic); };
    return &list.fonts[*std::ranges::min_element(members->second, {}, away)];  // of equals the first
}

const Font* bearing(const FontList& list, const std::string& fullName) {
    const auto found = list.byLowerName.find(fullName);
    return found == list.byLowerName.end() ? nullptr : &list.fonts[found->second];
}

}  // namespace

const std::vector<Font>& fonts() { return fontList().fonts; }

const Font* findFont(std::string_view fullName) {
    const FontList& list = fontList();
    const auto found = list.byName.find(fullName);
    return found == list.byName.end() ? nullptr : &list.fonts[found->second];
}

const Font& matchFont(std::string_view family, int weight, bool italic) {
    const FontList& list = fontList();
    for (int i = 0; i < kMostFamilies && !family.empty(); ++i) {
        const std::string name = takeFamily(&family);
        if (name.empty()) continue;
        if (const Font* font = closest(list, name, weight, italic)) return *font;
        // Some programs write a full name where a family is due.
        if (const Font* font = bearing(list, name)) return *font;
    }
    const Font* font = closest(list, lowered(list.fonts.front().family), weight, italic);
    return font != nullptr ? *font : list.fonts.front();
}

std::string missingFamily(std::string_view families) {
    static constexpr std::string_view kGeneric[] = {
        "serif",        "sans-serif",    "monospace", "cursive", "fantasy", "system-ui", "ui-serif", "ui-rounded",
        "ui-monospace", "ui-sans-serif", "math",      "emoji",   "sans",    "inherit",   "initial",  "unset"};
    const std::string written(unquoted(families.substr(0, families.find(','))));
    const std::string name = lowered(written);
    const FontList& list = fontList();
    const bool isKnown = std::ranges::find(kGeneric, name) != std::end(kGeneric) || list.byFamily.contains(name) ||
                         list.byLowerName.contains(name);
    return isKnown ? "" : written;
}

float characterWidth(const Font& font, char32_t character) {
    if (character < 0x20) return 0;  // line ends and other controls
    FontList& list = fontList();
    const auto found = list.byName.find(font.fullName);
    if (found != list.byName.end())
        if (const std::optional<float> width = widthIn(list, found->second, character)) return *width;
    return fallbackWidth(list, character);
}

}  // namespace quorvel::fonts
