// A file that grows while the program runs and whose last part may be written anew, such as a recording.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/result.h"
#include "files/descriptor.h"

namespace quorvel::files {

class GrowingFile {
  public:
    // Takes the place of a file that is there, by the rules of FileWriter.
    static Result<GrowingFile> create(const std::string& path);
    GrowingFile(GrowingFile&&) = default;
    GrowingFile& operator=(GrowingFile&&) = default;

    // The file is its first `from` bytes, then the text. What was behind them is gone. A process that ends meanwhile
    // leaves whole lines where the texts are. On a device or pipe, bytes are written when a later call settles them.
    [[nodiscard]] Status rewriteEnd(std::uint64_t from, std::string_view text);
    // Writes what a stream still holds back.
    [[nodiscard]] Status finish();

  private:
    GrowingFile(Descriptor file, bool isStream) : file_(std::move(file)), isStream_(isStream) {}

    Descriptor file_;
    bool isStream_;
    std::uint64_t written_ = 0;  // to a stream
    std::string pending_;        // of a stream, behind what is written
};

}  // namespace quorvel::files
