#include "plugin/record/follow.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "plugin/shell/suites.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

// --- where the art puts a point -----------------------------------------------------------------------------------

SnapCell CellOf(const RecordedLink& link) { return {link.found.art, static_cast<std::int16_t>(link.index)}; }

// Where the first anchor of the list was; (0, 0) when the record does not say.
DoublePoint RecordedAnchor(const RecordedPoint& point) {
    return !point.links.hasEnd && point.hold.hasAnchor ? point.hold.anchor : point.links.end;
}

// The links that a hold needs: a crossing two, a point off another one none of its own.
int LinksNeeded(HoldKind kind) {
    if (kind == HoldKind::crossing) return 2;
    return kind == HoldKind::offset ? 0 : 1;
}

// A point at an anchor: at that of the first link that lives.
PointNow AnchorNow(const RecordedPoint& recorded, const RealPoint& point, bool isStop) {
    PointNow now;
    const LinkList& list = recorded.links;
    if (list.count == 0) return now;
    now.state = kLinkFree;
    for (int i = 0; i < list.count; ++i) {
        const RecordedLink& link = list.links[i];
        if (!recorded.hold.hold.UsesLink(i)) continue;
        if (now.state == kLinkFree) now.state = link.found.art != nullptr ? kLinkSegment : link.found.state;
        if (link.found.art == nullptr || !CellAnchor(CellOf(link), &now.point)) continue;
        now.state = kLinkHeld;
        now.link = i;
        break;
    }
    if (now.state != kLinkHeld) return now;
    const bool hasAnchor = !isStop && (list.hasEnd || recorded.hold.hasAnchor);
    const RealPoint was = hasAnchor ? ToRealPoint(RecordedAnchor(recorded)) : point;
    now.moved = !IsWhereRecorded(now.point, was);
    return now;
}

PointNow HeldNow(const PluginGlobals* globals, const RecordedPoint& recorded, const RealPoint& point,
                 const RecordedPoint& fromRecord, const PointNow& from) {
    PointNow now;
    const PointHold& hold = recorded.hold.hold;
    const LinkList& list = recorded.links;
    SnapCell cells[kLinkCapacity], fromCell;
    for (int i = 0; i < LinksNeeded(hold.kind); ++i) {
        now.state = i < list.count ? list.links[i].found.state : kLinkDeleted;
        now.link = i;
        if (now.state != kLinkHeld) return now;
        cells[i] = CellOf(list.links[i]);
    }
    if (hold.kind == HoldKind::offset) {
        now.state = from.state;
        if (now.state != kLinkHeld) return now;
        fromCell = CellOf(fromRecord.links.links[from.link]);
    }
    now.state = PlaceHeldPoint(globals, hold, cells, ToDoublePoint(from.point), fromCell, &now.point);
    if (now.state != kLinkHeld) return now;
    now.moved = !IsWhereRecorded(now.point, point);
    // Computed places differ in the last digit from snapped ones; a point that stays is the snapped one.
    if (!now.moved) now.point = point;
    return now;
}

PointNow FindPointNow(const PluginGlobals* globals, const RecordedPoint& recorded, const RealPoint& point, bool isStop,
                      const RecordedPoint& fromRecord, const PointNow& from) {
    if (recorded.hold.hold.kind == HoldKind::anchor) return AnchorNow(recorded, point, isStop);
    return HeldNow(globals, recorded, point, fromRecord, from);
}

// --- placements ---------------------------------------------------------------------------------------------------

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

DoublePoint Middle(const DoublePoint& a, const DoublePoint& b) { return {(a.h + b.h) / 2.0, (a.v + b.v) / 2.0}; }

Placement PlacementAbout(const DoublePoint& middle, const DoublePoint& base, const RealPoint& end) {
    const DoublePoint placed = ToDoublePoint(end);
    return {DistanceBetweenPoints(middle, placed),
            AngleBetweenPoints(middle, placed) - AngleBetweenPoints(middle, base)};
}

RealPoint PlaceAgain(const Placement& placement, const DoublePoint& middle, const DoublePoint& base) {
    const double angle = placement.placeAngle + AngleBetweenPoints(middle, base);
    return ToRealPoint(PolarPoint(middle, placement.placeDistance, angle));
}

Placement PlacementOf(const ToolState& state) {
    return PlacementAbout(MiddleInFloats(state.fromPoint, state.toPoint), ToDoublePoint(state.toPoint), state.endPoint);
}

void PlaceEndAgain(const Placement& placement, ToolState* state) {
    state->endPoint =
        PlaceAgain(placement, MiddleInFloats(state->fromPoint, state->toPoint), ToDoublePoint(state->toPoint));
}

// --- linear dimensions --------------------------------------------------------------------------------------------

// The point goes to where its art has it; the other one moves along when it has no art of its own.
void MovePoint(const PointNow& now, const PointNow& otherNow, RealPoint* point, RealPoint* other) {
    if (now.state != kLinkHeld) return;
    if (otherNow.state != kLinkHeld && now.moved) {
        other->h = now.point.h + (other->h - point->h);
        other->v = now.point.v + (other->v - point->v);
    }
    *point = now.point;
}

// A stop without art keeps its polar place about the first point of a base that has moved.
void MoveStops(const std::vector<PointNow>& now, bool baseMoved, const ToolState& was, ToolState* state) {
    const DoublePoint from = ToDoublePoint(state->fromPoint), oldFrom = ToDoublePoint(was.fromPoint);
    const double baseAngle = AngleBetweenPoints(MiddleInFloats(was.fromPoint, was.toPoint), ToDoublePoint(was.toPoint));
    const double turn = AngleBetweenPoints(from, ToDoublePoint(state->toPoint)) - baseAngle;
    for (int i = 0; i < state->stopCount; ++i) {
        StopRecord* stop = &state->stops[i];
        if (now[static_cast<std::size_t>(i)].state == kLinkHeld) {
            stop->point = now[static_cast<std::size_t>(i)].point;
        } else if (baseMoved) {
            const DoublePoint point = ToDoublePoint(stop->point);
            const double angle = AngleBetweenPoints(oldFrom, point) + turn;
            stop->point = ToRealPoint(PolarPoint(from, DistanceBetweenPoints(oldFrom, point), angle));
        }
    }
}

double StopDistance(const ToolState& state, int stop) {
    return DistanceBetweenPoints(ToDoublePoint(state.fromPoint), ToDoublePoint(state.stops[stop].point));
}

constexpr double kPassed = 0.05;  // points: nearer to each other than this, two stops have not passed

bool StopsHavePassed(const ToolState& was, const ToolState& now) {
    for (int i = 0; i < now.stopCount; ++i) {
        for (int k = i + 1; k < now.stopCount; ++k) {
            const double before = StopDistance(was, i) - StopDistance(was, k);
            const double after = StopDistance(now, i) - StopDistance(now, k);
            if (std::min(before, after) < -kPassed && std::max(before, after) > kPassed) return true;
        }
    }
    return false;
}

// Stops that have passed each other are put in order by their distance from the first point; at equal distance the
// earlier one stays ahead. Others keep their order, in which the user clicked them.
void SortStops(const ToolState& was, ToolState* state) {
    if (!StopsHavePassed(was, *state)) return;
    const DoublePoint from = ToDoublePoint(state->fromPoint);
    std::stable_sort(state->stops, state->stops + state->stopCount, [&](const StopRecord& a, const StopRecord& b) {
        return DistanceBetweenPoints(from, ToDoublePoint(a.point)) <
               DistanceBetweenPoints(from, ToDoublePoint(b.point));
    });
}

constexpr double kSameLength = 0.01;      // of the base: it was turned and not stretched
constexpr double kSameDirection = 0.001;  // radians
constexpr double kHalfTurn = std::numbers::pi, kEighthTurn = std::numbers::pi / 4;

struct BaseChange {
    double turn = 0;    // radians
    double growth = 1;  // of the length
};

BaseChange ChangeOfBase(const ToolState& was, const ToolState& now) {
    const DoublePoint a = ToDoublePoint(was.fromPoint), b = ToDoublePoint(was.toPoint);
    const DoublePoint c = ToDoublePoint(now.fromPoint), d = ToDoublePoint(now.toPoint);
    const double before = DistanceBetweenPoints(a, b);
    if (before <= 0) return {};
    return {AngleBetweenPoints(c, d) - AngleBetweenPoints(a, b), DistanceBetweenPoints(c, d) / before};
}

bool IsSameLength(const BaseChange& change) { return std::fabs(change.growth - 1) <= kSameLength; }

// Has the base been turned, as a whole, towards the other axis?
bool BaseTurnedOver(const BaseChange& change) {
    return std::fabs(std::remainder(change.turn, kHalfTurn)) > kEighthTurn && IsSameLength(change);
}

// Has the base another length in the same direction, or at a right angle to it, as when all art was scaled?
bool BaseScaled(const BaseChange& change) {
    return std::fabs(std::remainder(change.turn, kHalfTurn / 2)) <= kSameDirection && !IsSameLength(change);
}

// The recorded axis holds at the new placement, and turns with the base; what counts as level or upright grows with a
// scaled base.
void KeepAxis(const ToolState& was, PluginGlobals* globals) {
    ToolState* state = &globals->liveState;
    std::int16_t& mode = globals->prefs.flDistanceMode;
    constexpr std::int16_t kUprightMode = 2;
    if (mode != kStraightMode && mode != kUprightMode) return;
    state->tmpPos = ToDoublePoint(state->endPoint);
    const BaseChange change = ChangeOfBase(was, *state);
    if (BaseScaled(change)) state->choices.pixel = state->choices.PixelOrPlain() * change.growth;
    if (!BaseTurnedOver(change)) return;
    if (mode == kUprightMode) {
        mode = kStraightMode;
        state->axisWord = 1;
    } else if (state->axisWord == 1 || state->axisWord == 2) {
        state->axisWord = static_cast<std::int16_t>(3 - state->axisWord);
    }
}

// A link that has ended leaves no hold.
void DropLost(const PointNow& now, SnapCell* cells, PointHold* hold) {
    if (now.state == kLinkHeld || (hold->kind == HoldKind::anchor && hold->links == 0)) return;
    ClearSnapCells(cells, kSnapCellCount);
    *hold = {};
}

void DropLostPoints(const FollowedPoints& now, ToolState* state) {
    DropLost(now.from, state->fromCells, &state->fromHold);
    DropLost(now.to, state->toCells, &state->toHold);
    for (int i = 0; i < state->stopCount; ++i)
        DropLost(now.stops[static_cast<std::size_t>(i)], state->stops[i].cells, &state->stops[i].hold);
}

void FollowLinear(PluginGlobals* globals, const DimensionRecord& record) {
    ToolState* state = &globals->liveState;
    globals->prefs.flDistanceMode = record.mode;
    const FollowedPoints now = FindPointsNow(globals, record);
    DropLostPoints(now, state);
    const ToolState was = *state;
    const Placement placement = PlacementOf(was);
    MovePoint(now.from, now.to, &state->fromPoint, &state->toPoint);
    MovePoint(now.to, now.from, &state->toPoint, &state->fromPoint);
    const auto moved = [](const PointNow& point) { return point.moved; };
    const bool baseMoved = now.from.moved || now.to.moved;
    MoveStops(now.stops, baseMoved, was, state);
    if (baseMoved || std::any_of(now.stops.begin(), now.stops.end(), moved)) SortStops(was, state);
    if (!baseMoved) return;
    PlaceEndAgain(placement, state);
    KeepAxis(was, globals);
}

// --- angles, radii, diameters -------------------------------------------------------------------------------------

struct Leg {
    RealPoint anchor;
    DoublePoint corner;
    double direction = 0;  // from the corner to the anchor before it
};

bool ReadLeg(const SnapCell& cell, Leg* leg) {
    PathSegment previous, segment;
    if (!ReadSegmentPair(cell.art, cell.index, &previous, &segment)) return false;
    leg->anchor = segment.p;
    leg->corner = ToDoublePoint(segment.p);
    leg->direction = AngleBetweenPoints(leg->corner, ToDoublePoint(previous.p));
    return true;
}

// A point of a record without a hold keeps its distance from the corner anchor of its leg.
bool FindPickNow(const SnapCell& cell, const DoublePoint& recordedAnchor, const RealPoint& point, PointNow* now) {
    Leg leg;
    if (!ReadLeg(cell, &leg)) return false;
    const double distance = DistanceBetweenPoints(ToDoublePoint(point), recordedAnchor);
    now->state = kLinkHeld;
    now->point = ToRealPoint(PolarPoint(leg.corner, distance, leg.direction));
    now->moved = !IsWhereRecorded(leg.anchor, ToRealPoint(recordedAnchor)) || !IsWhereRecorded(now->point, point);
    return true;
}

bool FollowAngle(PluginGlobals* globals, const DimensionRecord& record) {
    ToolState* state = &globals->liveState;
    if (state->fromCells[0].art == nullptr || state->toCells[0].art == nullptr) return false;
    FollowedPoints now = FindPointsNow(globals, record);
    const auto find = [&](const RecordedPoint& point, const SnapCell& cell, const RealPoint& place, PointNow* found) {
        if (point.hold.hold.kind != HoldKind::anchor) return found->state == kLinkHeld;
        return FindPickNow(cell, RecordedAnchor(point), place, found);
    };
    if (!find(record.from, state->fromCells[0], state->fromPoint, &now.from) ||
        !find(record.to, state->toCells[0], state->toPoint, &now.to))
        return false;
    if (!now.from.moved && !now.to.moved) return true;
    const Placement placement = PlacementOf(*state);
    state->fromPoint = now.from.point;
    state->toPoint = now.to.point;
    PlaceEndAgain(placement, state);
    return true;
}

bool FollowRound(PluginGlobals* globals, const DimensionRecord& record) {
    ToolState* state = &globals->liveState;
    if (state->fromCells[0].art == nullptr || state->toCells[0].art == nullptr) return false;
    PathSegment first, second;
    if (!ReadSegment(state->fromCells[0].art, state->fromCells[0].index, &first) ||
        !ReadSegment(state->toCells[0].art, state->toCells[0].index, &second))
        return false;
    const DoublePoint from = RecordedAnchor(record.from), to = RecordedAnchor(record.to);
    if (IsWhereRecorded(first.p, ToRealPoint(from)) && IsWhereRecorded(second.p, ToRealPoint(to))) return true;
    const Placement placement = PlacementAbout(Middle(from, to), from, state->endPoint);
    const DoublePoint newFrom = ToDoublePoint(first.p);
    state->endPoint = PlaceAgain(placement, Middle(newFrom, ToDoublePoint(second.p)), newFrom);
    return true;
}

}  // namespace

bool IsLinearKind(std::int16_t kind) { return kind == kObliqueTool || kind == kStraightTool || kind == kCurveTool; }

FollowedPoints FindPointsNow(const PluginGlobals* globals, const DimensionRecord& record) {
    const ToolState& state = globals->liveState;
    FollowedPoints now;
    now.from = FindPointNow(globals, record.from, state.fromPoint, false, record.from, {});
    now.to = FindPointNow(globals, record.to, state.toPoint, false, record.from, now.from);
    for (int i = 0; i < state.stopCount; ++i)
        now.stops.push_back(FindPointNow(globals, record.stops[static_cast<std::size_t>(i)], state.stops[i].point, true,
                                         record.from, now.from));
    return now;
}

std::vector<DimensionEnd> FindEnds(const PluginGlobals* globals, const DimensionRecord& record) {
    const FollowedPoints now = FindPointsNow(globals, record);
    std::vector<DimensionEnd> ends{{kFromEnd, now.from.state}, {kToEnd, now.to.state}};
    for (const PointNow& stop : now.stops) ends.push_back({static_cast<std::int16_t>(ends.size() - 1), stop.state});
    return ends;
}

bool FollowArt(PluginGlobals* globals, const DimensionRecord& record) {
    if (IsLinearKind(record.kind)) {
        FollowLinear(globals, record);
        return true;
    }
    if (record.kind == kAngleTool) return FollowAngle(globals, record);
    if (record.kind == kRadiusTool || record.kind == kDiameterTool) return FollowRound(globals, record);
    return false;
}

}  // namespace quorvel
