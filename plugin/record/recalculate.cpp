// The recalculation and the tracking pass: each reads a dimension's record, moves the stored points to where the
// measured anchors now stand, keeps the placement's distance and relative angle, and has the family's builder replace
// the group.
#include "plugin/record/recalculate.h"

#include <vector>

#include "plugin/dimensioning/angle.h"
#include "plugin/dimensioning/diameter.h"
#include "plugin/dimensioning/linear.h"
#include "plugin/dimensioning/radius.h"
#include "plugin/record/dimension_record.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

// A placement point relative to its base: how far from the base's middle, and turned by how much from the base's
// direction.
struct Placement {
    double placeDistance = 0, placeAngle = 0;
};

// The middle in 32-bit floats, with the division in doubles.
DoublePoint MiddleInFloats(const RealPoint& a, const RealPoint& b) {
    const RealPoint middle{static_cast<float>((a.h + b.h) / 2.0), static_cast<float>((a.v + b.v) / 2.0)};
    return ToDoublePoint(middle);
}

Placement PlacementAbout(const DoublePoint& middle, const DoublePoint& base, const RealPoint& end) {
    const DoublePoint placed = ToDoublePoint(end);
    return {DistanceBetweenPoints(middle, placed),
            AngleBetweenPoints(middle, placed) - AngleBetweenPoints(middle, base)};
}

RealPoint PlaceAgain(const Placement& placement, const DoublePoint& middle, const DoublePoint& base) {
    const double angle = placement.placeAngle + AngleBetweenPoints(middle, base);
    return ToRealPoint(PolarPoint(middle, placement.placeDistance, angle));
}

bool ViewIsOpen() {
    AIDocumentViewHandle view = nullptr;
    return sAIDocumentView->GetNthDocumentView(0, &view) == kNoErr && view != nullptr;
}

bool IsSelected(AIArtHandle art) {
    std::int32_t attributes = 0;
    return art != nullptr && sAIArt->GetArtUserAttr(art, kArtSelected, &attributes) == kNoErr &&
           (attributes & kArtSelected) != 0;
}

// --- linear dimensions --------------------------------------------------------------------------------------------

// The point goes to its cell's anchor; the other one moves along when it has no art of its own.
void MovePoint(const SnapCell& cell, const SnapCell& otherCell, RealPoint* point, RealPoint* other) {
    RealPoint anchor;
    if (cell.art == nullptr || !CellAnchor(cell, &anchor)) return;
    if (otherCell.art == nullptr) {
        other->h = anchor.h + (other->h - point->h);
        other->v = anchor.v + (other->v - point->v);
    }
    *point = anchor;
}

void MoveStops(ToolState* state, const RealPoint& oldFrom, double baseAngle) {
    const DoublePoint from = ToDoublePoint(state->fromPoint), old = ToDoublePoint(oldFrom);
    const double newAngle = AngleBetweenPoints(from, ToDoublePoint(state->toPoint));
    for (int i = 0; i < state->stopCount; ++i) {
        StopRecord* stop = &state->stops[i];
        if (stop->cells[0].art != nullptr) {
            RealPoint anchor;
            if (CellAnchor(stop->cells[0], &anchor)) stop->point = anchor;
            continue;
        }
        const DoublePoint point = ToDoublePoint(stop->point);
        const double angle = AngleBetweenPoints(old, point) - baseAngle + newAngle;
        stop->point = ToRealPoint(PolarPoint(from, DistanceBetweenPoints(old, point), angle));
    }
}

// By rising distance from where the first point was; at equal distance the earlier one stays ahead.
void SortStops(ToolState* state, const RealPoint& oldFrom) {
    const DoublePoint origin = ToDoublePoint(oldFrom);
    std::vector<StopRecord> sorted;
    for (int i = 0; i < state->stopCount; ++i) {
        const double distance = DistanceBetweenPoints(origin, ToDoublePoint(state->stops[i].point));
        auto place = sorted.begin();
        while (place != sorted.end() && !(DistanceBetweenPoints(origin, ToDoublePoint(place->point)) > distance))
            ++place;
        sorted.insert(place, state->stops[i]);
    }
    for (int i = 0; i < state->stopCount; ++i) state->stops[i] = sorted[static_cast<std::size_t>(i)];
}

// Moves the measured points and the stops; gives where the placement was.
Placement MoveLinearPoints(ToolState* state) {
    const RealPoint oldFrom = state->fromPoint;
    const DoublePoint middle = MiddleInFloats(state->fromPoint, state->toPoint);
    const DoublePoint to = ToDoublePoint(state->toPoint);
    const Placement placement = PlacementAbout(middle, to, state->endPoint);
    const double baseAngle = AngleBetweenPoints(middle, to);
    MovePoint(state->fromCells[0], state->toCells[0], &state->fromPoint, &state->toPoint);
    MovePoint(state->toCells[0], state->fromCells[0], &state->toPoint, &state->fromPoint);
    MoveStops(state, oldFrom, baseAngle);
    SortStops(state, oldFrom);
    return placement;
}

void RebuildLinear(PluginGlobals* globals, AIArtHandle group, const Placement& placement) {
    ToolState* state = &globals->liveState;
    state->endPoint =
        PlaceAgain(placement, MiddleInFloats(state->fromPoint, state->toPoint), ToDoublePoint(state->toPoint));
    // A builder that fails leaves the old group; the pass goes on.
    static_cast<void>(BuildLinearDimension(group));
    ContextBracket(globals);
}

// --- angles, radii, diameters -------------------------------------------------------------------------------------

struct Leg {
    DoublePoint corner;
    double direction = 0;  // from the corner to the anchor before it
};

bool ReadLeg(const SnapCell& cell, Leg* leg) {
    PathSegment previous, segment;
    if (!ReadSegmentPair(cell.art, cell.index, &previous, &segment)) return false;
    leg->corner = ToDoublePoint(segment.p);
    leg->direction = AngleBetweenPoints(leg->corner, ToDoublePoint(previous.p));
    return true;
}

// Each point keeps its distance from the corner anchor of its leg.
void RebuildAngle(PluginGlobals* globals, AIArtHandle group, const DoublePoint& from, const DoublePoint& to) {
    ToolState* state = &globals->liveState;
    Leg first, second;
    if (!ReadLeg(state->fromCells[0], &first) || !ReadLeg(state->toCells[0], &second)) return ContextBracket(globals);
    const double firstDistance = DistanceBetweenPoints(ToDoublePoint(state->fromPoint), from);
    const double secondDistance = DistanceBetweenPoints(ToDoublePoint(state->toPoint), to);
    const Placement placement = PlacementAbout(MiddleInFloats(state->fromPoint, state->toPoint),
                                               ToDoublePoint(state->toPoint), state->endPoint);
    state->fromPoint = ToRealPoint(PolarPoint(first.corner, firstDistance, first.direction));
    state->toPoint = ToRealPoint(PolarPoint(second.corner, secondDistance, second.direction));
    state->endPoint =
        PlaceAgain(placement, MiddleInFloats(state->fromPoint, state->toPoint), ToDoublePoint(state->toPoint));
    static_cast<void>(BuildAngleDimension(group));
    ContextBracket(globals);
}

DoublePoint Middle(const DoublePoint& a, const DoublePoint& b) { return {(a.h + b.h) / 2.0, (a.v + b.v) / 2.0}; }

bool ReadAnchor(const SnapCell& cell, RealPoint* anchor) {
    PathSegment segment;
    if (!ReadSegment(cell.art, cell.index, &segment)) return false;
    *anchor = segment.p;
    return true;
}

void RebuildRound(PluginGlobals* globals, AIArtHandle group, std::int16_t kind, const DoublePoint& from,
                  const DoublePoint& to) {
    ToolState* state = &globals->liveState;
    RealPoint first, second;
    if (!ReadAnchor(state->fromCells[0], &first) || !ReadAnchor(state->toCells[0], &second))
        return ContextBracket(globals);
    const Placement placement = PlacementAbout(Middle(from, to), from, state->endPoint);
    const DoublePoint newFirst = ToDoublePoint(first);
    state->endPoint = PlaceAgain(placement, Middle(newFirst, ToDoublePoint(second)), newFirst);
    static_cast<void>(kind == kRadiusTool ? BuildRadiusDimension(group) : BuildDiameterDimension(group));
    ContextBracket(globals);
}

bool IsLinearKind(std::int16_t kind) { return kind == kObliqueTool || kind == kStraightTool || kind == kCurveTool; }

void RecalculateGroup(PluginGlobals* globals, AIArtHandle group) {
    std::int16_t kind = 0, mode = 0;
    DoublePoint from, to;
    ReadDimensionRecord(group, &kind, &mode, &from, &to);
    ToolState* state = &globals->liveState;
    if (IsLinearKind(kind)) {
        globals->prefs.flDistanceMode = mode;
        RebuildLinear(globals, group, MoveLinearPoints(state));
        return;
    }
    if (state->fromCells[0].art == nullptr || state->toCells[0].art == nullptr) return;
    if (kind == kAngleTool) RebuildAngle(globals, group, from, to);
    if (kind == kRadiusTool || kind == kDiameterTool) RebuildRound(globals, group, kind, from, to);
}

bool UserAgrees(bool selectedOnly) {
    const std::string text = selectedOnly ? ChooseText("選択された寸法線を再計算します。\rよろしいですか？",
                                                       "Are you sure you want to recalculate selected dimension-lines?")
                                          : ChooseText("全ての寸法線を再計算します。\rよろしいですか？",
                                                       "Are you sure you want to recalculate all dimension-lines?");
    return sAIUser->YesNoAlert(HostString(text)) == 1;
}

}  // namespace

void RecalculateDimensions() {
    PluginGlobals* globals = gGlobals;
    if (!ViewIsOpen()) return;
    const std::vector<AIArtHandle> groups = CollectDimensionGroups();
    if (groups.empty()) return;
    bool selectedOnly = false;
    for (AIArtHandle group : groups) selectedOnly = selectedOnly || IsSelected(group);
    if (!UserAgrees(selectedOnly)) return;
    for (AIArtHandle group : groups)
        if (!selectedOnly || IsSelected(group)) RecalculateGroup(globals, group);
}

AIArtHandle RebuildDimension(AIArtHandle group) {
    PluginGlobals* globals = gGlobals;
    if (!IsDimensionGroup(group)) return nullptr;
    globals->builtGroup = nullptr;
    RecalculateGroup(globals, group);
    return globals->builtGroup;
}

void TrackMovedArt() {
    PluginGlobals* globals = gGlobals;
    if (!ViewIsOpen()) return;
    for (AIArtHandle group : CollectDimensionGroups()) {
        std::int16_t kind = 0, mode = 0;
        DoublePoint from, to;
        ReadDimensionRecord(group, &kind, &mode, &from, &to);
        if (!IsLinearKind(kind)) continue;
        ToolState* state = &globals->liveState;
        globals->prefs.flDistanceMode = mode;
        const Placement placement = MoveLinearPoints(state);
        if (IsSelected(state->fromCells[0].art) || IsSelected(state->toCells[0].art))
            RebuildLinear(globals, group, placement);
    }
}

}  // namespace quorvel
