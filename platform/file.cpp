// Whole files, folders and names over the system's own file functions. Nothing here throws, follows a name out of its
// folder, or waits on something that is no plain file: a pipe or a device in a file's place counts as no file.
#include "platform/file.h"

#include <fcntl.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

#include "files/descriptor.h"
#include "files/file_reader.h"
#include "files/file_writer.h"
#include "files/folder_lock.h"

#include "platform/backend/backend.h"

namespace quorvel::platform {

// A new file, or one that is appended to.
struct OpenFile {
    std::optional<files::FileWriter> writer;
    files::Descriptor appended;
    std::string path;
    Status whole = {};  // of all writes
};

namespace {

namespace fs = std::filesystem;

// No settings file, parts list or drawing comes near this; a text of this size would only exhaust the memory.
constexpr std::size_t kLargestFile = std::size_t{256} << 20;

std::optional<Error> failedWrite;  // the last one

// Empty for a text that is no path.
fs::path SystemPath(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) return {};
    std::string mapped(text);
    std::replace(mapped.begin(), mapped.end(), '\\', '/');
    const fs::path path(std::u8string(mapped.begin(), mapped.end()));
    return path == "-" ? fs::path("./-") : path;  // here it is a name, not the standard output
}

bool IsPlainFile(const fs::path& path) {
    std::error_code error;
    return !path.empty() && fs::is_regular_file(path, error);
}

bool IsPlainFileOrAbsent(const fs::path& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    return !path.empty() && (fs::is_regular_file(status) || status.type() == fs::file_type::not_found);
}

}  // namespace

std::string DocumentsFolder() {
    return installedBackend() != nullptr ? installedBackend()->files().documentsFolder() : "";
}

std::string ErrorLogPath() { return installedBackend() != nullptr ? installedBackend()->files().errorLogPath() : ""; }

std::string JoinPath(std::string_view folder, std::string_view name) {
    const auto refused = [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return c == '/' || c == '\\' || byte < 0x20 || byte == 0x7F;
    };
    if (folder.empty() || name.empty() || name.find("..") != std::string_view::npos) return {};
    if (std::any_of(name.begin(), name.end(), refused)) return {};
    std::string path(folder);
    if (path.back() != '/' && path.back() != '\\') path += '/';
    return path.append(name);
}

bool CreateFolder(const std::string& path) {
    const fs::path folder = SystemPath(path);
    if (folder.empty()) return false;
    std::error_code error;
    fs::create_directories(folder, error);
    return fs::is_directory(folder, error);
}

bool FileCanBeOpened(const std::string& path) {
    const fs::path target = SystemPath(path);
    if (!IsPlainFile(target)) return false;
    return files::Descriptor(::open(target.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)).isOpen();
}

bool ReadWholeFile(const std::string& path, std::string* bytes) {
    const fs::path target = SystemPath(path);
    if (!IsPlainFile(target)) return false;
    Result<std::string> content = files::readFile(target.string(), kLargestFile);
    if (content) bytes->swap(*content);
    return static_cast<bool>(content);
}

bool DeleteFile(const std::string& path) {
    const fs::path target = SystemPath(path);
    std::error_code error;
    if (target.empty() || fs::symlink_status(target, error).type() == fs::file_type::directory) return false;
    return fs::remove(target, error);
}

std::vector<std::string> FileNames(const std::string& folder) {
    std::vector<std::string> names;
    const fs::path path = SystemPath(folder);
    std::error_code error;
    if (path.empty()) return names;
    for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error)) {
        if (!IsPlainFile(entry->path())) continue;
        const std::u8string name = entry->path().filename().u8string();
        names.emplace_back(name.begin(), name.end());
    }
    return names;
}

std::optional<Error> takeFailedWrite() { return std::exchange(failedWrite, std::nullopt); }

FileRef CreateNewFile(const std::string& path) {
    const fs::path target = SystemPath(path);
    if (!IsPlainFileOrAbsent(target)) {
        failedWrite = makeError(ErrorCode::kNotRegular).inFile(target.string());
        return nullptr;
    }
    Result<files::FileWriter> writer = files::FileWriter::open(target.string());
    if (!writer) {
        failedWrite = Error(writer.error()).inFile(target.string());
        return nullptr;
    }
    return new OpenFile{std::move(*writer), files::Descriptor(), target.string()};
}

FileRef OpenForAppending(const std::string& path) {
    const fs::path target = SystemPath(path);
    if (!IsPlainFileOrAbsent(target)) return nullptr;
    files::Descriptor file(::open(target.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666));
    if (!file.isOpen()) return nullptr;
    return new OpenFile{std::nullopt, std::move(file), target.string()};
}

bool WriteToFile(FileRef file, std::string_view bytes) {
    if (file == nullptr) return false;
    const Status written = file->writer ? file->writer->write(bytes) : files::writeAll(file->appended.get(), bytes);
    if (file->whole) file->whole = written;
    return static_cast<bool>(written);
}

bool CloseFile(FileRef file) {
    if (file == nullptr) return false;
    const std::unique_ptr<OpenFile> closed(file);
    if (!closed->writer) return closed->appended.close() && closed->whole;
    if (closed->whole) closed->whole = closed->writer->commit();
    if (!closed->whole) failedWrite = Error(closed->whole.error()).inFile(closed->path);
    return static_cast<bool>(closed->whole);
}

struct FolderLock::Held {
    files::FolderLock lock;
};

FolderLock::FolderLock(const std::string& folder) : held_(new Held{files::FolderLock(SystemPath(folder).string())}) {}
FolderLock::~FolderLock() { delete held_; }

}  // namespace quorvel::platform
