// What dimensions and drawing frames keep in tags on their groups: the tags' names, the order of their fields, and
// their limits. The plug-in writes and reads them; the list of dimensions reads them too, as any program may. A tag's
// value is a text of fields with commas between them; quotes round a field guard its commas. A point is two fields, h
// and v.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace quorvel {

// The tool that made the dimension. Records keep these numbers.
enum ToolKind : std::int16_t {
    kObliqueTool = 0,
    kRadiusTool = 1,
    kDiameterTool = 2,
    kFilletAdditionTool = 3,
    kAngleTool = 4,
    kStraightTool = 5,
    kRadiusSurfaceTool = 6,    // has a title, is never added
    kDiameterSurfaceTool = 7,  // has a title, is never added
    kFilletSeparateTool = 8,
    kFilletReplaceTool = 9,
    kSlantTool = 10,
    kArcTangentialTool = 11,
    kArcThreePointsTool = 12,
    kArcCenterTool = 13,
    kCurveTool = 14,
    kCommentTool = 15,
    kObjectNumberTool = 16,
    kLengthCommentTool = 17,
    kAreaCommentTool = 18,
    kScheduleBottomTool = 19,
    kScheduleTopTool = 20,
    kToolKindCount = 21,
};

// What a point has been moved onto. Records and the snap report keep these numbers.
enum SnapKind : std::int16_t {
    kSnapNothing = 0,
    kSnapFree = 1,
    kSnapAnchor = 2,  // also an arc or a picked segment
    kSnapIntersection = 3,
    kSnapPath = 4,
    kSnapTangent = 5,
    kSnapNormal = 6,
    kSnapCenter = 7,
    kSnapKindCount = 8,
};

// --- the tags of a dimension group -----------------------------------------------------------------------------------

// kToolConfigTag marks a dimension group. Its first field is kKindFactor times the tool kind, plus the mode.
constexpr char kToolConfigTag[] = "QUORVEL_TOOLCNF";
constexpr int kKindFactor = 1000;
enum ConfigField : int { kConfigKindAndMode = 0, kConfigStep = 1, kConfigCursor = 2, kConfigModifiers = 4 };

constexpr char kCursorTag[] = "QUORVEL_CURSPOS";
enum CursorField : int { kCursorPrevious = 0, kCursorTangent = 2, kCursorAxisWord = 3 };

// The measured points and the placement.
constexpr char kFromTag[] = "QUORVEL_FROMPOS", kToTag[] = "QUORVEL_TOPOS", kEndTag[] = "QUORVEL_ENDPOS";
enum PositionField : int { kPositionTangent = 0, kPositionKind = 1, kPositionPoint = 2 };

constexpr char kTmpTag[] = "QUORVEL_TMPPOS";  // one point

// Links to the measured art: pairs of object id and anchor index, then the id 0 and a point. Readers take
// kCellPairsRead pairs, the ending one among them.
constexpr char kFromCellTag[] = "QUORVEL_FROMCELL", kToCellTag[] = "QUORVEL_TOCELL";
constexpr int kCellPairsRead = 6;

// The links of stop 1 to kStopLimit.
constexpr int kStopLimit = 30;
inline std::string StopTagName(int number) {
    char name[32];
    std::snprintf(name, sizeof name, "QUORVEL_STOPCELL%2.2d", number);
    return name;
}

// The settings, in pieces.
constexpr char kSettingTag[] = "QUORVEL_SETTING";

// On measured art: its object id.
constexpr char kObjectIdTag[] = "quorvel_object_id";

// --- the tags of a drawing frame's group
// -------------------------------------------------------------------------------

// The header's settings, in pieces. The first piece marks a frame.
constexpr char kFrameSettingTag[] = "QUORVEL_ZWK_SETTING";
constexpr char kFrameTag[] = "QUORVEL_ZWK_SETTING_1";

// Row from 0; half 1 has the first kFirstHalfColumns texts of the row, half 2 the others.
constexpr int kFirstHalfColumns = 2;
inline std::string PartsTagName(int row, int half) {
    char name[40];
    std::snprintf(name, sizeof name, "QUORVEL_ZWK_PARTS%3.3d_%d", row + 1, half);
    return name;
}

// --- texts in pieces
// ---------------------------------------------------------------------------------------------------

// A long text is cut into pieces of bytes under prefix_1, prefix_2, ...
constexpr int kTagPieceSize = 255, kTagPieceCount = 4;
inline std::string TagPieceName(const char* prefix, int number) {
    return std::string(prefix) + '_' + std::to_string(number);
}

}  // namespace quorvel
