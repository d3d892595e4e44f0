// Has the plug-in rebuild dimensions and holds each against the group that it says took its place.
#include "app/recalculation.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "app/dimension_list.h"

namespace quorvel::app {

namespace {

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
    check.name = before.record.name;
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
    std::vector<doc::ArtId> groups;
    for (const DimensionSnapshot& dimension : before) groups.push_back(dimension.record.group);
    const std::vector<doc::ArtId> rebuilt = session.host().rebuildDimensions(groups);
    std::unordered_map<doc::ArtId, DimensionSnapshot> after;
    for (DimensionSnapshot& dimension : dimensionSnapshots(document))
        after.emplace(dimension.record.group, std::move(dimension));
    for (std::size_t i = 0; i < before.size(); ++i) {
        const auto made = after.find(rebuilt[i]);
        checks.push_back(compare(before[i], made == after.end() ? nullptr : &made->second));
    }
    if (document.changeCount() != countBefore && document.undoName() != nullptr) session.host().undo();
    return checks;
}

int rebuildDimensions(HeadlessSession& session, const std::vector<doc::ArtId>& groups) {
    if (groups.empty()) return 0;
    const ScopedUnlockedLayers open(session);
    const std::vector<doc::ArtId> rebuilt = session.host().rebuildDimensions(groups);
    return static_cast<int>(std::count_if(rebuilt.begin(), rebuilt.end(), [](doc::ArtId group) { return group != 0; }));
}

std::string checkText(const std::string& file, const std::vector<DimensionCheck>& checks) {
    std::string out;
    for (const DimensionCheck& check : checks) {
        if (!check.stale()) continue;
        out += file + ": " + (check.name.empty() ? "(no id)" : check.name) + " " + check.kind + " \"" +
               check.shownText + "\" -> \"" + check.rebuiltText + "\"";
        if (check.moved > kMovedLimit) out += ", moved";
        if (check.lostLinks > 0) out += ", " + std::to_string(check.lostLinks) + " links lost";
        out += '\n';
    }
    return out;
}

}  // namespace quorvel::app
