// The outlines of paths and basic shapes.
#pragma once

#include "base/result.h"
#include "svg/tree/walk.h"
#include "svg/values/path_data.h"

namespace quorvel::svg {

// Draws the outline of a path or shape, and finishes the builder. An error names what cannot be read; what SVG draws of
// such an element is drawn.
Status drawOutline(const Visit& visit, PathBuilder* builder);

}  // namespace quorvel::svg
