#include "files/growing_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "files/file_writer.h"
#include "files/target.h"

namespace quorvel::files {

Result<GrowingFile> GrowingFile::create(const std::string& path) {
    const Result<Target> target = resolveTarget(path);
    if (!target) return target.error();
    const bool isStream = target->kind == TargetKind::kStream;
    if (!isStream)
        if (Status emptied = writeFile(path, {}); !emptied) return emptied.error();
    Descriptor file(target->descriptor >= 0 ? ::fcntl(target->descriptor, F_DUPFD_CLOEXEC, 0)
                                            : ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
    if (!file.isOpen()) return systemError(errno);
    return GrowingFile(std::move(file), isStream);
}

Status GrowingFile::rewriteEnd(std::uint64_t from, std::string_view text) {
    if (isStream_) {
        pending_.resize(from - written_);
        if (Status settled = writeAll(file_.get(), pending_); !settled) return settled;
        written_ = from;
        pending_ = text;
        return {};
    }
    // Cut first: of two texts of different lengths nothing of the longer one is left behind the shorter one.
    const auto start = static_cast<off_t>(from);
    if (::ftruncate(file_.get(), start) != 0 || ::lseek(file_.get(), start, SEEK_SET) != start)
        return systemError(errno);
    return writeAll(file_.get(), text);
}

Status GrowingFile::finish() {
    written_ += pending_.size();
    return writeAll(file_.get(), std::exchange(pending_, {}));
}

}  // namespace quorvel::files
