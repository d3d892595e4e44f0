// The preference file: one ini-style format for the main file, presets and the factory file, with one reader and one
// writer over one table of keys.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "plugin/shell/globals.h"

namespace quorvel {

void StoreDefaults(PluginGlobals* globals);
// Empties the title block and all part rows, their number and the frame's type too.
void ClearScheduleBlock(PrefsRecord* prefs);
bool PartRowIsEmpty(const ZwkPartRow& row);

// The name that stands for no preset.
constexpr char kUntitledPreset[] = "Untitled";

// name: null for the main file, else a preset's name in the system code page ("Untitled" reads the factory file and
// writes nothing). 1 on success, 0 when the file cannot be opened or created.
std::int32_t ReadPrefsFile(PluginGlobals* globals, const char* name);
// The main file is read again and only what has changed here since it was read or written last is changed in it, so
// that programs with one profile keep each other's settings.
std::int32_t WritePrefsFile(PluginGlobals* globals, const char* name);
// Writes the main file when a setting has changed, as the OK of a dialog does; false when that fails.
bool SaveChangedSettings(PluginGlobals* globals);
// At shutdown, behind the last write.
void ForgetSettingsOnFile(PluginGlobals* globals);
// The path of a preset's file; empty when the name is no file name.
std::string PresetPath(const char* name);
std::string PresetFolder();

// The whole content of a file; mainFile: the general keys are in it too.
std::string ComposePrefsText(const PluginGlobals* globals, bool mainFile);
// Applies text as the file's content; mainFile: the general keys are known too.
void ParsePrefsText(PluginGlobals* globals, std::string_view text, bool mainFile);
bool SettingIsKnown(std::string_view key);
// Sets one field by its key; an empty value empties a text. False for an unknown key.
bool SetFieldByKey(PluginGlobals* globals, std::string_view key, std::string_view value);

// Line by line: tabs and CR dropped, blanks outside quotes dropped, at most limit characters kept. Gives false at the
// end. The CSV reader and the preference reader share it.
struct LineReader {
    std::string_view text;
    std::size_t position = 0;
    std::size_t limit = 256;
};
bool ReadSettingsLine(LineReader* reader, std::string* line);
// Cuts a line at = and , outside quotes; quotes are dropped. At most tokenCount tokens, each cut to tokenLimit
// characters (0: not cut). Returns how many tokens the line has, up to tokenCount.
int CutIntoTokens(std::string_view line, std::string* tokens, int tokenCount, std::size_t tokenLimit);

}  // namespace quorvel
