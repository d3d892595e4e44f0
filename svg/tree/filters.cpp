#include "svg/tree/filters.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "svg/markup/element_spans.h"
#include "svg/values/length.h"
#include "svg/values/number.h"
#include "svg/values/reference.h"

namespace quorvel::svg {
namespace {

constexpr double kOfAPrimitive = 40;    // nanoseconds of a dot
constexpr double kOfLighting = 150;     // the same
constexpr double kOfAnOctave = 120;     // the same, of turbulence
constexpr double kOfAKernelDot = 4;     // the same, of each dot that a matrix or a brush takes in
constexpr double kOfReferredByte = 20;  // the same, of content that feImage draws
constexpr std::size_t kMostReferences = 24, kMostMarkup = std::size_t{1} << 16, kMostPrimitives = 1'000;

// The numbers of an attribute, one for both where only one is given.
std::array<double, 2> pairOf(const XmlNode& node, std::string_view name, double absent) {
    const std::string_view text = node.attribute(name).value();
    const char* at = text.data();
    const char* const end = at + text.size();
    std::array<double, 2> pair = {absent, absent};
    skipBlanks(&at, end);
    if (!readNumber(&at, end, &pair[0])) return {absent, absent};
    skipSeparator(&at, end);
    if (!readNumber(&at, end, &pair[1])) pair[1] = pair[0];
    return {std::abs(pair[0]), std::abs(pair[1])};
}

void addPrimitive(const XmlNode& node, Filter* filter) {
    const std::string_view name = node.localName();
    if (!name.starts_with("fe")) return;
    filter->pictures += 1;
    filter->ofADot += kOfAPrimitive;
    if (name.ends_with("Lighting")) filter->ofADot += kOfLighting;
    if (name == "feTurbulence") filter->ofADot += kOfAnOctave * pairOf(node, "numOctaves", 1)[0];
    if (name == "feConvolveMatrix") {
        const std::array<double, 2> order = pairOf(node, "order", 3);
        filter->ofADot += kOfAKernelDot * order[0] * order[1];
    }
    if (name == "feMorphology") {
        const std::array<double, 2> radius = pairOf(node, "radius", 0);
        filter->ofADot += kOfAKernelDot * (2 * (radius[0] + radius[1]) + 4);
        filter->ofAScaledDot += kOfAKernelDot * 4 * radius[0] * radius[1];
    }
}

FilterRegion regionOf(const XmlNode& node, const Viewport& viewport) {
    FilterRegion region;
    region.inBox = node.attribute("filterUnits").value() != "userSpaceOnUse";
    const double across = region.inBox ? 1 : viewport.width, down = region.inBox ? 1 : viewport.height;
    const auto read = [&](std::string_view name, double absent, double percentOf) {
        return lengthAttribute(node, name, percentOf).value_or(absent * percentOf);
    };
    region.x = read("x", -0.1, across);
    region.y = read("y", -0.1, down);
    region.width = read("width", 1.2, across);
    region.height = read("height", 1.2, down);
    return region;
}

void addReference(File* file, std::string_view id, Filter* filter) {
    const XmlNode node = file->find(id);
    if (!node || node.localName() != "filter") return;
    filter->regions.push_back(regionOf(node, file->page().viewport));
    for (const XmlNode& child : node.children())
        if (child.isElement()) addPrimitive(child, filter);
}

// The lengths among a function's arguments reach as far as three deviations of a blur.
void addFunction(std::string_view name, std::string_view arguments, double fontSize, Filter* filter) {
    filter->pictures += 1;
    filter->ofADot += 2 * kOfAPrimitive;
    if (name != "blur" && name != "drop-shadow") return;
    for (std::size_t at = 0; at < arguments.size();) {
        const std::size_t end = std::min(arguments.find_first_of(" \t\r\n,", at), arguments.size());
        const LengthContext context{0, fontSize};
        if (const std::optional<double> length = parseLength(arguments.substr(at, end - at), context))
            filter->reach += 3 * std::abs(*length);
        at = end + 1;
    }
}

std::size_t countOf(std::string_view word, std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = text.find(word); at != std::string_view::npos; at = text.find(word, at + 1)) ++count;
    return count;
}

}  // namespace

Filter readFilter(File* file, std::string_view value, double fontSize) {
    Filter filter;
    filter.value = std::string(value);
    for (std::size_t at = 0; at < value.size();) {
        const std::size_t open = value.find('(', at), close = value.find(')', open);
        if (open == std::string_view::npos || close == std::string_view::npos) break;
        const std::string_view name = trimmed(value.substr(at, open - at));
        if (name == "url")
            addReference(file, urlFragment("url" + std::string(value.substr(open, close + 1 - open))), &filter);
        else
            addFunction(name, value.substr(open + 1, close - open - 1), fontSize, &filter);
        at = close + 1;
    }
    filter.parts = excerptParts(file, filter.value);
    const std::string_view markup = filter.parts.definitions;
    const bool refersToDrawn = countOf("feImage", markup) > 0 && countOf("href", markup) > 0;
    if (refersToDrawn) filter.ofADot += kOfReferredByte * static_cast<double>(markup.size());
    filter.isSound = filter.pictures <= kMostPrimitives && markup.size() <= kMostMarkup &&
                     filter.parts.sheets.size() <= kMostMarkup && countOf("href", markup) <= kMostReferences &&
                     (!refersToDrawn || countOf("filter=", markup) + countOf("filter:", markup) == 0);
    return filter;
}

}  // namespace quorvel::svg
