// Everything goes through the painter that draws the canvas, so that paper shows what the screen has shown.
#include "render/export.h"

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <QSaveFile>
#include <algorithm>
#include <cmath>

#include "render/painter.h"

namespace quorvel::render {

namespace {

constexpr double kPointsPerInch = 72;
constexpr double kMostPixels = 4e8;           // of a picture: 1.6 GB
constexpr double kLargestSide = 32767;        // QPainter's own limit
constexpr double kLargestPdfPage = 200 * 72;  // points; PDF 32000-1, annex C.2

QTransform pageTransform(const doc::Document& document, double scale) {
    return {scale, 0, 0, -scale, 0, document.height() * scale};
}

bool exportPdf(const doc::Document& document, const QString& folder, const QString& path, QString* error) {
    if (!(document.width() <= kLargestPdfPage && document.height() <= kLargestPdfPage)) {
        *error = QStringLiteral("the page is larger than PDF allows, 200 inches");
        return false;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        *error = file.errorString();
        return false;
    }
    {
        QPdfWriter writer(&file);
        writer.setPageSize(
            QPageSize(QSizeF(document.width(), document.height()), QPageSize::Point, QString(), QPageSize::ExactMatch));
        writer.setPageMargins({});
        writer.setTitle(QFileInfo(path).completeBaseName());
        const double scale = writer.resolution() / kPointsPerInch;
        QPainter painter(&writer);
        DocumentPainter(document, folder)
            .paint(&painter, pageTransform(document, scale),
                   QRectF(0, 0, document.width() * scale, document.height() * scale), {});
    }
    if (file.commit()) return true;
    *error = file.errorString();
    return false;
}

bool exportPng(const doc::Document& document, const QString& folder, const ExportTarget& target, QString* error) {
    const double scale = target.dotsPerInch / kPointsPerInch;
    const double across = std::max(1.0, std::round(document.width() * scale));
    const double down = std::max(1.0, std::round(document.height() * scale));
    if (!(across <= kLargestSide && down <= kLargestSide && across * down <= kMostPixels)) {
        *error = QStringLiteral("%1 by %2 pixels are too many; take fewer dots per inch")
                     .arg(across, 0, 'f', 0)
                     .arg(down, 0, 'f', 0);
        return false;
    }
    const QSize size(static_cast<int>(across), static_cast<int>(down));
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull()) {
        *error = QStringLiteral("there is no memory for the picture");
        return false;
    }
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        DocumentPainter(document, folder).paint(&painter, pageTransform(document, scale), image.rect(), {});
    }
    image.setDotsPerMeterX(static_cast<int>(std::lround(target.dotsPerInch / 0.0254)));
    image.setDotsPerMeterY(image.dotsPerMeterX());
    QSaveFile file(target.path);
    if (file.open(QIODevice::WriteOnly) && image.save(&file, "PNG") && file.commit()) return true;
    *error = file.errorString();
    return false;
}

}  // namespace

bool exportDrawing(const doc::Document& document, const QString& folder, const ExportTarget& target, QString* error) {
    const QString ending = QFileInfo(target.path).suffix().toLower();
    if (!(document.width() > 0 && document.height() > 0)) {
        *error = QStringLiteral("the page is empty");
        return false;
    }
    if (ending == QLatin1String("pdf")) return exportPdf(document, folder, target.path, error);
    if (ending == QLatin1String("png")) return exportPng(document, folder, target, error);
    *error = QStringLiteral("the name must end in .pdf or .png");
    return false;
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

void printDrawing(const doc::Document& document, const QString& folder, QPrinter* printer) {
    printer->setFullPage(true);
    QPainter painter(printer);
    const QTransform toPaper = printTransform(document, printer->pageLayout(), printer->resolution());
    DocumentPainter(document, folder)
        .paint(&painter, toPaper, toPaper.mapRect(QRectF(0, 0, document.width(), document.height())), {});
}

}  // namespace quorvel::render
