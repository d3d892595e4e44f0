// A merge of three texts, key by key.
#include "plugin/settings/prefs_merge.h"

#include <map>
#include <memory>
#include <optional>

#include "plugin/settings/prefs_file.h"
#include "plugin/settings/prefs_keys.h"

namespace quorvel {
namespace {

struct SettingsLine {
    std::string key;         // as the writer spells it; empty for a line that the writer does not write
    std::string value;       // without quotes
    std::string_view bytes;  // of the file
};

// The key as the writer spells it. A key that is read but never written counts as foreign.
std::string WrittenKey(const std::string& key) {
    if (const PrefsKey* found = FindPrefsKey(key)) return found->lines > 0 ? key : "";
    const PartKey part = FindPartKey(key);
    return part.column != nullptr ? PartKeyName(part.row, *part.column) : "";
}

std::optional<SettingsLine> NextLine(LineReader* reader) {
    const std::size_t start = reader->position;
    std::string line;
    if (!ReadSettingsLine(reader, &line)) return std::nullopt;
    SettingsLine read;
    read.bytes = reader->text.substr(start, reader->position - start);
    if (line.empty() || line.front() == '\'') return read;
    std::string tokens[2];
    CutIntoTokens(line, tokens, 2, 0);
    read.key = WrittenKey(tokens[0]);
    read.value = tokens[1];
    return read;
}

// Of keys that are there twice the last counts, as for the reader.
std::map<std::string, std::string> ValuesIn(std::string_view text) {
    std::map<std::string, std::string> values;
    LineReader reader{text};
    while (const std::optional<SettingsLine> line = NextLine(&reader))
        if (!line->key.empty()) values[line->key] = line->value;
    return values;
}

class Merge {
  public:
    Merge(const PluginGlobals& globals, std::string_view known, std::string_view onFile)
        : merged_(std::make_unique<PluginGlobals>(globals)),
          ours_(ValuesIn(ComposePrefsText(&globals, true))),
          known_(ValuesIn(known)),
          onFile_(ValuesIn(onFile)) {}

    const PluginGlobals& Run() {
        for (const PrefsKey& key : PrefsKeys()) {
            const auto value = onFile_.find(std::string(key.name));
            if (value == onFile_.end() || IsChangedHere(value->first)) continue;
            // No value leaves a number as it was.
            if (key.type == FieldType::text || !value->second.empty())
                StorePrefsField(merged_.get(), key, value->second);
        }
        for (int row = 0; row < kPartRowCount; ++row)
            for (const PartColumn& column : kPartColumns) {
                const std::string key = PartKeyName(row, column);
                // A row that is not in the file is empty.
                if (!IsChangedHere(key)) StorePartText(&merged_->prefs.flZwkParts[row], column, ValueOf(onFile_, key));
            }
        return *merged_;
    }

  private:
    using Values = std::map<std::string, std::string>;

    static std::string ValueOf(const Values& values, const std::string& key) {
        const auto found = values.find(key);
        return found == values.end() ? "" : found->second;
    }
    bool IsChangedHere(const std::string& key) const { return ValueOf(ours_, key) != ValueOf(known_, key); }

    std::unique_ptr<PluginGlobals> merged_;
    Values ours_, known_, onFile_;
};

// Foreign lines by the key of the line in front of them, "" for the file's begin, each with its end.
std::map<std::string, std::string> ForeignLines(std::string_view text) {
    std::map<std::string, std::string> foreign;
    std::string behind;
    LineReader reader{text};
    while (const std::optional<SettingsLine> line = NextLine(&reader)) {
        if (!line->key.empty()) {
            behind = line->key;
            continue;
        }
        const std::size_t end = line->bytes.find_last_not_of("\r\n");
        foreign[behind].append(line->bytes.substr(0, end + 1)).append("\r\n");
    }
    return foreign;
}

}  // namespace

std::string MergeSettings(const PluginGlobals& globals, std::string_view known, std::string_view onFile) {
    const std::string ours = ComposePrefsText(&Merge(globals, known, onFile).Run(), true);
    std::map<std::string, std::string> foreign = ForeignLines(onFile);
    std::string text = foreign[""], key;
    foreign.erase("");
    const auto addForeign = [&] {
        text += foreign[key];
        foreign.erase(key);
    };
    LineReader reader{ours};
    while (const std::optional<SettingsLine> line = NextLine(&reader)) {
        // Of lines that the writer writes twice, behind the second.
        if (line->key != key) addForeign();
        key = line->key;
        text += line->bytes;
    }
    addForeign();
    for (const auto& [removed, lines] : foreign) text += lines;  // behind a row that is gone
    return text;
}

}  // namespace quorvel
