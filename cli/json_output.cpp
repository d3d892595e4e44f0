#include "cli/json_output.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "app/dump.h"

namespace quorvel::cli {

namespace {

using Json = nlohmann::ordered_json;

std::string written(const Json& json) { return json.dump(1, ' ', false, Json::error_handler_t::replace); }

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
        json.push_back(std::move(entry));
    }
    return written(json);
}

std::string checkJson(const std::string& file, const std::vector<app::DimensionCheck>& checks) {
    Json json;
    json["file"] = file;
    json["dimensions"] = Json::array();
    for (const app::DimensionCheck& check : checks) {
        Json entry = {{"id", check.name},        {"kind", check.kind},           {"stale", check.stale()},
                      {"text", check.shownText}, {"rebuilt", check.rebuiltText}, {"lostLinks", check.lostLinks}};
        entry["moved"] = std::isfinite(check.moved) ? Json(check.moved) : Json("its art has changed");
        json["dimensions"].push_back(std::move(entry));
    }
    return written(json);
}

std::string errorJson(const std::string& file, const std::string& cause) {
    return written({{"file", file}, {"error", cause}});
}

}  // namespace quorvel::cli
