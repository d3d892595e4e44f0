// Everything goes through the painter that draws the canvas, so that paper shows what the screen has shown.
#include "desktop/export.h"

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

#include "desktop/painter.h"

namespace quorvel::desktop {

namespace {

constexpr double kPointsPerInch = 72;
constexpr double kLargestSide = 32000;  // pixels of a picture

QTransform PageTransform(const host::Document& document, double scale) {
    return {scale, 0, 0, -scale, 0, document.height() * scale};
}

bool ExportPdf(const host::Document& document, const QString& folder, const QString& path, QString* error) {
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
            .paint(&painter, PageTransform(document, scale),
                   QRectF(0, 0, document.width() * scale, document.height() * scale), {});
    }
    if (file.commit()) return true;
    *error = file.errorString();
    return false;
}

bool ExportPng(const host::Document& document, const QString& folder, const QString& path, QString* error) {
    const double wanted = kPngResolution / kPointsPerInch;
    const double scale = std::min(wanted, kLargestSide / std::max(document.width(), document.height()));
    const QSize size(std::max(1, static_cast<int>(std::lround(document.width() * scale))),
                     std::max(1, static_cast<int>(std::lround(document.height() * scale))));
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull()) {
        *error = QStringLiteral("the page is too large for a picture");
        return false;
    }
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        DocumentPainter(document, folder).paint(&painter, PageTransform(document, scale), image.rect(), {});
    }
    image.setDotsPerMeterX(static_cast<int>(scale * kPointsPerInch / 0.0254));
    image.setDotsPerMeterY(image.dotsPerMeterX());
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && image.save(&file, "PNG") && file.commit()) return true;
    *error = file.errorString();
    return false;
}

}  // namespace

bool ExportDrawing(const host::Document& document, const QString& folder, const QString& path, QString* error) {
    const QString ending = QFileInfo(path).suffix().toLower();
    if (ending == QLatin1String("pdf")) return ExportPdf(document, folder, path, error);
    if (ending == QLatin1String("png")) return ExportPng(document, folder, path, error);
    *error = QStringLiteral("the name must end in .pdf or .png");
    return false;
}

void PrintDrawing(const host::Document& document, const QString& folder, QPrinter* printer) {
    QPainter painter(printer);
    const QRectF sheet = printer->pageLayout().paintRectPixels(printer->resolution());
    // At true size where the sheet holds it: a drawing on paper is measured.
    const double trueScale = printer->resolution() / kPointsPerInch;
    const double scale = std::min({trueScale, sheet.width() / document.width(), sheet.height() / document.height()});
    DocumentPainter(document, folder)
        .paint(&painter, PageTransform(document, scale),
               QRectF(0, 0, document.width() * scale, document.height() * scale), {});
}

}  // namespace quorvel::desktop
