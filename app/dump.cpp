// Walks a document and writes each art as JSON.
#include "app/dump.h"

#include <charconv>
#include <nlohmann/json.hpp>

#include "host/code_page.h"

namespace quorvel::app {

namespace {

using Json = nlohmann::ordered_json;

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

Json paintJson(const doc::Document& document, bool on, const AIColor& color) {
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
    const std::string text = document.source() ? document.source()->paintText(color.reference) : "";
    if (!text.empty()) paint["source"] = text;
    if (color.kind == kGradientPaint) {
        paint["angle"] = shortest(color.gradientAngle);
        paint["hiliteAngle"] = shortest(color.gradientHiliteAngle);
    }
    return paint;
}

void addPath(const doc::Document& document, const doc::PathData& path, Json* json) {
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

void addText(const doc::Document& document, const doc::TextData& text, Json* json) {
    static constexpr const char* kJustify[] = {"left", "right", "center"};
    const RealMatrix& m = text.matrix;
    (*json)["frame"] = static_cast<int>(text.type);
    (*json)["anchor"] = Json::array({shortest(m.tx), shortest(m.ty)});
    (*json)["matrix"] =
        Json::array({shortest(m.a), shortest(m.b), shortest(m.c), shortest(m.d), shortest(m.tx), shortest(m.ty)});
    (*json)["text"] = host::toUtf8(text.text);
    (*json)["justify"] = kJustify[text.justification];
    Json runs = Json::array();
    std::size_t start = 0;
    for (const doc::TextRun& run : text.runs) {
        const std::size_t length = static_cast<std::size_t>(run.length);
        const doc::CharFeatures& features = run.features;
        runs.push_back({{"text", host::toUtf8(text.text.substr(start, length))},
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

Json artJson(const doc::Document& document, doc::ArtId id) {
    const doc::Art& art = *document.find(id);
    Json json;
    json["kind"] = kindName(art.kind);
    json["id"] = art.name;
    json["selected"] = art.selected;
    json["hidden"] = art.hidden;
    json["tags"] = Json::object();
    for (const doc::Tag& tag : art.tags) json["tags"][tag.name] = host::systemTextToUtf8(tag.value);
    const RealRect bounds = document.bounds(id);
    json["bounds"] = bounds.left > bounds.right ? Json(nullptr)
                                                : Json::array({shortest(bounds.left), shortest(bounds.top),
                                                               shortest(bounds.right), shortest(bounds.bottom)});
    if (art.path != nullptr) addPath(document, *art.path, &json);
    if (art.text != nullptr) addText(document, *art.text, &json);
    if (art.kind == kGroupArt || art.kind == kCompoundPathArt) {
        json["children"] = Json::array();
        for (doc::ArtId child = art.firstChild; child != 0; child = document.find(child)->below)
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

std::string dumpDocument(const doc::Document& document, const std::string& rulerUnit) {
    Json json;
    json["page"] = {{"width", shortest(document.width())}, {"height", shortest(document.height())}};
    json["ruler"] = rulerUnit;
    json["layers"] = Json::array();
    for (const doc::LayerId id : document.layers()) {
        const doc::Layer& layer = *document.layer(id);
        Json entry;
        entry["title"] = layer.title;
        entry["visible"] = layer.visible;
        entry["editable"] = layer.editable;
        entry["current"] = document.currentLayer() == id;
        entry["art"] = Json::array();
        const doc::Art& root = *document.find(layer.root);
        for (doc::ArtId child = root.firstChild; child != 0; child = document.find(child)->below)
            entry["art"].push_back(artJson(document, child));
        json["layers"].push_back(std::move(entry));
    }
    return json.dump(1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace quorvel::app
