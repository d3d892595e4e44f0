// Writes and reads parts lists.
#include "plugin/settings/parts_csv.h"

#include <algorithm>
#include <vector>

#include "platform/file.h"
#include "platform/text.h"
#include "plugin/settings/csv_text.h"
#include "plugin/settings/prefs_file.h"
#include "plugin/settings/prefs_keys.h"

namespace quorvel {

namespace {

constexpr std::size_t kCsvLineLimit = 512, kCsvTokenLimit = 127 + 1;  // an apostrophe
constexpr char kCommentMark = '\'';

std::vector<const PrefsKey*> HeaderKeys() {
    std::vector<const PrefsKey*> keys;
    for (const PrefsKey& key : PrefsKeys())
        if (key.group == KeyGroup::schedule) keys.push_back(&key);
    return keys;
}

std::string CsvText(const PluginGlobals* globals) {
    std::string text;
    const auto field = [globals](const std::string& value) {
        return globals->flCsvRaw != 0 ? '"' + value + '"' : QuotedCsvField(value);
    };
    for (const PrefsKey* key : HeaderKeys()) {
        const std::string value = FormatPrefsField(globals, *key);
        text += (key->type == FieldType::text ? field(value) : value) + "\r\n";
    }
    const int rows = std::min<int>(globals->prefs.flZwkNumOfParts, kPartRowCount);
    for (int row = 0; row < rows; ++row)
        for (int i = 0; i < kPartColumnCount; ++i)
            text += field(PartText(globals->prefs.flZwkParts[row], kPartColumns[i])) +
                    (i + 1 < kPartColumnCount ? "," : "\r\n");
    return text;
}

}  // namespace

std::int32_t WritePartsCsv(const PluginGlobals* globals, const std::string& path) {
    platform::FileRef file = platform::CreateNewFile(path);
    if (file == nullptr) return 0;
    static_cast<void>(platform::WriteToFile(file, CsvText(globals)));  // closing tells of a failure
    return platform::CloseFile(file) ? 1 : 0;
}

std::int32_t ReadPartsCsv(PluginGlobals* globals, const std::string& path, bool replaces,
                          platform::UnwritableCharacter* unwritable) {
    std::string text;
    if (!platform::ReadWholeFile(path, &text)) return 0;
    if (platform::IsUtf8List(text)) {
        const std::string_view list = platform::WithoutByteOrderMark(text);
        const auto found = platform::FirstUnwritable(list, platform::kCodePageJapanese);
        if (found) *unwritable = *found;
        if (found && !replaces) return 0;
        text = platform::FromUtf8(list, platform::kCodePageJapanese);
    }
    ParsePartsCsv(globals, text);
    return 1;
}

void ParsePartsCsv(PluginGlobals* globals, std::string_view text) {
    const std::vector<const PrefsKey*> header = HeaderKeys();
    ClearScheduleBlock(&globals->prefs);
    LineReader reader{text, 0, kCsvLineLimit};
    std::string line;
    std::size_t nextHeader = 0;
    int nextRow = 0;
    while (ReadSettingsLine(&reader, &line)) {
        if (line.empty() || line.front() == kCommentMark) continue;
        std::string tokens[kPartColumnCount];
        const int count = CutIntoTokens(line, tokens, kPartColumnCount, kCsvTokenLimit);
        if (count >= 2) {
            if (nextRow >= kPartRowCount) continue;
            ZwkPartRow* row = &globals->prefs.flZwkParts[nextRow++];
            for (int i = 0; i < kPartColumnCount; ++i) StorePartText(row, kPartColumns[i], PlainCsvField(tokens[i]));
        } else if (nextHeader < header.size()) {
            StorePrefsField(globals, *header[nextHeader++], PlainCsvField(tokens[0]));
        }
    }
}

}  // namespace quorvel
