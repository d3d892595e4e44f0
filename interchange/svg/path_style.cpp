// Widths and dashes are scaled between the element's user units and points; a property is written only where it differs
// from what is in effect.
#include "interchange/svg/path_style.h"

#include <algorithm>

#include "interchange/svg/art_hash.h"
#include "interchange/svg/source.h"
#include "svg/values/number.h"
#include "svg/values/paint.h"

namespace quorvel::interchange {

AIPathStyle pathStyleOf(const svg::ComputedStyle& style, const svg::Affine& toDocument, PaintLookup* lookup) {
    const double scale = toDocument.scale();
    AIPathStyle result;
    result.fillPaint = style.fill.kind != svg::SvgPaint::kNone;
    result.strokePaint = style.stroke.kind != svg::SvgPaint::kNone;
    result.fill = colorOf(style.fill, style.color, toDocument, lookup);
    result.stroke = colorOf(style.stroke, style.color, toDocument, lookup);
    result.strokeWidth = svg::finiteFloat(style.strokeWidth * scale);
    result.miterLimit = svg::finiteFloat(style.miterLimit);
    result.cap = style.cap;
    result.join = style.join;
    result.dashOffset = svg::finiteFloat(style.dashOffset * scale);
    result.dashCount = style.dashCount;
    for (std::size_t i = 0; i < style.dashCount; ++i) result.dashes[i] = svg::finiteFloat(style.dashes[i] * scale);
    return result;
}

StyleTable::StyleTable(std::vector<doc::StylePtr>* styles) : styles_(styles) {
    for (std::size_t i = 0; i < styles->size(); ++i) {
        ArtHash print;
        print.add(*(*styles)[i]);
        byFingerprint_.try_emplace(print.value(), static_cast<std::int32_t>(i));
    }
}

std::int32_t StyleTable::add(const AIPathStyle& style) {
    ArtHash print;
    print.add(style);
    const auto [row, added] = byFingerprint_.try_emplace(print.value(), static_cast<std::int32_t>(styles_->size()));
    if (added) styles_->push_back(std::make_shared<const AIPathStyle>(style));
    return row->second;
}

// --- writing -------------------------------------------------------------------------------------------------------

std::vector<StyleProperty> styleProperties(const AIPathStyle& style, const AIPathStyle* inForce, double scale,
                                           const PaintSources& sources) {
    std::vector<StyleProperty> properties;
    const auto number = [](double value) {
        std::string text;
        svg::appendNumber(&text, value);
        return text;
    };
    const auto length = [&](float value) { return number(svg::localLength(scale, value)); };
    const std::string fill = cssPaint(style.fillPaint != 0, style.fill, sources);
    const std::string stroke = cssPaint(style.strokePaint != 0, style.stroke, sources);
    if (!inForce || fill != cssPaint(inForce->fillPaint != 0, inForce->fill, sources))
        properties.push_back({"fill", fill});
    if (!inForce || stroke != cssPaint(inForce->strokePaint != 0, inForce->stroke, sources))
        properties.push_back({"stroke", stroke});
    if (!inForce || style.strokeWidth != inForce->strokeWidth)
        properties.push_back({"stroke-width", length(style.strokeWidth)});
    if (!inForce || style.miterLimit != inForce->miterLimit)
        properties.push_back({"stroke-miterlimit", number(svg::localLength(1, style.miterLimit))});
    if ((!inForce || style.cap != inForce->cap) && style.cap >= 0 && style.cap < 3)
        properties.push_back({"stroke-linecap", std::string(svg::kCapWords[static_cast<std::size_t>(style.cap)])});
    if ((!inForce || style.join != inForce->join) && style.join >= 0 && style.join < 3)
        properties.push_back({"stroke-linejoin", std::string(svg::kJoinWords[static_cast<std::size_t>(style.join)])});
    const int dashCount = std::clamp(style.dashCount, 0, 6);
    const bool sameDashes = inForce && inForce->dashCount == style.dashCount &&
                            std::equal(style.dashes, style.dashes + dashCount, inForce->dashes);
    if (!sameDashes) {
        std::string dashes;
        for (int i = 0; i < dashCount; ++i) {
            if (i > 0) dashes += ',';
            dashes += length(style.dashes[i]);
        }
        properties.push_back({"stroke-dasharray", dashes.empty() ? "none" : dashes});
    }
    if (!inForce || style.dashOffset != inForce->dashOffset)
        properties.push_back({"stroke-dashoffset", length(style.dashOffset)});
    return properties;
}

std::uint8_t unmodelledProperties(const svg::StyleTable& styles, std::uint32_t style) {
    const svg::PaintStyle& paint = styles.paint(style);
    const svg::TextStyle& text = styles.text(style);
    unsigned found = 0;
    if (paint.fillOpacity != 1) found |= kFillOpacity;
    if (paint.strokeOpacity != 1) found |= kStrokeOpacity;
    if (!std::ranges::all_of(text.markers, &std::string_view::empty)) found |= kMarkers;
    if (text.letterSpacing != 0 || text.wordSpacing != 0) found |= kLetterSpacing;
    if (!text.visible) found |= kInvisible;
    return static_cast<std::uint8_t>(found);
}

std::vector<StyleProperty> resetProperties(std::uint8_t unmodelledProperties) {
    std::vector<StyleProperty> properties;
    if (unmodelledProperties & kFillOpacity) properties.push_back({"fill-opacity", "1"});
    if (unmodelledProperties & kStrokeOpacity) properties.push_back({"stroke-opacity", "1"});
    if (unmodelledProperties & kMarkers) properties.push_back({"marker", "none"});
    if (unmodelledProperties & kLetterSpacing) {
        properties.push_back({"letter-spacing", "normal"});
        properties.push_back({"word-spacing", "normal"});
    }
    if (unmodelledProperties & kInvisible) properties.push_back({"visibility", "visible"});
    return properties;
}

std::string joinProperties(const std::vector<StyleProperty>& properties) {
    std::string text;
    for (const StyleProperty& property : properties) {
        if (!text.empty()) text += ';';
        text += std::string(property.name) + ":" + property.value;
    }
    return text;
}

}  // namespace quorvel::interchange
