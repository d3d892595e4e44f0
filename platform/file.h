// Files and folders. A path is a text in UTF-8 whose separators may be written as backslashes; each operation maps them
// to the system's own. An empty path makes every operation fail.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorvel::platform {

// The user's documents folder, without a separator at its end.
std::string DocumentsFolder();
// The file that takes the trace of the view-window finder.
std::string ErrorLogPath();
// folder + separator + name. A name that is empty, holds a separator or a control sign, or is or holds ".." gives the
// empty path, so that nothing is read or written outside the folder.
std::string JoinPath(std::string_view folder, std::string_view name);
// True also when the folder is there already.
bool CreateFolder(const std::string& path);
bool FileCanBeOpened(const std::string& path);
bool ReadWholeFile(const std::string& path, std::string* bytes);
bool DeleteFile(const std::string& path);
// Names of the plain files in the folder, in no order.
std::vector<std::string> FileNames(const std::string& folder);

using FileRef = struct OpenFile*;
// What is written takes the place of a file that is there when it is closed, if all of it could be written; else that
// file stays. Null when it cannot be created.
FileRef CreateNewFile(const std::string& path);
// Opens for writing behind the end, creating the file when there is none. Null when neither works.
FileRef OpenForAppending(const std::string& path);
bool WriteToFile(FileRef file, std::string_view bytes);
// True when all that was written is on the disk. Null is passed over.
bool CloseFile(FileRef file);

// One writer at a time in a folder, among all programs: for who reads a file, changes it and writes it back. Held until
// it is destroyed; not to be nested. Where the system cannot lock, the work goes on without it.
class FolderLock {
  public:
    explicit FolderLock(const std::string& folder);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

  private:
    struct Held;
    Held* held_;
};

}  // namespace quorvel::platform
