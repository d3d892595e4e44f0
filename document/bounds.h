// The extent of art: the tight box of what is drawn, without stroke, and the box that also holds the control points.
#pragma once

#include <span>

#include "document/document.h"

namespace quorvel::doc {

// Left above right, and so far apart that growing it by a tolerance does not fill it.
RealRect emptyRect();
bool isEmpty(const RealRect& rect);                         // also when a side is no number
RealRect uniteRects(const RealRect& a, const RealRect& b);  // an empty one adds nothing

// Extrema are computed in double and rounded to the nearest float. A closed path ends with the curve to its start.
RealRect pathBounds(std::span<const PathSegment> segments, bool closed);
// Of all anchors and handles, also those that no curve uses.
RealRect pathControlBounds(std::span<const PathSegment> segments);
// The box of the text's advance, 0.8 em above the baseline and 0.2 em below, in the document. Lines end at \r, \n or
// U+0003 and are 1.2 em apart.
RealRect textBounds(const TextData& text);

RealPoint transformPoint(const RealMatrix& matrix, RealPoint point);
// second after first.
RealMatrix concatMatrix(const RealMatrix& first, const RealMatrix& second);
RealRect transformRect(const RealMatrix& matrix, const RealRect& rect);  // the box of its corners
bool isFinite(const RealMatrix& matrix);
bool isFinite(const RealRect& rect);

}  // namespace quorvel::doc
