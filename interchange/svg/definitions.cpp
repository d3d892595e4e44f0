#include "interchange/svg/definitions.h"

#include <algorithm>
#include <array>

#include "svg/markup/element_spans.h"
#include "svg/markup/start_tag.h"

namespace quorvel::interchange {
namespace {

std::string_view localPart(std::string_view name) { return name.substr(name.find(':') + 1); }

// Style sheets and scripts need no name to be of use.
bool mayBeReferredTo(std::string_view element) {
    return std::ranges::any_of(svg::allElements(element), [&](const svg::ElementSpan& span) {
        const svg::StartTag tag(element.substr(span.begin, span.tagEnd - span.begin));
        const std::string_view name = localPart(tag.name());
        return name == "style" || name == "script" || name == "font" || tag.attribute("id");
    });
}

}  // namespace

bool isDefinition(std::string_view name) {
    static constexpr std::array<std::string_view, 20> kNames = {
        "clipPath", "color-profile",  "cursor",     "defs",  "filter", "font",          "font-face",
        "hatch",    "linearGradient", "marker",     "mask",  "mesh",   "meshgradient",  "pattern",
        "script",   "solidColor",     "solidcolor", "style", "symbol", "radialGradient"};
    return std::ranges::find(kNames, name) != kNames.end();
}

std::string definitionsIn(std::string_view content) {
    std::string found;
    for (;;) {
        const std::vector<svg::ElementSpan> spans = svg::allElements(content);
        if (spans.empty()) return found;
        const svg::ElementSpan& first = spans.front();
        const std::string_view element = content.substr(first.begin, first.end - first.begin);
        const svg::StartTag tag(element.substr(0, first.tagEnd - first.begin));
        if (isDefinition(localPart(tag.name())) && mayBeReferredTo(element)) found += element;
        content.remove_prefix(first.end);
    }
}

}  // namespace quorvel::interchange
