// The preference file: what a user has set outlives the program, as lines that can be edited by hand. The main file
// holds every key; presets and the factory file hold the title block and the parts list.
#include "plugin/settings/prefs_file.h"

#include <cstring>

#include "hostapi/names.h"
#include "platform/file.h"
#include "platform/system.h"
#include "platform/text.h"
#include "plugin/settings/prefs_keys.h"
#include "plugin/settings/prefs_merge.h"
#include "plugin/shell/services.h"

namespace quorvel {
namespace {

constexpr char kCommentMark = '\'';

bool IsUntitled(const char* name) { return name != nullptr && std::strcmp(name, kUntitledPreset) == 0; }

// An empty folder (no documents folder is known) gives an empty path, which every file operation refuses.
std::string SubFolder(const std::string& folder, const char* name) {
    if (folder.empty()) return {};
    std::string path = folder + "\\" + name;
    platform::CreateFolder(path);
    return path;
}

std::string PrefsFolderPath() { return SubFolder(GetPrefsFolder(), kSettingsFolders[2]); }

std::string FilePath(const char* name, bool forReading) {
    if (name == nullptr) return platform::JoinPath(PrefsFolderPath(), kSettingsFile);
    if (forReading && IsUntitled(name)) return platform::JoinPath(PrefsFolderPath(), "Quorvel.fct");
    return PresetPath(name);
}

std::string FileLine(std::string_view key, std::string_view value) {
    std::string line(key);
    line += " = ";
    line += value;
    return line + "\r\n";
}

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

void AppendGroup(const PluginGlobals* globals, KeyGroup group, std::string* text) {
    for (const PrefsKey& key : PrefsKeys()) {
        if (key.group != group) continue;
        const std::string value = FormatPrefsField(globals, key);
        for (int i = 0; i < key.lines; ++i) {
            *text += FileLine(key.name, key.type == FieldType::text ? Quoted(value) : value);
        }
    }
}

// By position, gaps kept, whatever the number of drawn rows says.
void AppendPartRows(const PrefsRecord& prefs, std::string* text) {
    for (int i = 0; i < kPartRowCount; ++i) {
        const ZwkPartRow& row = prefs.flZwkParts[i];
        if (PartRowIsEmpty(row)) continue;
        for (const PartColumn& column : kPartColumns)
            *text += FileLine(PartKeyName(i, column), Quoted(PartText(row, column)));
    }
}

bool StorePartField(PrefsRecord* prefs, std::string_view key, std::string_view value) {
    const PartKey part = FindPartKey(key);
    if (part.column != nullptr) StorePartText(&prefs->flZwkParts[part.row], *part.column, value);
    return part.column != nullptr;
}

bool StoreByKey(PluginGlobals* globals, std::string_view name, std::string_view value, bool mainFile) {
    const PrefsKey* key = FindPrefsKey(name);
    if (key == nullptr) return StorePartField(&globals->prefs, name, value);
    if (!mainFile && key->group != KeyGroup::schedule) return false;
    StorePrefsField(globals, *key, value);
    return true;
}

bool WriteText(const std::string& path, std::string_view text) {
    const platform::FileRef file = platform::CreateNewFile(path);
    static_cast<void>(platform::WriteToFile(file, text));  // closing tells of a failure
    return platform::CloseFile(file);
}

void NoteSettingsOnFile(PluginGlobals* globals, const std::string& text) {
    ForgetSettingsOnFile(globals);
    globals->settingsOnFile = static_cast<char*>(platform::AllocateZeroed(text.size() + 1));
    if (globals->settingsOnFile != nullptr) std::memcpy(globals->settingsOnFile, text.c_str(), text.size());
}

}  // namespace

void ForgetSettingsOnFile(PluginGlobals* globals) {
    if (globals->settingsOnFile != nullptr) platform::FreeZeroed(globals->settingsOnFile);
    globals->settingsOnFile = nullptr;
}

void StoreDefaults(PluginGlobals* globals) {
    for (const PrefsKey& key : PrefsKeys()) StorePrefsDefault(globals, key);
}

void ClearScheduleBlock(PrefsRecord* prefs) {
    prefs->flZwkDrawType = 0;
    prefs->flZwkNumOfParts = 0;
    for (char* text : {prefs->flZwkTitle, prefs->flZwkCorp, prefs->flZwkDate, prefs->flZwkScale, prefs->flZwkType,
                       prefs->flZwkPatNo, prefs->flZwkComm1, prefs->flZwkComm2, prefs->flZwkComm3}) {
        text[0] = '\0';
    }
    for (ZwkPartRow& row : prefs->flZwkParts) row = ZwkPartRow{};
}

bool PartRowIsEmpty(const ZwkPartRow& row) {
    for (const PartColumn& column : kPartColumns) {
        if (PartText(row, column)[0] != '\0') return false;
    }
    return true;
}

std::string GetPrefsFolder() {
    return SubFolder(SubFolder(platform::DocumentsFolder(), kSettingsFolders[0]), kSettingsFolders[1]);
}

std::string PresetFolder() { return SubFolder(PrefsFolderPath(), "Quorvel"); }

std::string PresetPath(const char* name) {
    if (name[0] == '\0') return {};
    return platform::JoinPath(PresetFolder(), platform::ToUtf8(name, platform::kCodePageJapanese) + ".ini");
}

std::int32_t ReadPrefsFile(PluginGlobals* globals, const char* name) {
    std::string text;
    const bool isRead = platform::ReadWholeFile(FilePath(name, true), &text);
    if (isRead) ParsePrefsText(globals, text, name == nullptr);
    if (name == nullptr) NoteSettingsOnFile(globals, ComposePrefsText(globals, true));
    return isRead ? 1 : 0;
}

std::int32_t WritePrefsFile(PluginGlobals* globals, const char* name) {
    if (IsUntitled(name)) return 1;
    const std::string path = FilePath(name, false);
    if (name != nullptr) return WriteText(path, ComposePrefsText(globals, false)) ? 1 : 0;
    const platform::FolderLock lock(PrefsFolderPath());
    const std::string text = ComposePrefsText(globals, true);
    std::string onFile;
    const bool isMerged = globals->settingsOnFile != nullptr && platform::ReadWholeFile(path, &onFile);
    if (!WriteText(path, isMerged ? MergeSettings(*globals, globals->settingsOnFile, onFile) : text)) return 0;
    NoteSettingsOnFile(globals, text);
    return 1;
}

bool SaveChangedSettings(PluginGlobals* globals) {
    if (globals->settingsOnFile != nullptr && ComposePrefsText(globals, true) == globals->settingsOnFile) return true;
    return WritePrefsFile(globals, nullptr) != 0;
}

std::string ComposePrefsText(const PluginGlobals* globals, bool mainFile) {
    std::string text;
    if (mainFile) AppendGroup(globals, KeyGroup::general, &text);
    AppendGroup(globals, KeyGroup::schedule, &text);
    AppendPartRows(globals->prefs, &text);
    if (mainFile) AppendGroup(globals, KeyGroup::closing, &text);
    return text;
}

void ParsePrefsText(PluginGlobals* globals, std::string_view text, bool mainFile) {
    // Empty texts are not read, so a file that has none of a key must find the field empty.
    ClearScheduleBlock(&globals->prefs);
    LineReader reader{text};
    std::string line;
    while (ReadSettingsLine(&reader, &line)) {
        if (line.empty() || line.front() == kCommentMark) continue;
        std::string tokens[2];
        CutIntoTokens(line, tokens, 2, 0);
        if (!tokens[0].empty() && !tokens[1].empty()) StoreByKey(globals, tokens[0], tokens[1], mainFile);
    }
}

bool SettingIsKnown(std::string_view key) { return FindPrefsKey(key) != nullptr || FindPartKey(key).column != nullptr; }

bool SetFieldByKey(PluginGlobals* globals, std::string_view key, std::string_view value) {
    const PrefsKey* row = FindPrefsKey(key);
    // As in a file, no value leaves a number as it was.
    if (row != nullptr && row->type != FieldType::text && value.empty()) return true;
    return StoreByKey(globals, key, value, true);
}

bool ReadSettingsLine(LineReader* reader, std::string* line) {
    const std::string_view text = reader->text;
    line->clear();
    if (reader->position >= text.size() || text[reader->position] == '\0') return false;
    bool inQuotes = false;
    for (; reader->position < text.size(); ++reader->position) {
        const char sign = text[reader->position];
        if (sign == '\0') return true;  // ends the file: the next call finds it again
        const char next = reader->position + 1 < text.size() ? text[reader->position + 1] : '\0';
        if (sign == '\n' || (sign == '\r' && next != '\n')) {
            ++reader->position;
            return true;
        }
        if (sign == '\t' || sign == '\r') continue;
        if (sign == '"') inQuotes = !inQuotes;
        if (sign == ' ' && !inQuotes) continue;
        if (line->size() < reader->limit) line->push_back(sign);
    }
    return true;
}

int CutIntoTokens(std::string_view line, std::string* tokens, int tokenCount, std::size_t tokenLimit) {
    for (int i = 0; i < tokenCount; ++i) tokens[i].clear();
    int token = 0;
    bool inQuotes = false;
    for (const char sign : line) {
        if (sign == '"') {
            inQuotes = !inQuotes;
        } else if (!inQuotes && (sign == '=' || sign == ',')) {
            if (++token == tokenCount) return tokenCount;
        } else if (tokenLimit == 0 || tokens[token].size() < tokenLimit) {
            tokens[token].push_back(sign);
        }
    }
    return token + 1;
}

}  // namespace quorvel
