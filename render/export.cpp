// Everything goes through the painter that draws the canvas, so that paper shows what the screen has shown.
#include "render/export.h"

#include <QBuffer>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <algorithm>
#include <cmath>

#include "files/file_writer.h"
#include "interchange/svg/source.h"
#include "render/painter.h"

namespace quorvel::render {

namespace {

constexpr double kPointsPerInch = 72;
constexpr double kMostPixels = 3e8;           // of a picture: 1.2 GB, written in eight seconds
constexpr double kLargestSide = 32767;        // QPainter's own limit
constexpr double kLargestPdfPage = 200 * 72;  // points; PDF 32000-1, annex C.2

QTransform pageTransform(const doc::Document& document, double scale) {
    return {scale, 0, 0, -scale, 0, document.height() * scale};
}

Status writeBytes(const ExportTarget& target, const QBuffer& bytes) {
    return files::writeFile(target.file.empty() ? QFile::encodeName(target.path).toStdString() : target.file,
                            {bytes.data().constData(), static_cast<std::size_t>(bytes.size())},
                            {target.replacesReadOnly});
}

// What the drawing's own title element says.
QString titleOf(const doc::Document& document) {
    const interchange::SvgSource* source = interchange::svgSource(document);
    if (source == nullptr) return {};
    std::string title;
    for (const svg::XmlNode& child : source->tree.file->root().children()) {
        if (!child.isElement() || child.localName() != "title") continue;
        for (const svg::XmlNode& text : child.children())
            if (text.isText()) title += text.value();
        break;
    }
    return QString::fromStdString(title).simplified();
}

// With the time that SOURCE_DATE_EPOCH gives, in seconds since 1970, where it is set: then two exports are the same.
// Nothing behind the date moves, since the file has a table of places.
void setPdfDate(QByteArray* pdf) {
    bool isSet = false;
    const qint64 seconds = qgetenv("SOURCE_DATE_EPOCH").toLongLong(&isSet);
    const QByteArray key("/CreationDate (D:");
    const qsizetype at = pdf->indexOf(key) + key.size(), end = pdf->indexOf(')', at);
    constexpr qsizetype kDigits = 14;
    const QDateTime time = QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
    const QByteArray digits = time.toString(QStringLiteral("yyyyMMddHHmmss")).toLatin1();
    if (!isSet || at < key.size() || end < at + kDigits || digits.size() != kDigits) return;
    const QByteArray zone = end - at == kDigits + 1 ? QByteArray("Z") : QByteArray("+00'00'").left(end - at - kDigits);
    pdf->replace(at, end - at, digits + zone);
}

Status exportPdf(const doc::Document& document, DocumentPainter* page, const ExportTarget& target) {
    if (!(document.width() <= kLargestPdfPage && document.height() <= kLargestPdfPage))
        return makeError(ErrorCode::kPageTooLargeForPdf);
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&bytes);
        writer.setPageSize(
            QPageSize(QSizeF(document.width(), document.height()), QPageSize::Point, QString(), QPageSize::ExactMatch));
        writer.setPageMargins({});
        QString title = titleOf(document);
        if (title.isEmpty() && target.path != QLatin1String("-")) title = QFileInfo(target.path).completeBaseName();
        writer.setTitle(title);
        const double scale = writer.resolution() / kPointsPerInch;
        QPainter painter(&writer);
        page->paint(&painter, pageTransform(document, scale),
                    QRectF(0, 0, document.width() * scale, document.height() * scale), {});
    }
    setPdfDate(&bytes.buffer());
    return writeBytes(target, bytes);
}

Status exportPng(const doc::Document& document, DocumentPainter* page, const ExportTarget& target) {
    const double scale = target.dotsPerInch / kPointsPerInch;
    const double across = std::max(1.0, std::round(document.width() * scale));
    const double down = std::max(1.0, std::round(document.height() * scale));
    if (!(across <= kLargestSide && down <= kLargestSide && across * down <= kMostPixels))
        return makeError(ErrorCode::kTooManyPixels,
                         {QString::number(across, 'f', 0).toStdString(), QString::number(down, 'f', 0).toStdString()});
    const QSize size(static_cast<int>(across), static_cast<int>(down));
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull()) return makeError(ErrorCode::kNoPictureMemory);
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        page->paint(&painter, pageTransform(document, scale), image.rect(), {});
    }
    image.setDotsPerMeterX(static_cast<int>(std::lround(target.dotsPerInch / 0.0254)));
    image.setDotsPerMeterY(image.dotsPerMeterX());
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    // The default takes ten seconds for as many pixels as are allowed, and is hardly smaller.
    constexpr double kManyPixels = 5e7;
    constexpr int kFast = 85;
    if (!image.save(&bytes, "PNG", across * down > kManyPixels ? kFast : -1))
        return makeError(ErrorCode::kNoPictureMemory);
    return writeBytes(target, bytes);
}

}  // namespace

Status exportDrawing(const doc::Document& document, const ImageAccess& access, const ExportTarget& target,
                     std::vector<Error>* warnings, ImageDecoder* decoder) {
    QString ending = QFileInfo(target.path).suffix().toLower();
    if (ending != QLatin1String("pdf") && ending != QLatin1String("png") && !target.ending.isEmpty())
        ending = target.ending;
    if (!(document.width() > 0 && document.height() > 0)) return makeError(ErrorCode::kPageEmpty);
    DocumentPainter page(document, PaintResources::of(access, decoder), {});
    Status exported = makeError(ErrorCode::kExportEnding);
    if (ending == QLatin1String("pdf")) exported = exportPdf(document, &page, target);
    if (ending == QLatin1String("png")) exported = exportPng(document, &page, target);
    if (warnings != nullptr) *warnings = page.warnings();
    return exported;
}

// A drawing on paper is measured: true size goes before the margins, which a sheet's frame keeps clear by itself.
QTransform printTransform(const doc::Document& document, const QPageLayout& paper, int dotsPerInch) {
    constexpr double kPaperTolerance = 2;  // points; printers' sheets are whole points, and some a little short
    const double scale = dotsPerInch / kPointsPerInch;
    const QRectF within = paper.paintRect(QPageLayout::Point), whole = paper.fullRect(QPageLayout::Point);
    const QSizeF page(document.width(), document.height());
    const auto holds = [&](const QRectF& sheet) {
        return page.width() <= sheet.width() + kPaperTolerance && page.height() <= sheet.height() + kPaperTolerance;
    };
    double fit = 1;
    QPointF corner = within.topLeft();
    if (!holds(within) && holds(whole))
        corner = whole.center() - QPointF(page.width(), page.height()) / 2;
    else if (!holds(within))
        fit = std::min(within.width() / page.width(), within.height() / page.height());
    return pageTransform(document, fit * scale) * QTransform::fromTranslate(corner.x() * scale, corner.y() * scale);
}

void printDrawing(const doc::Document& document, const ImageAccess& access, QPrinter* printer, ImageDecoder* decoder) {
    printer->setFullPage(true);
    QPainter painter(printer);
    const QTransform toPaper = printTransform(document, printer->pageLayout(), printer->resolution());
    DocumentPainter(document, PaintResources::of(access, decoder), {})
        .paint(&painter, toPaper, toPaper.mapRect(QRectF(0, 0, document.width(), document.height())), {});
}

}  // namespace quorvel::render
