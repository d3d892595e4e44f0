// Files and folders. A path is a text in UTF-8 whose separators may be written as backslashes; each operation maps them
// to the system's own. An empty path makes every operation fail.
#pragma once

#include <cstdint>
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
// Null when it cannot be created; an existing file is emptied.
FileRef CreateNewFile(const std::string& path);
// Opens for writing behind the end, creating the file when there is none. Null when neither works.
FileRef OpenForAppending(const std::string& path);
bool WriteToFile(FileRef file, std::string_view bytes);
// Null is passed over.
void CloseFile(FileRef file);

}  // namespace quorvel::platform
