// Drawings on disk. A drawing is written beside its file, made safe on the disk, and only then put in its place: a full
// disk or a crash leaves the old one.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <utility>

#include "interchange/svg/svg.h"
#include "svg/markup/huge_pages.h"
#include "svg/markup/xml_file.h"

namespace quorvel::interchange {
namespace {

Error systemError(int number) { return makeError(ErrorCode::kSystem, {std::to_string(number)}); }

class File {
  public:
    explicit File(int descriptor) : descriptor_(descriptor) {}
    ~File() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    int get() const { return descriptor_; }
    bool valid() const { return descriptor_ >= 0; }
    bool close() { return ::close(std::exchange(descriptor_, -1)) == 0; }

  private:
    int descriptor_;
};

// Stops behind the limit: a file may be longer than it says, or grow.
bool readAll(int descriptor, std::size_t expected, std::size_t limit, std::string* text) {
    text->reserve(expected + 1);
    svg::adviseHugePages(text->data(), expected + 1);
    text->resize(expected + 1);  // one more shows the end without another turn
    std::size_t filled = 0;
    for (;;) {
        const ssize_t got = ::read(descriptor, text->data() + filled, text->size() - filled);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return false;
        if (got == 0) break;
        filled += static_cast<std::size_t>(got);
        if (filled > limit) break;
        if (filled == text->size()) text->resize(std::min(filled * 2, limit + 1));
    }
    text->resize(filled);
    return true;
}

bool writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t put = ::write(descriptor, text.data(), text.size());
        if (put < 0 && errno == EINTR) continue;
        if (put < 0) return false;
        text.remove_prefix(static_cast<std::size_t>(put));
    }
    return true;
}

// A file that was there keeps its permissions; links are followed, so that they stay links.
struct Target {
    std::string path;
    mode_t mode = 0;
};

Target targetOf(const std::string& path) {
    Target target{path};
    std::error_code ignored;  // a link that leads nowhere is replaced
    const std::filesystem::path real = std::filesystem::canonical(path, ignored);
    if (!real.empty()) target.path = real.string();
    struct stat info {};
    if (::stat(target.path.c_str(), &info) == 0) {
        target.mode = info.st_mode & 07777;
    } else {
        const mode_t mask = ::umask(0);
        ::umask(mask);
        target.mode = 0666 & ~mask;
    }
    return target;
}

// The name of a file is safe only when its folder is.
void syncFolder(const std::string& path) {
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    const File file(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (file.valid()) ::fsync(file.get());
}

Result<std::string> readText(const std::string& path) {
    // A pipe must not keep us waiting for somebody to write into it.
    const File file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat info {};
    if (!file.valid() || ::fstat(file.get(), &info) != 0) return systemError(errno);
    if (S_ISDIR(info.st_mode)) return systemError(EISDIR);
    if (!S_ISREG(info.st_mode)) return makeError(ErrorCode::kNotRegular);
    if (static_cast<std::size_t>(info.st_size) > svg::kLargestFile) return svg::tooLargeFile();
    std::string text;
    if (!readAll(file.get(), static_cast<std::size_t>(info.st_size), svg::kLargestFile, &text))
        return systemError(errno);
    return text;
}

Status writeText(std::string_view text, const std::string& path) {
    if (text.empty()) return makeError(ErrorCode::kPageNotWritable);
    const Target target = targetOf(path);
    std::string beside = target.path + ".XXXXXX";
    File file(::mkstemp(beside.data()));
    if (!file.valid()) return systemError(errno);
    const bool written = writeAll(file.get(), text) && ::fchmod(file.get(), target.mode) == 0 &&
                         ::fsync(file.get()) == 0 && file.close() && ::rename(beside.c_str(), target.path.c_str()) == 0;
    if (!written) {
        const Error error = systemError(errno);
        ::unlink(beside.c_str());
        return error;
    }
    syncFolder(target.path);
    return {};
}

Error inFile(const std::string& path, Error error) {
    error.file = path;
    return error;
}

}  // namespace

Result<SvgDrawing> readSvgFile(const std::string& path) {
    Result<std::string> text = readText(path);
    if (!text) return inFile(path, text.error());
    Result<SvgDrawing> drawing = readSvg(std::move(*text));
    if (!drawing) return inFile(path, drawing.error());
    for (Error& warning : drawing->warnings) warning.file = path;
    return drawing;
}

Status saveSvgFile(const doc::Document& document, const std::string& path, std::string_view rulerUnit) {
    const Status written = writeText(writeSvg(document, rulerUnit), path);
    if (!written) return inFile(path, written.error());
    return written;
}

}  // namespace quorvel::interchange
