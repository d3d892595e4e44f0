// The command line: `quorvel COMMAND ...`. Each command is a function of its options; bad input gives one line on the
// standard error and the exit status 2.
#pragma once

namespace quorvel::cli {

constexpr int kExitOk = 0;
constexpr int kExitFault = 1;  // a script's expectation, a stale dimension
constexpr int kExitBadInput = 2;

int runCommandLine(int argc, char** argv);

}  // namespace quorvel::cli
