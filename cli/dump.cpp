// Walks a document and writes each art as JSON.
#include "cli/dump.h"

#include <charconv>

#include "platform/text.h"

namespace quorvel::cli {

namespace {

Json pointJson(const RealPoint& point) { return Json::array({shortest(point.h), shortest(point.v)}); }

const char* kindName(AIArtType kind) {
    switch (kind) {
        case kGroupArt:
            return "group";
        case kCompoundPathArt:
            return "compound";
        case kPathArt:
            return "path";
        case kTextFrameArt:
            return "text";
        default:
            return "other";
    }
}

Json paintJson(const host::Document& document, bool on, const AIColor& color) {
    if (!on) return nullptr;
    switch (color.kind) {
        case kGrayPaint:
            return {{"kind", "gray"}, {"value", shortest(color.gray)}};
        case kRgbPaint:
            return {{"kind", "rgb"},
                    {"r", shortest(color.rgb[0])},
                    {"g", shortest(color.rgb[1])},
                    {"b", shortest(color.rgb[2])}};
        default:
            break;
    }
    Json paint;
    paint["kind"] = color.kind == kGradientPaint ? "gradient" : "other";
    const std::size_t source = static_cast<std::size_t>(color.reference);
    if (source >= 1 && source <= document.paintSources.size()) paint["source"] = document.paintSources[source - 1];
    if (color.kind == kGradientPaint) {
        paint["angle"] = shortest(color.gradientAngle);
        paint["hiliteAngle"] = shortest(color.gradientHiliteAngle);
    }
    return paint;
}

void addPath(const host::Document& document, const host::PathData& path, Json* json) {
    (*json)["closed"] = path.closed;
    (*json)["guide"] = path.guide;
    Json segments = Json::array();
    for (const PathSegment& segment : path.segments)
        segments.push_back({{"p", pointJson(segment.p)},
                            {"in", pointJson(segment.in)},
                            {"out", pointJson(segment.out)},
                            {"corner", segment.corner != 0}});
    (*json)["segments"] = std::move(segments);
    const AIPathStyle style = path.style == nullptr ? AIPathStyle{} : *path.style;
    (*json)["style"] = {{"fill", paintJson(document, style.fillPaint != 0, style.fill)},
                        {"stroke", paintJson(document, style.strokePaint != 0, style.stroke)},
                        {"width", shortest(style.strokeWidth)},
                        {"miter", shortest(style.miterLimit)}};
}

void addText(const host::Document& document, const host::TextData& text, Json* json) {
    static constexpr const char* kJustify[] = {"left", "right", "center"};
    const RealMatrix& m = text.matrix;
    (*json)["frame"] = static_cast<int>(text.type);
    (*json)["anchor"] = Json::array({shortest(m.tx), shortest(m.ty)});
    (*json)["matrix"] =
        Json::array({shortest(m.a), shortest(m.b), shortest(m.c), shortest(m.d), shortest(m.tx), shortest(m.ty)});
    (*json)["text"] = toUtf8(text.text);
    (*json)["justify"] = kJustify[text.justification];
    Json runs = Json::array();
    std::size_t start = 0;
    for (const host::TextRun& run : text.runs) {
        const std::size_t length = static_cast<std::size_t>(run.length);
        const host::CharFeatures& features = run.features;
        runs.push_back({{"text", toUtf8(text.text.substr(start, length))},
                        {"font", features.font},
                        {"size", shortest(features.size)},
                        {"hscale", shortest(features.horizontalScale)},
                        {"vscale", shortest(features.verticalScale)},
                        {"shift", shortest(features.baselineShift)},
                        {"fill", paintJson(document, features.fillOn, features.fill)},
                        {"stroke", paintJson(document, features.strokeOn, features.stroke)}});
        start += length;
    }
    (*json)["runs"] = std::move(runs);
}

Json artJson(const host::Document& document, host::ArtId id) {
    const host::Art& art = *document.find(id);
    Json json;
    json["kind"] = kindName(art.kind);
    json["id"] = art.svgId;
    json["selected"] = art.selected;
    json["hidden"] = art.hidden;
    json["tags"] = Json::object();
    for (const host::Tag& tag : art.tags) json["tags"][tag.name] = tagText(tag.value);
    const RealRect bounds = document.bounds(id);
    json["bounds"] = bounds.left > bounds.right ? Json(nullptr)
                                                : Json::array({shortest(bounds.left), shortest(bounds.top),
                                                               shortest(bounds.right), shortest(bounds.bottom)});
    if (art.path != nullptr) addPath(document, *art.path, &json);
    if (art.text != nullptr) addText(document, *art.text, &json);
    if (art.kind == kGroupArt || art.kind == kCompoundPathArt) {
        json["children"] = Json::array();
        for (host::ArtId child = art.firstChild; child != 0; child = document.find(child)->below)
            json["children"].push_back(artJson(document, child));
    }
    return json;
}

}  // namespace

double shortest(float value) {
    char digits[64];
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, value);
    double number = 0;
    std::from_chars(digits, end.ptr, number);
    return number;
}

std::string tagText(const std::string& bytes) { return platform::ToUtf8(bytes, platform::kCodePageJapanese); }

std::string toUtf8(const std::u16string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        const bool leads = c >= 0xD800 && c < 0xDC00;
        if (leads && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000)
            c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00);
        else if (c >= 0xD800 && c < 0xE000)
            c = 0xFFFD;
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (c < 0x800) {
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            out += static_cast<char>(0xE0 | (c >> 12));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (c >> 18));
            out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return out;
}

std::string writtenJson(const Json& json) { return json.dump(1, ' ', false, Json::error_handler_t::replace); }

Json dumpDocument(const host::Document& document, const std::string& rulerUnit) {
    Json json;
    json["page"] = {{"width", shortest(document.width())}, {"height", shortest(document.height())}};
    json["ruler"] = rulerUnit;
    json["layers"] = Json::array();
    for (const host::LayerId id : document.layers()) {
        const host::Layer& layer = *document.layer(id);
        Json entry;
        entry["title"] = layer.title;
        entry["visible"] = layer.visible;
        entry["editable"] = layer.editable;
        entry["current"] = document.currentLayer() == id;
        entry["art"] = Json::array();
        const host::Art& root = *document.find(layer.root);
        for (host::ArtId child = root.firstChild; child != 0; child = document.find(child)->below)
            entry["art"].push_back(artJson(document, child));
        json["layers"].push_back(std::move(entry));
    }
    return json;
}

}  // namespace quorvel::cli
