#include "desktop/program.h"

int main(int argc, char** argv) { return quorvel::desktop::runProgram(argc, argv); }
