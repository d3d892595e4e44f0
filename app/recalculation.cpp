// Runs the recalculation and pairs each dimension with its rebuilt group: groups are rebuilt in walk order, and newer
// art has higher names.
#include "app/recalculation.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "app/dimension_list.h"

namespace quorvel::app {

namespace {

constexpr char kRecalculateAction[] = "Recalculate_Dimension_lines";

// What a dimension looks like before or after a rebuild.
struct DimensionSnapshot {
    RecordedDimension record;
    std::vector<RealPoint> points;  // all anchors and text anchors of its art, the lowest art first
};

void collectPoints(const doc::Document& document, doc::ArtId id, std::vector<RealPoint>* points) {
    const doc::Art& art = *document.find(id);
    if (art.path != nullptr)
        for (const PathSegment& segment : art.path->segments) points->push_back(segment.p);
    if (art.text != nullptr) points->push_back({art.text->matrix.tx, art.text->matrix.ty});
    for (doc::ArtId child = art.lastChild; child != 0; child = document.find(child)->above)
        collectPoints(document, child, points);
}

std::vector<DimensionSnapshot> dimensionSnapshots(const doc::Document& document) {
    std::vector<DimensionSnapshot> all;
    for (RecordedDimension& dimension : listDimensions(document)) {
        if (dimension.kind == "frame") continue;
        DimensionSnapshot portrait{std::move(dimension), {}};
        collectPoints(document, portrait.record.group, &portrait.points);
        all.push_back(std::move(portrait));
    }
    return all;
}

// The plug-in passes over layers that are hidden or locked; while this lives there are none.
class ScopedUnlockedLayers {
  public:
    explicit ScopedUnlockedLayers(HeadlessSession& session) : session_(session) {
        for (const doc::LayerId id : session.document()->layers()) {
            const doc::Layer* layer = session.document()->layer(id);
            if (!layer->visible || !layer->editable) closed_.push_back({id, layer->visible, layer->editable});
        }
        put([](const Closed&) { return std::pair(true, true); });
    }
    ~ScopedUnlockedLayers() {
        put([](const Closed& was) { return std::pair(was.visible, was.editable); });
    }
    ScopedUnlockedLayers(const ScopedUnlockedLayers&) = delete;
    ScopedUnlockedLayers& operator=(const ScopedUnlockedLayers&) = delete;

  private:
    struct Closed {
        doc::LayerId layer;
        bool visible, editable;
    };

    template <typename State>
    void put(State state) {
        if (closed_.empty()) return;
        session_.host().edit("Layers", [&](doc::Document& document) {
            for (const Closed& closed : closed_) {
                const auto [visible, editable] = state(closed);
                document.setLayerVisible(closed.layer, visible);
                document.setLayerEditable(closed.layer, editable);
            }
            return true;
        });
    }

    HeadlessSession& session_;
    std::vector<Closed> closed_;
};

void runAction(HeadlessSession& session) {
    session.user().queueAnswer(true);
    session.host().playAction(kRecalculateAction);
    session.user().takeTranscript();
}

// The rebuilt groups by the group that each replaced.
std::map<doc::ArtId, doc::ArtId> pairRebuilt(const doc::Document& document,
                                             const std::vector<DimensionSnapshot>& before) {
    doc::ArtId newest = 0;
    std::vector<doc::ArtId> gone, made;
    for (const DimensionSnapshot& portrait : before) {
        newest = std::max(newest, portrait.record.group);
        if (document.find(portrait.record.group) == nullptr) gone.push_back(portrait.record.group);
    }
    for (const RecordedDimension& dimension : listDimensions(document))
        if (dimension.kind != "frame" && dimension.group > newest) made.push_back(dimension.group);
    std::sort(made.begin(), made.end());
    std::map<doc::ArtId, doc::ArtId> pairs;
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

DimensionCheck compare(const DimensionSnapshot& before, const DimensionSnapshot* after) {
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

std::vector<DimensionCheck> checkDimensions(HeadlessSession& session) {
    const doc::Document& document = *session.document();
    const std::vector<DimensionSnapshot> before = dimensionSnapshots(document);
    std::vector<DimensionCheck> checks;
    if (before.empty()) return checks;
    const ScopedUnlockedLayers open(session);
    const std::uint64_t countBefore = document.changeCount();
    runAction(session);
    const std::map<doc::ArtId, doc::ArtId> pairs = pairRebuilt(document, before);
    std::map<doc::ArtId, DimensionSnapshot> after;
    for (DimensionSnapshot& portrait : dimensionSnapshots(document)) after[portrait.record.group] = std::move(portrait);
    for (const DimensionSnapshot& portrait : before) {
        const auto pair = pairs.find(portrait.record.group);
        checks.push_back(compare(portrait, pair == pairs.end() ? nullptr : &after.at(pair->second)));
    }
    if (document.changeCount() != countBefore && document.undoName() != nullptr) session.host().undo();
    return checks;
}

int rebuildDimensions(HeadlessSession& session, const std::vector<doc::ArtId>& groups) {
    if (groups.empty()) return 0;
    const std::vector<DimensionSnapshot> before = dimensionSnapshots(*session.document());
    const ScopedUnlockedLayers open(session);
    session.host().edit("Select", [&](doc::Document& changed) {
        for (const doc::ArtId group : groups) changed.setSelected(group, true);
        return true;
    });
    runAction(session);
    const std::map<doc::ArtId, doc::ArtId> pairs = pairRebuilt(*session.document(), before);
    session.host().edit("Rename", [&](doc::Document& changed) {
        for (const DimensionSnapshot& portrait : before) {
            const auto pair = pairs.find(portrait.record.group);
            if (pair != pairs.end() && !portrait.record.svgId.empty())
                changed.setSvgId(pair->second, portrait.record.svgId);
        }
        return true;
    });
    return static_cast<int>(pairs.size());
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

}  // namespace quorvel::app
