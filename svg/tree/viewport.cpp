#include "svg/tree/viewport.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "svg/values/length.h"
#include "svg/values/number.h"

namespace quorvel::svg {
namespace {}  // namespace

double Viewport::diagonal() const { return std::hypot(width, height) / std::numbers::sqrt2; }

ViewBox viewBoxOf(const XmlNode& element) {
    return {element.attribute("viewBox").value(), element.attribute("preserveAspectRatio").value()};
}

std::optional<double> lengthAttribute(const XmlNode& element, std::string_view name, double percentOf) {
    const XmlAttribute attribute = element.attribute(name);
    if (!attribute) return std::nullopt;
    return parseLength(attribute.value(), {percentOf});
}

Affine viewBoxMap(const ViewBox& viewBox, const Viewport& viewport, Viewport* size) {
    const std::string_view text = trimmed(viewBox.box);
    const char* at = text.data();
    const char* end = at + text.size();
    double v[4];
    for (double& value : v) {
        if (!readNumber(&at, end, &value)) return {};
        skipSeparator(&at, end);
    }
    double sx = viewport.width / v[2];
    double sy = viewport.height / v[3];
    if (!(v[2] > 0) || !(v[3] > 0) || !(sx > 0) || !(sy > 0)) return {};
    double left = 0;
    double top = 0;
    const std::string_view fit = trimmed(viewBox.fit.empty() ? "xMidYMid meet" : viewBox.fit);
    if (!fit.starts_with("none")) {
        const bool slice = fit.ends_with("slice");
        sx = sy = slice ? std::max(sx, sy) : std::min(sx, sy);
        const auto share = [&](std::string_view least, std::string_view most) {
            return fit.find(least) != std::string_view::npos ? 0 : fit.find(most) != std::string_view::npos ? 1 : 0.5;
        };
        left = (viewport.width - v[2] * sx) * share("xMin", "xMax");
        top = (viewport.height - v[3] * sy) * share("YMin", "YMax");
    }
    const Affine map{sx, 0, 0, sy, left - v[0] * sx, top - v[1] * sy};
    // So far out that numbers on the page would lose their digits, and what is drawn there could not be read again.
    constexpr double kFarthest = kLargestCoordinate;
    if (!map.finite() || std::abs(map.e) > kFarthest || std::abs(map.f) > kFarthest) return {};
    *size = {v[2], v[3]};
    return map;
}

Page readPage(const XmlNode& root) {
    constexpr double kSmallestPage = 1e-3;  // pixels
    constexpr double kLargestPage = 1e7;
    const ViewBox viewBox = viewBoxOf(root);
    const auto sound = [&](double side) { return std::clamp(side, kSmallestPage, kLargestPage); };
    const auto side = [&](std::string_view name) -> double {
        const std::string_view text = root.attribute(name).value();
        if (lengthUnit(text) == "%") return 0;
        const double pixels = parseLength(text, {}).value_or(0);
        return pixels >= kSmallestPage && pixels <= kLargestPage ? pixels : 0;
    };
    Viewport size{side("width"), side("height")};
    Viewport box;
    viewBoxMap(viewBox, {1, 1}, &box);
    // A side that is not given follows the viewBox; without one it is CSS's.
    if (box.width > 0 && size.width > 0 && size.height <= 0) size.height = sound(size.width * box.height / box.width);
    if (box.width > 0 && size.height > 0 && size.width <= 0) size.width = sound(size.height * box.width / box.height);
    if (size.width <= 0) size.width = box.width > 0 ? sound(box.width) : 300;
    if (size.height <= 0) size.height = box.height > 0 ? sound(box.height) : 150;

    Page page;
    page.width = size.width * kPointsPerPixel;
    page.height = size.height * kPointsPerPixel;
    page.viewport = size;
    const Affine inner = viewBoxMap(viewBox, {page.width, page.height}, &page.viewport);
    if (page.viewport.width == size.width && page.viewport.height == size.height && inner == Affine{}) {
        page.map = {kPointsPerPixel, 0, 0, -kPointsPerPixel, 0, page.height};
    } else {
        page.map = compose(Affine{1, 0, 0, -1, 0, page.height}, inner);
    }
    const std::string_view unit = lengthUnit(root.attribute("width").value());
    static constexpr std::string_view kUnits[] = {"mm", "in", "cm", "pt", "px", "pc"};
    page.unit = std::ranges::find(kUnits, unit) != std::end(kUnits) ? unit
                : root.attribute("width") && unit.empty()           ? "px"
                                                                    : "pt";
    return page;
}

}  // namespace quorvel::svg
