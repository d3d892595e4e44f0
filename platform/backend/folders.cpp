// Source: the XDG base directory rules, and the file "user-dirs.dirs" of xdg-user-dirs, whose values are written for a
// shell: in quotes, absolute or starting with $HOME, with a backslash before signs that a shell would read.
#include "platform/backend/folders.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "platform/file.h"

namespace quorvel::platform {

namespace {

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

// The base directory rules let only absolute paths count.
std::string baseFolder(const char* variable, const char* belowHome) {
    const std::string value = environment(variable), home = environment("HOME");
    if (!value.empty() && value.front() == '/') return value;
    return home.empty() ? "" : home + belowHome;
}

// Empty when the line does not set the folder.
std::string documentsInLine(std::string_view line, const std::string& home) {
    constexpr std::string_view kKey = "XDG_DOCUMENTS_DIR=\"", kHome = "$HOME";
    const std::size_t first = line.find_first_not_of(" \t");
    if (first == std::string_view::npos || line.substr(first, kKey.size()) != kKey) return {};
    std::string_view value = line.substr(first + kKey.size());
    std::string path;
    if (value.substr(0, kHome.size()) == kHome) {
        path = home;
        value.remove_prefix(kHome.size());
    }
    for (std::size_t i = 0; i < value.size() && value[i] != '"'; ++i) {
        if (value[i] == '\\' && i + 1 < value.size()) ++i;
        path += value[i];
    }
    return !path.empty() && path.front() == '/' ? withoutEndSeparator(path) : "";
}

}  // namespace

std::string withoutEndSeparator(std::string path) {
    while (path.size() > 1 && (path.back() == '/' || path.back() == '\\')) path.pop_back();
    return path;
}

std::string userDocumentsFolder() {
    const std::string home = environment("HOME");
    std::string chosen = home.empty() ? "" : withoutEndSeparator(home) + "/Documents";
    std::string content;
    const std::string settings = baseFolder("XDG_CONFIG_HOME", "/.config");
    if (settings.empty() || !ReadWholeFile(settings + "/user-dirs.dirs", &content)) return chosen;
    for (std::size_t start = 0; start < content.size();) {
        const std::size_t end = std::min(content.find('\n', start), content.size());
        const std::string found = documentsInLine(std::string_view(content).substr(start, end - start), home);
        if (!found.empty()) chosen = found;
        start = end + 1;
    }
    return chosen;
}

std::string userStateFolder() {
    const std::string state = baseFolder("XDG_STATE_HOME", "/.local/state");
    if (state.empty()) return {};
    const std::string folder = state + "/quorvel";
    return CreateFolder(folder) ? folder : "";
}

}  // namespace quorvel::platform
