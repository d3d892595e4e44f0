// A computed style as CSS, for readers that take texts alone.
#pragma once

#include <string>

#include "svg/css/computed_style.h"

namespace quorvel::svg {

// Declarations of all inherited properties but the markers.
std::string inheritedDeclarations(const ComputedStyle& style);

}  // namespace quorvel::svg
