// How a measured point that is not at an anchor is held on its art: found when the point is snapped, kept in the
// record, and used to put the point back on the art as it is now.
#pragma once

#include <string>
#include <string_view>

#include "hostapi/dimensions.h"
#include "plugin/shell/globals.h"

namespace quorvel {

// A recorded point by its text: the hold, and what the format proper loses.
struct HoldRecord {
    PointHold hold;
    bool hasExact = false, hasAnchor = false;
    RealPoint exact;
    DoublePoint anchor;
};

// Empty when there is nothing to record.
std::string HoldText(const HoldRecord& record);
HoldRecord ParseHold(std::string_view text);

// Of a point that a search of this kind has snapped onto the cells. from, fromCell: the first point, for a point along
// the tangent or normal through it.
PointHold HoldOfSnap(const PluginGlobals* globals, std::int16_t snapKind, const RealPoint& point, const SnapCell* cells,
                     const RealPoint& from, const SnapCell& fromCell);

// Of a point at an anchor: which cells have that anchor, when not all of them do.
PointHold HoldAtAnchor(const RealPoint& point, const SnapCell* cells);

// Of a point on a straight segment that was picked.
PointHold HoldOfPick(const PluginGlobals* globals, const RealPoint& point, const SnapCell& cell);

// Where the hold puts the point now. Arts of the cells may be null where a hold does not use them. from: the first
// point as it is now.
LinkState PlaceHeldPoint(const PluginGlobals* globals, const PointHold& hold, const SnapCell* cells,
                         const DoublePoint& from, const SnapCell& fromCell, RealPoint* point);

// Is the point where the record says, as near as its six digits tell?
bool IsWhereRecorded(const RealPoint& now, const RealPoint& recorded);

}  // namespace quorvel
