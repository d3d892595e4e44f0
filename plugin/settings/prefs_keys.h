// The keys of the preference file: one table from which the defaults, the reader, the writer and the settings that a
// dimension carries derive. A key is its field's name and is spelled once, in the table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "plugin/shell/globals.h"

namespace quorvel {

enum class FieldType : std::uint8_t {
    integer,   // 16 bits, signed in the file
    real,      // 32 bits
    text,      // bytes of the system code page
    language,  // a word of its own: JAPANESE, ENGLISH or KOREAN
};

// Which files hold the key. Only the schedule keys are in presets.
enum class KeyGroup : std::uint8_t { general, schedule, closing };

struct PrefsKey {
    std::string_view name;
    FieldType type = FieldType::integer;
    KeyGroup group = KeyGroup::general;
    std::uint8_t lines = 1;  // how often the writer writes it
    std::size_t offset = 0;  // of the field in PluginGlobals
    std::size_t size = 0;    // of the field; a text's closing zero included
    double number = 0;       // the default of a number
    const char* text = "";   // the default of a text
};

// In the order of the main file.
std::span<const PrefsKey> PrefsKeys();
// The 31 keys that a dimension keeps a copy of, in the order of its record.
std::span<const PrefsKey> RecordKeys();
// Null for an unknown key. Case counts.
const PrefsKey* FindPrefsKey(std::string_view key);

// "%g", "%d", the language's word, or a text's bytes without quotes.
std::string FormatPrefsField(const PluginGlobals* globals, const PrefsKey& key);
// Numbers as far as they can be read, integers cut to 16 bits, texts cut to the field.
void StorePrefsField(PluginGlobals* globals, const PrefsKey& key, std::string_view text);
void StorePrefsDefault(PluginGlobals* globals, const PrefsKey& key);

// The texts of a parts row. In a file each key ends in the row's two digits.
constexpr int kPartColumnCount = 6;
struct PartColumn {
    std::string_view key;
    std::size_t offset;  // in ZwkPartRow
    std::size_t size;    // closing zero included
};
extern const PartColumn kPartColumns[kPartColumnCount];
const char* PartText(const ZwkPartRow& row, const PartColumn& column);
void StorePartText(ZwkPartRow* row, const PartColumn& column, std::string_view text);

struct PartKey {
    int row = 0;
    const PartColumn* column = nullptr;  // null: the key is none of a row
};
// The last two characters are the row. What is in front of them may be shortened: the first column that begins with it.
PartKey FindPartKey(std::string_view key);
std::string PartKeyName(int row, const PartColumn& column);

}  // namespace quorvel
