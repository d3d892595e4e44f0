// Looking up by id, and paints that refer to other elements. The index of ids is made when it is first asked for: most
// drawings never ask.
#include <cmath>
#include <cstring>
#include <numbers>

#include "interchange/svg/art_loader.h"
#include "svg/values/length.h"
#include "svg/values/number.h"

namespace quorvel::interchange {

std::string_view localName(const pugi::xml_node& element) {
    const std::string_view name = element.name();
    return name.substr(name.find(':') + 1);
}

pugi::xml_node SvgIds::find(std::string_view id) {
    if (!indexed_) {
        indexed_ = true;
        for (pugi::xml_node node = root_; node;) {
            if (const pugi::xml_attribute own = node.attribute("id")) byId_.try_emplace(own.value(), node);
            if (node.first_child()) {
                node = node.first_child();
                continue;
            }
            while (node && node != root_ && !node.next_sibling()) node = node.parent();
            node = node == root_ ? pugi::xml_node() : node.next_sibling();
        }
    }
    const auto found = byId_.find(id);
    return found == byId_.end() ? pugi::xml_node() : found->second;
}

std::string_view hrefId(const pugi::xml_node& element) {
    for (const pugi::xml_attribute& attribute : element.attributes()) {
        const std::string_view name = attribute.name();
        if (name.substr(name.find(':') + 1) != "href") continue;
        const std::string_view value = svg::trimmed(attribute.value());
        if (value.starts_with('#')) return value.substr(1);
    }
    return {};
}

namespace {

// Any number of gradients may take their stops from one: what would be long to look through each time is none.
bool isModest(const pugi::xml_node& gradient) {
    constexpr int kMostAttributes = 64;
    constexpr std::size_t kLongestValue = 4096;
    int count = 0;
    for (const pugi::xml_attribute& attribute : gradient.attributes()) {
        if (++count > kMostAttributes || ::strnlen(attribute.value(), kLongestValue) == kLongestValue) return false;
    }
    return true;
}

// An attribute of a gradient, or of the gradient that it takes its stops from.
pugi::xml_attribute inherited(pugi::xml_node gradient, const char* name, SvgIds* ids) {
    constexpr int kLongestChain = 16;
    for (int i = 0; i < kLongestChain && gradient && isModest(gradient); ++i) {
        if (const pugi::xml_attribute found = gradient.attribute(name)) return found;
        gradient = ids->find(hrefId(gradient));
    }
    return {};
}

double coordinate(const pugi::xml_attribute& attribute, double otherwise) {
    if (!attribute) return otherwise;
    return svg::parseLength(attribute.value(), {1, 16}).value_or(otherwise);
}

SvgGradient readGradient(const pugi::xml_node& gradient, SvgIds* ids) {
    SvgGradient result;
    if (localName(gradient) != "linearGradient") return result;
    result.linear = true;
    result.x1 = coordinate(inherited(gradient, "x1", ids), 0);
    result.y1 = coordinate(inherited(gradient, "y1", ids), 0);
    result.x2 = coordinate(inherited(gradient, "x2", ids), 1);
    result.y2 = coordinate(inherited(gradient, "y2", ids), 0);
    result.inUserSpace = std::string_view(inherited(gradient, "gradientUnits", ids).value()) == "userSpaceOnUse";
    svg::Affine own;
    if (svg::parseTransform(inherited(gradient, "gradientTransform", ids).value(), &own)) result.own = own;
    return result;
}

// Direction of a linear gradient's line in the document.
float angleOf(const SvgGradient& gradient, const svg::Affine& toDocument) {
    if (!gradient.linear) return 0;
    const svg::Affine upright{1, 0, 0, -1, 0, 0};  // a box's own units
    const svg::Affine map = svg::compose(gradient.inUserSpace ? toDocument : upright, gradient.own);
    const double dx = map.x(gradient.x2, gradient.y2) - map.x(gradient.x1, gradient.y1);
    const double dy = map.y(gradient.x2, gradient.y2) - map.y(gradient.x1, gradient.y1);
    if (!std::isfinite(dx) || !std::isfinite(dy)) return 0;
    return static_cast<float>(std::atan2(dy, dx) * 180 / std::numbers::pi) + 0.0F;
}

}  // namespace

SvgPaints::SvgPaints(SvgIds* ids, doc::Document* document) : ids_(*ids), document_(*document) {
    for (const std::string& text : document_.paintSources)
        numbers_.emplace(text, static_cast<std::int32_t>(numbers_.size()) + 1);
}

AIColor SvgPaints::paintOf(std::string_view reference, const svg::Affine& toDocument) {
    const auto [number, added] = numbers_.try_emplace(std::string(reference), 0);
    if (added) {
        document_.paintSources.emplace_back(reference);
        number->second = static_cast<std::int32_t>(document_.paintSources.size());
    }
    const auto [gradient, asked] = gradients_.try_emplace(number->second);
    if (asked) gradient->second = gradientOf(reference);
    AIColor color;
    color.kind = gradient->second ? kGradientPaint : kOtherPaint;
    color.reference = number->second;
    if (gradient->second) color.gradientAngle = angleOf(*gradient->second, toDocument);
    return color;
}

std::optional<SvgGradient> SvgPaints::gradientOf(std::string_view reference) {
    const std::size_t open = reference.find('#');
    const std::size_t close = reference.find_first_of(")\"'", open == std::string_view::npos ? 0 : open);
    if (!reference.starts_with("url(") || open == std::string_view::npos || close == std::string_view::npos)
        return std::nullopt;
    const pugi::xml_node target = ids_.find(reference.substr(open + 1, close - open - 1));
    const std::string_view name = localName(target);
    if (name != "linearGradient" && name != "radialGradient") return std::nullopt;
    return readGradient(target, &ids_);
}

double Viewport::diagonal() const { return std::hypot(width, height) / std::numbers::sqrt2; }

svg::Affine viewBoxMap(const pugi::xml_node& element, const Viewport& viewport, Viewport* box) {
    const std::string_view text = svg::trimmed(element.attribute("viewBox").value());
    const char* at = text.data();
    const char* end = at + text.size();
    double v[4];
    for (double& value : v) {
        if (!svg::readNumber(&at, end, &value)) return {};
        svg::skipSeparator(&at, end);
    }
    double sx = viewport.width / v[2];
    double sy = viewport.height / v[3];
    if (!(v[2] > 0) || !(v[3] > 0) || !(sx > 0) || !(sy > 0)) return {};
    double left = 0;
    double top = 0;
    const std::string_view fit = svg::trimmed(element.attribute("preserveAspectRatio").as_string("xMidYMid meet"));
    if (!fit.starts_with("none")) {
        const bool slice = fit.ends_with("slice");
        sx = sy = slice ? std::max(sx, sy) : std::min(sx, sy);
        const auto share = [&](std::string_view least, std::string_view most) {
            return fit.find(least) != std::string_view::npos ? 0 : fit.find(most) != std::string_view::npos ? 1 : 0.5;
        };
        left = (viewport.width - v[2] * sx) * share("xMin", "xMax");
        top = (viewport.height - v[3] * sy) * share("YMin", "YMax");
    }
    const svg::Affine map{sx, 0, 0, sy, left - v[0] * sx, top - v[1] * sy};
    if (!map.finite()) return {};
    *box = {v[2], v[3]};
    return map;
}

}  // namespace quorvel::interchange
