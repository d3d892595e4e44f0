// What is in a definition (a marker, a mask, a pattern's tile, a clip path), opened as a drawing of its own.
#pragma once

#include <memory>

#include "document/document.h"
#include "svg/tree/definitions.h"
#include "svg/tree/file.h"

namespace quorvel::interchange {

// Its user unit is a point, its origin (0, 0), y up as in every document; it shares the file of its drawing. viewport:
// what percentages in it are of. Null when it cannot be read.
std::unique_ptr<doc::Document> openContent(const std::shared_ptr<svg::File>& file, const svg::Content& content,
                                           const svg::Viewport& viewport);

}  // namespace quorvel::interchange
