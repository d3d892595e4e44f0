#include "render/image_decoder.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <string>

#include "files/file_reader.h"
#include "interchange/svg/svg.h"
#include "render/paint_resources.h"
#include "render/painter.h"

namespace quorvel::render {

namespace {

constexpr std::size_t kLargestFile = std::size_t{128} << 20;
constexpr double kMostPixels = 1e8;
constexpr int kLargestImage = 512;           // megabytes, while it is decoded
constexpr double kDotsPerPoint = 96.0 / 72;  // of a drawing's picture: CSS pixels
constexpr double kLargestDrawing = 4096;     // dots on its longer side
constexpr std::size_t kDeepestDrawing = 4;
constexpr double kOfAByte = 500;  // of a drawing that is read: nanoseconds
constexpr const char* kFormats[] = {"png", "jpeg", "gif", "webp"};

// At its own size.
DecodedImage drawingImage(const QByteArray& content, const QString& path, ImageAccess access, DrawingsWithin within,
                          std::shared_ptr<PaintBudget> budget) {
    DecodedImage decoded;
    const bool isWithinItself = !path.isEmpty() && std::find(within.begin(), within.end(), path) != within.end();
    if (isWithinItself || within.size() >= kDeepestDrawing) return decoded;
    if (budget != nullptr && !budget->take(double(content.size()) * kOfAByte)) return decoded;
    within.push_back(path);
    if (!path.isEmpty()) access.base = QFileInfo(path).path();
    const Result<interchange::SvgDrawing> read = interchange::readSvg(content.toStdString());
    if (!read) return decoded;
    const doc::Document& drawing = *read->document;
    const double longer = std::max(drawing.width(), drawing.height());
    if (!(std::min(drawing.width(), drawing.height()) > 0)) return decoded;
    const double scale = std::min(kDotsPerPoint, kLargestDrawing / longer);
    QImage image(static_cast<int>(std::ceil(drawing.width() * scale)),
                 static_cast<int>(std::ceil(drawing.height() * scale)), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return decoded;
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    DocumentPainter page(drawing, PaintResources::within(std::move(access), std::move(within), std::move(budget)), {});
    page.paint(&painter, QTransform(scale, 0, 0, -scale, 0, drawing.height() * scale), image.rect(), {});
    decoded.warnings = page.warnings();
    painter.end();
    decoded.image = std::move(image);
    return decoded;
}

bool isDrawing(const QByteArray& content) {
    const QByteArray start = content.left(1024).trimmed();
    return start.startsWith('<') || start.startsWith("\xef\xbb\xbf<");
}

// The decoder fills what is missing with grey. Marks of scans and of the end are in no other bytes but a thumbnail's,
// which come before.
bool isCutOff(const QByteArray& jpeg) { return jpeg.lastIndexOf("\xff\xd9") < jpeg.lastIndexOf("\xff\xda"); }

QImage picture(QByteArray content) {
    QImageReader::setAllocationLimit(kLargestImage);
    QBuffer buffer(&content);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const QByteArray format = reader.format();
    if (std::find(std::begin(kFormats), std::end(kFormats), format) == std::end(kFormats)) return {};
    if (format == "jpeg" && isCutOff(content)) return {};
    const QSize size = reader.size();
    if (!(static_cast<double>(size.width()) * size.height() <= kMostPixels)) return {};
    return reader.read();
}

}  // namespace

DecodedImage decodeImage(const ImageSource& source, const ImageAccess& access, const DrawingsWithin& within,
                         std::shared_ptr<PaintBudget> budget) {
    QByteArray content = source.bytes;
    if (!source.path.isEmpty()) {
        const Result<std::string> read = files::readFile(QFile::encodeName(source.path).toStdString(), kLargestFile);
        if (!read) return {};
        content = QByteArray::fromStdString(*read);
    }
    if (isDrawing(content)) return drawingImage(content, source.path, access, within, std::move(budget));
    return {picture(std::move(content)), {}};
}

}  // namespace quorvel::render
