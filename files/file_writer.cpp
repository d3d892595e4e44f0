// Three ways to write: beside the target and renamed over it (the rule), into the file itself (where renaming would
// lose something), and as a stream (what is no file).
#include "files/file_writer.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "files/attributes.h"
#include "files/descriptor.h"
#include "files/state_folder.h"
#include "files/target.h"
#include "files/temporary.h"
#include "files/termination.h"

namespace quorvel::files {

class FileWriter::Method {
  public:
    virtual ~Method() = default;
    virtual Status write(std::string_view bytes) = 0;
    virtual Status commit() = 0;
    virtual bool isStream() const { return false; }
};

namespace {

Status synchronize(int descriptor) {
    // A file system that cannot synchronize this kind of file says EINVAL; there is nothing to wait for then.
    if (::fsync(descriptor) == 0 || errno == EINVAL || errno == EROFS) return {};
    return systemError(errno);
}

Descriptor openFolder(const std::string& folder) {
    return Descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

// Whether the user may write the file. The superuser may write all, so that for him the mode alone says it.
bool isReadOnly(int folder, const Target& target) {
    if (::geteuid() == 0) return (target.info.st_mode & 0222) == 0;
    return ::faccessat(folder, target.name.c_str(), W_OK, AT_EACCESS) != 0 && errno != EROFS;
}

}  // namespace

// Written beside the target, then renamed over it.
class FileWriter::Replacement : public Method {
  public:
    Replacement(Descriptor folder, std::string name, Temporary temporary)
        : folder_(std::move(folder)), name_(std::move(name)), temporary_(std::move(temporary)) {}
    ~Replacement() override { temporary_.discard(folder_.get()); }

    Status write(std::string_view bytes) override { return writeAll(temporary_.get(), bytes); }

    Status commit() override {
        if (Status flushed = synchronize(temporary_.get()); !flushed) return flushed;
        if (Status moved = temporary_.moveTo(folder_.get(), name_); !moved) return moved;
        return synchronize(folder_.get());
    }

  private:
    Descriptor folder_;
    std::string name_;
    Temporary temporary_;
};

// Overwritten at commit, after a copy of it has been made. The new content is kept in memory until then.
class FileWriter::Overwriting : public Method {
  public:
    Overwriting(Descriptor file, std::string path) : file_(std::move(file)), path_(std::move(path)) {}

    Status write(std::string_view bytes) override {
        content_ += bytes;
        return {};
    }

    Status commit() override {
        struct stat info {};
        if (::fstat(file_.get(), &info) != 0) return systemError(errno);
        Result<std::string> copy = copyAside(info.st_size);
        if (!copy) return copy.error();
        // Reserves the room first, so that a full disk is met before anything is overwritten.
        const auto size = static_cast<off_t>(content_.size());
        if (size > info.st_size) {
            if (const int failure = ::posix_fallocate(file_.get(), 0, size); failure != 0) {
                ::ftruncate(file_.get(), info.st_size);
                ::unlink(copy->c_str());
                return systemError(failure);
            }
        }
        const TerminationPause pause;
        Status written = overwrite();
        if (written) ::unlink(copy->c_str());
        return written;
    }

  private:
    Status overwrite() {
        if (::lseek(file_.get(), 0, SEEK_SET) != 0) return systemError(errno);
        if (Status written = writeAll(file_.get(), content_); !written) return written;
        if (::ftruncate(file_.get(), static_cast<off_t>(content_.size())) != 0) return systemError(errno);
        return synchronize(file_.get());
    }

    // The path of the copy, which stays when overwriting fails or the process ends meanwhile.
    Result<std::string> copyAside(off_t size) {
        Result<std::string> folder = stateFolder("overwritten");
        if (!folder) return folder;
        std::string path = *folder + "/" + hexOf(pathHash(path_));
        Descriptor copy(::open(path.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC | O_NOFOLLOW, 0600));
        if (!copy.isOpen()) return systemError(errno);
        std::string buffer(std::min<std::size_t>(static_cast<std::size_t>(size), std::size_t{1} << 20), '\0');
        for (off_t at = 0; at < size;) {
            const ssize_t got = ::pread(file_.get(), buffer.data(), buffer.size(), at);
            if (got < 0 && errno == EINTR) continue;
            if (got < 0) return systemError(errno);
            if (got == 0) break;
            if (Status put = writeAll(copy.get(), {buffer.data(), static_cast<std::size_t>(got)}); !put)
                return put.error();
            at += got;
        }
        if (Status flushed = synchronize(copy.get()); !flushed) return flushed.error();
        return path;
    }

    Descriptor file_;
    std::string path_, content_;
};

class FileWriter::Stream : public Method {
  public:
    explicit Stream(Descriptor file) : file_(std::move(file)) {}
    Status write(std::string_view bytes) override { return writeAll(file_.get(), bytes); }
    Status commit() override { return file_.close() ? Status{} : Status{systemError(errno)}; }
    bool isStream() const override { return true; }

  private:
    Descriptor file_;
};

FileWriter::FileWriter(std::unique_ptr<Method> method) : method_(std::move(method)) {}
FileWriter::FileWriter(FileWriter&&) noexcept = default;
FileWriter& FileWriter::operator=(FileWriter&&) noexcept = default;
FileWriter::~FileWriter() = default;

namespace {

Result<Descriptor> connectSocket(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) return systemError(ENAMETOOLONG);
    path.copy(address.sun_path, path.size());
    Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!socket.isOpen() || ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return systemError(errno);
    return socket;
}

Result<Descriptor> openStream(const Target& target) {
    constexpr int kIsSocket = ENXIO;  // what opening one says
    Descriptor file(target.descriptor >= 0 ? ::fcntl(target.descriptor, F_DUPFD_CLOEXEC, 0)
                                           : ::open(target.path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
    if (!file.isOpen() && errno == kIsSocket) return connectSocket(target.path);
    if (!file.isOpen()) return systemError(errno);
    return file;
}

Result<Descriptor> openInPlace(int folder, const Target& target) {
    Descriptor file(::openat(folder, target.name.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (!file.isOpen()) return systemError(errno);
    return file;
}

// A temporary file with all that the target has beside its content; nothing when renaming would lose something of it.
Result<std::optional<Temporary>> replacementFor(int folder, const Target& target) {
    constexpr unsigned kNewFile = 0666, kPrivate = 0600;
    const bool isNew = target.kind == TargetKind::kAbsent;
    if (!isNew && target.info.st_nlink > 1) return std::optional<Temporary>();
    Result<Temporary> made = Temporary::make(folder, target.name, isNew ? kNewFile : kPrivate);
    if (!made && !isNew && (made.error() == systemError(EACCES) || made.error() == systemError(EPERM)))
        return std::optional<Temporary>();
    if (!made) return made.error();
    if (!isNew) {
        const Descriptor old(::openat(folder, target.name.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
        // A file that may not be read keeps its mode and owner; its other attributes cannot be seen.
        if (!copyAttributes(old.isOpen() ? old.get() : made->get(), target.info, made->get())) {
            made->discard(folder);
            return std::optional<Temporary>();
        }
    }
    return std::optional<Temporary>(std::move(*made));
}

}  // namespace

Result<FileWriter> FileWriter::open(const std::string& path, const WriteOptions& options) {
    Result<Target> target = resolveTarget(path);
    if (!target) return target.error();
    if (target->kind == TargetKind::kStream) {
        Result<Descriptor> stream = openStream(*target);
        if (!stream) return stream.error();
        return FileWriter(std::make_unique<Stream>(std::move(*stream)));
    }
    Descriptor folder = openFolder(target->folder);
    if (!folder.isOpen()) return systemError(errno);
    if (target->kind == TargetKind::kRegular && !options.replacesReadOnly && isReadOnly(folder.get(), *target))
        return makeError(ErrorCode::kReadOnlyFile);
    removeLeftovers(folder.get());
    Result<std::optional<Temporary>> temporary = replacementFor(folder.get(), *target);
    if (!temporary) return temporary.error();
    if (*temporary) {
        return FileWriter(std::make_unique<Replacement>(std::move(folder), target->name, std::move(**temporary)));
    }
    Result<Descriptor> file = openInPlace(folder.get(), *target);
    if (!file) return file.error();
    return FileWriter(std::make_unique<Overwriting>(std::move(*file), target->folder + "/" + target->name));
}

bool FileWriter::isStream() const { return method_->isStream(); }

Status FileWriter::write(std::string_view bytes) { return method_->write(bytes); }

Status FileWriter::commit() { return method_->commit(); }

Status writeFile(const std::string& path, std::string_view bytes, const WriteOptions& options) {
    Result<FileWriter> writer = FileWriter::open(path, options);
    if (!writer) return writer.error();
    if (Status written = writer->write(bytes); !written) return written;
    return writer->commit();
}

}  // namespace quorvel::files
