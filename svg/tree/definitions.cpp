#include "svg/tree/definitions.h"

#include <algorithm>
#include <numbers>
#include <optional>
#include <utility>

#include "svg/tree/file.h"
#include "svg/values/length.h"
#include "svg/values/number.h"

namespace quorvel::svg {
namespace {

constexpr std::size_t kLongestChain = 16;

// "45", "45deg", "0.25turn"; 0 for what is no angle.
double degrees(std::string_view word) {
    static constexpr std::pair<std::string_view, double> kUnits[] = {
        {"grad", 0.9}, {"deg", 1}, {"rad", 180 / std::numbers::pi}, {"turn", 360}};
    for (const auto& [unit, degrees] : kUnits)
        if (word.ends_with(unit))
            return readWholeNumber(word.substr(0, word.size() - unit.size())).value_or(0) * degrees;
    return readWholeNumber(word).value_or(0);
}

// A length, or where the reference point is within a side by name.
double referencePoint(const XmlAttribute& attribute, double begin, double side) {
    const std::string_view word = attribute.value();
    if (word == "left" || word == "top") return begin;
    if (word == "center") return begin + side / 2;
    if (word == "right" || word == "bottom") return begin + side;
    return parseLength(word, {side}).value_or(0);
}

}  // namespace

XmlNode Definitions::find(std::string_view id, std::string_view kind) {
    const XmlNode node = file_.find(id);
    return node.localName() == kind ? node : XmlNode();
}

void Definitions::forgetMarkup() {
    patterns_.clear();
    clipPaths_.clear();
    masks_.clear();
    markers_.clear();
}

bool Definitions::readContent(const XmlNode& node, Content* content) {
    ComputedStyle style;
    if (!file_.cascade().computeInPlace(node, file_.page().viewport.diagonal(), &style)) return false;
    *content = {node, style.number};
    return true;
}

const ClipPath* Definitions::clipPath(std::string_view id) {
    return lookUp(&clipPaths_, id, [&]() -> std::unique_ptr<ClipPath> {
        const XmlNode node = find(id, "clipPath");
        auto clip = std::make_unique<ClipPath>();
        if (!node || !readContent(node, &clip->content)) return nullptr;
        clip->inBox = node.attribute("clipPathUnits").value() == "objectBoundingBox";
        Affine map;
        if (parseTransform(node.attribute("transform").value(), &map)) clip->map = map;
        clip->clippedBy = file_.styles().element(clip->content.style).clipPath;
        return clip;
    });
}

const Mask* Definitions::mask(std::string_view id) {
    return lookUp(&masks_, id, [&]() -> std::unique_ptr<Mask> {
        const XmlNode node = find(id, "mask");
        auto mask = std::make_unique<Mask>();
        if (!node || !readContent(node, &mask->content)) return nullptr;
        mask->inBox = node.attribute("maskContentUnits").value() == "objectBoundingBox";
        mask->type = file_.styles().element(mask->content.style).maskType;
        return mask;
    });
}

const Marker* Definitions::marker(std::string_view id) {
    return lookUp(&markers_, id, [&]() -> std::unique_ptr<Marker> {
        const XmlNode node = find(id, "marker");
        return node ? readMarker(node) : nullptr;
    });
}

std::unique_ptr<Marker> Definitions::readMarker(const XmlNode& node) {
    auto marker = std::make_unique<Marker>();
    marker->size = {lengthAttribute(node, "markerWidth", 0).value_or(3),
                    lengthAttribute(node, "markerHeight", 0).value_or(3)};
    if (!(marker->size.width > 0) || !(marker->size.height > 0) || !readContent(node, &marker->content)) return nullptr;
    marker->inner = marker->size;
    const Affine fit = viewBoxMap(viewBoxOf(node), marker->size, &marker->inner);
    Affine inverse;
    if (!invert(fit, &inverse)) return nullptr;
    const double x = referencePoint(node.attribute("refX"), inverse.x(0, 0), marker->inner.width);
    const double y = referencePoint(node.attribute("refY"), inverse.y(0, 0), marker->inner.height);
    marker->left = -fit.x(x, y);
    marker->top = -fit.y(x, y);
    marker->map = compose(Affine{1, 0, 0, 1, marker->left, marker->top}, fit);
    marker->isClipped = file_.styles().element(marker->content.style).overflow != Overflow::kVisible;
    marker->byStroke = node.attribute("markerUnits").value() != "userSpaceOnUse";
    const std::string_view orient = node.attribute("orient").value();
    if (orient == "auto") marker->turn = Marker::Turn::kAlong;
    if (orient == "auto-start-reverse") marker->turn = Marker::Turn::kAlongReversedAtStart;
    marker->angle = degrees(orient);
    return marker;
}

const Pattern* Definitions::pattern(std::string_view id) {
    return lookUp(&patterns_, id, [&]() -> std::unique_ptr<Pattern> {
        const XmlNode node = find(id, "pattern");
        return node ? readPattern(node) : nullptr;
    });
}

std::unique_ptr<Pattern> Definitions::readPattern(const XmlNode& node) {
    std::vector<XmlNode> chain;  // the pattern, and those from which it takes what it does not say
    for (XmlNode one = node; one && chain.size() < kLongestChain; one = find(hrefId(one), "pattern"))
        chain.push_back(one);
    const auto attribute = [&](std::string_view name) {
        for (const XmlNode& one : chain)
            if (const XmlAttribute found = one.attribute(name)) return found;
        return XmlAttribute();
    };
    const auto content = std::ranges::find_if(chain, [](const XmlNode& one) { return bool(one.firstChild()); });
    if (content == chain.end()) return nullptr;
    auto pattern = std::make_unique<Pattern>();
    pattern->inBox = attribute("patternUnits").value() != "userSpaceOnUse";
    pattern->contentInBox = attribute("patternContentUnits").value() == "objectBoundingBox";
    const auto side = [&](std::string_view name) { return parseLength(attribute(name).value(), {1}).value_or(0); };
    pattern->x = side("x");
    pattern->y = side("y");
    pattern->width = side("width");
    pattern->height = side("height");
    if (!(pattern->width > 0) || !(pattern->height > 0)) return nullptr;
    Affine map;
    if (parseTransform(attribute("patternTransform").value(), &map)) pattern->map = map;
    const ViewBox viewBox{attribute("viewBox").value(), attribute("preserveAspectRatio").value()};
    pattern->hasViewBox = !viewBox.box.empty();
    Viewport inner;
    pattern->window = viewBoxMap(viewBox, {pattern->width, pattern->height}, &inner);
    return readContent(*content, &pattern->content) ? std::move(pattern) : nullptr;
}

}  // namespace quorvel::svg
