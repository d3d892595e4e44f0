// What the elements of SVG are to a drawing, by their names.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "svg/tree/tree.h"

namespace quorvel::svg {

struct ElementKind {
    std::string_view name;
    std::optional<Role> role;  // nothing: it is not drawn where it is
};

// By the name without prefix; null for a name that SVG does not have.
const ElementKind* elementKind(std::string_view name);

}  // namespace quorvel::svg
