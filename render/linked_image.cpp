#include "render/linked_image.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>
#include <QUrl>
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "files/file_reader.h"
#include "interchange/svg/svg.h"
#include "render/painter.h"

namespace quorvel::render {

namespace {

constexpr std::size_t kLargestFile = std::size_t{128} << 20;
constexpr double kMostPixels = 1e8;
constexpr double kDotsPerPoint = 96.0 / 72;  // of a drawing's picture: CSS pixels
constexpr double kLargestDrawing = 4096;     // dots on its longer side
constexpr std::size_t kDeepestDrawing = 4;
constexpr const char* kFormats[] = {"png", "jpeg", "gif", "webp"};

// The drawings that are being drawn as pictures, the outermost first, by path; empty for one in a "data:" URL.
thread_local std::vector<QString> drawingsWithin;

class DrawingWithin {
  public:
    explicit DrawingWithin(const QString& path) { drawingsWithin.push_back(path); }
    ~DrawingWithin() { drawingsWithin.pop_back(); }
    DrawingWithin(const DrawingWithin&) = delete;
    DrawingWithin& operator=(const DrawingWithin&) = delete;
};

// At its own size. Null when it cannot be read.
QImage imageOfDrawing(const QByteArray& content, const QString& path, const QString& folder) {
    const bool isWithinItself =
        !path.isEmpty() && std::find(drawingsWithin.begin(), drawingsWithin.end(), path) != drawingsWithin.end();
    if (isWithinItself || drawingsWithin.size() >= kDeepestDrawing) return {};
    const DrawingWithin within(path);
    const Result<interchange::SvgDrawing> read = interchange::readSvg(content.toStdString());
    if (!read) return {};
    const doc::Document& drawing = *read->document;
    const double longer = std::max(drawing.width(), drawing.height());
    if (!(std::min(drawing.width(), drawing.height()) > 0)) return {};
    const double scale = std::min(kDotsPerPoint, kLargestDrawing / longer);
    QImage image(static_cast<int>(std::ceil(drawing.width() * scale)),
                 static_cast<int>(std::ceil(drawing.height() * scale)), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return {};
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    DocumentPainter(drawing, folder)
        .paint(&painter, QTransform(scale, 0, 0, -scale, 0, drawing.height() * scale), image.rect(), {});
    return image;
}

bool isDrawing(const QByteArray& content) {
    const QByteArray start = content.left(1024).trimmed();
    return start.startsWith('<') || start.startsWith("\xef\xbb\xbf<");
}

QImage imageOf(QByteArray content, const QString& path, const QString& folder) {
    if (isDrawing(content)) return imageOfDrawing(content, path, folder);
    QBuffer buffer(&content);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const QByteArray format = reader.format();
    if (std::find(std::begin(kFormats), std::end(kFormats), format) == std::end(kFormats)) return {};
    const QSize size = reader.size();
    if (!(static_cast<double>(size.width()) * size.height() <= kMostPixels)) return {};
    return reader.read();
}

Result<QByteArray> contentOf(const QString& path) {
    const Result<std::string> read = files::readFile(QFile::encodeName(path).toStdString(), kLargestFile);
    if (!read) return read.error();
    return QByteArray::fromStdString(*read);
}

}  // namespace

Result<QImage> readLinkedImage(const QString& href, const QString& folder) {
    const QString link = href.trimmed();
    if (link.startsWith(QLatin1String("data:"))) {
        const qsizetype comma = link.indexOf(QLatin1Char(','));
        const QByteArray raw = QByteArray::fromPercentEncoding(link.mid(comma + 1).toLatin1());
        const bool isBase64 = link.left(comma).endsWith(QLatin1String(";base64"));
        const QImage image = imageOf(isBase64 ? QByteArray::fromBase64(raw) : raw, {}, folder);
        if (image.isNull()) return makeError(ErrorCode::kImageLeftOut, {"data:"});
        return image;
    }
    const QUrl url(link);
    const QDir from(folder);
    const QString name = url.isLocalFile() ? url.toLocalFile() : QUrl::fromPercentEncoding(link.toUtf8());
    // A name may have a % of its own.
    for (const QString& path : {from.absoluteFilePath(name), from.absoluteFilePath(link)}) {
        if (!QFileInfo(path).isFile()) continue;
        const Result<QByteArray> content = contentOf(path);
        if (!content) break;
        const QImage image = imageOf(*content, QFileInfo(path).canonicalFilePath(), QFileInfo(path).absolutePath());
        if (image.isNull()) break;
        return image;
    }
    return makeError(ErrorCode::kImageLeftOut, {link.toStdString()});
}

}  // namespace quorvel::render
