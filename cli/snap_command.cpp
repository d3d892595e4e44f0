// Prints why the cursor lands where it lands: what each search of a tool's chain finds at a point.
#include <iostream>
#include <nlohmann/json.hpp>

#include "app/dump.h"
#include "app/script.h"
#include "cli/commands.h"
#include "cli/drawing_input.h"
#include "hostapi/records.h"

namespace quorvel::cli {

namespace {

using Json = nlohmann::ordered_json;

// By SnapKind.
constexpr const char* kKindNames[] = {"nothing", "free",    "anchor", "intersection",
                                      "path",    "tangent", "normal", "center"};
static_assert(std::size(kKindNames) == kSnapKindCount);

std::string kindName(std::int16_t kind) {
    return kind >= 0 && kind < kSnapKindCount ? kKindNames[kind] : std::to_string(kind);
}

std::string outcome(const QuorvelSnapRow& row, const std::string& winner) {
    if (row.wins) return "wins";
    if (!row.on) return row.setting == nullptr ? "is off" : std::string("is off (") + row.setting + ")";
    if (!row.now) return "runs at a later step";
    if (row.kind == kSnapNothing) return "found nothing";
    return "did not run: " + winner + " came before it";
}

Result<RealPoint> pointIn(const std::string& text) {
    const std::size_t comma = text.find(',');
    app::ScriptWord h, v;
    h.text = text.substr(0, comma);
    v.text = comma == std::string::npos ? "" : text.substr(comma + 1);
    const Result<double> across = app::numberIn(h), up = app::numberIn(v);
    for (const Result<double>& number : {across, up})
        if (!number) return Error(number.error()).inFile("--at " + text);
    return RealPoint{static_cast<float>(*across), static_cast<float>(*up)};
}

Result<Json> snapJson(app::HeadlessSession& session, const Options& options, RealPoint at) {
    host::Host& host = session.host();
    const host::ToolRecord* tool = options.tool.empty() ? (host.tools().empty() ? nullptr : &host.tools().front())
                                                        : host.toolByTitle(options.tool);
    if (tool == nullptr) return makeError(ErrorCode::kNoTool, {app::escapedText(options.tool)}).inFile("--tool");
    host.setZoom(static_cast<float>(options.zoom));
    const std::unique_ptr<QuorvelSnapMessage> report = host.snapReport(*tool, at);
    if (report == nullptr) return makeError(ErrorCode::kNoSnapReport);
    Json json;
    json["tool"] = tool->title;
    json["at"] = Json::array({app::shortest(at.h), app::shortest(at.v)});
    json["zoom"] = options.zoom;
    json["point"] = json["at"];
    json["kind"] = "free";
    json["searches"] = Json::array();
    std::string winner;
    for (std::int32_t i = 0; i < report->rowCount; ++i) {
        const QuorvelSnapRow& row = report->rows[i];
        Json entry;
        entry["search"] = row.search;
        entry["setting"] = row.setting == nullptr ? Json(nullptr) : Json(row.setting);
        entry["finds"] = kindName(row.kind);
        entry["point"] = Json::array({app::shortest(row.point.h), app::shortest(row.point.v)});
        entry["art"] = Json::array();
        for (std::int16_t cell = 0; cell < row.cellCount; ++cell) {
            const doc::Art* art = session.document()->find(host.artOfHandle(row.arts[cell]));
            entry["art"].push_back({{"id", art == nullptr ? "" : art->name}, {"index", row.indices[cell]}});
        }
        entry["outcome"] = outcome(row, winner);
        if (row.wins) {
            winner = row.search;
            json["point"] = entry["point"];
            json["kind"] = entry["finds"];
        }
        json["searches"].push_back(std::move(entry));
    }
    return json;
}

std::string snapText(const Json& report) {
    const auto point = [](const Json& value) { return value[0].dump() + "," + value[1].dump(); };
    std::string out = report["tool"].get<std::string>() + " at " + point(report["at"]) + " lands on " +
                      point(report["point"]) + " (" + report["kind"].get<std::string>() + ")\n";
    for (const Json& search : report["searches"]) {
        std::string line = "  " + search["search"].get<std::string>();
        line.resize(std::max<std::size_t>(line.size(), 18), ' ');
        line += search["outcome"].get<std::string>();
        if (search["finds"] != "nothing") {
            line += ": " + search["finds"].get<std::string>() + " " + point(search["point"]);
            for (const Json& art : search["art"])
                line += "  " + art["id"].get<std::string>() + "[" + art["index"].dump() + "]";
        }
        out += line + '\n';
    }
    return out;
}

}  // namespace

Result<int> snapAt(const Options& options) {
    const Result<RealPoint> at = pointIn(options.at);
    if (!at) return at.error();
    const auto drawing = DrawingSession::open(options, options.file);
    if (!drawing) return drawing.error();
    const Result<Json> report = snapJson((*drawing)->session(), options, *at);
    if (!report) return report.error();
    if (options.isJson)
        std::cout << report->dump(1, ' ', false, Json::error_handler_t::replace) << '\n';
    else
        std::cout << snapText(*report);
    return kExitOk;
}

}  // namespace quorvel::cli
