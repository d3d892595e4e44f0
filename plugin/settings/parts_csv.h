// Parts lists as CSV: the schedule block with positions in place of keys. The first eleven lines of one value each are
// the frame's type, texts and part count; every line of two values or more is a row.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/text.h"
#include "plugin/shell/globals.h"

namespace quorvel {

// Rows 0 up to flZwkNumOfParts, also empty ones. Unless flCsvRaw is set, what a spreadsheet would run is written as a
// text. 0 when the file cannot be created.
std::int32_t WritePartsCsv(const PluginGlobals* globals, const std::string& path);
// 0 when it cannot be opened, or when it holds a character that the system code page lacks and that is not to be
// replaced by "?"; no field has changed then.
std::int32_t ReadPartsCsv(PluginGlobals* globals, const std::string& path, bool replaces,
                          platform::UnwritableCharacter* unwritable);
// Rows beyond the hundredth are dropped, values cut to their fields.
void ParsePartsCsv(PluginGlobals* globals, std::string_view text);

}  // namespace quorvel
