#include "cli/json_output.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "app/dump.h"

namespace quorvel::cli {

namespace {

using Json = nlohmann::ordered_json;

std::string written(const Json& json) { return json.dump(1, ' ', false, Json::error_handler_t::replace); }

std::string hexadecimal(const std::string& bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += {kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return text;
}

// Names that are no UTF-8 are shown as well as they can be; their bytes go beside them.
Json fileJson(const std::string& file) {
    Json json = {{"file", file}};
    try {
        static_cast<void>(Json(file).dump());
    } catch (const Json::type_error&) {  // a byte that is no UTF-8
        json["fileBytes"] = hexadecimal(file);
    }
    return json;
}

Json pointsJson(const std::vector<DimensionEnd>& ends) {
    Json json = Json::object();
    for (const DimensionEnd& end : ends) json[app::endName(end)] = app::linkWord(end.state);
    return json;
}

}  // namespace

std::string listJson(const std::vector<app::RecordedDimension>& dimensions) {
    Json json = Json::array();
    for (const app::RecordedDimension& dimension : dimensions) {
        Json entry;
        entry["id"] = dimension.name;
        entry["kind"] = dimension.kind;
        entry["layer"] = dimension.layer;
        entry["texts"] = dimension.texts;
        entry["points"] = Json::object();
        for (const auto& [name, point] : dimension.points)
            entry["points"][name] = Json::array({app::shortest(point.h), app::shortest(point.v)});
        entry["links"] = Json::array();
        for (const app::LinkedArt& link : dimension.links)
            entry["links"].push_back(
                {{"from", link.from}, {"object", link.objectId}, {"anchor", link.anchor}, {"art", link.names}});
        if (!dimension.ends.empty()) entry["follows"] = pointsJson(dimension.ends);
        json.push_back(std::move(entry));
    }
    return written(json);
}

std::string informationJson(const std::string& file, const app::DrawingInformation& information,
                            app::Language language) {
    Json json = fileJson(file);
    json["page"] = {{"width", information.pageWidth}, {"height", information.pageHeight}};
    const app::UserUnit& unit = information.unit;
    json["userUnit"] = {{"width", unit.width}, {"height", unit.height}};
    if (!unit.name.empty()) json["userUnit"]["name"] = unit.name;
    if (!unit.scale.empty()) json["scale"] = unit.scale;
    for (const auto& [name, count] : information.counts) json[name] = count;
    json["missingFonts"] = information.missingFonts;
    json["warnings"] = app::warningSentences(information.warnings, language);
    return written(json);
}

std::string drawingsJsonHead() {
    return "{\"version\": " + std::to_string(kDrawingsJsonVersion) + ", \"drawings\": [\n";
}

std::string checkJson(const std::string& file, const std::vector<app::DimensionCheck>& checks) {
    Json json = fileJson(file);
    json["dimensions"] = Json::array();
    for (const app::DimensionCheck& check : checks) {
        Json entry = {{"id", check.name},
                      {"kind", check.kind},
                      {"state", app::truthWord(check.truth)},
                      {"text", check.shownText},
                      {"rebuilt", check.rebuiltText}};
        entry["moved"] = std::isfinite(check.moved) ? Json(check.moved) : Json("redrawn");
        if (!check.canBeRebuilt) entry["damaged"] = true;
        entry["points"] = pointsJson(check.ends);
        json["dimensions"].push_back(std::move(entry));
    }
    return written(json);
}

std::string errorJson(const std::string& file, const std::string& cause) {
    Json json = fileJson(file);
    json["error"] = cause;
    return written(json);
}

}  // namespace quorvel::cli
