#include "files/new_folder.h"

#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "files/target.h"

namespace quorvel::files {

Result<bool> makeFolder(const std::string& path) {
    constexpr mode_t kNewFolder = 0777;
    if (::mkdir(path.c_str(), kNewFolder) == 0) return true;
    const int failure = errno;
    std::error_code error;
    if (failure == EEXIST && std::filesystem::is_directory(path, error)) return false;
    return systemError(failure == EEXIST ? ENOTDIR : failure);
}

}  // namespace quorvel::files
