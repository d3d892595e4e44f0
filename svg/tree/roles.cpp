#include "svg/tree/roles.h"

#include <algorithm>
#include <array>

namespace quorvel::svg {
namespace {

constexpr std::array kKinds = {
    ElementKind{"a", Role::kGroup},
    ElementKind{"animate", std::nullopt},
    ElementKind{"animateMotion", std::nullopt},
    ElementKind{"animateTransform", std::nullopt},
    ElementKind{"audio", Role::kForeign},
    ElementKind{"canvas", Role::kForeign},
    ElementKind{"circle", Role::kCircle},
    ElementKind{"clipPath", std::nullopt},
    ElementKind{"color-profile", std::nullopt},
    ElementKind{"cursor", std::nullopt},
    ElementKind{"defs", std::nullopt},
    ElementKind{"desc", std::nullopt},
    ElementKind{"ellipse", Role::kEllipse},
    ElementKind{"filter", std::nullopt},
    ElementKind{"flowRoot", Role::kForeign},
    ElementKind{"font", std::nullopt},
    ElementKind{"font-face", std::nullopt},
    ElementKind{"foreignObject", Role::kForeign},
    ElementKind{"g", Role::kGroup},
    ElementKind{"iframe", Role::kForeign},
    ElementKind{"image", Role::kForeign},
    ElementKind{"line", Role::kLine},
    ElementKind{"linearGradient", std::nullopt},
    ElementKind{"marker", std::nullopt},
    ElementKind{"mask", std::nullopt},
    ElementKind{"metadata", std::nullopt},
    ElementKind{"path", Role::kPath},
    ElementKind{"pattern", std::nullopt},
    ElementKind{"polygon", Role::kPolygon},
    ElementKind{"polyline", Role::kPolyline},
    ElementKind{"radialGradient", std::nullopt},
    ElementKind{"rect", Role::kRect},
    ElementKind{"script", std::nullopt},
    ElementKind{"set", std::nullopt},
    ElementKind{"style", std::nullopt},
    ElementKind{"svg", Role::kViewport},
    ElementKind{"switch", Role::kGroup},
    ElementKind{"symbol", std::nullopt},
    ElementKind{"text", Role::kText},
    ElementKind{"title", std::nullopt},
    ElementKind{"use", Role::kUse},
    ElementKind{"video", Role::kForeign},
    ElementKind{"view", std::nullopt},
};
static_assert(std::ranges::is_sorted(kKinds, {}, &ElementKind::name));

}  // namespace

const ElementKind* elementKind(std::string_view name) {
    const auto row = std::ranges::lower_bound(kKinds, name, {}, &ElementKind::name);
    return row == kKinds.end() || row->name != name ? nullptr : &*row;
}

}  // namespace quorvel::svg
