// Drawings on paper: PDF at the page's own size, PNG at a resolution, and the printer.
#pragma once

#include <QPageLayout>
#include <QString>
#include <QTransform>
#include <string>
#include <vector>

#include "base/result.h"
#include "document/document.h"
#include "render/image_decoder.h"

class QPrinter;

namespace quorvel::render {

constexpr double kPngResolution = 192;  // dots per inch

struct ExportTarget {
    QString path;                         // its ending says what it becomes: .pdf or .png
    double dotsPerInch = kPngResolution;  // of PNG
    QString ending = {};                  // what it becomes where the path does not say it: "pdf" or "png"
    std::string file = {};                // the path's bytes, of one that is no UTF-8
    bool replacesReadOnly = false;
};

// warnings: what the export leaves out. decoder: null to decode images in this process; it must not make them wait.
// After an error nothing is left under the target's name that was not there before.
Status exportDrawing(const doc::Document& document, const ImageAccess& access, const ExportTarget& target,
                     std::vector<Error>* warnings = nullptr, ImageDecoder* decoder = nullptr);
// From the document to a printer's dots on the whole sheet: at true size where the paper holds the page, else as large
// as fits between the margins.
QTransform printTransform(const doc::Document& document, const QPageLayout& paper, int dotsPerInch);
void printDrawing(const doc::Document& document, const ImageAccess& access, QPrinter* printer,
                  ImageDecoder* decoder = nullptr);

}  // namespace quorvel::render
