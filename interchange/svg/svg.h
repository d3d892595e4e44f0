// Drawings as SVG files. Reading keeps the file's text; saving splices what has changed into it, so that every other
// byte stays.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "document/document.h"

namespace quorvel::interchange {

struct SvgDrawing {
    std::unique_ptr<doc::Document> document;
    std::vector<Error> warnings;            // what is kept but not understood, each kind once, in the order of codes
    std::vector<std::string> missingFonts;  // families that texts ask for first, in alphabetical order
    std::string rulerUnit;  // "mm", "in", "cm", "pt", "px" or "pc", from the page's size; "pt" when unclear
};

// The bytes of a file, also compressed by gzip and in other encodings than UTF-8. A hostile or damaged file gives an
// error, with its line and element where there is one.
Result<SvgDrawing> readSvg(std::string bytes);
// Errors and warnings name the path; "-" is the standard input.
Result<SvgDrawing> readSvgFile(const std::string& path);

// A drawing that is in no file yet, without layers. Sides in points.
std::unique_ptr<doc::Document> newDrawing(float width, float height);

// Texts of the document's paints, number 1 first.
const std::vector<std::string>& paintTexts(const doc::Document& document);

// The whole text with the document's changes spliced in, UTF-8; the text itself when nothing has changed. A document
// without a source is written anew. An empty unit is the one that was read, or "pt".
std::string writeSvg(const doc::Document& document, std::string_view rulerUnit = "");
struct SaveOptions {
    bool replacesReadOnly = false;  // else kReadOnlyFile
};
// In the encoding of the file that was read; compressed when the path ends in .svgz, or in neither that nor .svg and
// the file that was read was. Beside the target, read back when it was changed, then renamed over the target. An error
// names the path, and the target is as it was.
Status saveSvgFile(const doc::Document& document, const std::string& path, std::string_view rulerUnit,
                   const SaveOptions& options = {});

}  // namespace quorvel::interchange
