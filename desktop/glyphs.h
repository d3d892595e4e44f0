// Outlines of texts: each character stands where the host's measure puts it, so that a text is as wide on the canvas as
// the plug-in has reckoned.
#pragma once

#include <QPainterPath>
#include <vector>

#include "host/document.h"

namespace quorvel::desktop {

// What one run's features paint, in the text's own space (x along the baseline, y up).
struct TextPiece {
    QPainterPath outline;
    const host::CharFeatures* features = nullptr;
};
std::vector<TextPiece> TextPieces(const host::TextData& text);

}  // namespace quorvel::desktop
