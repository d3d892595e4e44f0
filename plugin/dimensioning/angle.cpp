// The Angle tool from press to group: the two picks, the arc that follows the cursor, and the arc, heads and text that
// the click makes.
#include "plugin/dimensioning/angle.h"

#include <cmath>
#include <utility>

#include "plugin/dimensioning/graphics.h"
#include "plugin/dimensioning/shown_text.h"
#include "plugin/dimensioning/units.h"
#include "plugin/record/dimension_record.h"
#include "plugin/settings/info_panel.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"
#include "plugin/snapping/tool_steps.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

constexpr std::int32_t kRefusingCursor = 16102, kFreeCursor = 16104;
constexpr double kTextHalfLength = 30;  // of the line that the text is centred on

void PaintAngle(const PreviewPen& pen, PluginGlobals* globals, ToolState* state, bool isDrawn);

// The whole chain while the arc follows the cursor, the straight pick before.
std::int16_t AngleSnap(PluginGlobals* globals) {
    if (globals->liveState.toolStep != 2) return SnapTwoPicks(globals, SnapFamily::angle);
    const SnapResult result = RunSnapChain(globals, SnapFamily::angle);
    return result.kind != kSnapNothing ? result.kind : static_cast<std::int16_t>(kSnapFree);
}

std::int32_t AngleCursor(std::int16_t toolStep, std::int16_t kind) {
    if (toolStep != 2) return kind == kSnapNothing ? kRefusingCursor : kFreeCursor;
    return kind >= kSnapFree && kind <= kSnapPath ? kFreeCursor + kind - kSnapFree : kRefusingCursor;
}

// --- geometry -----------------------------------------------------------------------------------------------------

// A picked stretch as a line v = slope h + intercept, or a vertical one through h.
struct LegLine {
    DoublePoint a, b;
    bool vertical = false;
    double slope = 0, intercept = 0;
};

bool ReadLegLine(const SnapCell& cell, LegLine* line) {
    PathSegment previous, segment;
    if (cell.art == nullptr || !ReadSegmentPair(cell.art, cell.index, &previous, &segment)) return false;
    line->a = ToDoublePoint(previous.p);
    line->b = ToDoublePoint(segment.p);
    line->vertical = NearlyEqual(line->a.h, line->b.h);
    if (!line->vertical) {
        line->slope = (line->b.v - line->a.v) / (line->b.h - line->a.h);
        line->intercept = line->a.v - line->slope * line->a.h;
    }
    return true;
}

bool CrossLegs(const LegLine& first, const LegLine& second, DoublePoint* centre) {
    if (first.vertical && second.vertical) return false;
    if (!first.vertical && !second.vertical && NearlyEqual(first.slope, second.slope)) return false;
    const LegLine& slanted = first.vertical ? second : first;
    centre->h = first.vertical    ? first.a.h
                : second.vertical ? second.a.h
                                  : (first.intercept - second.intercept) / (second.slope - first.slope);
    centre->v = centre->h * slanted.slope + slanted.intercept;
    return true;
}

constexpr double kAtCorner = 0.05;  // points

// A pick at the corner itself has no direction; its leg has.
DoublePoint AimOf(const LegLine& leg, const DoublePoint& centre, const DoublePoint& pick) {
    if (DistanceBetweenPoints(centre, pick) > kAtCorner) return pick;
    return DistanceBetweenPoints(centre, leg.a) > DistanceBetweenPoints(centre, leg.b) ? leg.a : leg.b;
}

struct AngleArc {
    double radius = 0, start = 0, end = 0;
    DoublePoint centre;
};

bool SolveAngle(const ToolState& state, const DoublePoint& placement, const DoublePoint& from, const DoublePoint& to,
                AngleArc* arc) {
    LegLine first, second;
    if (!ReadLegLine(state.fromCells[0], &first) || !ReadLegLine(state.toCells[0], &second)) return false;
    if (!CrossLegs(first, second, &arc->centre)) return false;
    arc->radius = DistanceBetweenPoints(arc->centre, placement);
    double a = AngleBetweenPoints(arc->centre, AimOf(first, arc->centre, from));
    double b = AngleBetweenPoints(arc->centre, AimOf(second, arc->centre, to));
    const double c = AngleBetweenPoints(arc->centre, placement);
    if (b < a) std::swap(a, b);
    bool outer = c < a || c > b;
    if (state.choices.sector != AngleSector::placed)
        outer = (b - a > kPi) != (state.choices.sector == AngleSector::reflex);
    if (outer) a += kTwoPi;
    arc->start = a;
    arc->end = b;
    return true;
}

}  // namespace

// --- events -------------------------------------------------------------------------------------------------------

AIErr AngleTrack(const AIToolMessage* /*message*/) {
    PluginGlobals* globals = gGlobals;
    const std::int16_t kind = AngleSnap(globals);
    globals->hitKind = static_cast<std::uint16_t>(kind);
    RedrawPreview(globals, PaintAngle);
    SetPanelPoint(globals->liveState.cursorPoint, nullptr);
    SetToolCursor(AngleCursor(globals->liveState.toolStep, kind));
    return kNoErr;
}

AIErr AngleDown(const AIToolMessage* message) {
    PluginGlobals* globals = gGlobals;
    ToolState& live = globals->liveState;
    if (live.toolStep == 0) {
        PressFirstPoint(globals);
    } else if (live.toolStep == 2) {
        live.toolStep = 0;
        RedrawPreview(globals, PaintAngle);
        live.endPoint = live.cursorPoint;
        NameUndoForTool(message->tool);
        if (BuildAngleDimension(nullptr) == 0) Beep();
        ContextBracket(globals);
    }
    return kNoErr;
}

AIErr AngleUp(const AIToolMessage* /*message*/) { return ReleaseIntoPlacing(PaintAngle); }

// --- preview ------------------------------------------------------------------------------------------------------

namespace {

void PaintAngle(const PreviewPen& pen, PluginGlobals* /*globals*/, ToolState* state, bool /*isDrawn*/) {
    if (state->toolStep == 1) DrawPreviewLine(pen, state->fromPoint, state->cursorPoint);
    AngleArc arc;
    if (state->toolStep == 2 && SolveAngle(*state, ToDoublePoint(state->cursorPoint), ToDoublePoint(state->fromPoint),
                                           ToDoublePoint(state->toPoint), &arc))
        DrawPreviewArc(pen, arc.centre, arc.radius, arc.start, arc.end);
}

}  // namespace

// --- build --------------------------------------------------------------------------------------------------------

std::int32_t AngleGeometry(const DoublePoint& placement, const DoublePoint& from, const DoublePoint& to, double* radius,
                           double* startAngle, double* endAngle, DoublePoint* centre) {
    AngleArc arc;
    if (!SolveAngle(gGlobals->liveState, placement, from, to, &arc)) return 0;
    *radius = arc.radius;
    *startAngle = arc.start;
    *endAngle = arc.end;
    *centre = arc.centre;
    return 1;
}

namespace {

// A placement that a rebuild has brought over a leg goes to the middle of the sector that is shown.
void KeepInSector(const AngleArc& arc, ToolState* live) {
    const double direction = AngleBetweenPoints(arc.centre, ToDoublePoint(live->endPoint));
    const double middle = (arc.start + arc.end) / 2, half = AbsOf(arc.end - arc.start) / 2;
    const double off = AbsOf(std::remainder(direction - middle, kTwoPi));
    if (off * arc.radius > half * arc.radius + kClearMargin)
        live->endPoint = ToRealPoint(PolarPoint(arc.centre, arc.radius, middle));
}

// How far the angle may be off when the anchors of its legs are: radians.
double AngleSlack(const ToolState& live) {
    double slack = 0;
    for (const SnapCell& cell : {live.fromCells[0], live.toCells[0]}) {
        LegLine leg;
        if (ReadLegLine(cell, &leg)) slack += 2 * ShownTextTolerance() / DistanceBetweenPoints(leg.a, leg.b);
    }
    return slack;
}

}  // namespace

std::int32_t BuildAngleDimension(AIArtHandle oldGroup) {
    PluginGlobals* globals = gGlobals;
    const PrefsRecord& prefs = globals->prefs;
    ToolState& live = globals->liveState;
    AngleArc arc;
    if (!SolveAngle(live, ToDoublePoint(live.endPoint), ToDoublePoint(live.fromPoint), ToDoublePoint(live.toPoint),
                    &arc))
        return 0;
    if (live.fromRecord && live.choices.sector != AngleSector::placed) KeepInSector(arc, &live);
    live.choices.sector = AbsOf(arc.end - arc.start) > kPi ? AngleSector::reflex : AngleSector::minor;
    const double a = arc.start, b = arc.end, middle = a + (b - a) * 0.5;
    const double inward = b > a ? kHalfPiWide : -kHalfPiWide;  // along the circle, from the start into the arc
    const DoublePoint A = PolarPoint(arc.centre, arc.radius, a), B = PolarPoint(arc.centre, arc.radius, b);
    const DoublePoint P = PolarPoint(arc.centre, arc.radius + prefs.flScLead, middle);

    AIArtHandle group = BeginDimensionGroup(oldGroup);
    if (group == nullptr) return 0;
    AddDimensionArc(group, arc.radius, a, b, arc.centre);
    const double wings = ArrowWingLength(prefs, true);
    AddArrowMark(group, A, a + inward, wings);
    AddArrowMark(group, B, b - inward, wings);
    char text[kValueTextSize];
    FormatAngleShown(globals, AbsOf(b - a), AngleSlack(live), text);
    AddDimensionText(group, PolarPoint(P, kTextHalfLength, middle + kHalfPiWide),
                     PolarPoint(P, kTextHalfLength, middle - kHalfPiWide), text);
    WriteDimensionRecord(group, kAngleTool, prefs.flAngleMode);
    EndDimensionGroup(oldGroup, group);
    return 1;
}

}  // namespace quorvel
