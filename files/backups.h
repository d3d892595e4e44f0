// The last version of a drawing before its first save of a day, kept in the state folder.
#pragma once

#include <string>

#include "base/result.h"

namespace quorvel::files {

// Copies the file that is there, unless one of today is kept already; ten a file, the oldest goes first. Named
// "NUMBER-DATE-NAME" in a folder of the file's own below "backups". Nothing happens when there is no regular file.
[[nodiscard]] Status keepDailyBackup(const std::string& path);

}  // namespace quorvel::files
