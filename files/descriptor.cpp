#include "files/descriptor.h"

#include <cerrno>

#include "files/target.h"

namespace quorvel::files {

Status writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t put = ::write(descriptor, bytes.data(), bytes.size());
        if (put < 0 && errno == EINTR) continue;
        if (put < 0) return systemError(errno);
        bytes.remove_prefix(static_cast<std::size_t>(put));
    }
    return {};
}

}  // namespace quorvel::files
