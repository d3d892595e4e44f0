// The frame that an image or another element of its kind has by its attributes.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "svg/tree/tree.h"

namespace quorvel::svg {

// In the element's user space. A side that is not given is nothing.
struct Frame {
    double x = 0, y = 0;
    std::optional<double> width, height;
};
// text: the one in which the tree's offsets count.
Frame frameOf(const Tree& tree, std::string_view text, std::int32_t element);

}  // namespace quorvel::svg
