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

struct StopRecord {
    RealPoint point;
    SnapCell cells[kSnapCellCount];
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
};

void ClearSnapCells(SnapCell* cells, int count);

}  // namespace quorvel
