// The state of a running tool. Two records of it exist: liveState, which events change, and drawnState, the copy of
// what the preview shows now. All tool families share the record and give its fields their own sense.
#pragma once

#include <cstdint>

#include "hostapi/records.h"
#include "plugin/geometry/vector.h"

namespace quorvel {

constexpr int kSnapCellCount = 5;
constexpr int kStopCapacity = 32;  // above kStopLimit, which a run keeps
constexpr std::int16_t kNoAnchorIndex = -1;

// An art under a point, with the index of the anchor (the segment that ends the hit piece).
struct SnapCell {
    AIArtHandle art = nullptr;
    std::int16_t index = kNoAnchorIndex;
};

// How a measured point is held on the art of its cells when it is not at an anchor; hostapi/record_additions.h says
// what the segment and the numbers mean.
enum class HoldKind : std::uint8_t { anchor, segment, crossing, centre, bounds, offset };
struct PointHold {
    HoldKind kind = HoldKind::anchor;
    std::int16_t segment = kNoAnchorIndex;
    double numbers[4] = {};
    std::uint8_t links = 0;  // of a point at an anchor: a bit for each cell whose anchor it is at, the first the lowest

    bool UsesLink(int link) const { return links == 0 || (links >> link & 1) != 0; }
};

struct StopRecord {
    RealPoint point;
    std::int16_t kind = kSnapNothing;
    SnapCell cells[kSnapCellCount];
    PointHold hold;
};

// What a builder has decided, or has to decide as the record says.
constexpr char kHeadsInside = 'i', kHeadsOutside = 'o', kHeadsByLength = '-';
constexpr char kSpanForward = 'f', kSpanBack = 'b', kSpanNone = '0', kSpanByFeet = '-';
enum class CurveWay : std::uint8_t { nearest, forward, back };
enum class CurveSide : std::uint8_t { placed, left, right };
enum class AngleSector : std::uint8_t { placed, minor, reflex };
constexpr double kPlainPixel = 1.0;  // of a zoom of 1
struct BuildChoices {
    double pixel = 0;                 // 0: none is recorded
    char heads[kStopLimit + 2] = {};  // by span, closed by a zero
    char spans[kStopLimit + 2] = {};  // likewise: which way a span of hardly any length runs
    CurveWay way = CurveWay::nearest;
    CurveSide side = CurveSide::placed;
    AngleSector sector = AngleSector::placed;

    double PixelOrPlain() const { return pixel > 0 ? pixel : kPlainPixel; }
};

struct ToolState {
    std::int16_t toolStep = 0;  // 0 idle, 1 first point placed, 2 placing the result; -1 idle in drawnState
    RealPoint cursorPoint;      // the newest event's cursor, snapped
    std::uint16_t cursorModifiers = 0;
    RealPoint previousCursor;  // the newest event's cursor as the host gave it
    RealPoint fromPoint;
    std::int16_t fromKind = 0;
    double fromTangent = kNoDistance;  // radians; kNoDistance means none
    RealPoint toPoint;
    std::int16_t toKind = 0;
    double toTangent = kNoDistance;
    RealPoint endPoint;
    std::int16_t endKind = 0;
    double endTangent = kNoDistance;
    DoublePoint tmpPos;
    double cursorTangent = kNoDistance;
    std::int16_t axisWord = 0;
    SnapCell fromCells[kSnapCellCount];
    SnapCell toCells[kSnapCellCount];
    std::int16_t stopCount = 0;
    StopRecord stops[kStopCapacity];
    PointHold fromHold, toHold;
    BuildChoices choices;
    bool fromRecord = false;  // read from a dimension's record: holds and choices are known
};

void ClearSnapCells(SnapCell* cells, int count);

}  // namespace quorvel
