// A colour of the document is written as the shortest CSS that reads back as it, bit for bit; what CSS cannot say goes
// into an attribute of our own.
#include "interchange/svg/paint.h"

#include <algorithm>
#include <cmath>

#include "interchange/svg/art_hash.h"
#include "interchange/svg/own_attributes.h"
#include "svg/values/color.h"
#include "svg/values/number.h"
#include "svg/values/paint.h"

namespace quorvel::interchange {

// Gray where the three channels agree: the drafting tools paint in gray, and it is the same colour.
AIColor colorOf(const svg::CssColor& color) {
    AIColor result;
    if (color.r == color.g && color.g == color.b) {
        result.kind = kGrayPaint;
        result.gray = static_cast<float>(1 - color.r);
    } else {
        result.kind = kRgbPaint;
        result.rgb[0] = static_cast<float>(color.r);
        result.rgb[1] = static_cast<float>(color.g);
        result.rgb[2] = static_cast<float>(color.b);
    }
    return result;
}

AIColor colorOf(const svg::SvgPaint& paint, const svg::CssColor& currentColor, const svg::Affine& toDocument,
                PaintLookup* lookup) {
    switch (paint.kind) {
        case svg::SvgPaint::kColor:
            return colorOf(paint.color);
        case svg::SvgPaint::kCurrentColor:
            return colorOf(currentColor);
        case svg::SvgPaint::kReference:
            return lookup->paintOf(paint.reference, toDocument);
        case svg::SvgPaint::kNone:
            break;
    }
    AIColor none;
    none.gray = 1;
    return none;
}

// --- writing -------------------------------------------------------------------------------------------------------

namespace {

// The byte that stands for exactly this channel, or -1.
int byteOf(double channel, float exact, bool gray) {
    const int byte = static_cast<int>(std::lround(std::clamp(channel, 0.0, 1.0) * 255));
    const double back = byte / 255.0;
    return static_cast<float>(gray ? 1 - back : back) == exact ? byte : -1;
}

void appendPercent(std::string* out, double channel, float exact, bool gray) {
    const double percent = svg::fewestDecimals(channel * 100, [&](double q) {
        const double back = std::clamp(q / 100, 0.0, 1.0);
        return static_cast<float>(gray ? 1 - back : back) == exact;
    });
    svg::appendNumber(out, percent);
    *out += '%';
}

}  // namespace

std::string cssPaint(bool on, const AIColor& color, const PaintSources& sources) {
    if (!on) return "none";
    if (color.kind == kGradientPaint || color.kind == kOtherPaint) {
        const auto number = static_cast<std::size_t>(color.reference);
        if (color.reference > 0 && number <= sources.size()) return sources[number - 1];
        return "#000000";
    }
    const bool gray = color.kind == kGrayPaint;
    const float exact[3] = {gray ? color.gray : color.rgb[0], gray ? color.gray : color.rgb[1],
                            gray ? color.gray : color.rgb[2]};
    std::string hex = "#";
    std::string percent = "rgb(";
    bool hexWorks = true;
    for (int i = 0; i < 3; ++i) {
        const double channel = gray ? 1.0 - exact[i] : exact[i];
        const int byte = byteOf(channel, exact[i], gray);
        hexWorks &= byte >= 0;
        if (byte >= 0) {
            hex += "0123456789abcdef"[byte >> 4];
            hex += "0123456789abcdef"[byte & 15];
        }
        if (i > 0) percent += ',';
        appendPercent(&percent, channel, exact[i], gray);
    }
    return hexWorks ? hex : percent + ")";
}

std::string colorSpec(const AIColor& color) {
    std::string spec;
    const auto add = [&](float value) {
        spec += ':';
        svg::appendNumber(&spec, svg::localLength(1, value));
    };
    switch (color.kind) {
        case kRgbPaint:
            spec = "rgb";
            for (float channel : color.rgb) add(channel);
            break;
        case kGradientPaint:
            spec = "gradient";
            add(color.gradientAngle);
            add(color.gradientHiliteAngle);
            break;
        case kOtherPaint:
            spec = "other";
            break;
        default:
            spec = "gray";
            add(color.gray);
    }
    return spec;
}

std::optional<AIColor> parseColorSpec(std::string_view spec) {
    std::vector<std::string_view> parts;
    for (std::size_t at = 0; at <= spec.size();) {
        const std::size_t end = std::min(spec.find(':', at), spec.size());
        parts.push_back(spec.substr(at, end - at));
        at = end + 1;
    }
    std::vector<float> values;
    for (std::size_t i = 1; i < parts.size(); ++i) {
        const std::optional<double> value = svg::readWholeNumber(parts[i]);
        if (!value) return std::nullopt;
        values.push_back(svg::finiteFloat(*value));
    }
    AIColor color;
    if (parts[0] == "gray" && values.size() == 1) {
        color.gray = values[0];
    } else if (parts[0] == "rgb" && values.size() == 3) {
        color.kind = kRgbPaint;
        std::ranges::copy(values, color.rgb);
    } else if (parts[0] == "gradient" && values.size() == 2) {
        color.kind = kGradientPaint;
        color.gradientAngle = values[0];
        color.gradientHiliteAngle = values[1];
    } else if (parts[0] == "other" && values.empty()) {
        color.kind = kOtherPaint;
    } else {
        return std::nullopt;
    }
    return color;
}

std::string exactPaint(const AIColor& color, const PaintSources& sources) {
    const std::string css = cssPaint(true, color, sources);
    const svg::SvgPaint paint = svg::parsePaint(css);
    if (paint.kind == svg::SvgPaint::kColor && paintsAlike(colorOf(paint.color), color)) return "";
    return encodeBytes(css) + " = " + colorSpec(color);
}

AIColor withExactPaint(const AIColor& plain, const svg::SvgPaint& paint, std::string_view attribute) {
    const std::size_t parting = attribute.rfind(" = ");
    if (parting == std::string_view::npos) return plain;
    const std::string css = decodeBytes(attribute.substr(0, parting));
    if (!(svg::parsePaint(css) == paint)) return plain;
    std::optional<AIColor> exact = parseColorSpec(attribute.substr(parting + 3));
    if (!exact) return plain;
    const bool needsReference = exact->kind == kGradientPaint || exact->kind == kOtherPaint;
    if (needsReference != (paint.kind == svg::SvgPaint::kReference)) return plain;
    exact->reference = plain.reference;
    return *exact;
}

}  // namespace quorvel::interchange
