#include "app/profile.h"

#include <filesystem>

#include "hostapi/names.h"
#include "platform/file.h"
#include "platform/text.h"

namespace quorvel::app {

namespace {

std::string trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(" \t\r") - first + 1));
}

// The file's text without the lines that set the key.
std::string withoutKey(std::string_view text, std::string_view key) {
    std::string kept;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end == std::string_view::npos ? text.size() : end + 1);
        text.remove_prefix(line.size());
        if (trimmed(line.substr(0, line.find('='))) != key) kept += line;
    }
    return kept;
}

}  // namespace

std::string settingsFileBelow(const std::string& documents) {
    std::filesystem::path path = documents;
    for (const char* folder : kSettingsFolders) path /= folder;
    return (path / kSettingsFile).string();
}

Status writeSetting(const std::string& documents, std::string_view key, std::string_view valueUtf8) {
    const std::filesystem::path path = settingsFileBelow(documents);
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    if (error) return makeError(ErrorCode::kNotCreatable).inFile(path.parent_path().string());
    const platform::FolderLock lock(path.parent_path().string());  // as the plug-in does
    std::string text;
    platform::ReadWholeFile(path, &text);  // a first run has none
    text = withoutKey(text, key);
    text += std::string(key) + " = \"" + platform::FromUtf8(valueUtf8, platform::kCodePageJapanese) + "\"\r\n";
    platform::FileRef file = platform::CreateNewFile(path);
    const bool isWritten = file != nullptr && platform::WriteToFile(file, text);
    const bool isWhole = platform::CloseFile(file);
    if (!isWritten || !isWhole) return makeError(ErrorCode::kNotWritable).inFile(path.string());
    return {};
}

}  // namespace quorvel::app
