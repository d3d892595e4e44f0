// Reads the command line and runs the command that it names.
#pragma once

namespace quorvel::cli {

// The exit status. Bad input gives one line on the standard error and kExitBadInput.
int runCommandLine(int argc, char** argv);

}  // namespace quorvel::cli
