// The standard output, which may be a full disk or a pipe that nobody reads any more.
#pragma once

#include <memory>

#include "base/result.h"

namespace quorvel::cli {

// Gives each standard stream that the caller has closed a device in its place, on which its use fails, so that no file
// that is opened later gets its number. Writing to a closed pipe, or more than a file
// may hold, fails instead of ending the process.
void secureStandardStreams();

// While it exists, std::cout writes through it.
class StandardOutput {
  public:
    StandardOutput();
    ~StandardOutput();
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;

    // Writes what is buffered. The first failure of all (kOutputLost).
    [[nodiscard]] Status finish();

  private:
    class Buffer;
    std::unique_ptr<Buffer> buffer_;
    std::streambuf* former_;
};

}  // namespace quorvel::cli
