#include "cli/progress_line.h"

#include <unistd.h>

#include <iostream>

namespace quorvel::cli {

namespace {
constexpr char kEmptyLine[] = "\r\x1b[K";
}

ProgressLine::ProgressLine(std::size_t files) : files_(files), shown_(files > 1 && isatty(STDERR_FILENO) != 0) {}

void ProgressLine::show(std::size_t count, const std::string& what) const {
    if (shown_) std::cerr << kEmptyLine << count << " of " << files_ << what << std::flush;
}

void ProgressLine::clear() const {
    if (shown_) std::cerr << kEmptyLine << std::flush;
}

}  // namespace quorvel::cli
