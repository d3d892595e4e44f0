// Drawings as SVG files. Reading keeps the file's text; saving splices what has changed into it, so that every other
// byte stays.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "document/document.h"

namespace quorvel::interchange {

struct SvgReadResult {
    std::unique_ptr<doc::Document> document;  // null on failure
    std::string error;                        // one line, without the file's name
    std::vector<std::string> warnings;        // what is kept but not understood, each kind named once
    std::string rulerUnit;  // "mm", "in", "cm", "pt", "px" or "pc", from the page's size; "pt" when unclear
};

constexpr std::size_t kLargestSvg = std::size_t{512} << 20;
// What is said of a larger file.
std::string tooLargeSvg();

// A hostile or damaged file gives an error and no document. paintSources: texts of paints that have their numbers
// already.
SvgReadResult readSvg(std::string text, std::vector<std::string> paintSources = {});
SvgReadResult readSvgFile(const std::string& path);

// The whole file with the document's changes spliced in; the text itself when nothing has changed. A document without a
// source is written anew. An empty unit is the one that was read, or "pt".
std::string writeSvg(const doc::Document& document, std::string_view rulerUnit = "");
// Beside the target, then renamed over it. False with the cause in *error; the target stays as it was then.
bool saveSvgFile(const doc::Document& document, const std::string& path, std::string_view rulerUnit,
                 std::string* error);

}  // namespace quorvel::interchange
