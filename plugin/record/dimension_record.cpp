// Writing a dimension's state, settings and links into the tags of its group, and reading them back. Numbers go through
// "%g": six digits, and that loss is part of the format.
#include "plugin/record/dimension_record.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "hostapi/record_additions.h"
#include "plugin/record/record_additions.h"
#include "plugin/settings/prefs_keys.h"
#include "plugin/shell/suites.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

// Ids given to copies during one write; they reach the art at its end.
struct NewId {
    AIArtHandle art;
    std::int32_t id;
};
constexpr std::size_t kNewIdCapacity = 100;
std::vector<NewId> gNewIds;
// All dimensions, from the first copy that is met to the end of the write, which neither adds nor removes any.
std::vector<AIArtHandle> gDimensions;

__attribute__((format(printf, 1, 2))) std::string Print(const char* format, ...) {
    char text[512];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return text;
}

// Every record is asked for all of them, though few have any.
const std::string& StopTag(int number) {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> made;
        for (int i = 0; i <= kStopLimit; ++i) made.push_back(StopTagName(i));
        return made;
    }();
    return names[static_cast<std::size_t>(number)];
}

double NumberIn(std::string_view text, int index) {
    std::string field;
    SplitField(text, index, &field);
    return std::atof(field.c_str());
}

int IntegerIn(std::string_view text, int index) {
    std::string field;
    SplitField(text, index, &field);
    return std::atoi(field.c_str());
}

RealPoint PointIn(std::string_view text, int index) {
    return {static_cast<float>(NumberIn(text, index)), static_cast<float>(NumberIn(text, index + 1))};
}

// --- writing ------------------------------------------------------------------------------------------------------

std::string PositionText(double tangent, int kind, const RealPoint& point) {
    return Print("%g,%d,%g,%g", tangent, kind, point.h, point.v);
}

void WriteStateTags(AIArtHandle group, std::int16_t kind, std::int16_t mode, const ToolState& state) {
    WriteTag(group, kToolConfigTag,
             Print("%d,%d,%g,%g,%d", kind * kKindFactor + mode, state.toolStep, state.cursorPoint.h,
                   state.cursorPoint.v, state.cursorModifiers));
    WriteTag(group, kCursorTag,
             Print("%g,%g,%g,%d", state.previousCursor.h, state.previousCursor.v, state.cursorTangent, state.axisWord));
    WriteTag(group, kFromTag, PositionText(state.fromTangent, state.fromKind, state.fromPoint));
    WriteTag(group, kToTag, PositionText(state.toTangent, state.toKind, state.toPoint));
    WriteTag(group, kEndTag, PositionText(state.endTangent, state.endKind, state.endPoint));
    WriteTag(group, kTmpTag, Print("%g,%g", state.tmpPos.h, state.tmpPos.v));
}

std::string SettingsText(const PluginGlobals* globals) {
    std::string text;
    for (const PrefsKey& key : RecordKeys()) {
        const std::string value = FormatPrefsField(globals, key);
        if (!text.empty()) text += ',';
        text += key.type == FieldType::text ? '"' + value + '"' : value;
    }
    return text;
}

// The host's random numbers have 24 bits, so that a thousand ids hold two of the same in 3 cases of 100. 0 ends a list.
std::int32_t NewObjectId() {
    constexpr int kTries = 16;  // a host's generator may be stuck
    std::int32_t id = 0;
    for (int i = 0; i < kTries; ++i) {
        id = static_cast<std::int32_t>(static_cast<double>(sAIRandom->FloatRnd()) * 100000000);
        if (id != 0 && !IsObjectIdInUse(id)) break;
    }
    return id;
}

// The pairs of a cell list, up to the id 0 that ends it.
std::vector<std::pair<int, int>> ReadPairs(std::string_view text) {
    std::vector<std::pair<int, int>> pairs;
    std::string field;
    for (int i = 0; i < kCellPairsRead; ++i) {
        if (!SplitField(text, 2 * i, &field) || field.empty()) break;
        const int id = std::atoi(field.c_str());
        if (id == 0 || !SplitField(text, 2 * i + 1, &field) || field.empty()) break;
        pairs.emplace_back(id, std::atoi(field.c_str()));
    }
    return pairs;
}

// The coordinates at the end of a list, which is about to lose them.
void KeepAnchor(AIArtHandle group, const char* tagName, const std::string& list) {
    const char* holdTag = HoldTagOf(tagName);
    const LinkList links = ReadLinkList(list);
    if (!links.hasEnd) return;
    HoldRecord record = ReadHold(group, holdTag);
    record.hasAnchor = true;
    record.anchor = links.end;
    WriteHold(group, holdTag, record);
}

// Dimensions that measure this art by its old id, through the tag of this name, are pointed at its new one. Their lists
// end with the last pair then.
void RepointDimensions(AIArtHandle art, const char* tagName, std::int32_t oldId, std::int32_t newId) {
    if (gDimensions.empty()) gDimensions = CollectDimensionGroups();
    std::string text;
    for (AIArtHandle group : gDimensions) {
        if (!ReadTag(group, tagName, &text)) continue;
        const std::vector<std::pair<int, int>> pairs = ReadPairs(text);
        const auto bearsOldId = [oldId](const std::pair<int, int>& pair) { return pair.first == oldId; };
        if (std::none_of(pairs.begin(), pairs.end(), bearsOldId)) continue;
        RealRect bounds;
        sAIArt->GetArtBounds(group, &bounds);
        const RealPoint near{(bounds.left + bounds.right) / 2, (bounds.top + bounds.bottom) / 2};
        bool changed = false;
        std::string rebuilt;
        for (auto [id, index] : pairs) {
            if (id == oldId && FindArtById(oldId, index, near) == art) {
                id = newId;
                changed = true;
            }
            rebuilt += Print("%s%d,%d", rebuilt.empty() ? "" : ",", id, index);
        }
        if (!changed) continue;
        KeepAnchor(group, tagName, text);
        WriteTag(group, tagName, rebuilt);
    }
}

std::int32_t IdOfCopy(AIArtHandle art) {
    for (const NewId& row : gNewIds)
        if (row.art == art) return row.id;
    if (gNewIds.size() >= kNewIdCapacity) return 0;
    gNewIds.push_back({art, NewObjectId()});
    return gNewIds.back().id;
}

std::int32_t ObjectIdFor(AIArtHandle art, const char* tagName) {
    std::string text;
    if (!ReadTag(art, kObjectIdTag, &text)) {
        const std::int32_t id = NewObjectId();
        WriteTag(art, kObjectIdTag, Print("%d", id));
        return id;
    }
    const std::int32_t oldId = std::atoi(text.c_str());
    if (CountArtWithId(oldId) <= 1) return oldId;
    const std::int32_t newId = IdOfCopy(art);
    RepointDimensions(art, tagName, oldId, newId);
    return newId;
}

std::string PairsText(const SnapCell* cells, const char* tagName) {
    std::string text;
    for (int i = 0; i < kSnapCellCount && cells[i].art != nullptr; ++i)
        text += Print("%s%d,%d", i == 0 ? "" : ",", ObjectIdFor(cells[i].art, tagName), cells[i].index);
    return text;
}

void WriteCellList(AIArtHandle group, const char* tagName, const SnapCell* cells) {
    std::string text = PairsText(cells, tagName);
    if (text.empty()) return;
    RealPoint anchor;
    CellAnchor(cells[0], &anchor);
    text += Print(",0,%g,%g", anchor.h, anchor.v);
    WriteTag(group, tagName, text);
}

void WriteStopList(AIArtHandle group, int number, const StopRecord& stop) {
    const std::string& tagName = StopTag(number);
    std::string text = PairsText(stop.cells, tagName.c_str());
    if (!text.empty()) text += ',';
    WriteTag(group, tagName.c_str(), text + Print("0,%g,%g", stop.point.h, stop.point.v));
}

// --- reading ------------------------------------------------------------------------------------------------------

void ReadPosition(AIArtHandle group, const char* tagName, double* tangent, std::int16_t* kind, RealPoint* point) {
    std::string text;
    if (!ReadTag(group, tagName, &text)) return;
    *tangent = NumberIn(text, kPositionTangent);
    *kind = static_cast<std::int16_t>(IntegerIn(text, kPositionKind));
    *point = PointIn(text, kPositionPoint);
}

void ReadStateTags(AIArtHandle group, std::int16_t* kind, std::int16_t* mode, ToolState* state) {
    std::string text;
    if (ReadTag(group, kToolConfigTag, &text)) {
        const int config = IntegerIn(text, kConfigKindAndMode);
        *kind = static_cast<std::int16_t>(config / kKindFactor);
        *mode = static_cast<std::int16_t>(config % kKindFactor);
        state->toolStep = static_cast<std::int16_t>(IntegerIn(text, kConfigStep));
        state->cursorPoint = PointIn(text, kConfigCursor);
        state->cursorModifiers = static_cast<std::uint16_t>(IntegerIn(text, kConfigModifiers));
    }
    if (ReadTag(group, kCursorTag, &text)) {
        state->previousCursor = PointIn(text, kCursorPrevious);
        state->cursorTangent = NumberIn(text, kCursorTangent);
        state->axisWord = static_cast<std::int16_t>(IntegerIn(text, kCursorAxisWord));
    }
    ReadPosition(group, kFromTag, &state->fromTangent, &state->fromKind, &state->fromPoint);
    ReadPosition(group, kToTag, &state->toTangent, &state->toKind, &state->toPoint);
    ReadPosition(group, kEndTag, &state->endTangent, &state->endKind, &state->endPoint);
    if (ReadTag(group, kTmpTag, &text)) state->tmpPos = {NumberIn(text, 0), NumberIn(text, 1)};
}

void ReadSettings(AIArtHandle group, PluginGlobals* globals) {
    const std::string text = JoinTagPieces(group, kSettingTag);
    if (text.empty()) return;
    std::string field;
    int index = 0;
    for (const PrefsKey& key : RecordKeys()) {
        // A text that is there and empty is not filled from the profile, or a rebuild would depend on that.
        const bool isThere = SplitField(text, index++, &field) != 0;
        if (!field.empty() || (isThere && key.type == FieldType::text)) StorePrefsField(globals, key, field);
    }
}

// Found art fills the cells without a gap. hold: which of the links its point is at, and then of the cells.
void FillCells(const LinkList& list, SnapCell* cells, PointHold* hold = nullptr) {
    int filled = 0;
    unsigned used = 0;
    for (int i = 0; i < list.count && filled < kSnapCellCount; ++i) {
        const RecordedLink& link = list.links[i];
        if (link.found.art == nullptr) continue;
        if (hold != nullptr && hold->UsesLink(i)) used |= 1U << filled;
        cells[filled++] = {link.found.art, static_cast<std::int16_t>(link.index)};
    }
    if (hold == nullptr || hold->links == 0) return;
    hold->links = static_cast<std::uint8_t>(used);
    if (used == 0) ClearSnapCells(cells, kSnapCellCount);
}

RecordedPoint ReadRecordedPoint(AIArtHandle group, const char* listTag, const RealPoint& near) {
    RecordedPoint point;
    std::string text;
    if (ReadTag(group, listTag, &text)) point.links = ReadLinkList(text);
    for (int i = 0; i < point.links.count; ++i) {
        RecordedLink& link = point.links.links[i];
        link.found = FindLinkedArt(link.id, link.index, near);
    }
    return point;
}

// The axis was decided at the placement, which is known better than it.
void KeepPlacedPoint(ToolState* state) {
    const auto printed = [](double value) { return std::atof(Print("%g", value).c_str()); };
    if (printed(state->endPoint.h) == state->tmpPos.h && printed(state->endPoint.v) == state->tmpPos.v)
        state->tmpPos = ToDoublePoint(state->endPoint);
}

void ReadStops(AIArtHandle group, const RealPoint& near, ToolState* state, std::vector<RecordedPoint>* stops) {
    std::string text;
    for (int i = 1; i <= kStopLimit; ++i) {
        if (!ReadTag(group, StopTag(i).c_str(), &text)) continue;
        StopRecord* stop = &state->stops[state->stopCount++];
        RecordedPoint point = ReadRecordedPoint(group, StopTag(i).c_str(), near);
        point.number = i;
        if (point.links.hasEnd) stop->point = ToRealPoint(point.links.end);
        FillCells(point.links, stop->cells);
        stops->push_back(point);
    }
}

}  // namespace

bool IsDimensionGroup(AIArtHandle art) { return IsToolGroup(art); }

std::int32_t SplitField(std::string_view text, int index, std::string* field) {
    field->clear();
    bool quoted = false;
    int current = 0;
    for (const char c : text) {
        if (c == '"')
            quoted = !quoted;
        else if (c == ',' && !quoted) {
            if (++current > index) return 1;
        } else if (current == index) {
            *field += c;
        }
    }
    return current >= index ? 1 : 0;
}

bool ReadTag(AIArtHandle art, const char* name, std::string* value) {
    const void* text = nullptr;
    if (sAITag->GetTag(art, name, kStringTag, &text) != kNoErr || text == nullptr) return false;
    *value = static_cast<const char*>(text);
    return true;
}

void WriteTag(AIArtHandle art, const char* name, const std::string& value) {
    sAITag->SetTag(art, name, kStringTag, value.c_str());
}

void RemoveTag(AIArtHandle art, const char* name) { sAITag->RemoveTag(art, name); }

void WriteTagPieces(AIArtHandle art, const char* namePrefix, const std::string& text) {
    for (int i = 0; i < kTagPieceCount; ++i) RemoveTag(art, TagPieceName(namePrefix, i + 1).c_str());
    for (int i = 0; i < kTagPieceCount && text.size() > static_cast<std::size_t>(i) * kTagPieceSize; ++i)
        WriteTag(art, TagPieceName(namePrefix, i + 1).c_str(),
                 text.substr(static_cast<std::size_t>(i) * kTagPieceSize, kTagPieceSize));
}

std::string JoinTagPieces(AIArtHandle art, const char* namePrefix) {
    std::string joined, piece;
    for (int i = 0; i < kTagPieceCount; ++i)
        if (ReadTag(art, TagPieceName(namePrefix, i + 1).c_str(), &piece)) joined += piece;
    return joined;
}

LinkList ReadLinkList(std::string_view text) {
    LinkList list;
    std::string field, second;
    for (int i = 0; i < kCellPairsRead; ++i) {
        if (!SplitField(text, 2 * i, &field) || field.empty()) break;
        const int id = std::atoi(field.c_str());
        if (id == 0) {
            list.hasEnd = SplitField(text, 2 * i + 1, &field) && SplitField(text, 2 * i + 2, &second) &&
                          !field.empty() && !second.empty();
            if (list.hasEnd) list.end = {std::atof(field.c_str()), std::atof(second.c_str())};
            break;
        }
        if (!SplitField(text, 2 * i + 1, &field) || field.empty()) break;
        list.links[list.count++] = {id, std::atoi(field.c_str()), {}};
    }
    return list;
}

void WriteDimensionRecord(AIArtHandle group, std::int16_t kind, std::int16_t mode) {
    PluginGlobals* globals = gGlobals;
    FindHolds(globals, kind);
    const ToolState& state = globals->liveState;
    gNewIds.clear();
    gDimensions.clear();
    WriteStateTags(group, kind, mode, state);
    WriteTagPieces(group, kSettingTag, SettingsText(globals));
    WriteCellList(group, kFromCellTag, state.fromCells);
    for (int i = 1; i <= kStopLimit; ++i) RemoveTag(group, StopTag(i).c_str());
    for (int i = 0; i < state.stopCount; ++i) WriteStopList(group, i + 1, state.stops[i]);
    WriteCellList(group, kToCellTag, state.toCells);
    for (const NewId& row : gNewIds) WriteTag(row.art, kObjectIdTag, Print("%d", row.id));
    WriteAdditions(globals, group, kind);
}

void WriteLinkedTip(AIArtHandle group) {
    PluginGlobals* globals = gGlobals;
    FindHolds(globals, kObliqueTool);
    const ToolState& state = globals->liveState;
    gNewIds.clear();
    gDimensions.clear();
    WriteTag(group, kFromTag, PositionText(state.fromTangent, state.fromKind, state.fromPoint));
    WriteTag(group, kToTag, PositionText(state.toTangent, state.toKind, state.toPoint));
    WriteTagPieces(group, kSettingTag, SettingsText(globals));
    WriteCellList(group, kFromCellTag, state.fromCells);
    for (const NewId& row : gNewIds) WriteTag(row.art, kObjectIdTag, Print("%d", row.id));
    WriteAdditions(globals, group, kObliqueTool);
}

namespace {

// The format proper.
DimensionRecord ReadFormat(AIArtHandle group, const RealPoint& near) {
    DimensionRecord record;
    ToolState* state = &gGlobals->liveState;
    ReadStateTags(group, &record.kind, &record.mode, state);
    ReadSettings(group, gGlobals);
    record.from = ReadRecordedPoint(group, kFromCellTag, near);
    record.to = ReadRecordedPoint(group, kToCellTag, near);
    FillCells(record.from.links, state->fromCells);
    FillCells(record.to.links, state->toCells);
    ReadStops(group, near, state, &record.stops);
    return record;
}

void ReadPointAdditions(AIArtHandle group, const char* holdTag, RecordedPoint* recorded, RealPoint* point,
                        PointHold* hold, SnapCell* cells) {
    recorded->hold = ReadHold(group, holdTag);
    *point = ExactPoint(recorded->hold, *point);
    *hold = recorded->hold.hold;
    FillCells(recorded->links, cells, hold);
}

void ReadAdditions(AIArtHandle group, DimensionRecord* record) {
    ToolState* state = &gGlobals->liveState;
    ReadExactSettings(group, gGlobals);
    ReadPointAdditions(group, kFromHoldTag, &record->from, &state->fromPoint, &state->fromHold, state->fromCells);
    ReadPointAdditions(group, kToHoldTag, &record->to, &state->toPoint, &state->toHold, state->toCells);
    for (int i = 0; i < state->stopCount; ++i) {
        RecordedPoint& recorded = record->stops[static_cast<std::size_t>(i)];
        StopRecord& stop = state->stops[i];
        ReadPointAdditions(group, StopHoldTag(recorded.number), &recorded, &stop.point, &stop.hold, stop.cells);
        if (!recorded.links.hasEnd && recorded.hold.hasAnchor) stop.point = ToRealPoint(recorded.hold.anchor);
    }
    state->endPoint = ExactPoint(ReadHold(group, kEndHoldTag), state->endPoint);
    record->language = ReadChoices(group, &state->choices);
    const bool isPicked = state->fromHold.kind == HoldKind::segment;
    if (record->kind == kAngleTool && isPicked && state->choices.sector == AngleSector::placed)
        state->choices.sector = AngleSector::minor;
    KeepPlacedPoint(state);
    state->fromRecord = true;
}

RealPoint CentreOfGroup(AIArtHandle group) {
    RealRect bounds;
    sAIArt->GetArtBounds(group, &bounds);
    return {(bounds.left + bounds.right) / 2, (bounds.top + bounds.bottom) / 2};
}

}  // namespace

DimensionRecord ReadDimensionRecord(AIArtHandle group) {
    ContextBracket(gGlobals);
    DimensionRecord record = ReadFormat(group, CentreOfGroup(group));
    ReadAdditions(group, &record);
    return record;
}

}  // namespace quorvel
