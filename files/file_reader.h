// Reads a whole file.
#pragma once

#include <cstddef>
#include <string>

#include "base/result.h"

namespace quorvel::files {

// Only a regular file is read (kNotRegular): a pipe must not make the program wait. Longer than limit bytes:
// kFileTooLarge with the limit in megabytes.
Result<std::string> readFile(const std::string& path, std::size_t limit);
// What a user has named: "-", the standard input, and other descriptors of the process, such as /dev/fd/63, are read to
// their end, whatever they are.
Result<std::string> readInput(const std::string& path, std::size_t limit);

}  // namespace quorvel::files
