// Where the results of a command over one or several drawings go.
#pragma once

#include <string>
#include <vector>

#include "base/result.h"
#include "cli/commands.h"

namespace quorvel::cli {

// One path for each file, in their order. command: named by errors. ending: in place of the drawings' own, such as
// ".pdf"; empty: theirs stays. The output folder is made when it is not there, which is told; what is above it is not.
// An error when both or neither of output and folder are given, when one output is to hold several drawings, or when
// two drawings would have one name.
Result<std::vector<std::string>> outputPaths(const Options& options, const char* command, const std::string& ending);

// Whether a drawing that goes to the path goes where std::cout writes, so that nothing else may go there.
bool isStandardOutput(const std::string& path);

}  // namespace quorvel::cli
