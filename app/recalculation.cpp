// Has the plug-in rebuild dimensions and holds each against the group that it says took its place.
#include "app/recalculation.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <unordered_map>

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
        DimensionSnapshot snapshot{std::move(dimension), {}};
        collectPoints(document, snapshot.record.group, &snapshot.points);
        all.push_back(std::move(snapshot));
    }
    return all;
}

// With the state of their ends.
std::vector<DimensionSnapshot> dimensionSnapshots(host::Host& host) {
    std::vector<DimensionSnapshot> all = dimensionSnapshots(*host.document());
    std::vector<doc::ArtId> groups;
    for (const DimensionSnapshot& dimension : all) groups.push_back(dimension.record.group);
    std::vector<std::vector<DimensionEnd>> ends = host.examineDimensions(groups);
    for (std::size_t i = 0; i < all.size(); ++i) all[i].record.ends = std::move(ends[i]);
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

double distanceToSegment(const RealPoint& point, const RealPoint& a, const RealPoint& b) {
    const double h = static_cast<double>(b.h) - a.h, v = static_cast<double>(b.v) - a.v, square = h * h + v * v;
    const double toH = static_cast<double>(point.h) - a.h, toV = static_cast<double>(point.v) - a.v;
    const double share = square > 0 ? std::clamp((toH * h + toV * v) / square, 0.0, 1.0) : 0.0;
    return std::hypot(toH - share * h, toV - share * v);
}

// Of the points from the line through the others.
double farthestFrom(const std::vector<RealPoint>& line, const std::vector<RealPoint>& points) {
    double farthest = 0;
    for (const RealPoint& point : points) {
        double nearest = INFINITY;
        for (std::size_t i = 1; i < line.size(); ++i)
            nearest = std::min(nearest, distanceToSegment(point, line[i - 1], line[i]));
        farthest = std::max(farthest, nearest);
    }
    return farthest;
}

// The line along a curve may have another number of points and be the same line.
double farthestMove(const std::vector<RealPoint>& before, const std::vector<RealPoint>& after) {
    if (before.size() != after.size()) return std::max(farthestFrom(before, after), farthestFrom(after, before));
    double farthest = 0;
    for (std::size_t i = 0; i < before.size(); ++i)
        farthest = std::max(farthest, std::hypot(static_cast<double>(after[i].h) - before[i].h,
                                                 static_cast<double>(after[i].v) - before[i].v));
    return farthest;
}

Truth truthOf(const DimensionCheck& check, bool strict) {
    const auto isEdited = [](const DimensionEnd& end) { return end.state == kTextEdited; };
    const auto isLost = [&](const DimensionEnd& end) {
        return end.state != kLinkHeld && end.state != kLinkFree && !isEdited(end);
    };
    const auto isFree = [](const DimensionEnd& end) { return end.state == kLinkFree; };
    if (!check.canBeRebuilt || std::ranges::any_of(check.ends, isLost)) return Truth::lost;
    if (check.shownText != check.rebuiltText || std::ranges::any_of(check.ends, isEdited)) return Truth::value;
    if (check.moved > (strict ? 0 : kMovedLimit)) return Truth::moved;
    return std::ranges::any_of(check.ends, isFree) ? Truth::free : Truth::isTrue;
}

// Nothing is rebuilt where an end does not hold, but for linear dimensions; else the record is damaged.
bool isDamaged(const RecordedDimension& record, const DimensionSnapshot* rebuilt) {
    const auto isHeld = [](const DimensionEnd& end) { return end.state == kLinkHeld; };
    const bool isLinear = record.kind == "oblique" || record.kind == "straight" || record.kind == "curve";
    return rebuilt == nullptr && (isLinear || std::ranges::all_of(record.ends, isHeld));
}

// after: null when nothing was rebuilt.
DimensionCheck compare(const DimensionSnapshot& before, const DimensionSnapshot* after, bool strict) {
    DimensionCheck check;
    check.group = before.record.group;
    check.name = before.record.name;
    check.kind = before.record.kind;
    check.shownText = joinedTexts(before.record);
    check.rebuiltText = after == nullptr ? check.shownText : joinedTexts(after->record);
    check.moved = after == nullptr ? 0 : farthestMove(before.points, after->points);
    check.ends = before.record.ends;
    check.canBeRebuilt = !isDamaged(before.record, after);
    check.truth = truthOf(check, strict);
    return check;
}

std::string movedText(double moved) {
    if (!std::isfinite(moved)) return ", redrawn";
    char text[40];
    std::snprintf(text, sizeof text, ", moved %g", moved);
    return text;
}

}  // namespace

const char* truthWord(Truth truth) {
    static constexpr const char* kWords[] = {"lost", "value", "moved", "free", "true"};
    return kWords[static_cast<int>(truth)];
}

std::optional<std::vector<DimensionCheck>> tryCheck(host::Host& host, bool strict) {
    const std::vector<DimensionSnapshot> before = dimensionSnapshots(host);
    if (before.empty()) return std::vector<DimensionCheck>();
    std::optional<std::vector<DimensionCheck>> checks;
    std::vector<doc::ArtId> groups;
    for (const DimensionSnapshot& dimension : before) groups.push_back(dimension.record.group);
    host.tryRebuild(groups, strict ? 0 : kCoordinateTolerance, [&](const std::vector<doc::ArtId>& rebuilt) {
        std::unordered_map<doc::ArtId, DimensionSnapshot> after;
        for (DimensionSnapshot& dimension : dimensionSnapshots(*host.document()))
            after.emplace(dimension.record.group, std::move(dimension));
        checks.emplace();
        for (std::size_t i = 0; i < before.size(); ++i) {
            const auto made = after.find(rebuilt[i]);
            checks->push_back(compare(before[i], made == after.end() ? nullptr : &made->second, strict));
        }
    });
    return checks;
}

Result<std::vector<DimensionCheck>> checkDimensions(host::Host& host, bool strict) {
    std::optional<std::vector<DimensionCheck>> checks = tryCheck(host, strict);
    if (!checks) return makeError(ErrorCode::kNotChecked);
    return std::move(*checks);
}

int rebuildDimensions(HeadlessSession& session, const std::vector<doc::ArtId>& groups) {
    if (groups.empty()) return 0;
    const ScopedUnlockedLayers open(session);
    const std::vector<doc::ArtId> rebuilt = session.host().rebuildDimensions(groups, kCoordinateTolerance);
    return static_cast<int>(std::count_if(rebuilt.begin(), rebuilt.end(), [](doc::ArtId group) { return group != 0; }));
}

std::string checkLine(const DimensionCheck& check) {
    std::string line = (check.name.empty() ? "(no id)" : check.name) + " " + check.kind + " " + truthWord(check.truth) +
                       " \"" + check.shownText + "\"";
    if (check.rebuiltText != check.shownText) line += " -> \"" + check.rebuiltText + "\"";
    if (check.moved > kMovedLimit || check.truth == Truth::moved) line += movedText(check.moved);
    if (!check.canBeRebuilt) line += ", damaged record";
    for (const DimensionEnd& end : check.ends)
        if (end.state != kLinkHeld) line += ", " + endName(end) + ": " + linkWord(end.state);
    return line;
}

std::string checkText(const std::string& file, const std::vector<DimensionCheck>& checks) {
    std::string out;
    for (const DimensionCheck& check : checks)
        if (check.truth != Truth::isTrue) out += file + ": " + checkLine(check) + '\n';
    return out;
}

}  // namespace quorvel::app
