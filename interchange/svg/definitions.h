// Elements that show nothing by themselves and that others refer to: gradients, clip paths, markers, style sheets and
// the like.
#pragma once

#include <string>
#include <string_view>

namespace quorvel::interchange {

// By the name without prefix.
bool isDefinition(std::string_view localName);

// Those in an element's content, or in a part of it that is well-formed by itself, that something may refer to.
std::string definitionsIn(std::string_view content);

}  // namespace quorvel::interchange
