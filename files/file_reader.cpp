#include "files/file_reader.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "files/descriptor.h"
#include "files/target.h"

namespace quorvel::files {
namespace {

Error tooLarge(std::size_t limit) { return makeError(ErrorCode::kFileTooLarge, {std::to_string(limit >> 20)}); }

// A text of many megabytes is read in less time on large pages, where the system has them.
void adviseLargePages(std::string* text) {
    constexpr std::uintptr_t kPage = std::uintptr_t{2} << 20;
    const auto begin = (reinterpret_cast<std::uintptr_t>(text->data()) + kPage - 1) / kPage * kPage;
    const auto end = reinterpret_cast<std::uintptr_t>(text->data() + text->capacity()) / kPage * kPage;
    if (begin < end) ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
}

// Stops behind the limit: a file may be longer than it says, or grow.
Result<std::string> readAll(int descriptor, std::size_t expected, std::size_t limit) {
    std::string text;
    text.reserve(expected + 1);
    adviseLargePages(&text);
    text.resize(expected + 1);  // one more shows the end without another turn
    std::size_t filled = 0;
    for (;;) {
        const ssize_t got = ::read(descriptor, text.data() + filled, text.size() - filled);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return systemError(errno);
        if (got == 0) break;
        filled += static_cast<std::size_t>(got);
        if (filled > limit) return tooLarge(limit);
        if (filled == text.size()) text.resize(std::min(filled * 2, limit + 1));
    }
    text.resize(filled);
    return text;
}

}  // namespace

Result<std::string> readFile(const std::string& path, std::size_t limit) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat info {};
    if (!file.isOpen() || ::fstat(file.get(), &info) != 0) return systemError(errno);
    if (S_ISDIR(info.st_mode)) return systemError(EISDIR);
    if (!S_ISREG(info.st_mode)) return makeError(ErrorCode::kNotRegular);
    if (static_cast<std::size_t>(info.st_size) > limit) return tooLarge(limit);
    return readAll(file.get(), static_cast<std::size_t>(info.st_size), limit);
}

Result<std::string> readInput(const std::string& path, std::size_t limit) {
    constexpr std::size_t kFirstPiece = std::size_t{64} << 10;
    const std::optional<int> descriptor = path == "-" ? STDIN_FILENO : ownDescriptor(path);
    return descriptor ? readAll(*descriptor, kFirstPiece, limit) : readFile(path, limit);
}

}  // namespace quorvel::files
