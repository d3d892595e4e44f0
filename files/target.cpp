// Links are followed one by one, because one that leads to a descriptor of this process (/dev/stdout, /dev/fd/1,
// /proc/self/fd/1) must not be followed to the file behind it: whoever redirected the output holds that file open.
#include "files/target.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <climits>
#include <filesystem>
#include <optional>

namespace quorvel::files {
namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40;  // as the system itself follows

Target streamTo(int descriptor) {
    Target target;
    target.kind = TargetKind::kStream;
    target.descriptor = descriptor;
    return target;
}

std::optional<fs::path> linkedPath(const fs::path& link) {
    std::error_code error;
    const fs::path next = fs::read_symlink(link, error);
    if (error) return std::nullopt;
    return next.is_absolute() ? next : link.parent_path() / next;
}

Result<Target> fileAt(const fs::path& path) {
    Target target;
    target.name = path.filename().string();
    std::error_code error;
    const fs::path folder = fs::canonical(path.has_parent_path() ? path.parent_path() : fs::path("."), error);
    if (error) return systemError(error.value());
    if (!fs::is_directory(folder)) return systemError(ENOTDIR);
    if (target.name.empty() || target.name == "." || target.name == "..") return systemError(EISDIR);
    target.folder = folder.string();
    return target;
}

}  // namespace

Error systemError(int number) { return makeError(ErrorCode::kSystem, {std::to_string(number)}); }

std::optional<int> ownDescriptor(const std::string& given) {
    const std::string path = fs::path(given).lexically_normal().string();
    if (path == "/dev/stdin") return 0;
    if (path == "/dev/stdout") return 1;
    if (path == "/dev/stderr") return 2;
    const std::string own = "/proc/" + std::to_string(::getpid()) + "/fd/";
    for (const std::string& prefix : {std::string("/dev/fd/"), std::string("/proc/self/fd/"), own}) {
        if (!path.starts_with(prefix)) continue;
        int number = -1;
        const char* end = path.data() + path.size();
        const auto [stop, status] = std::from_chars(path.data() + prefix.size(), end, number);
        if (status == std::errc() && stop == end && number >= 0) return number;
    }
    return std::nullopt;
}

Result<Target> resolveTarget(const std::string& given) {
    if (given == "-") return streamTo(STDOUT_FILENO);
    fs::path path = given;
    for (int links = 0;; ++links) {
        if (const auto descriptor = ownDescriptor(path.string())) return streamTo(*descriptor);
        struct stat info {};
        if (::lstat(path.c_str(), &info) != 0) {
            if (errno != ENOENT) return systemError(errno);
            if (links > 0) return makeError(ErrorCode::kDanglingLink, {path.string()});
            return fileAt(path);
        }
        if (S_ISLNK(info.st_mode)) {
            if (links == kMostLinks) return systemError(ELOOP);
            const std::optional<fs::path> next = linkedPath(path);
            if (!next) return systemError(errno);
            path = *next;
            continue;
        }
        if (S_ISDIR(info.st_mode)) return systemError(EISDIR);
        if (!S_ISREG(info.st_mode)) {
            Target target;
            target.kind = TargetKind::kStream;
            target.path = path.string();
            return target;
        }
        Result<Target> target = fileAt(path);
        if (!target) return target;
        target->kind = TargetKind::kRegular;
        target->info = info;
        return target;
    }
}

}  // namespace quorvel::files
