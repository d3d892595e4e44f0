// The user's settings on the disk. The plug-in reads and writes the file; this puts single settings into it before the
// plug-in starts.
#pragma once

#include <string>
#include <string_view>

#include "base/result.h"

namespace quorvel::app {

// Where the plug-in keeps its settings below a documents folder.
std::string settingsFileBelow(const std::string& documents);

// Replaces the lines that set the key. Makes the file, and the folders above it, when there is none.
Status writeSetting(const std::string& documents, std::string_view key, std::string_view valueUtf8);

}  // namespace quorvel::app
