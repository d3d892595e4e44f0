// The one way in which a file is written: drawings, settings, presets, lists, exports, recovery copies, recordings. A
// failure at any moment, a full disk or a killed process leaves the file that was there.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/result.h"

namespace quorvel::files {

struct WriteOptions {
    bool replacesReadOnly = false;  // else a file without write permission is refused (kReadOnlyFile)
};

// Writes beside the target, to the disk, then renames over it. Owner, group, mode, extended attributes and access lists
// are kept. Where renaming cannot keep them, where the file has further hard links, or where its folder is read-only,
// the file itself is overwritten at commit, after a copy has been put into the state folder. A device, pipe or "-"
// (standard output) is written to as a stream. Temporary files of killed writers of the same target are removed.
class FileWriter {
  public:
    static Result<FileWriter> open(const std::string& path, const WriteOptions& options = {});
    FileWriter(FileWriter&&) noexcept;
    FileWriter& operator=(FileWriter&&) noexcept;
    ~FileWriter();  // without commit the target stays as it was

    bool isStream() const;  // nothing of it can be taken back
    [[nodiscard]] Status write(std::string_view bytes);
    // The file is on the disk under its name afterwards.
    [[nodiscard]] Status commit();

  private:
    class Method;
    class Replacement;
    class Overwriting;
    class Stream;
    explicit FileWriter(std::unique_ptr<Method> method);
    std::unique_ptr<Method> method_;
};

[[nodiscard]] Status writeFile(const std::string& path, std::string_view bytes, const WriteOptions& options = {});

}  // namespace quorvel::files
