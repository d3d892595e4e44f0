// Outlines of glyphs, each read once from its font and scaled to each text.
#pragma once

#include <QPainterPath>
#include <cstdint>

#include "fonts/faces.h"

namespace quorvel::render {

// At size 1, y up, with the face's slant. Good until the next call.
const QPainterPath& glyphOutline(const fonts::Face& face, std::uint32_t glyph);

}  // namespace quorvel::render
