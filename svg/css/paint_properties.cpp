// How outlines are painted: paints, strokes, opacities.
#include <algorithm>

#include "svg/css/property_readers.h"
#include "svg/values/length.h"
#include "svg/values/number.h"

namespace quorvel::svg {
namespace {

LengthContext widthsOf(const PropertyValue& value, const ComputedStyle& style) {
    return {value.diagonal, style.fontSize};
}

// What is no paint changes nothing. A colour of a profile is the plain one before it (SVG 1.1, 11.2).
void readPaint(const PropertyValue& value, SvgPaint* paint) {
    const SvgPaint read = parsePaint(value.text.substr(0, value.text.find(" icc-color(")));
    const bool isReference = read.kind == SvgPaint::kReference;
    if (isReference && !read.reference.starts_with("url(") && !read.reference.starts_with("context-")) return;
    *paint = read;
    paint->reference = value.styles.keep(read.reference);
}

// The place among the words, which are in the order of the host's numbers.
void readIndex(std::string_view text, std::span<const std::string_view> words, std::uint8_t* index) {
    const auto found = std::ranges::find(words, text);
    if (found != words.end()) *index = static_cast<std::uint8_t>(found - words.begin());
}

}  // namespace

void readFill(const PropertyValue& value, ComputedStyle* style) { readPaint(value, &style->fill); }
void readStroke(const PropertyValue& value, ComputedStyle* style) { readPaint(value, &style->stroke); }

void readColor(const PropertyValue& value, ComputedStyle* style) {
    style->color = parseColor(value.text).value_or(style->color);
}

void readStopColor(const PropertyValue& value, ComputedStyle* style) {
    if (const std::optional<CssColor> color = parseColor(value.text)) {
        style->stopColor = {SvgPaint::kColor, *color, {}};
    } else if (parsePaint(value.text).kind == SvgPaint::kCurrentColor) {
        style->stopColor = {SvgPaint::kCurrentColor, {}, {}};
    }
}

void readStrokeWidth(const PropertyValue& value, ComputedStyle* style) {
    const std::optional<double> width = parseLength(value.text, widthsOf(value, *style));
    if (width && *width >= 0) style->strokeWidth = *width;
}

// Below 1 is no CSS, but the host's own paths may have it.
void readMiterLimit(const PropertyValue& value, ComputedStyle* style) {
    const std::optional<double> limit = readWholeNumber(value.text);
    if (limit && *limit >= 0) style->miterLimit = *limit;
}

void readLineCap(const PropertyValue& value, ComputedStyle* style) { readIndex(value.text, kCapWords, &style->cap); }
void readLineJoin(const PropertyValue& value, ComputedStyle* style) { readIndex(value.text, kJoinWords, &style->join); }

void readDashOffset(const PropertyValue& value, ComputedStyle* style) {
    style->dashOffset = parseLength(value.text, widthsOf(value, *style)).value_or(style->dashOffset);
}

void readDashes(const PropertyValue& value, ComputedStyle* style) {
    std::array<double, 6> dashes{};
    std::uint8_t count = 0;
    const auto isGap = [](char c) { return c == ',' || isBlank(c); };
    const std::string_view text = value.text == "none" ? std::string_view() : value.text;
    for (std::size_t at = 0; at < text.size() && count < dashes.size();) {
        std::size_t end = at;
        while (end < text.size() && !isGap(text[end])) ++end;
        if (end > at) {
            const auto dash = parseLength(text.substr(at, end - at), widthsOf(value, *style));
            if (!dash || !(*dash >= 0)) return;
            dashes[count++] = *dash;
        }
        at = end + 1;
    }
    const bool isSolid = std::ranges::all_of(dashes, [](double dash) { return dash == 0; });
    style->dashes = dashes;
    style->dashCount = isSolid ? 0 : count;
}

// The layers that are named come first, the others behind them in their usual order.
void readPaintOrder(const PropertyValue& value, ComputedStyle* style) {
    static constexpr Keyword<PaintLayer> kLayers[] = {
        {"fill", PaintLayer::kFill}, {"stroke", PaintLayer::kStroke}, {"markers", PaintLayer::kMarkers}};
    std::array<PaintLayer, 3> order{};
    std::size_t count = 0;
    const auto add = [&](PaintLayer layer) {
        const auto end = order.begin() + static_cast<std::ptrdiff_t>(count);
        if (std::find(order.begin(), end, layer) != end) return;
        order[count++] = layer;
    };
    for (std::string_view rest = value.text == "normal" ? std::string_view() : value.text; !rest.empty();) {
        const std::size_t end = std::min(rest.find_first_of(kBlanks), rest.size());
        const auto layer = valueOf<PaintLayer>(rest.substr(0, end), kLayers);
        if (!layer) return;
        add(*layer);
        rest = trimmed(rest.substr(end));
    }
    for (const Keyword<PaintLayer>& layer : kLayers) add(layer.value);
    style->paintOrder = order;
}

std::optional<double> parseShare(std::string_view text) {
    const bool isPercent = text.ends_with('%');
    const std::optional<double> value = readWholeNumber(isPercent ? text.substr(0, text.size() - 1) : text);
    if (!value) return std::nullopt;
    return std::clamp(isPercent ? *value / 100 : *value, 0.0, 1.0);
}

}  // namespace quorvel::svg
