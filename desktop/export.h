// Drawings on paper: PDF at the page's own size, PNG at a resolution, and the printer.
#pragma once

#include <QString>

#include "host/document.h"

class QPrinter;

namespace quorvel::desktop {

constexpr double kPngResolution = 192;  // dots per inch

// By the name's ending, .pdf or .png; path's folder: where linked pictures lie. False with the cause.
bool ExportDrawing(const host::Document& document, const QString& folder, const QString& path, QString* error);
void PrintDrawing(const host::Document& document, const QString& folder, QPrinter* printer);

}  // namespace quorvel::desktop
