// The linear dimension itself: where the dimension line runs, and the art of each span. The Straight tool chooses a
// level or an upright line from where the hand goes and holds to it against small movements; the Oblique tool runs
// parallel to what is measured.
#include <cmath>
#include <utility>

#include "plugin/dimensioning/curve.h"
#include "plugin/dimensioning/graphics.h"
#include "plugin/dimensioning/linear.h"
#include "plugin/dimensioning/shown_text.h"
#include "plugin/dimensioning/units.h"
#include "plugin/record/dimension_record.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"

namespace quorvel {

namespace {

// Ways a dimension line runs: the words that axisWord keeps.
constexpr std::int16_t kParallelLine = 0;
constexpr std::int16_t kLevelLine = 1;
constexpr std::int16_t kUprightLine = 2;

constexpr double kAxisHoldPixels = 5.0;

// Left or right of the reference point makes an upright line, above or below a level one.
std::int16_t AxisTowards(const DoublePoint& reference, const DoublePoint& E) {
    double a = AngleBetweenPoints(reference, E) - kQuarterPi;
    if (a < 0.0) a += kTwoPi;
    const double quadrant = std::trunc(a / kHalfPiWide + 1.0);
    return quadrant == 2.0 || quadrant == 4.0 ? kUprightLine : kLevelLine;
}

// Points on one level or one upright, to within a pixel, have but one distance to show; others show the chosen axis.
std::int16_t AxisBetween(const DoublePoint& P1, const DoublePoint& P2, double pixel, std::int16_t chosen) {
    if (std::fabs(P2.h - P1.h) <= pixel) return kUprightLine;
    return std::fabs(P2.v - P1.v) <= pixel ? kLevelLine : chosen;
}

// A rebuild decides by the pixel with which the dimension was made, at whatever zoom: that of a zoom of 1 where none is
// recorded.
double AxisPixel(const ToolState& live) { return live.fromRecord ? live.choices.PixelOrPlain() : PixelSize(); }

// The pixel to record so that a rebuild finds the same axis by a clear margin; 0 where it does without.
double PixelToRecord(const DoublePoint& P1, const DoublePoint& P2, double pixel, std::int16_t chosen) {
    const std::int16_t axis = AxisBetween(P1, P2, pixel, chosen);
    const auto isClear = [&](double tried) {
        return AxisBetween(P1, P2, tried - kClearMargin, chosen) == axis &&
               AxisBetween(P1, P2, tried + kClearMargin, chosen) == axis;
    };
    if (isClear(kPlainPixel)) return 0;
    for (const double tried : {pixel, pixel + 2 * kClearMargin, pixel - 2 * kClearMargin})
        if (tried > 0 && isClear(tried)) return tried;
    return pixel;
}

}  // namespace

// An axis once chosen stands until the hand has left its neighbourhood, so that it doesn't flicker at the diagonal.
std::int16_t StraightAxis(const DoublePoint& E, const DoublePoint& P1, const DoublePoint& P2, double pixel,
                          DoublePoint* tmpPos, std::int16_t* axisWord) {
    std::int16_t axis = *axisWord;
    const bool held = axis != 0 && DistanceBetweenPoints(*tmpPos, E) <= kAxisHoldPixels * pixel;
    if (!held) {
        axis = AxisTowards(axis == 0 ? P1 : *tmpPos, E);
        *tmpPos = E;
        *axisWord = axis;
    }
    return AxisBetween(P1, P2, pixel, axis);
}

namespace {

DoublePoint FootOf(const DoublePoint& point, const DoublePoint& E, const DoublePoint& P1, const DoublePoint& P2,
                   std::int16_t axis) {
    const bool level = axis == kLevelLine || (axis == kParallelLine && P1.v == P2.v);
    if (level) return {point.h, E.v};
    const bool upright = axis == kUprightLine || (axis == kParallelLine && P1.h == P2.h);
    if (upright) return {E.h, point.v};
    const double across = (P1.h - P2.h) / (P2.v - P1.v);
    const double along = (P2.v - P1.v) / (P2.h - P1.h);
    const double c = point.v - across * point.h;
    const double c3 = E.v - along * E.h;
    const double h = (c - c3) / (along - across);
    return {h, along * h + c3};
}

// The extension line from a measured point to its foot: it begins a gap away from the point, which eats at most the
// distance to the foot, and runs on past the foot. Moves the point to where the line begins; gives its end.
DoublePoint ExtensionLine(const PrefsRecord& prefs, DoublePoint* point, const DoublePoint& foot) {
    const double angle = AngleBetweenPoints(*point, foot);
    const double distance = DistanceBetweenPoints(*point, foot);
    const double gap = static_cast<double>(prefs.flScOfst);
    *point = PolarPoint(*point, distance > gap ? gap : distance, angle);
    return PolarPoint(foot, static_cast<double>(prefs.flArLead), angle);
}

std::int16_t RecordKind(std::int16_t distanceMode) {
    switch (distanceMode) {
        case kStraightMode:
        case 2:
            return kStraightTool;
        case kCurveMode:
            return kCurveTool;
        default:
            return kObliqueTool;
    }
}

// Along the dimension line: to the right, up, or from the first measured point to the second.
double LineDirection(const PluginGlobals* globals) {
    const ToolState& live = globals->liveState;
    const DoublePoint from = ToDoublePoint(live.fromPoint), to = ToDoublePoint(live.toPoint);
    if (globals->prefs.flDistanceMode != kStraightMode) return AngleBetweenPoints(from, to);
    return AxisBetween(from, to, AxisPixel(live), live.axisWord) == kUprightLine ? kHalfPiWide : 0.0;
}

// From foot to foot. Of feet that nearly coincide a rounding would turn it about, so that a rebuild keeps it.
double SpanDirection(PluginGlobals* globals, const DoublePoint& A, const DoublePoint& B, std::int32_t index) {
    ToolState& live = globals->liveState;
    const double direction = AngleBetweenPoints(A, B), length = DistanceBetweenPoints(A, B);
    char& recorded = live.choices.spans[index];
    const char known = std::exchange(recorded, kSpanByFeet);
    if (length > 2 * kClearMargin) return direction;
    const bool isKnown = live.fromRecord && (known == kSpanForward || known == kSpanBack || known == kSpanNone);
    if (!isKnown && length > kClearMargin) return direction;
    const double line = LineDirection(globals);
    const char way = PointsEqual(A, B) ? kSpanNone : std::cos(direction - line) < 0 ? kSpanBack : kSpanForward;
    recorded = isKnown ? known : way;
    if (recorded == way) return direction;
    return recorded == kSpanNone ? AngleBetweenPoints(A, A) : recorded == kSpanForward ? line : line + kPi;
}

// How far the distance of two feet may be off. Both measured points may be; a line parallel to the base turns with it,
// which moves the feet along it by as much as the points are apart across it.
double SpanSlack(const PluginGlobals* globals, double apart, double along) {
    const double off = 2 * ShownTextTolerance();
    if (globals->prefs.flDistanceMode == kStraightMode) return off;
    const ToolState& live = globals->liveState;
    const double base = DistanceBetweenPoints(ToDoublePoint(live.fromPoint), ToDoublePoint(live.toPoint));
    const double across = std::sqrt(MaxOf(apart * apart - along * along, 0.0));
    return off * (1 + across / base);
}

// The spans from stop to stop and the one line that bears them all, with the outer leads that the spans left.
void AddSpans(AIArtHandle group, DoublePoint P1, const DoublePoint& P2, DoublePoint A, const DoublePoint& B,
              std::int16_t stopCount, const DoublePoint* S) {
    DoublePoint start, end;
    for (int i = 0; i < stopCount; ++i) {
        const DoublePoint& stop = S[2 * i];
        const DoublePoint& foot = S[2 * i + 1];
        BuildSpan(group, P1, stop, A, foot, &start, &end, i);
        P1 = stop;
        A = foot;
    }
    BuildSpan(group, P1, P2, A, B, &start, &end, stopCount);
    AddLine2(group, start, end);
}

}  // namespace

std::int32_t BuildLinearDimension(AIArtHandle oldGroup) {
    ToolState& live = gGlobals->liveState;
    const std::int16_t mode = gGlobals->prefs.flDistanceMode;
    const DoublePoint P1 = ToDoublePoint(live.fromPoint);
    const DoublePoint P2 = ToDoublePoint(live.toPoint);
    DoublePoint A, B;
    DoublePoint S[2 * kStopCapacity];
    for (int i = 0; i < live.stopCount; ++i) S[2 * i] = ToDoublePoint(live.stops[i].point);
    const std::int32_t found =
        ProjectFeet(ToDoublePoint(live.endPoint), P1, P2, &A, &B, &live.tmpPos, live.stopCount, S, &live.axisWord);
    if (found == 0) return 0;
    if (mode == kCurveMode && CurveCaseHolds(live)) return BuildCurveDimension(oldGroup);
    const AIArtHandle group = BeginDimensionGroup(oldGroup);
    if (group == nullptr) return 0;
    if (mode == kStraightMode) live.choices.pixel = PixelToRecord(P1, P2, AxisPixel(live), live.axisWord);
    AddSpans(group, P1, P2, A, B, live.stopCount, S);
    WriteDimensionRecord(group, RecordKind(mode), mode);
    EndDimensionGroup(oldGroup, group);
    return 1;
}

std::int32_t ProjectFeet(const DoublePoint& E, const DoublePoint& P1, const DoublePoint& P2, DoublePoint* A,
                         DoublePoint* B, DoublePoint* tmpPos, std::int16_t stopCount, DoublePoint* S,
                         std::int16_t* axisWord) {
    if (PointsEqual(P1, P2)) return 0;
    std::int16_t axis = gGlobals->prefs.flDistanceMode;
    if (axis == kStraightMode) axis = StraightAxis(E, P1, P2, AxisPixel(gGlobals->liveState), tmpPos, axisWord);
    if (axis == kCurveMode) axis = kParallelLine;
    *A = FootOf(P1, E, P1, P2, axis);
    *B = FootOf(P2, E, P1, P2, axis);
    for (int i = 0; i < stopCount; ++i) S[2 * i + 1] = FootOf(S[2 * i], E, P1, P2, axis);
    return 1;
}

void BuildSpan(AIArtHandle group, DoublePoint P1, DoublePoint P2, DoublePoint A, DoublePoint B, DoublePoint* lineStart,
               DoublePoint* lineEnd, std::int32_t index) {
    const PrefsRecord& prefs = gGlobals->prefs;
    const double slack = SpanSlack(gGlobals, DistanceBetweenPoints(P1, P2), DistanceBetweenPoints(A, B));
    const DoublePoint X1 = ExtensionLine(prefs, &P1, A);
    const DoublePoint X2 = ExtensionLine(prefs, &P2, B);

    const double f = SpanDirection(gGlobals, A, B, index);
    const double g = f + kPi;
    const double n = f + kHalfPiWide;
    const DoublePoint T1 = PolarPoint(A, static_cast<double>(prefs.flScLead), n);
    const DoublePoint T2 = PolarPoint(B, static_cast<double>(prefs.flScLead), n);

    if (index == 0) *lineStart = A;
    *lineEnd = B;
    double wingAngle = ArrowWingAngle(prefs);
    if (HeadsAreOutside(gGlobals, DistanceBetweenPoints(A, B), index)) {
        // Too narrow for heads inside: they stand outside, on leads.
        wingAngle += kPi;
        const double lead = static_cast<double>(prefs.flOsLead);
        if (index == 0) *lineStart = PolarPoint(*lineStart, lead, g);
        *lineEnd = PolarPoint(*lineEnd, lead, f);
    }

    if (index == 0) AddLine2(group, P1, X1);
    AddLine2(group, P2, X2);
    const double wingLength = ArrowWingLength(prefs, false);
    AddArrowMark(group, A, f, wingAngle, wingLength);
    AddArrowMark(group, B, g, wingAngle, wingLength);
    char text[kValueTextSize];
    FormatLengthShown(gGlobals, index, DistanceBetweenPoints(T1, T2), LengthKind::plain, slack, text);
    AddDimensionText(group, T1, T2, text);
}

}  // namespace quorvel
