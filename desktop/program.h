// The command quorvel-desktop: its words, and what it does without a window.
#pragma once

namespace quorvel::desktop {

// Runs the program; the value is its exit status.
int runProgram(int argc, char** argv);

}  // namespace quorvel::desktop
