// Outlines of texts: each character is placed by the host's measure, so that a text is as wide on the canvas as
// the plug-in computed.
#pragma once

#include <QPainterPath>
#include <vector>

#include "document/document.h"

namespace quorvel::render {

// What one run's features paint, in the text's own space (x along the baseline, y up).
struct TextPiece {
    QPainterPath outline;
    const doc::CharFeatures* features = nullptr;
};
std::vector<TextPiece> textPieces(const doc::TextData& text);

}  // namespace quorvel::render
