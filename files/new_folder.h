// A folder for results that need not be there yet.
#pragma once

#include <string>

#include "base/result.h"

namespace quorvel::files {

// True when the folder has been made, false when it was there. What is above it must be there.
Result<bool> makeFolder(const std::string& path);

}  // namespace quorvel::files
