// The Fillet tools from press to path: the picks, the line between them, and the arc that the release adds to the
// drawing or puts into the picked path.
#include "plugin/construction/fillet.h"

#include <limits>
#include <utility>

#include "plugin/construction/fillet_solver.h"
#include "plugin/settings/info_panel.h"
#include "plugin/settings/small_dialogs.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"
#include "plugin/snapping/tool_steps.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

constexpr std::int32_t kRefusingCursor = 16102, kPickingCursor = 16104;
constexpr double kBoxSlack = 0.001;

void PaintFillet(const PreviewPen& pen, PluginGlobals* /*globals*/, ToolState* state, bool /*isDrawn*/) {
    if (state->toolStep == 1) DrawPreviewLine(pen, state->fromPoint, state->cursorPoint);
}

}  // namespace

// --- events -------------------------------------------------------------------------------------------------------

AIErr FilletEditOptions(const AIToolMessage* /*message*/) {
    FilletRadiusDialog(gGlobals);
    return kNoErr;
}

AIErr FilletTrack(const AIToolMessage* /*message*/) {
    PluginGlobals* globals = gGlobals;
    const std::int16_t kind = SnapTwoPicks(globals, SnapFamily::fillet);
    globals->hitKind = static_cast<std::uint16_t>(kind);
    RedrawPreview(globals, PaintFillet);
    SetPanelRun(globals->liveState);
    SetToolCursor(kind != kSnapNothing ? kPickingCursor : kRefusingCursor);
    return kNoErr;
}

AIErr FilletDown(const AIToolMessage* /*message*/) {
    PressFirstPoint(gGlobals);
    return kNoErr;
}

AIErr FilletUp(const AIToolMessage* message) {
    return ReleaseTwoStep(message, {PaintFillet, TwoPointsPicked, BuildFillet});
}

// --- the corner of one path ---------------------------------------------------------------------------------------

namespace {

// The corner that two neighbouring segments of a path share.
struct PathCorner {
    AIArtHandle path = nullptr;
    int count = 0;         // of the path's anchors
    int anchor = 0;        // the one that is cut off
    bool swapped = false;  // the second pick comes before the first along the path
};

// Across the closing point of a path the segment 0 counts as the one behind the last.
bool FindSharedCorner(const SnapCell& first, const SnapCell& second, PathCorner* corner) {
    if (first.art != second.art) return false;
    const int n = SegmentCount(second.art);
    int i = first.index, j = second.index;
    if (i == n - 1 && j == 0) j = n;
    if (j == n - 1 && i == 0) i = n;
    corner->path = second.art;
    corner->count = n;
    corner->swapped = i > j;
    if (corner->swapped) std::swap(i, j);
    corner->anchor = i;
    return j - i == 1;
}

bool BoxHolds(const FilletPick& segment, const RealPoint& point) {
    const DoublePoint a = ToDoublePoint(segment.s.p), b = ToDoublePoint(segment.t.p), p = ToDoublePoint(point);
    return p.h >= MinOf(a.h, b.h) - kBoxSlack && p.h <= MaxOf(a.h, b.h) + kBoxSlack &&
           p.v >= MinOf(a.v, b.v) - kBoxSlack && p.v <= MaxOf(a.v, b.v) + kBoxSlack;
}

void TurnRound(FilletArc* arc) {
    std::swap(arc->records[0], arc->records[2]);
    for (PathSegment& record : arc->records) std::swap(record.in, record.out);
}

// The arc takes the place of the corner's anchor; on the path's first segment, and on the one that closes it, its end
// is a corner. False, and nothing has changed, when the host refuses the longer path.
bool PutArcIntoPath(const PathCorner& corner, FilletArc* arc) {
    constexpr int kMostAnchors = std::numeric_limits<std::int16_t>::max();
    if (corner.count > kMostAnchors - 2) return false;
    if (sAIPath->SetPathSegmentCount(corner.path, static_cast<std::int16_t>(corner.count + 2)) != kNoErr) return false;
    if (corner.swapped) TurnRound(arc);
    const int i = corner.anchor, n = corner.count;
    arc->records[0].corner = i == 1 ? 1 : 0;
    arc->records[2].corner = i + 1 == n ? 1 : 0;
    for (int to = n + 1; to >= i + 3; --to) {
        PathSegment moved;
        if (ReadSegment(corner.path, to - 2, &moved))
            sAIPath->SetPathSegments(corner.path, static_cast<std::int16_t>(to), 1, &moved);
    }
    sAIPath->SetPathSegments(corner.path, static_cast<std::int16_t>(i), kFilletRecords, arc->records);
    return true;
}

void BecomeCutOffCorner(const RealPoint& anchor, FilletArc* arc) {
    arc->records[1].p = anchor;
    for (PathSegment& record : arc->records) record.in = record.out = record.p;
    arc->records[0].corner = arc->records[2].corner = 1;
}

// The host's refusal of a new path is no failure of the tool.
bool AddFilletPath(AIArtHandle above, const FilletArc& arc) {
    if (ArtLayerIsBlocked(above)) return false;
    AIPathStyle style;
    const bool styled = sAIPathStyle->GetPathStyle(above, &style) == kNoErr;
    AIArtHandle path = nullptr;
    if (sAIArt->NewArt(kPathArt, kPlaceAbove, above, &path) != kNoErr || path == nullptr) return true;
    if (styled) sAIPathStyle->SetPathStyle(path, &style);
    for (int i = 0; i < kFilletRecords; ++i)
        sAIPath->SetPathSegments(path, static_cast<std::int16_t>(i), 1, &arc.records[i]);
    return true;
}

// --- build --------------------------------------------------------------------------------------------------------

bool ReadFilletPick(const SnapCell& cell, const RealPoint& point, FilletPick* pick) {
    pick->point = ToDoublePoint(point);
    return cell.art != nullptr && ReadSegmentPair(cell.art, cell.index, &pick->s, &pick->t);
}

// What two lines give goes into their path when the tool wants it so, the two meet at a corner of one path, and both
// are long enough for it.
bool UseLineLine(const PluginGlobals* globals, const FilletPick& first, const FilletPick& second, FilletArc* arc) {
    const SnapCell &firstCell = globals->liveState.fromCells[0], &secondCell = globals->liveState.toCells[0];
    const std::int16_t mode = globals->prefs.flFiletMode;
    PathCorner corner;
    const bool inPlace = mode != kFilletAddition && FindSharedCorner(firstCell, secondCell, &corner) &&
                         BoxHolds(first, arc->records[0].p) && BoxHolds(second, arc->records[2].p);
    if (inPlace) {
        const RealPoint cutOff = corner.swapped ? second.t.p : first.t.p;
        if (!PutArcIntoPath(corner, arc)) return false;
        if (mode != kFilletSeparate) return true;
        BecomeCutOffCorner(cutOff, arc);
    }
    return AddFilletPath(firstCell.art, *arc);
}

}  // namespace

bool BuildFillet() {
    PluginGlobals* globals = gGlobals;
    const ToolState& live = globals->liveState;
    FilletPick first, second;
    if (!ReadFilletPick(live.fromCells[0], live.fromPoint, &first)) return false;
    if (!ReadFilletPick(live.toCells[0], live.toPoint, &second)) return false;
    if (globals->prefs.flRadius == 0.0F && !FilletRadiusDialog(globals)) return false;

    const double radius = globals->prefs.flRadius;
    const bool firstStraight = IsStraightSegment(first.s, first.t);
    const bool secondStraight = IsStraightSegment(second.s, second.t);
    const BezierBasisTables& tables = globals->bezierTables;
    FilletArc arc;
    if (firstStraight && secondStraight)
        return SolveLineLine(first, second, radius, &arc) && UseLineLine(globals, first, second, &arc);
    const auto solve = firstStraight || secondStraight ? SolveLineArc : SolveArcArc;
    return solve(tables, first, second, radius, &arc) && AddFilletPath(live.fromCells[0].art, arc);
}

}  // namespace quorvel
