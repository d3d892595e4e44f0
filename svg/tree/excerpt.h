// One element of a file as a file of its own, for readers that take texts alone.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "svg/tree/tree.h"

namespace quorvel::svg {

// A file of one by one point, whose user units are points, that shows the element with what it inherits in its place
// and all that it refers to. Its own transform, opacity, clip path and mask are left out, and it gets this id.
std::string excerptOf(const Tree& tree, std::int32_t element, std::string_view id);

// What markup that refers to elements of the file needs in a file of its own.
struct ExcerptParts {
    std::string namespaces;   // attributes of the root, each behind a blank
    std::string sheets;       // style elements
    std::string definitions;  // elements, a megabyte at most
};
ExcerptParts excerptParts(File* file, const std::string& content);

}  // namespace quorvel::svg
