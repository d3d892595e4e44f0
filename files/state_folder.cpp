#include "files/state_folder.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "files/target.h"

namespace quorvel::files {

namespace fs = std::filesystem;

Result<std::string> stateFolder(std::string_view below) {
    const char* state = std::getenv("XDG_STATE_HOME");
    const char* home = std::getenv("HOME");
    fs::path folder;
    if (state != nullptr && *state == '/') {
        folder = state;
    } else if (home != nullptr && *home == '/') {
        folder = fs::path(home) / ".local/state";
    } else {
        return systemError(ENOENT);
    }
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) return systemError(error.value());
    for (const fs::path& name : fs::path("quorvel") / below) {
        folder /= name;
        if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) return systemError(errno);
    }
    return folder.string();
}

std::uint64_t pathHash(std::string_view path) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char c : path) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    return hash;
}

std::string hexOf(std::uint64_t number) {
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(number));
    return digits;
}

}  // namespace quorvel::files
