#include "files/attributes.h"

#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <vector>

namespace quorvel::files {
namespace {

// Labels that the system's policy sets on every file by itself.
bool isSetBySystem(std::string_view name) { return name.starts_with("security."); }

bool copyExtendedAttributes(int from, int to) {
    const ssize_t size = ::flistxattr(from, nullptr, 0);
    if (size < 0) return errno == ENOTSUP;
    std::vector<char> names(static_cast<std::size_t>(size));
    const ssize_t filled = ::flistxattr(from, names.data(), names.size());
    if (filled < 0) return false;
    const std::string_view all(names.data(), static_cast<std::size_t>(filled));
    for (std::size_t at = 0; at < all.size();) {
        const std::string_view name = all.substr(at, all.find('\0', at) - at);  // zero-terminated in `names`
        at += name.size() + 1;
        const ssize_t length = ::fgetxattr(from, name.data(), nullptr, 0);
        if (length < 0) return false;
        std::vector<char> value(static_cast<std::size_t>(length));
        const ssize_t got = ::fgetxattr(from, name.data(), value.data(), value.size());
        if (got < 0) return false;
        if (::fsetxattr(to, name.data(), value.data(), static_cast<std::size_t>(got), 0) != 0 && !isSetBySystem(name))
            return false;
    }
    return true;
}

}  // namespace

bool copyAttributes(int from, const struct stat& info, int to) {
    struct stat made {};
    if (::fstat(to, &made) != 0) return false;
    // Before the mode: a change of owner takes the set-user bits away.
    if ((made.st_uid != info.st_uid || made.st_gid != info.st_gid) && ::fchown(to, info.st_uid, info.st_gid) != 0)
        return false;
    return ::fchmod(to, info.st_mode & 07777) == 0 && copyExtendedAttributes(from, to);
}

}  // namespace quorvel::files
