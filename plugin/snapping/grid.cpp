// What places the cursor without any art: the grid, the dimension line at round distances from what it measures, and
// the Shift key's eighth turns.
#include "plugin/dimensioning/curve.h"
#include "plugin/dimensioning/linear.h"
#include "plugin/shell/services.h"
#include "plugin/snapping/snap.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

constexpr double kEighthTurn = 0.7853981635;

// A step that is no step, or that is too fine to count, leaves the value alone.
bool CountsInSteps(double value, double step) { return step > 0.0 && AbsOf(value / step) < 2147483647.0; }

double RoundToStep(double value, double step) {
    return CountsInSteps(value, step) ? RoundToInt(value / step) * step : value;
}

// Moves c on the ray from foot so that its distance is a multiple of the step.
void RoundDistanceFrom(const DoublePoint& foot, double step, DoublePoint* c) {
    const double distance = DistanceBetweenPoints(foot, *c);
    if (CountsInSteps(distance, step)) *c = PolarPoint(foot, RoundToStep(distance, step), AngleBetweenPoints(foot, *c));
}

// The same on one axis, from the nearer of the two measured coordinates.
double RoundFromNearer(double a, double b, double c, double step) {
    const double base = AbsOf(c - b) < AbsOf(c - a) ? b : a;
    return base + SignOf(c - base) * RoundToStep(AbsOf(c - base), step);
}

// The decision itself is made, and kept, where the feet are projected; here it is only read.
int AxisOf(const ToolState& state, const DoublePoint& a, const DoublePoint& b, const DoublePoint& c) {
    DoublePoint tmpPos = state.tmpPos;
    std::int16_t axisWord = state.axisWord;
    return StraightAxis(c, a, b, PixelSize(), &tmpPos, &axisWord);
}

bool NearestOnPath(const BezierBasisTables& tables, AIArtHandle path, const DoublePoint& point, DoublePoint* nearest) {
    double best = kNoDistance;
    const int count = SegmentCount(path);
    const bool closed = PathIsClosed(path);
    for (int i = 1; i <= count; ++i) {
        const int index = i % count;  // the closing segment, index 0, comes last
        PathSegment s, t;
        if (index == 0 && !closed) break;
        if (!ReadSegmentPair(path, index, &s, &t)) break;
        DoublePoint candidate;
        const double distance = DistanceToSegment(tables, s, t, point, &candidate, nullptr);
        if (distance < best) {
            best = distance;
            *nearest = candidate;
        }
    }
    return best < kNoDistance;
}

DoublePoint NearestOnLine(const DoublePoint& a, const DoublePoint& b, const DoublePoint& c) {
    DoublePoint nearest = a;
    if (!PointsEqual(a, b)) PointToLineSegment(a, b, c, &nearest);
    return nearest;
}

}  // namespace

void SnapToGrid(const PrefsRecord& prefs, RealPoint* point) {
    const DoublePoint p = ToDoublePoint(*point);
    *point = ToRealPoint({RoundToStep(p.h, prefs.flGrWidth), RoundToStep(p.v, prefs.flGrHeight)});
}

void ConstrainDirection(std::uint16_t modifiers, const DoublePoint& base, RealPoint* point) {
    if ((modifiers & kShiftModifier) == 0) return;
    const DoublePoint p = ToDoublePoint(*point);
    const double direction = RoundToInt(AngleBetweenPoints(base, p) / kEighthTurn) * kEighthTurn;
    *point = ToRealPoint(PolarPoint(base, DistanceBetweenPoints(base, p), direction));
}

void SnapGridSpacing(PluginGlobals* globals, RealPoint* point) {
    const ToolState& state = globals->liveState;
    const double step = globals->prefs.flGrDistance;
    const DoublePoint a = ToDoublePoint(state.fromPoint), b = ToDoublePoint(state.toPoint);
    DoublePoint c = ToDoublePoint(*point), nearest;
    SnapCell fromCell, toCell;
    int mode = globals->prefs.flDistanceMode;
    if (mode == kStraightMode) {
        mode = AxisOf(state, a, b, c);
    } else if (mode == kCurveMode && !(CurveCaseHolds(state) && SharedPath(state, &fromCell, &toCell))) {
        mode = kObliqueMode;
    }
    if (mode == kObliqueMode) {
        RoundDistanceFrom(NearestOnLine(a, b, c), step, &c);
    } else if (mode == 1) {
        c.v = RoundFromNearer(a.v, b.v, c.v, step);
    } else if (mode == 2) {
        c.h = RoundFromNearer(a.h, b.h, c.h, step);
    } else if (mode == kCurveMode && NearestOnPath(globals->bezierTables, fromCell.art, c, &nearest)) {
        RoundDistanceFrom(nearest, step, &c);
    }
    *point = ToRealPoint(c);
}

}  // namespace quorvel
