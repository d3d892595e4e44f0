// Runs the recalculation and pairs each dimension with its rebuilt group: groups are rebuilt in walk order, and newer
// art has higher names.
#include "cli/recalculation.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "cli/list.h"

namespace quorvel::cli {

namespace {

constexpr char kRecalculateAction[] = "Recalculate_Dimension_lines";

// What a dimension looks like before or after a rebuild.
struct Portrait {
    RecordedDimension record;
    std::vector<RealPoint> points;  // all anchors and text anchors of its art, the lowest art first
};

void collectPoints(const host::Document& document, host::ArtId id, std::vector<RealPoint>* points) {
    const host::Art& art = *document.find(id);
    if (art.path != nullptr)
        for (const PathSegment& segment : art.path->segments) points->push_back(segment.p);
    if (art.text != nullptr) points->push_back({art.text->matrix.tx, art.text->matrix.ty});
    for (host::ArtId child = art.lastChild; child != 0; child = document.find(child)->above)
        collectPoints(document, child, points);
}

std::vector<Portrait> portraits(const host::Document& document) {
    std::vector<Portrait> all;
    for (RecordedDimension& dimension : listDimensions(document)) {
        if (dimension.kind == "frame") continue;
        Portrait portrait{std::move(dimension), {}};
        collectPoints(document, portrait.record.group, &portrait.points);
        all.push_back(std::move(portrait));
    }
    return all;
}

// The plug-in passes over layers that are hidden or locked; while this lives there are none.
class OpenLayers {
  public:
    explicit OpenLayers(Session& session) : session_(session) {
        for (const host::LayerId id : session.document()->layers()) {
            const host::Layer* layer = session.document()->layer(id);
            if (!layer->visible || !layer->editable) closed_.push_back({id, layer->visible, layer->editable});
        }
        put([](const Closed&) { return std::pair(true, true); });
    }
    ~OpenLayers() {
        put([](const Closed& was) { return std::pair(was.visible, was.editable); });
    }
    OpenLayers(const OpenLayers&) = delete;
    OpenLayers& operator=(const OpenLayers&) = delete;

  private:
    struct Closed {
        host::LayerId layer;
        bool visible, editable;
    };

    template <typename State>
    void put(State state) {
        if (closed_.empty()) return;
        session_.host().edit("Layers", [&](host::Document& document) {
            for (const Closed& closed : closed_) {
                const auto [visible, editable] = state(closed);
                document.setLayerVisible(closed.layer, visible);
                document.setLayerEditable(closed.layer, editable);
            }
            return true;
        });
    }

    Session& session_;
    std::vector<Closed> closed_;
};

void runAction(Session& session) {
    session.user().queueAnswer(true);
    session.host().playAction(kRecalculateAction);
    session.user().takeTranscript();
}

// The rebuilt groups by the group that each replaced.
std::map<host::ArtId, host::ArtId> pairRebuilt(const host::Document& document, const std::vector<Portrait>& before) {
    host::ArtId newest = 0;
    std::vector<host::ArtId> gone, made;
    for (const Portrait& portrait : before) {
        newest = std::max(newest, portrait.record.group);
        if (document.find(portrait.record.group) == nullptr) gone.push_back(portrait.record.group);
    }
    for (const RecordedDimension& dimension : listDimensions(document))
        if (dimension.kind != "frame" && dimension.group > newest) made.push_back(dimension.group);
    std::sort(made.begin(), made.end());
    std::map<host::ArtId, host::ArtId> pairs;
    for (std::size_t i = 0; i < gone.size() && i < made.size(); ++i) pairs[gone[i]] = made[i];
    return pairs;
}

std::string joinedTexts(const RecordedDimension& dimension) {
    std::string joined;
    for (const std::string& text : dimension.texts) joined += (joined.empty() ? "" : " | ") + text;
    return joined;
}

double farthestMove(const std::vector<RealPoint>& before, const std::vector<RealPoint>& after) {
    if (before.size() != after.size()) return INFINITY;
    double farthest = 0;
    for (std::size_t i = 0; i < before.size(); ++i)
        farthest = std::max(farthest, std::hypot(static_cast<double>(after[i].h) - before[i].h,
                                                 static_cast<double>(after[i].v) - before[i].v));
    return farthest;
}

int lostLinks(const RecordedDimension& dimension) {
    return static_cast<int>(
        std::count_if(dimension.links.begin(), dimension.links.end(), [](const LinkedArt& link) { return link.lost; }));
}

DimensionCheck compare(const Portrait& before, const Portrait* after) {
    DimensionCheck check;
    check.group = before.record.group;
    check.svgId = before.record.svgId;
    check.kind = before.record.kind;
    check.shownText = joinedTexts(before.record);
    check.rebuilt = after != nullptr;
    check.rebuiltText = after == nullptr ? check.shownText : joinedTexts(after->record);
    check.moved = after == nullptr ? 0 : farthestMove(before.points, after->points);
    check.lostLinks = lostLinks(before.record);
    return check;
}

}  // namespace

std::vector<DimensionCheck> checkDimensions(Session& session) {
    const host::Document& document = *session.document();
    const std::vector<Portrait> before = portraits(document);
    std::vector<DimensionCheck> checks;
    if (before.empty()) return checks;
    const OpenLayers open(session);
    const std::uint64_t countBefore = document.changeCount();
    runAction(session);
    const std::map<host::ArtId, host::ArtId> pairs = pairRebuilt(document, before);
    std::map<host::ArtId, Portrait> after;
    for (Portrait& portrait : portraits(document)) after[portrait.record.group] = std::move(portrait);
    for (const Portrait& portrait : before) {
        const auto pair = pairs.find(portrait.record.group);
        checks.push_back(compare(portrait, pair == pairs.end() ? nullptr : &after.at(pair->second)));
    }
    if (document.changeCount() != countBefore && document.undoName() != nullptr) session.host().undo();
    return checks;
}

int rebuildDimensions(Session& session, const std::vector<host::ArtId>& groups) {
    if (groups.empty()) return 0;
    const std::vector<Portrait> before = portraits(*session.document());
    const OpenLayers open(session);
    session.host().edit("Select", [&](host::Document& changed) {
        for (const host::ArtId group : groups) changed.setSelected(group, true);
        return true;
    });
    runAction(session);
    const std::map<host::ArtId, host::ArtId> pairs = pairRebuilt(*session.document(), before);
    session.host().edit("Rename", [&](host::Document& changed) {
        for (const Portrait& portrait : before) {
            const auto pair = pairs.find(portrait.record.group);
            if (pair != pairs.end() && !portrait.record.svgId.empty())
                changed.setSvgId(pair->second, portrait.record.svgId);
        }
        return true;
    });
    return static_cast<int>(pairs.size());
}

Json checkJson(const std::string& file, const std::vector<DimensionCheck>& checks) {
    Json json;
    json["file"] = file;
    json["dimensions"] = Json::array();
    for (const DimensionCheck& check : checks) {
        Json entry = {{"id", check.svgId},       {"kind", check.kind},           {"stale", check.stale()},
                      {"text", check.shownText}, {"rebuilt", check.rebuiltText}, {"lostLinks", check.lostLinks}};
        entry["moved"] = std::isfinite(check.moved) ? Json(check.moved) : Json("its art has changed");
        json["dimensions"].push_back(std::move(entry));
    }
    return json;
}

std::string checkText(const std::string& file, const std::vector<DimensionCheck>& checks) {
    std::string out;
    for (const DimensionCheck& check : checks) {
        if (!check.stale()) continue;
        out += file + ": " + (check.svgId.empty() ? "(no id)" : check.svgId) + " " + check.kind + " \"" +
               check.shownText + "\" -> \"" + check.rebuiltText + "\"";
        if (check.moved > kMovedLimit) out += ", moved";
        if (check.lostLinks > 0) out += ", " + std::to_string(check.lostLinks) + " links lost";
        out += '\n';
    }
    return out;
}

}  // namespace quorvel::cli
