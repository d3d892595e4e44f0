// Elements of a drawing whose markup has changed, read again in their places.
#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "interchange/svg/source.h"

namespace quorvel::interchange {

// The elements, in rising order and none in another, have new markup in the source's text, at their offsets. What they
// refer to by id is looked up in the file as it was read: that is parsed again at most once, and only when they hold
// use elements or paints that were not asked for before. offsetNow: from the file to the source's text. False when one
// does not read as the same elements in the same order; then the source is not to be used.
[[nodiscard]] bool rereadElements(std::span<const std::int32_t> elements,
                                  const std::function<std::uint32_t(std::uint32_t)>& offsetNow, SvgSource* source);

}  // namespace quorvel::interchange
