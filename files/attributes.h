// What a file has beside its content: owner, group, mode, extended attributes and access lists.
#pragma once

#include <sys/stat.h>

namespace quorvel::files {

// Gives the file `to` what the file `from` has. False when something cannot be kept.
[[nodiscard]] bool copyAttributes(int from, const struct stat& info, int to);

}  // namespace quorvel::files
