#include "interchange/svg/paint_lookup.h"

#include <cmath>
#include <numbers>

#include "svg/tree/definitions.h"
#include "svg/values/reference.h"

namespace quorvel::interchange {
namespace {

// Direction of a linear gradient's line in the document, in degrees; 0 of a radial one.
float angleOf(const svg::Gradient& gradient, const svg::Viewport& viewport, const svg::Affine& toDocument) {
    if (gradient.isRadial) return 0;
    const svg::Affine upright{1, 0, 0, -1, 0, 0};  // a box's own units
    const svg::Affine map = svg::compose(gradient.inUserSpace ? toDocument : upright, gradient.map);
    const double across = gradient.inUserSpace ? viewport.width : 1, down = gradient.inUserSpace ? viewport.height : 1;
    const double x1 = gradient.x1.of(across), y1 = gradient.y1.of(down);
    const double x2 = gradient.x2.of(across), y2 = gradient.y2.of(down);
    const double dx = map.x(x2, y2) - map.x(x1, y1);
    const double dy = map.y(x2, y2) - map.y(x1, y1);
    if (!std::isfinite(dx) || !std::isfinite(dy)) return 0;
    return static_cast<float>(std::atan2(dy, dx) * 180 / std::numbers::pi) + 0.0F;
}

}  // namespace

SvgPaints::SvgPaints(SvgSource* source) : source_(*source) {}

AIColor SvgPaints::paintOf(std::string_view reference, const svg::Affine& toDocument) {
    svg::File& file = *source_.tree.file;
    const auto [paint, added] = known_.try_emplace(std::string(reference));
    if (added)
        paint->second = {source_.paintReference(paint->first),
                         file.definitions().gradient(svg::urlFragment(reference))};
    AIColor color;
    color.kind = paint->second.gradient ? kGradientPaint : kOtherPaint;
    color.reference = paint->second.number;
    if (paint->second.gradient)
        color.gradientAngle = angleOf(*paint->second.gradient, file.page().viewport, toDocument);
    return color;
}

}  // namespace quorvel::interchange
