// Checks many drawings at once, one process each, as many at a time as there are cores.
#pragma once

#include <string>
#include <vector>

#include "app/headless_session.h"

namespace quorvel::cli {

// Results come in the order of the files. Exit status: 0 nothing stale, 1 something is, 2 a file could not be read.
int checkMany(const std::vector<std::string>& files, const app::SessionOptions& options, bool json);

}  // namespace quorvel::cli
