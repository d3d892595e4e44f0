// A writer holds a lock on its temporary file; one whose process has ended and that nobody holds is a leftover.
#include "files/temporary.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <random>
#include <string_view>

#include "files/state_folder.h"
#include "files/target.h"

namespace quorvel::files {
namespace {

constexpr std::string_view kMark = ".qv";

std::string prefixFor(const std::string& targetName) {
    return std::string(kMark) + hexOf(pathHash(targetName)).substr(0, 8) + "-";
}

std::string newName(const std::string& targetName) {
    std::random_device random;
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08x", random());
    return prefixFor(targetName) + std::to_string(::getpid()) + "-" + digits;
}

bool isProcessAlive(std::string_view number) {
    int process = 0;
    const auto [end, status] = std::from_chars(number.data(), number.data() + number.size(), process);
    if (status != std::errc() || process <= 0) return true;  // not a name of ours
    return ::kill(process, 0) == 0 || errno != ESRCH;
}

bool isUnlocked(int folder, const char* name) {
    const Descriptor file(::openat(folder, name, O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    return file.isOpen() && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0;
}

}  // namespace

Result<Temporary> Temporary::make(int folder, const std::string& targetName, unsigned mode) {
    // A lock that the file system cannot give is no reason to refuse.
    Descriptor unnamed(::openat(folder, ".", O_TMPFILE | O_RDWR | O_CLOEXEC, mode));
    if (unnamed.isOpen()) {
        ::flock(unnamed.get(), LOCK_EX | LOCK_NB);
        return Temporary(std::move(unnamed), "");
    }
    constexpr int kAttempts = 100;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        std::string name = newName(targetName);
        Descriptor file(::openat(folder, name.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC | O_NOFOLLOW, mode));
        if (file.isOpen()) {
            ::flock(file.get(), LOCK_EX | LOCK_NB);
            Temporary made(std::move(file), name);
            made.removal_ =
                std::make_unique<TerminationAction>([folder, name] { ::unlinkat(folder, name.c_str(), 0); });
            return made;
        }
        if (errno != EEXIST) return systemError(errno);
    }
    return systemError(EEXIST);
}

Status Temporary::moveTo(int folder, const std::string& targetName) {
    const TerminationPause pause;  // nothing is left under the temporary name
    if (name_.empty()) {
        name_ = newName(targetName);
        const std::string self = "/proc/self/fd/" + std::to_string(file_.get());
        if (::linkat(AT_FDCWD, self.c_str(), folder, name_.c_str(), AT_SYMLINK_FOLLOW) != 0) {
            name_.clear();
            return systemError(errno);
        }
    }
    if (::renameat(folder, name_.c_str(), folder, targetName.c_str()) != 0) return systemError(errno);
    name_.clear();
    removal_.reset();
    return {};
}

void Temporary::discard(int folder) {
    if (!name_.empty()) ::unlinkat(folder, name_.c_str(), 0);
    name_.clear();
    removal_.reset();
    file_.reset();
}

void removeLeftovers(int folder) {
    const std::size_t prefixSize = prefixFor({}).size();
    DIR* entries = ::fdopendir(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (entries == nullptr) return;  // a folder that may be written but not listed
    while (const dirent* entry = ::readdir(entries)) {
        const std::string_view name = entry->d_name;
        if (!name.starts_with(kMark) || name.size() <= prefixSize || name[prefixSize - 1] != '-') continue;
        const std::string_view behind = name.substr(prefixSize);
        if (!isProcessAlive(behind.substr(0, behind.find('-'))) && isUnlocked(folder, entry->d_name))
            ::unlinkat(folder, entry->d_name, 0);
    }
    ::closedir(entries);
}

}  // namespace quorvel::files
