// Reads a whole file.
#pragma once

#include <cstddef>
#include <string>

#include "base/result.h"

namespace quorvel::files {

// "-" is the standard input, read to its end. Otherwise only a regular file is read (kNotRegular): a pipe must not make
// the program wait. Longer than limit bytes: kFileTooLarge with the limit in megabytes.
Result<std::string> readFile(const std::string& path, std::size_t limit);

}  // namespace quorvel::files
