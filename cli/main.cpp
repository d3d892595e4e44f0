#include "cli/command_line.h"

int main(int argc, char** argv) { return quorvel::cli::runCommandLine(argc, argv); }
