// What SVG has no word for in a text, as the value of one attribute: a fingerprint of what SVG alone says, then the
// frame's exact matrix, its wording and its runs where they differ from that.
#pragma once

#include <string>
#include <string_view>

#include "document/document.h"
#include "interchange/svg/paint.h"

namespace quorvel::interchange {

bool sameMatrix(const RealMatrix& a, const RealMatrix& b);

// Begins the attribute: `plain` is the text as SVG alone says it.
std::string fingerprintOf(const doc::TextData& plain);
void appendMatrix(std::string* attribute, const RealMatrix& matrix);
void appendWording(std::string* attribute, const doc::TextData& text, const PaintSources& sources);
// The whole attribute of a text that differs from what SVG says by its matrix at most; empty when it does not.
std::string exactMatrix(const doc::TextData& text, const RealMatrix& plain);

// Puts what the attribute says into the text that SVG alone says. Damaged or outdated attributes change nothing.
void applyExact(std::string_view attribute, const svg::Affine& toDocument, PaintLookup* paints, doc::TextData* text);

}  // namespace quorvel::interchange
