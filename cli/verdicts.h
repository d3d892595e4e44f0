// The commands that say something of each of many drawings.
#pragma once

#include <string>

#include "cli/commands.h"
#include "cli/workers.h"

namespace quorvel::cli {

// verdictOn runs in a process of its own for each of options.files; did is for the progress line. The words go to the
// standard output, those of drawings that cannot be read to the standard error; with --json all are in one array. The
// greatest status.
Result<int> printVerdicts(const Options& options, const char* did,
                          WorkerVerdict (*verdictOn)(const std::string& file, const Options& options));

}  // namespace quorvel::cli
