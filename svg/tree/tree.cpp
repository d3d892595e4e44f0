#include "svg/tree/tree.h"

#include <algorithm>

namespace quorvel::svg {

const Viewport& Tree::viewportIn(std::int32_t number) const {
    for (; number > 0; number = (*this)[number].parent) {
        const auto found = std::ranges::lower_bound(viewports, number, {}, &ElementViewport::element);
        if (found != viewports.end() && found->element == number) return found->size;
    }
    return viewports.front().size;
}

std::int32_t Tree::endOf(std::int32_t number) const {
    auto end = static_cast<std::size_t>(number) + 1;
    while (end < elements.size() && elements[end].parent >= number) ++end;
    return static_cast<std::int32_t>(end);
}

}  // namespace quorvel::svg
