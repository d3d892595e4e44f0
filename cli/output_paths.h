// Where the results of a command over one or several drawings go.
#pragma once

#include <string>
#include <vector>

namespace quorvel::cli {

struct OutputRequest {
    const char* command;
    const std::vector<std::string>& files;
    const std::string& output;  // for one drawing
    const std::string& folder;  // for any number; made when it is not there
    std::string ending;         // in place of the drawings' own, such as ".pdf"; empty: theirs stays
};

// One path for each file, in their order. Throws InputError when both or neither of output and folder are given, when
// one output is to hold several drawings, or when two drawings would bear one name.
std::vector<std::string> outputPaths(const OutputRequest& question);

}  // namespace quorvel::cli
