// The table of the preference file's keys, and the reading and printing of one field by its row.
#include "plugin/settings/prefs_keys.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace quorvel {
namespace {

// A key is spelled once: the field's name gives its text, its place and its size.
#define IN_PREFS(field) offsetof(PluginGlobals, prefs) + offsetof(PrefsRecord, field), sizeof(PrefsRecord::field)
#define IN_GLOBALS(field) offsetof(PluginGlobals, field), sizeof(PluginGlobals::field)
#define INTEGER(field, initial) \
    { #field, FieldType::integer, KeyGroup::general, 1, IN_PREFS(field), initial, "" }
#define REAL(field, initial) \
    { #field, FieldType::real, KeyGroup::general, 1, IN_PREFS(field), initial, "" }
#define TEXT(field, initial) \
    { #field, FieldType::text, KeyGroup::general, 1, IN_PREFS(field), 0, initial }
// Switches that a file may set and that are never saved, and the one that is saved twice: files have always been so.
#define INTEGER_LINES(field, initial, lines) \
    { #field, FieldType::integer, KeyGroup::general, lines, IN_PREFS(field), initial, "" }
#define SCHEDULE_INTEGER(field) \
    { #field, FieldType::integer, KeyGroup::schedule, 1, IN_PREFS(field), 0, "" }
#define SCHEDULE_TEXT(field) \
    { #field, FieldType::text, KeyGroup::schedule, 1, IN_PREFS(field), 0, "" }
#define GLOBAL_WORD(field, type, group, lines) \
    { #field, type, group, lines, IN_GLOBALS(field), 0, "" }

constexpr double kFiveMillimetres = 14.17323;

constexpr PrefsKey kKeys[] = {
    GLOBAL_WORD(toolMode, FieldType::integer, KeyGroup::general, 1),
    TEXT(zwk_prefspath, ""),
    INTEGER(flOutLayer, 0),
    TEXT(flOutLname, "<<dimension lines>>"),
    REAL(flRadius, 0),
    REAL(flScale, 1),
    TEXT(flScaleText, ""),
    INTEGER(flScFix, 0),
    REAL(flScLead, 2),
    REAL(flScOfst, 0),
    REAL(flOsLead, 10),
    REAL(flOsLimt, 30),
    REAL(flArSize1, 10),
    REAL(flArSize2, 10),
    REAL(flArSize3, 20),
    REAL(flArSize4, 2),
    REAL(flArLead, 10),
    INTEGER(flArType, 0),
    REAL(flArThick, 0.1),
    REAL(flArAngle, 15),
    INTEGER(flArUnit, 0),
    REAL(flArFSize, 12),
    TEXT(flArFName, ""),
    INTEGER(flArSpStr, 0),
    INTEGER(flRdSpos, 0),
    INTEGER(flRdLead, 5),
    INTEGER(flUseTani, 0),
    INTEGER(flUseZero, 0),
    INTEGER(flFiletMode, 0),
    INTEGER(flDistanceMode, 0),
    INTEGER(flDiameterMode, 0),
    INTEGER(flRadiusMode, 0),
    INTEGER(flAngleMode, 0),
    INTEGER(flSlantMode, 0),
    INTEGER(flArcMode, 0),
    INTEGER(flArLenUnit, 0),
    REAL(flArLenScale, 1),
    TEXT(flArLenScaleText, ""),
    INTEGER(flArDim1ConvUnit, 2),
    INTEGER(flArDim2Show, 0),
    TEXT(flArDim2UnitName, ""),
    TEXT(flArDim2ConvText, ""),
    INTEGER(flArDim2ConvUnit, 2),
    INTEGER(flArDim3Show, 0),
    TEXT(flArDim3UnitName, ""),
    TEXT(flArDim3ConvText, ""),
    INTEGER(flArDim3ConvUnit, 2),
    INTEGER(flMarkMode, 0),
    INTEGER(flZukiwakuMode, 0),
    INTEGER(flUseGrid, 0),
    INTEGER(flUseFcur, 1),
    INTEGER(flUseFcrs, 1),
    INTEGER(flUseFops, 1),
    INTEGER(flUseFrad, 1),
    INTEGER(flUseFdis, 0),
    INTEGER_LINES(flUseFlng, 1, 2),
    INTEGER(flUseFdim, 1),
    INTEGER_LINES(flUseFcnt, 0, 0),
    REAL(flGrWidth, kFiveMillimetres),
    REAL(flGrHeight, kFiveMillimetres),
    REAL(flGrDistance, kFiveMillimetres),
    TEXT(flMrkComment, "sample comment"),
    INTEGER(flMrkItemNo, 1),
    INTEGER(flMrkINStep, 1),
    SCHEDULE_INTEGER(flZwkDrawType),
    SCHEDULE_TEXT(flZwkTitle),
    SCHEDULE_TEXT(flZwkCorp),
    SCHEDULE_TEXT(flZwkDate),
    SCHEDULE_TEXT(flZwkScale),
    SCHEDULE_TEXT(flZwkType),
    SCHEDULE_TEXT(flZwkPatNo),
    SCHEDULE_TEXT(flZwkComm1),
    SCHEDULE_TEXT(flZwkComm2),
    SCHEDULE_TEXT(flZwkComm3),
    SCHEDULE_INTEGER(flZwkNumOfParts),
    GLOBAL_WORD(oldmode, FieldType::integer, KeyGroup::closing, 1),
    GLOBAL_WORD(language, FieldType::language, KeyGroup::closing, 1),
    GLOBAL_WORD(flCsvRaw, FieldType::integer, KeyGroup::closing, 0),
};

#undef IN_PREFS
#undef IN_GLOBALS
#undef INTEGER
#undef REAL
#undef TEXT
#undef INTEGER_LINES
#undef SCHEDULE_INTEGER
#undef SCHEDULE_TEXT
#undef GLOBAL_WORD

constexpr std::size_t IndexOfKey(std::string_view name) {
    std::size_t index = 0;
    while (kKeys[index].name != name) ++index;
    return index;
}

// A dimension's record holds a run of the file's keys.
constexpr std::size_t kFirstRecordKey = IndexOfKey("flRadius");
constexpr std::size_t kRecordKeyCount = 31;
static_assert(kKeys[kFirstRecordKey + kRecordKeyCount - 1].name == "flArcMode");
static_assert(kKeys[IndexOfKey(kLanguageKey)].type == FieldType::language);

char* Field(PluginGlobals* globals, const PrefsKey& key) { return reinterpret_cast<char*>(globals) + key.offset; }
const char* Field(const PluginGlobals* globals, const PrefsKey& key) {
    return reinterpret_cast<const char*>(globals) + key.offset;
}

template <typename Value>
Value ReadField(const PluginGlobals* globals, const PrefsKey& key) {
    Value value;
    std::memcpy(&value, Field(globals, key), sizeof value);
    return value;
}

template <typename Value>
void WriteField(PluginGlobals* globals, const PrefsKey& key, Value value) {
    std::memcpy(Field(globals, key), &value, sizeof value);
}

template <typename... Values>
std::string Print(const char* format, Values... values) {
    char text[64];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

std::int16_t LanguageOf(std::string_view word) {
    const auto* found = std::find(std::begin(kLanguageWords), std::end(kLanguageWords), word);
    return found == std::end(kLanguageWords) ? std::int16_t{kJapanese}
                                             : static_cast<std::int16_t>(found - std::begin(kLanguageWords));
}

void CopyCut(char* to, std::size_t size, std::string_view text) {
    const std::size_t length = std::min(text.size(), size - 1);
    std::memcpy(to, text.data(), length);
    to[length] = '\0';
}

}  // namespace

#define COLUMN(field) \
    { "flZwkParts" #field, offsetof(ZwkPartRow, field), sizeof(ZwkPartRow::field) }
const PartColumn kPartColumns[kPartColumnCount] = {
    COLUMN(Name), COLUMN(Source), COLUMN(Quantity), COLUMN(Weight), COLUMN(Progress), COLUMN(News),
};
#undef COLUMN

std::span<const PrefsKey> PrefsKeys() { return kKeys; }

std::span<const PrefsKey> RecordKeys() { return PrefsKeys().subspan(kFirstRecordKey, kRecordKeyCount); }

const PrefsKey* FindPrefsKey(std::string_view key) {
    const auto* found =
        std::find_if(std::begin(kKeys), std::end(kKeys), [key](const PrefsKey& row) { return row.name == key; });
    return found == std::end(kKeys) ? nullptr : found;
}

std::string FormatPrefsField(const PluginGlobals* globals, const PrefsKey& key) {
    switch (key.type) {
        case FieldType::integer:
            return Print("%d", static_cast<int>(ReadField<std::int16_t>(globals, key)));
        case FieldType::real:
            return Print("%g", static_cast<double>(ReadField<float>(globals, key)));
        case FieldType::text:
            return Field(globals, key);
        case FieldType::language:
            break;
    }
    const std::uint16_t word = ReadField<std::uint16_t>(globals, key);
    return std::string(kLanguageWords[word < std::size(kLanguageWords) ? word : 0]);
}

void StorePrefsField(PluginGlobals* globals, const PrefsKey& key, std::string_view text) {
    const std::string value(text);
    switch (key.type) {
        case FieldType::integer:
            // A number beyond 16 bits keeps its low ones.
            WriteField(globals, key, static_cast<std::int16_t>(std::strtol(value.c_str(), nullptr, 10)));
            break;
        case FieldType::real:
            WriteField(globals, key, static_cast<float>(std::strtod(value.c_str(), nullptr)));
            break;
        case FieldType::text:
            CopyCut(Field(globals, key), key.size, value);
            break;
        case FieldType::language:
            WriteField(globals, key, LanguageOf(value));
            break;
    }
}

void StorePrefsDefault(PluginGlobals* globals, const PrefsKey& key) {
    switch (key.type) {
        case FieldType::real:
            WriteField(globals, key, static_cast<float>(key.number));
            break;
        case FieldType::text:
            CopyCut(Field(globals, key), key.size, key.text);
            break;
        case FieldType::integer:
        case FieldType::language:
            WriteField(globals, key, static_cast<std::int16_t>(key.number));
            break;
    }
}

const char* PartText(const ZwkPartRow& row, const PartColumn& column) {
    return reinterpret_cast<const char*>(&row) + column.offset;
}

void StorePartText(ZwkPartRow* row, const PartColumn& column, std::string_view text) {
    CopyCut(reinterpret_cast<char*>(row) + column.offset, column.size, text);
}

PartKey FindPartKey(std::string_view key) {
    if (key.size() < 2) return {};
    const unsigned char tens = static_cast<unsigned char>(key[key.size() - 2]);
    const unsigned char ones = static_cast<unsigned char>(key[key.size() - 1]);
    if (!std::isdigit(tens) || !std::isdigit(ones)) return {};
    const std::string_view stem = key.substr(0, key.size() - 2);
    for (const PartColumn& column : kPartColumns)
        if (column.key.starts_with(stem)) return {(tens - '0') * 10 + (ones - '0'), &column};
    return {};
}

std::string PartKeyName(int row, const PartColumn& column) { return std::string(column.key) + Print("%2.2d", row); }

}  // namespace quorvel
