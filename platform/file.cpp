// Whole files, folders and names over the system's own file functions. Nothing here throws, follows a name out of its
// folder, or waits on something that is no plain file: a pipe or a device in a file's place counts as no file.
#include "platform/file.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "platform/backend/backend.h"

namespace quorvel::platform {

struct OpenFile {
    std::FILE* stream;
};

namespace {

namespace fs = std::filesystem;

// No settings file, parts list or drawing comes near this; a text of this size would only exhaust the memory.
constexpr std::size_t kLargestFile = std::size_t{256} << 20;

// Empty for a text that is no path.
fs::path SystemPath(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) return {};
    std::string mapped(text);
    std::replace(mapped.begin(), mapped.end(), '\\', '/');
    return fs::path(std::u8string(mapped.begin(), mapped.end())).make_preferred();
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

FileRef OpenStream(const std::string& path, const char* mode) {
    const fs::path target = SystemPath(path);
    if (!IsPlainFileOrAbsent(target)) return nullptr;
    std::FILE* stream = std::fopen(target.string().c_str(), mode);
    if (stream == nullptr) return nullptr;
    // Unbuffered, so that a full disk shows in the write that meets it and not in a close that tells nobody.
    std::setvbuf(stream, nullptr, _IONBF, 0);
    return new OpenFile{stream};
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
    std::FILE* stream = std::fopen(target.string().c_str(), "rb");
    if (stream == nullptr) return false;
    std::fclose(stream);
    return true;
}

bool ReadWholeFile(const std::string& path, std::string* bytes) {
    const fs::path target = SystemPath(path);
    if (!IsPlainFile(target)) return false;
    std::FILE* stream = std::fopen(target.string().c_str(), "rb");
    if (stream == nullptr) return false;
    std::string content;
    char buffer[65536];
    std::size_t count;
    while ((count = std::fread(buffer, 1, sizeof buffer, stream)) > 0 && content.size() + count <= kLargestFile)
        content.append(buffer, count);
    const bool whole = count == 0 && std::ferror(stream) == 0;
    std::fclose(stream);
    if (whole) bytes->swap(content);
    return whole;
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

FileRef CreateNewFile(const std::string& path) { return OpenStream(path, "wb"); }

FileRef OpenForAppending(const std::string& path) { return OpenStream(path, "ab"); }

bool WriteToFile(FileRef file, std::string_view bytes) {
    if (file == nullptr) return false;
    return std::fwrite(bytes.data(), 1, bytes.size(), file->stream) == bytes.size();
}

void CloseFile(FileRef file) {
    if (file == nullptr) return;
    std::fclose(file->stream);
    delete file;
}

}  // namespace quorvel::platform
