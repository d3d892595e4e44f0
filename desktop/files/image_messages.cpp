#include "desktop/files/image_messages.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDataStream>
#include <QFile>
#include <QStringList>
#include <array>
#include <csignal>

#include "files/descriptor.h"
#include "host/host.h"

namespace quorvel::desktop {

namespace {

constexpr qsizetype kLengthBytes = 4;
constexpr rlim_t kMostMemory = rlim_t{3} << 30;

QByteArray withLength(const QByteArray& content) {
    QByteArray message;
    QDataStream stream(&message, QIODevice::WriteOnly);
    stream << static_cast<quint32>(content.size());
    return message + content;
}

struct Dots {
    void* address;
    std::size_t size;
};

// The memory can no longer become shorter, so that reading it is safe whatever the other process does.
QImage imageIn(int descriptor, QSize size, qsizetype bytesPerLine) {
    const auto bytes = static_cast<std::size_t>(bytesPerLine) * static_cast<std::size_t>(size.height());
    struct stat info {};
    if (size.isEmpty() || bytesPerLine < qsizetype{4} * size.width() || ::fstat(descriptor, &info) != 0 ||
        ::fcntl(descriptor, F_ADD_SEALS, F_SEAL_SHRINK) != 0 || static_cast<std::size_t>(info.st_size) < bytes)
        return {};
    void* address = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE, descriptor, 0);
    if (address == MAP_FAILED) return {};
    const auto release = [](void* info) {
        const std::unique_ptr<Dots> dots(static_cast<Dots*>(info));
        ::munmap(dots->address, dots->size);
    };
    return QImage(static_cast<uchar*>(address), size.width(), size.height(), bytesPerLine,
                  QImage::Format_ARGB32_Premultiplied, release, new Dots{address, bytes});
}

bool writeDots(const QImage& image, const QString& path) {
    const files::Descriptor memory(::open(QFile::encodeName(path).constData(), O_RDWR | O_CLOEXEC));
    return memory.isOpen() && files::writeAll(memory.get(), {reinterpret_cast<const char*>(image.constBits()),
                                                             static_cast<std::size_t>(image.sizeInBytes())});
}

}  // namespace

QByteArray messageOf(const ImageRequest& request) {
    QByteArray content;
    QDataStream stream(&content, QIODevice::WriteOnly);
    stream << request.source.path << request.source.bytes << request.access.base << request.access.roots
           << request.access.isEverywhere << request.dots;
    return withLength(content);
}

QByteArray messageOf(const render::DecodedImage& decoded) {
    QByteArray content;
    QDataStream stream(&content, QIODevice::WriteOnly);
    stream << decoded.image.size() << static_cast<qint64>(decoded.image.bytesPerLine())
           << static_cast<quint32>(decoded.warnings.size());
    for (const Error& warning : decoded.warnings) {
        QStringList words;
        for (const std::string& argument : warning.arguments) words << QString::fromStdString(argument);
        stream << static_cast<quint16>(warning.code) << words;
    }
    return withLength(content);
}

std::optional<QByteArray> takeMessage(QByteArray* bytes) {
    quint32 length = 0;
    if (bytes->size() < kLengthBytes) return std::nullopt;
    QDataStream stream(*bytes);
    stream >> length;
    if (bytes->size() - kLengthBytes < static_cast<qsizetype>(length)) return std::nullopt;
    const QByteArray content = bytes->mid(kLengthBytes, static_cast<qsizetype>(length));
    bytes->remove(0, kLengthBytes + static_cast<qsizetype>(length));
    return content;
}

ImageRequest requestOf(const QByteArray& message) {
    ImageRequest request;
    QDataStream stream(message);
    stream >> request.source.path >> request.source.bytes >> request.access.base >> request.access.roots >>
        request.access.isEverywhere >> request.dots;
    return request;
}

render::DecodedImage answerOf(const QByteArray& message, int dots) {
    render::DecodedImage decoded;
    QDataStream stream(message);
    QSize size;
    qint64 bytesPerLine = 0;
    quint32 warnings = 0;
    stream >> size >> bytesPerLine >> warnings;
    for (quint32 i = 0; i < warnings && stream.status() == QDataStream::Ok; ++i) {
        quint16 code = 0;
        QStringList words;
        stream >> code >> words;
        if (code >= static_cast<quint16>(ErrorCode::kEnd)) return {};
        std::vector<std::string> arguments;
        for (const QString& word : words) arguments.push_back(word.toStdString());
        decoded.warnings.push_back(makeError(static_cast<ErrorCode>(code), std::move(arguments)));
    }
    if (stream.status() != QDataStream::Ok) return {};
    decoded.image = imageIn(dots, size, bytesPerLine);
    return decoded;
}

int decodeRequests() {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);  // no longer than the window
    const rlimit limit{kMostMemory, kMostMemory};
    ::setrlimit(RLIMIT_AS, &limit);
    const host::Host measuring;  // texts measure as they do in the window
    QByteArray bytes;
    std::array<char, 1 << 16> part;
    for (;;) {
        const ssize_t got = ::read(STDIN_FILENO, part.data(), part.size());
        if (got <= 0) return 0;
        bytes.append(part.data(), got);
        while (const std::optional<QByteArray> message = takeMessage(&bytes)) {
            const ImageRequest request = requestOf(*message);
            render::DecodedImage decoded = render::decodeImage(request.source, request.access);
            decoded.image.convertTo(QImage::Format_ARGB32_Premultiplied);
            if (!decoded.image.isNull() && !writeDots(decoded.image, request.dots)) decoded.image = {};
            const QByteArray answer = messageOf(decoded);
            if (!files::writeAll(STDOUT_FILENO, {answer.constData(), static_cast<std::size_t>(answer.size())}))
                return 0;
        }
    }
}

}  // namespace quorvel::desktop
