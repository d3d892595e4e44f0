// The round tools from press to group: the chain that picks an arc or places the label, the leader's preview, and the
// leader, head and text that the release makes.
#include "plugin/dimensioning/radius.h"

#include "plugin/dimensioning/graphics.h"
#include "plugin/dimensioning/shown_text.h"
#include "plugin/record/dimension_record.h"
#include "plugin/settings/info_panel.h"
#include "plugin/settings/small_dialogs.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

constexpr std::int32_t kRefusingCursor = 16102, kFreeCursor = 16104, kCenterCursor = 16110;

void PaintRadius(const PreviewPen& pen, PluginGlobals* /*globals*/, ToolState* state, bool /*isDrawn*/) {
    PaintRound(kRadiusRoundTool, pen, *state);
}

bool ArcOfCell(const SnapCell& cell, DoublePoint* centre, double* radius) {
    PathSegment previous, segment;
    return cell.art != nullptr && ReadSegmentPair(cell.art, cell.index, &previous, &segment) &&
           CircleFromTangents(previous, segment, centre, radius) == 1;
}

// Placing the label: the whole chain, then Shift turns the cursor about the arc's centre.
std::int16_t SnapPlacement(PluginGlobals* globals, const RoundTool& tool) {
    ToolState& live = globals->liveState;
    const SnapResult result = RunSnapChain(globals, tool.family);
    DoublePoint centre;
    double radius = 0;
    if ((live.cursorModifiers & kShiftModifier) && ArcOfCell(live.fromCells[0], &centre, &radius))
        ConstrainDirection(live.cursorModifiers, centre, &live.cursorPoint);
    return result.kind != kSnapNothing ? result.kind : static_cast<std::int16_t>(kSnapFree);
}

// Hovering: the arc under the cursor.
std::int16_t SnapPick(PluginGlobals* globals, const RoundTool& tool) {
    ToolState& live = globals->liveState;
    const SnapResult result = RunSnapChain(globals, tool.family);
    if (result.kind != kSnapNothing) {
        live.fromKind = result.kind;
        live.fromPoint = live.cursorPoint;
    }
    live.fromCells[0] = result.cells[0];
    return result.kind;
}

std::int32_t RoundCursor(std::int16_t toolStep, std::int16_t kind) {
    if (toolStep != 1) return kind != kSnapNothing ? kFreeCursor : kRefusingCursor;
    if (kind >= kSnapFree && kind <= kSnapPath) return kFreeCursor + kind - kSnapFree;
    return kind == kSnapCenter ? kCenterCursor : kRefusingCursor;
}

// --- build --------------------------------------------------------------------------------------------------------

// The line that the text is centred on, and the end of the shelf under it.
struct LabelLine {
    DoublePoint a1, a2, shelfEnd;
};

LabelLine PlaceLabel(const PluginGlobals* globals, const RoundLeader& leader, const DoublePoint& left,
                     const DoublePoint& right, const DoublePoint& shelfStart, const char* text) {
    const PrefsRecord& prefs = globals->prefs;
    if (prefs.flRdSpos == 0) {
        const double rho = AngleBetweenPoints(left, right) + kHalfPiWide;
        return {PolarPoint(left, prefs.flScLead, rho), PolarPoint(right, prefs.flScLead, rho), leader.T};
    }
    const double reach = MeasureTextWidth(globals, text) + prefs.flRdLead * 2.0;
    const DoublePoint above{shelfStart.h, shelfStart.v + prefs.flScLead};
    const DoublePoint far{shelfStart.h + (prefs.flRdSpos == 1 ? -reach : reach), above.v};
    const DoublePoint shelfEnd{far.h, shelfStart.v};
    return prefs.flRdSpos == 1 ? LabelLine{far, above, shelfEnd} : LabelLine{above, far, shelfEnd};
}

// How far the radius may be off when the anchors and handles of its segment are.
double RadiusSlack(const SnapCell& cell) {
    const double tolerance = ShownTextTolerance();
    PathSegment previous, segment;
    DoublePoint centre;
    double radius = 0, slack = 0;
    if (tolerance <= 0 || !ReadSegmentPair(cell.art, cell.index, &previous, &segment) ||
        CircleFromTangents(previous, segment, &centre, &radius) != 1)
        return 0;
    for (float* coordinate : {&previous.p.h, &previous.p.v, &previous.out.h, &previous.out.v, &segment.in.h,
                              &segment.in.v, &segment.p.h, &segment.p.v}) {
        const float kept = *coordinate;
        double moved = 0;
        *coordinate = kept + static_cast<float>(tolerance);
        if (CircleFromTangents(previous, segment, &centre, &moved) == 1) slack += AbsOf(moved - radius);
        *coordinate = kept;
    }
    return slack;
}

// The record links both ends of the picked segment; the second link stands in toCells for the write alone.
void WriteRoundRecord(PluginGlobals* globals, AIArtHandle group, std::int16_t kind) {
    ToolState& live = globals->liveState;
    const SnapCell picked = live.fromCells[0], kept = live.toCells[0];
    const int before = picked.index > 0 ? picked.index - 1 : SegmentCount(picked.art) - 1;
    live.toCells[0] = {picked.art, static_cast<std::int16_t>(before)};
    WriteDimensionRecord(group, kind, 0);
    live.toCells[0] = kept;
}

}  // namespace

const RoundTool kRadiusRoundTool = {
    kRadiusTool, SnapFamily::radius, &PrefsRecord::flRadiusMode, LengthKind::radius, true, false};
const RoundTool kDiameterRoundTool = {
    kDiameterTool, SnapFamily::diameter, &PrefsRecord::flDiameterMode, LengthKind::diameter, false, true};

// --- events -------------------------------------------------------------------------------------------------------

AIErr RadiusEditOptions(const AIToolMessage* /*message*/) {
    RunRadiusDialog(gGlobals);
    return kNoErr;
}

AIErr RadiusTrack(const AIToolMessage* /*message*/) {
    TrackRound(kRadiusRoundTool, PaintRadius);
    return kNoErr;
}

AIErr RadiusDown(const AIToolMessage* /*message*/) {
    PressFirstPoint(gGlobals);
    return kNoErr;
}

AIErr RadiusUp(const AIToolMessage* message) {
    return ReleaseTwoStep(message, {PaintRadius, RoundPickIsPlaced, [] { return BuildRadiusDimension(nullptr) != 0; }});
}

void TrackRound(const RoundTool& tool, PreviewPainter painter) {
    PluginGlobals* globals = gGlobals;
    const std::int16_t step = globals->liveState.toolStep;
    const std::int16_t kind = step == 1 ? SnapPlacement(globals, tool) : SnapPick(globals, tool);
    globals->hitKind = static_cast<std::uint16_t>(kind);
    RedrawPreview(globals, painter);
    SetPanelPoint(globals->liveState.cursorPoint, nullptr);
    SetToolCursor(RoundCursor(step, kind));
}

bool RoundPickIsPlaced(const PluginGlobals* globals) {
    return !PointsEqual(globals->liveState.fromPoint, globals->liveState.toPoint);
}

// --- preview ------------------------------------------------------------------------------------------------------

void PaintRound(const RoundTool& tool, const PreviewPen& pen, const ToolState& state) {
    RoundLeader leader;
    if (state.toolStep == 1 && SolveRoundLeader(tool, state.fromCells[0], ToDoublePoint(state.cursorPoint), &leader))
        DrawPreviewLine(pen, leader.P0, leader.T);
}

// --- geometry -----------------------------------------------------------------------------------------------------

std::int32_t CircleFromTangents(const PathSegment& prevSegment, const PathSegment& segment, DoublePoint* centre,
                                double* radius) {
    return ArcCenterFromNormals(prevSegment, segment, centre, radius) ? 1 : 0;
}

std::int32_t ArcFromSegment(DoublePoint* centre, double* radius) {
    return ArcOfCell(gGlobals->liveState.fromCells[0], centre, radius) ? 1 : 0;
}

bool SolveRoundLeader(const RoundTool& tool, const SnapCell& cell, const DoublePoint& placement, RoundLeader* leader) {
    if (!ArcOfCell(cell, &leader->centre, &leader->radius)) return false;
    const DoublePoint centre = leader->centre;
    const double r = leader->radius;
    const bool showsSurface = gGlobals->prefs.*tool.mode == 1;
    const double alpha = AngleBetweenPoints(centre, placement);
    leader->P0 = centre;
    leader->S = PolarPoint(centre, r, alpha);
    const double dh = placement.h - centre.h, dv = placement.v - centre.v;
    if (r * r < dh * dh + dv * dv) {
        leader->T = placement;
        if (showsSurface) leader->P0 = leader->S;
    } else {
        leader->T = leader->S;
        if (showsSurface) leader->P0 = placement;
    }
    if (tool.crossesCircle && gGlobals->prefs.*tool.mode == 0) leader->P0 = PolarPoint(centre, r, alpha + kPi);
    return true;
}

std::int32_t RadiusGeometry(const DoublePoint& placement, double* r, DoublePoint* P0, DoublePoint* S, DoublePoint* T) {
    RoundLeader leader;
    if (!SolveRoundLeader(kRadiusRoundTool, gGlobals->liveState.fromCells[0], placement, &leader)) return 0;
    *r = leader.radius;
    *P0 = leader.P0;
    *S = leader.S;
    *T = leader.T;
    return 1;
}

// --- build --------------------------------------------------------------------------------------------------------

std::int32_t BuildRadiusDimension(AIArtHandle oldGroup) { return BuildRound(kRadiusRoundTool, oldGroup); }

std::int32_t BuildRound(const RoundTool& tool, AIArtHandle oldGroup) {
    PluginGlobals* globals = gGlobals;
    const PrefsRecord& prefs = globals->prefs;
    const ToolState& live = globals->liveState;
    RoundLeader leader;
    if (!SolveRoundLeader(tool, live.fromCells[0], ToDoublePoint(live.endPoint), &leader)) return 0;
    const std::int16_t mode = prefs.*tool.mode;
    const DoublePoint &P0 = leader.P0, &S = leader.S, &T = leader.T;
    const bool inside = PointsEqual(S, T), surface = mode == 1 && inside;

    // The text reads from left to right along the part of the leader that it stands on.
    const DoublePoint& otherEnd = inside ? P0 : S;
    const bool outerIsLeft = T.h < otherEnd.h;
    const DoublePoint &left = outerIsLeft ? T : otherEnd, &right = outerIsLeft ? otherEnd : T;
    const DoublePoint& trailing = inside || mode == 0 ? P0 : T;
    char text[kValueTextSize];
    FormatLengthShown(globals, 0, leader.radius, tool.length, RadiusSlack(live.fromCells[0]), text);
    const LabelLine label = PlaceLabel(globals, leader, left, right, surface ? P0 : T, text);

    AIArtHandle group = BeginDimensionGroup(oldGroup);
    if (group == nullptr) return 0;
    if (surface)
        AddLeader(group, label.shelfEnd, P0, T);
    else
        AddLeader(group, P0, T, label.shelfEnd);
    const double wings = ArrowWingLength(prefs, tool.truncatesWings);
    AddArrowMark(group, S, AngleBetweenPoints(S, trailing), wings);
    if (tool.crossesCircle && mode == 0) AddArrowMark(group, P0, AngleBetweenPoints(P0, S), wings);
    AddDimensionText(group, label.a1, label.a2, text);
    WriteRoundRecord(globals, group, tool.kind);
    EndDimensionGroup(oldGroup, group);
    return 1;
}

}  // namespace quorvel
