// The Arc tools from press to path: two points by press and release, the arc that follows the cursor, and the path
// that the click makes of it.
#include "plugin/construction/arc.h"

#include <cmath>
#include <utility>

#include "plugin/construction/fillet_solver.h"
#include "plugin/dimensioning/graphics.h"
#include "plugin/settings/info_panel.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"
#include "plugin/snapping/tool_steps.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

constexpr double kGuideParts = 256.0;    // a guide point is this part of a unit from where the arc starts
constexpr double kLevelRadius = 0.0001;  // a radius less high than this has an upright tangent
constexpr int kArcAnchors = 5;

// The arc to the cursor as the state has it, keeping the state's memory of the way up to date.
bool SolveRunningArc(std::int16_t mode, ToolState* state, const RealPoint& third, CircleArc* arc) {
    return SolveArc(mode, ToDoublePoint(third), ToDoublePoint(state->fromPoint), ToDoublePoint(state->toPoint), arc,
                    &state->tmpPos, &state->cursorTangent);
}

// Placing the end: the chain, then Shift about the centre of the arc to the cursor, and the way of the cursor from
// where it was last. Shift takes only a look at the arc, since the cursor is not there in the end.
std::int16_t SnapArcEnd(PluginGlobals* globals) {
    ToolState& live = globals->liveState;
    const std::int16_t mode = globals->prefs.flArcMode;
    const SnapResult result = RunSnapChain(globals, SnapFamily::arc);
    CircleArc arc;
    ToolState look = live;
    const bool solved = SolveRunningArc(mode, &look, live.cursorPoint, &arc);
    const DoublePoint base = solved ? arc.centre : ToDoublePoint(globals->drawnState.fromPoint);
    ConstrainDirection(live.cursorModifiers, base, &live.cursorPoint);
    SolveRunningArc(mode, &live, live.cursorPoint, &arc);
    const std::int16_t kind = result.kind != kSnapNothing ? result.kind : static_cast<std::int16_t>(kSnapFree);
    globals->hitKind = static_cast<std::uint16_t>(kind);
    return kind;
}

// Drawing, erasing and building all find the cursor's way already followed to the cursor itself, so that they get the
// same arc.
void PaintArc(const PreviewPen& pen, PluginGlobals* globals, ToolState* state, bool /*isDrawn*/) {
    if (state->toolStep == 1 && !PointsEqual(state->fromPoint, state->cursorPoint))
        DrawPreviewLine(pen, state->fromPoint, state->cursorPoint);
    CircleArc arc;
    if (state->toolStep == 2 && SolveRunningArc(globals->prefs.flArcMode, state, state->cursorPoint, &arc))
        DrawPreviewArc(pen, arc.centre, arc.radius, arc.start, arc.end);
}

}  // namespace

// --- events -------------------------------------------------------------------------------------------------------

AIErr ArcTrack(const AIToolMessage* /*message*/) {
    PluginGlobals* globals = gGlobals;
    const std::int16_t kind =
        globals->liveState.toolStep == 2 ? SnapArcEnd(globals) : SnapTwoPoints(globals, SnapFamily::arc);
    RedrawPreview(globals, PaintArc);
    SetPanelRun(globals->liveState);
    SetToolCursor(CursorForSnapKind(kind));
    return kNoErr;
}

AIErr ArcDown(const AIToolMessage* message) {
    PluginGlobals* globals = gGlobals;
    ToolState& live = globals->liveState;
    if (live.toolStep == 0) {
        PressFirstPoint(globals);
    } else if (live.toolStep == 2) {
        CommitCursor(globals);
        RedrawPreview(globals, PaintArc);
        live.tmpPos = ToDoublePoint(live.endPoint);
        NameUndoForTool(message->tool);
        if (!BuildArc()) Beep();
        ContextBracket(globals);
    }
    return kNoErr;
}

AIErr ArcUp(const AIToolMessage* /*message*/) { return ReleaseIntoPlacing(PaintArc); }

// --- solver -------------------------------------------------------------------------------------------------------

namespace {

// A hair's breadth from the start towards the target.
DoublePoint GuidePoint(const DoublePoint& start, const DoublePoint& target) {
    const double parts = DistanceBetweenPoints(start, target) * kGuideParts;
    return {start.h + (target.h - start.h) / parts, start.v + (target.v - start.v) / parts};
}

// The circle must be as far from the one end as from the other. Parallel lines put the centre nowhere, and fail.
bool TakeRadius(const DoublePoint& a, const DoublePoint& c, CircleArc* arc) {
    const double d1 = DistanceBetweenPoints(arc->centre, a), d2 = DistanceBetweenPoints(arc->centre, c);
    const double tolerance = d1 > 100.0 ? d1 / 10000.0 : 0.01;
    if (!(AbsOf(d1 - d2) <= tolerance)) return false;
    arc->radius = (d1 + d2) / 2.0;
    return true;
}

// The normal of the tangent at a, crossed with the bisector of a and c.
bool CenterOfTangentialArc(const DoublePoint& a, const DoublePoint& b, const DoublePoint& c, DoublePoint* centre) {
    const bool levelTangent = a.v == b.v, levelChord = a.v == c.v;
    if (levelTangent && levelChord) return false;
    const double m1 = levelTangent ? 0 : -(b.h - a.h) / (b.v - a.v), k1 = a.v - m1 * a.h;
    const double m2 = levelChord ? 0 : -(c.h - a.h) / (c.v - a.v);
    const double k2 = ((a.v + c.v) - m2 * (a.h + c.h)) / 2;
    if (levelTangent) {
        *centre = {a.h, a.h * m2 + k2};
    } else {
        const double h = levelChord ? (a.h + c.h) / 2 : (k1 - k2) / (m2 - m1);
        *centre = {h, h * m1 + k1};
    }
    return true;
}

// Has the cursor, on its way from previous to c, gone through the line of centre a and start b? Parallel ways never do.
bool CrossedStartRay(const DoublePoint& a, const DoublePoint& b, const DoublePoint& c, const DoublePoint& previous) {
    DoublePoint x;
    if (!IntersectLines(a, b, a, c, previous, c, &x)) return false;
    return x.h >= MinOf(c.h, previous.h) && x.h <= MaxOf(c.h, previous.h) && x.v >= MinOf(c.v, previous.v) &&
           x.v <= MaxOf(c.v, previous.v);
}

// From the start on, and whenever the start ray is crossed near the start, the way of the cursor is the way of the arc.
void FollowCursor(const DoublePoint& a, const DoublePoint& b, const DoublePoint& c, DoublePoint* previousCursor,
                  double* sweepDirection) {
    const bool unknown = *sweepDirection == kNoDistance;
    if (unknown) *previousCursor = b;
    const bool bothUpright = a.h == b.h && c.h == previousCursor->h;
    if (!bothUpright && (unknown || CrossedStartRay(a, b, c, *previousCursor))) {
        double w = AbsOf(AngleBetweenPoints(a, c) - AngleBetweenPoints(a, b));
        if (w > kPi) w = kTwoPi - w;
        // A cursor that is still on the start has no way yet.
        if (w < kHalfPiWide && !PointsEqual(b, c)) *sweepDirection = AngleBetweenPoints(a, GuidePoint(b, c));
    }
    *previousCursor = c;
}

}  // namespace

bool SolveArc(std::int16_t mode, const DoublePoint& third, const DoublePoint& first, const DoublePoint& second,
              CircleArc* arc, DoublePoint* previousCursor, double* sweepDirection) {
    const DoublePoint &a = first, &b = second, &c = third;
    if (PointsEqual(a, b)) return false;
    double middle = 0;  // a direction from the centre that the arc must run through
    if (mode == kArcTangential) {
        if (!CenterOfTangentialArc(a, b, c, &arc->centre) || !TakeRadius(a, c, arc)) return false;
        middle = AngleBetweenPoints(arc->centre, GuidePoint(a, b));
    } else if (mode == kArcThreePoints) {
        if (!CircleThroughPoints(a, b, c, &arc->centre, &arc->radius) || !TakeRadius(a, c, arc)) return false;
        middle = AngleBetweenPoints(arc->centre, b);
    } else if (mode == kArcCenter) {
        FollowCursor(a, b, c, previousCursor, sweepDirection);
        arc->centre = a;
        arc->radius = DistanceBetweenPoints(a, b);
        middle = *sweepDirection;
    } else {
        return false;
    }
    arc->start = AngleBetweenPoints(arc->centre, mode == kArcCenter ? b : a);
    arc->end = AngleBetweenPoints(arc->centre, c);
    if (arc->end < arc->start) std::swap(arc->start, arc->end);
    if (!(middle >= arc->start && middle <= arc->end)) arc->start += kTwoPi;
    return true;
}

// --- build --------------------------------------------------------------------------------------------------------

bool BuildArc() {
    PluginGlobals* globals = gGlobals;
    ToolState& live = globals->liveState;
    CircleArc arc;
    if (!SolveRunningArc(globals->prefs.flArcMode, &live, live.endPoint, &arc)) return false;
    AILayerHandle layer = nullptr;
    if (sAILayer->GetCurrentLayer(&layer) != kNoErr || LayerIsBlocked(layer)) return false;
    AIArtHandle root = nullptr, group = nullptr;
    sAIArt->GetFirstArtOfLayer(layer, &root);
    if (sAIArt->NewArt(kGroupArt, kPlaceInsideOnTop, root, &group) != kNoErr || group == nullptr) return true;
    BuildArcPath(group, arc);
    return true;
}

void BuildArcPath(AIArtHandle group, const CircleArc& arc) {
    DoublePoint points[kArcAnchors];
    PathSegment segments[kArcAnchors];
    for (int i = 0; i < kArcAnchors; ++i) {
        const double t = i / (kArcAnchors - 1.0);
        points[i] = PolarPoint(arc.centre, arc.radius, arc.start + (arc.end - arc.start) * t);
        segments[i] = CornerAt(points[i]);
        segments[i].corner = i == 0 || i == kArcAnchors - 1 ? 1 : 0;
    }
    for (int i = 1; i < kArcAnchors; ++i)
        ArcPieceToCubic(arc.centre, points[i - 1], points[i], &segments[i - 1], &segments[i]);
    AIPathStyle style;
    sAIPathStyle->GetCurrentPathStyle(&style);
    AddStyledPath(group, style, segments, kArcAnchors, false);
}

void ArcPieceToCubic(const DoublePoint& c, const DoublePoint& a, const DoublePoint& b, PathSegment* first,
                     PathSegment* second) {
    DoublePoint X;
    if (!CrossTangents(c, a, b, kLevelRadius, &X)) return;
    double u = AngleBetweenPoints(c, a), v = AngleBetweenPoints(c, b);
    WrapDirections(&u, &v);
    const double k = ArcHandleRatio(AbsOf(v - u));
    first->p = ToRealPoint(a);
    first->out = ToRealPoint({a.h + (X.h - a.h) * k, a.v + (X.v - a.v) * k});
    second->p = ToRealPoint(b);
    second->in = ToRealPoint({b.h + (X.h - b.h) * k, b.v + (X.v - b.v) * k});
}

}  // namespace quorvel
