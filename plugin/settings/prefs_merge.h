// Several programs may use one preference file at a time.
#pragma once

#include <string>
#include <string_view>

#include "plugin/shell/globals.h"

namespace quorvel {

// The main file's new text: settings that have changed since `known`, the text that this program last read or wrote, as
// they are here; all others as in `onFile`, the text that is there now. Lines of `onFile` that are no settings of ours
// stay behind the line that they are behind.
std::string MergeSettings(const PluginGlobals& globals, std::string_view known, std::string_view onFile);

}  // namespace quorvel
