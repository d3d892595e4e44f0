// Gradients take what they do not say from others. What each element says is read once, however many take from it.
#include <algorithm>
#include <array>
#include <optional>

#include "svg/css/property_readers.h"
#include "svg/tree/definitions.h"
#include "svg/tree/file.h"
#include "svg/values/length.h"
#include "svg/values/number.h"

namespace quorvel::svg {
namespace {

constexpr int kLongestChain = 16;
constexpr std::size_t kLongestValue = 4096;  // of an attribute, in bytes

// A length, or a percentage of what is known where the gradient is used. Nothing for anything else.
std::optional<Coordinate> coordinateOf(const XmlNode& node, std::string_view name) {
    const XmlAttribute attribute = node.attribute(name);
    if (!attribute || attribute.value().size() > kLongestValue) return std::nullopt;
    const std::optional<double> value = parseLength(attribute.value(), {1});
    if (!value) return std::nullopt;
    return Coordinate{*value, lengthUnit(attribute.value()) == "%"};
}

// The places of a gradient's numbers, by the names of their attributes.
struct CoordinateRow {
    std::string_view attribute;
    Coordinate Gradient::*member;
};
constexpr std::array kCoordinates = {CoordinateRow{"fx", &Gradient::fx}, CoordinateRow{"fy", &Gradient::fy},
                                     CoordinateRow{"x1", &Gradient::x1}, CoordinateRow{"y1", &Gradient::y1},
                                     CoordinateRow{"x2", &Gradient::x2}, CoordinateRow{"y2", &Gradient::y2},
                                     CoordinateRow{"cx", &Gradient::cx}, CoordinateRow{"cy", &Gradient::cy},
                                     CoordinateRow{"r", &Gradient::r},   CoordinateRow{"fr", &Gradient::fr}};
constexpr std::size_t kFx = 0, kFy = 1;

bool isGradient(std::string_view name) { return name == "linearGradient" || name == "radialGradient"; }

}  // namespace

// What one element says; nothing where it says nothing.
struct Definitions::GradientPart {
    bool isRadial = false;
    std::array<std::optional<Coordinate>, kCoordinates.size()> coordinates;
    std::optional<bool> inUserSpace;
    std::optional<Affine> map;
    std::optional<Gradient::Spread> spread;
    std::vector<GradientStop> stops;
    std::string href;
};

Definitions::Definitions(File* file) : file_(*file) {}
Definitions::~Definitions() = default;

const Gradient* Definitions::gradient(std::string_view id) {
    return lookUp(&gradients_, id, [&] { return readGradient(id); });
}

const Definitions::GradientPart* Definitions::gradientPart(std::string_view id) {
    return lookUp(&gradientParts_, id, [&]() -> std::unique_ptr<GradientPart> {
        const XmlNode node = file_.find(id);
        return isGradient(node.localName()) ? readGradientPart(node) : nullptr;
    });
}

std::unique_ptr<Definitions::GradientPart> Definitions::readGradientPart(const XmlNode& node) {
    static constexpr Keyword<Gradient::Spread> kSpreads[] = {{"reflect", Gradient::Spread::kReflect},
                                                             {"repeat", Gradient::Spread::kRepeat}};
    auto part = std::make_unique<GradientPart>();
    part->isRadial = node.localName() == "radialGradient";
    for (std::size_t i = 0; i < kCoordinates.size(); ++i)
        part->coordinates[i] = coordinateOf(node, kCoordinates[i].attribute);
    if (const XmlAttribute units = node.attribute("gradientUnits"))
        part->inUserSpace = units.value() == "userSpaceOnUse";
    if (const XmlAttribute transform = node.attribute("gradientTransform")) {
        Affine map;
        part->map = parseTransform(transform.value(), &map) && map.determinant() != 0 ? map : Affine{};
    }
    if (const XmlAttribute spread = node.attribute("spreadMethod"))
        part->spread = valueOf<Gradient::Spread>(spread.value(), kSpreads).value_or(Gradient::Spread::kPad);
    part->href = hrefId(node);
    readStops(node, &part->stops);
    return part;
}

// Style sheets that ask for too much work leave it without stops.
void Definitions::readStops(const XmlNode& gradient, std::vector<GradientStop>* stops) {
    Cascade& cascade = file_.cascade();
    const double diagonal = file_.page().viewport.diagonal();
    ComputedStyle around, style;
    if (!gradient.firstChild() || !cascade.computeInPlace(gradient, diagonal, &around)) return;
    for (const XmlNode& stop : gradient.children()) {
        if (!stop.isElement() || stop.localName() != "stop") continue;
        if (!cascade.compute(stop, around, diagonal, &style)) return stops->clear();
        CssColor color = style.stopColor.kind == SvgPaint::kCurrentColor ? style.color : style.stopColor.color;
        color.a *= style.stopOpacity;
        stops->push_back({parseShare(trimmed(stop.attribute("offset").value())).value_or(0), color});
    }
}

std::unique_ptr<Gradient> Definitions::readGradient(std::string_view id) {
    std::vector<const GradientPart*> chain;  // the gradient, and those from which it takes what it does not say
    for (const GradientPart* part = gradientPart(id); part && chain.size() < kLongestChain;
         part = gradientPart(part->href))
        chain.push_back(part);
    if (chain.empty()) return nullptr;
    auto gradient = std::make_unique<Gradient>();
    gradient->isRadial = chain.front()->isRadial;
    std::array<bool, kCoordinates.size()> isSaid{};
    // The farthest first, so that the nearest has the last word.
    for (auto part = chain.rbegin(); part != chain.rend(); ++part) {
        for (std::size_t i = 0; i < kCoordinates.size(); ++i) {
            if (!(*part)->coordinates[i] || (*part)->isRadial != gradient->isRadial) continue;
            (*gradient).*kCoordinates[i].member = *(*part)->coordinates[i];
            isSaid[i] = true;
        }
        gradient->inUserSpace = (*part)->inUserSpace.value_or(gradient->inUserSpace);
        gradient->map = (*part)->map.value_or(gradient->map);
        gradient->spread = (*part)->spread.value_or(gradient->spread);
        if (!(*part)->stops.empty()) gradient->stops = (*part)->stops;
    }
    if (!isSaid[kFx]) gradient->fx = gradient->cx;
    if (!isSaid[kFy]) gradient->fy = gradient->cy;
    return gradient;
}

}  // namespace quorvel::svg
