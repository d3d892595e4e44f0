// What a dimension keeps in tags on its group: the tool's state, a copy of the settings, and links to the measured art.
// A document stays plain art for any reader, and a dimension can be rebuilt when its art has moved.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "hostapi/dimensions.h"
#include "hostapi/records.h"
#include "plugin/record/point_hold.h"
#include "plugin/shell/globals.h"

namespace quorvel {

bool IsDimensionGroup(AIArtHandle art);
// Writes all tags from liveState and the settings, and gives the measured art object ids.
void WriteDimensionRecord(AIArtHandle group, std::int16_t kind, std::int16_t mode);
// Writes what links the first point of liveState to its art, without the tag that makes a group a dimension.
void WriteLinkedTip(AIArtHandle group);
// The art that has the id, the nearest to near when several do, and why there is none.
struct FoundArt {
    AIArtHandle art = nullptr;
    LinkState state = kLinkDeleted;
};
FoundArt FindLinkedArt(std::int32_t id, std::int32_t index, const RealPoint& near);

// One link of a list: an object id, an anchor index, and the art that they lead to now.
struct RecordedLink {
    std::int32_t id = 0, index = 0;
    FoundArt found;
};
constexpr int kLinkCapacity = 6;
struct LinkList {
    int count = 0;
    RecordedLink links[kLinkCapacity];
    bool hasEnd = false;
    DoublePoint end;  // the coordinates behind the id 0; (0, 0) when missing
};
LinkList ReadLinkList(std::string_view text);  // the art is not looked for

// A measured point as the record links it.
struct RecordedPoint {
    LinkList links;
    HoldRecord hold;
    int number = 0;  // of a stop's tag
};
struct DimensionRecord {
    std::int16_t kind = 0, mode = 0;
    RecordedPoint from, to;
    std::vector<RecordedPoint> stops;  // of the stops of liveState, in their order
    int language = -1;                 // of its signs; -1: the current one
};
// Fills liveState and the settings, from the format proper and from the additions to it.
DimensionRecord ReadDimensionRecord(AIArtHandle group);
// Field number index of a comma-separated text; quotes are dropped and guard commas. 0 with an empty field behind the
// end.
std::int32_t SplitField(std::string_view text, int index, std::string* field);
bool IsObjectIdInUse(std::int32_t id);  // by art that can or cannot be measured, on any layer
// FindLinkedArt without the cause; null when the art lacks the anchor index.
AIArtHandle FindArtById(std::int32_t id, std::int32_t index, const RealPoint& near);
// On the usable layers.
std::int32_t CountArtWithId(std::int32_t id);
bool IsPaintedVisible(AIArtHandle path);
bool LayerIsUsable(AILayerHandle layer);  // visible and editable

// The dimension groups of the usable layers, depth first through groups; a dimension group is not entered.
std::vector<AIArtHandle> CollectDimensionGroups();
// The comments, balloons, length and area comments that are linked to art.
std::vector<AIArtHandle> CollectMarkGroups();
// Where the anchor that a cell names stands now: a path's anchor, that of a text frame's path, or the anchor of a point
// text. False for other art.
bool CellAnchor(const SnapCell& cell, RealPoint* anchor);

// Tags as texts; null or absent reads as false.
bool ReadTag(AIArtHandle art, const char* name, std::string* value);
void WriteTag(AIArtHandle art, const char* name, const std::string& value);
void RemoveTag(AIArtHandle art, const char* name);
// Cuts text into pieces of 255 bytes under name_1 to name_4; stale pieces are removed first.
void WriteTagPieces(AIArtHandle art, const char* namePrefix, const std::string& text);
std::string JoinTagPieces(AIArtHandle art, const char* namePrefix);

}  // namespace quorvel
