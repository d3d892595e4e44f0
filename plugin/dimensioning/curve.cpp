// The curve case of the linear family: the chain of segments between the two points, its preview, and the dimension
// built along its parallel copy.
#include "plugin/dimensioning/curve.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "plugin/dimensioning/graphics.h"
#include "plugin/dimensioning/shown_text.h"
#include "plugin/dimensioning/units.h"
#include "plugin/record/dimension_record.h"
#include "plugin/shell/suites.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

constexpr int kStepLimit = 4095;        // of the walk along a path
constexpr double kTextHalfLength = 50;  // of the line that the text is centred on
constexpr double kOnCurve = 0.01;       // the placement point lies on the measured path
constexpr double kSameAnchor = 0.05;    // arts that meet in a measured point may be rounded apart
constexpr double kSideMargin = 0.1;     // nearer to the path a rounding can put the placement on its other side

// The measured path, with its spans named by the segment that ends them.
struct MeasuredPath {
    std::vector<PathSegment> segments;
    bool closed = false;

    int Count() const { return static_cast<int>(segments.size()); }
    int PreviousIndex(int i) const { return i > 0 ? i - 1 : (closed ? Count() - 1 : 0); }
    int NextIndex(int i) const { return i + 1 < Count() ? i + 1 : (closed ? 0 : Count() - 1); }
    const PathSegment& Start(int span) const { return segments[static_cast<std::size_t>(PreviousIndex(span))]; }
    const PathSegment& End(int span) const { return segments[static_cast<std::size_t>(span)]; }
};

// The two ends of the measured part; an exchange acts on these copies.
struct ChainEnds {
    int i = 0, j = 0;
    DoublePoint from, to;
    bool sameSpanBack = false;  // both on one span, the second before the first
    bool reversed = false;

    void Exchange() {
        std::swap(i, j);
        std::swap(from, to);
        reversed = true;
    }
};

bool ReadMeasuredPath(AIArtHandle art, MeasuredPath* path) {
    const int count = SegmentCount(art);
    if (count < 1) return false;
    path->segments.resize(static_cast<std::size_t>(count));
    if (sAIPath->GetPathSegments(art, 0, static_cast<std::int16_t>(count), path->segments.data()) != kNoErr)
        return false;
    path->closed = PathIsClosed(art);
    return true;
}

double LengthUpTo(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t, DoublePoint stop) {
    return SegmentLength(tables, s, t, &stop);
}

double SpanLengthUpTo(const BezierBasisTables& tables, const MeasuredPath& path, int span, const DoublePoint& stop) {
    return LengthUpTo(tables, path.Start(span), path.End(span), stop);
}

// The span nearest to E, the closing one tried last, and how far along it the nearest point lies.
int NearestSpan(const BezierBasisTables& tables, const MeasuredPath& path, const DoublePoint& E, double* along) {
    double best = kNoDistance;
    int nearestSpan = 0;
    DoublePoint nearestPoint = ToDoublePoint(path.segments[0].p);
    for (int k = 1; k <= path.Count(); ++k) {
        const int span = k % path.Count();
        DoublePoint nearest;
        std::int16_t side = 0;
        const double distance = DistanceToSegment(tables, path.Start(span), path.End(span), E, &nearest, &side);
        if (!(distance < best)) continue;
        best = distance;
        nearestSpan = span;
        nearestPoint = nearest;
    }
    *along = SpanLengthUpTo(tables, path, nearestSpan, nearestPoint);
    return nearestSpan;
}

// Does the run from i forward to j pass the point that lies w along span e? u and v: how far along their spans the two
// ends lie.
bool RunPasses(const MeasuredPath& path, const ChainEnds& ends, int e, double u, double v, double w) {
    int k = ends.i;
    for (int step = 0; step < kStepLimit; ++step, k = path.NextIndex(k)) {
        if (k == e) break;
        if (k == ends.j && (!ends.sameSpanBack || step > 0)) return false;
    }
    if (ends.i == ends.j) return e != ends.i || (ends.sameSpanBack ? !(w > v && w < u) : (w >= u && w <= v));
    return !(e == ends.i && w < u) && !(e == ends.j && w > v);
}

// Orders the ends along the path, on a closed one so that the part on E's side is measured, or the part that the record
// names.
ChainEnds OrderEnds(const BezierBasisTables& tables, const MeasuredPath& path, ChainEnds ends, const DoublePoint& E,
                    CurveWay way) {
    const double u = SpanLengthUpTo(tables, path, ends.i, ends.from);
    const double v = SpanLengthUpTo(tables, path, ends.j, ends.to);
    ends.sameSpanBack = ends.i == ends.j && v < u;
    if (!path.closed) {
        if (ends.j < ends.i || ends.sameSpanBack) {
            ends.Exchange();
            ends.sameSpanBack = false;
        }
        return ends;
    }
    double w = 0;
    const int e = way == CurveWay::nearest ? NearestSpan(tables, path, E, &w) : 0;
    const bool forward = way == CurveWay::nearest ? RunPasses(path, ends, e, u, v, w) : way == CurveWay::forward;
    if (!forward) {
        ends.Exchange();
        ends.sameSpanBack = ends.i == ends.j && !ends.sameSpanBack;
    }
    return ends;
}

void AppendToChain(ChainBuffer* chain, const PathSegment& segment) {
    if (chain->count < kChainCapacity) chain->segments[chain->count++] = segment;
}

// The path's segments from the one before span i to the one that ends span j.
void CollectChain(const MeasuredPath& path, const ChainEnds& ends, ChainBuffer* chain) {
    chain->count = 0;
    AppendToChain(chain, path.Start(ends.i));
    int k = ends.i;
    for (int step = 0; step < kStepLimit; ++step) {
        AppendToChain(chain, path.End(k));
        const bool goesRound = ends.sameSpanBack && step == 0;
        if ((k == ends.j && !goesRound) || (!path.closed && k == path.Count() - 1)) break;
        k = path.NextIndex(k);
    }
}

// The arc length between the two ends: the whole spans but the last, less what lies before the first end, plus what
// lies before the second on the last span.
double MeasureChain(const BezierBasisTables& tables, const ChainBuffer& chain, const ChainEnds& ends) {
    const int last = chain.count - 1;
    double length = 0;
    for (int k = 1; k < last; ++k) length += SegmentLength(tables, chain.segments[k - 1], chain.segments[k], nullptr);
    length -= LengthUpTo(tables, chain.segments[0], chain.segments[1], ends.from);
    return length + LengthUpTo(tables, chain.segments[last - 1], chain.segments[last], ends.to);
}

double DistanceToChain(const BezierBasisTables& tables, const ChainBuffer& chain, const DoublePoint& E,
                       std::int16_t* side) {
    double best = kNoDistance;
    for (int k = 1; k < chain.count; ++k) {
        std::int16_t spanSide = 0;
        const double distance =
            DistanceToSegment(tables, chain.segments[k - 1], chain.segments[k], E, nullptr, &spanSide);
        if (!(distance < best)) continue;
        best = distance;
        *side = spanSide;
    }
    return best;
}

// Of a placement so near to the path the side is recorded, and kept by a rebuild.
void KeepSide(double distance, std::int16_t* side, ToolState* live) {
    const bool isNear = distance < kSideMargin;
    if (isNear && live->fromRecord && live->choices.side != CurveSide::placed)
        *side = live->choices.side == CurveSide::left ? kLeftSide : kRightSide;
    live->choices.side = !isNear ? CurveSide::placed : *side == kLeftSide ? CurveSide::left : CurveSide::right;
}

void ShowProgress(PluginGlobals* globals, int percent) {
    globals->lastProgress = percent;
    sAIUser->SetProgress(percent, 100);
}

// Replaces each span of the chain by its parallel copy; joints keep the records of both copies.
void OffsetChain(PluginGlobals* globals, const ChainEnds& ends, double distance, std::int16_t side, bool showProgress) {
    ChainBuffer *chain = globals->workBufferA, *copies = globals->workBufferC;
    const int spans = chain->count - 1;
    const bool shows = showProgress && spans > 1;
    SegmentList list;
    copies->count = 0;
    if (shows) ShowProgress(globals, 0);
    for (int k = 1; k <= spans; ++k) {
        OffsetSegment(globals->bezierTables, chain->segments[k - 1], chain->segments[k], k == 1 ? &ends.from : nullptr,
                      k == spans ? &ends.to : nullptr, side, distance, &list, showProgress ? 1 : 0);
        for (int n = 0; n < list.count; ++n) AppendToChain(copies, list.segments[n]);
        if (shows) ShowProgress(globals, k * 100 / spans);
    }
    if (shows) ShowProgress(globals, 100);
    std::copy_n(copies->segments, copies->count, chain->segments);
    chain->count = copies->count;
}

// --- build --------------------------------------------------------------------------------------------------------

// Where the chain's line of sight leaves its first and its last anchor: towards the handle, or towards the neighbour's
// handle when its own is retracted.
DoublePoint FirstTarget(const ChainBuffer& chain) {
    const PathSegment& first = chain.segments[0];
    return ToDoublePoint(PointsEqual(first.p, first.out) ? chain.segments[1].in : first.out);
}

DoublePoint LastTarget(const ChainBuffer& chain) {
    const PathSegment& last = chain.segments[chain.count - 1];
    return ToDoublePoint(PointsEqual(last.p, last.in) ? chain.segments[chain.count - 2].out : last.in);
}

struct ExtensionLine {
    DoublePoint start, end;
};

// onCurveAngle: the direction to take when the foot lies on the measured point.
ExtensionLine ExtensionFor(const PrefsRecord& prefs, const DoublePoint& measured, const DoublePoint& foot,
                           double onCurveAngle) {
    double angle = AngleBetweenPoints(measured, foot);
    double distance = DistanceBetweenPoints(measured, foot);
    if (distance < kOnCurve) angle = onCurveAngle;
    if (distance > prefs.flScOfst) distance = prefs.flScOfst;
    return {PolarPoint(measured, distance, angle), PolarPoint(foot, prefs.flArLead, angle)};
}

double ChainLength(const BezierBasisTables& tables, const ChainBuffer& chain) {
    double total = 0;
    for (int k = 1; k < chain.count; ++k)
        total += SegmentLength(tables, chain.segments[k - 1], chain.segments[k], nullptr);
    return total;
}

// The point and direction half-way along the chain.
void MiddleOfChain(const BezierBasisTables& tables, const ChainBuffer& chain, double half, DoublePoint* point,
                   double* angle) {
    *point = ToDoublePoint(chain.segments[0].p);
    *angle = AngleBetweenPoints(*point, FirstTarget(chain));
    double sum = 0;
    for (int k = 1; k < chain.count; ++k) {
        const PathSegment &s = chain.segments[k - 1], &t = chain.segments[k];
        const double length = SegmentLength(tables, s, t, nullptr);
        if (half <= sum + length && PointAtLength(tables, s, t, half - sum, point, angle)) return;
        sum += length;
    }
}

void AddChainLine(AIArtHandle group, const ChainBuffer& chain, const DoublePoint* startStub,
                  const DoublePoint* endStub) {
    std::vector<PathSegment> line;
    line.reserve(chain.count + 2U);
    if (startStub != nullptr) line.push_back(CornerAt(*startStub));
    line.insert(line.end(), chain.segments, chain.segments + chain.count);
    if (endStub != nullptr) line.push_back(CornerAt(*endStub));
    AIPathStyle style;
    InitDimensionStyle(&style, false, true);
    AddStyledPath(group, style, line.data(), static_cast<int>(line.size()), false);
}

// measuredSpans: of the path; each adds what its own coordinates are off.
void AddChainArt(PluginGlobals* globals, AIArtHandle group, std::int16_t side, int measuredSpans) {
    const PrefsRecord& prefs = globals->prefs;
    const BezierBasisTables& tables = globals->bezierTables;
    const ChainBuffer& chain = *globals->workBufferA;
    DoublePoint P1 = ToDoublePoint(globals->liveState.fromPoint), P2 = ToDoublePoint(globals->liveState.toPoint);
    if (chain.reversed) std::swap(P1, P2);
    const double turn = chain.reversed ? kPi : 0.0;
    const double q = side == 0 ? kHalfPi : -kHalfPi;
    const DoublePoint A = ToDoublePoint(chain.segments[0].p), B = ToDoublePoint(chain.segments[chain.count - 1].p);
    const double f = AngleBetweenPoints(A, FirstTarget(chain)), g = AngleBetweenPoints(B, LastTarget(chain));
    const ExtensionLine first = ExtensionFor(prefs, P1, A, f + q - turn);
    const ExtensionLine second = ExtensionFor(prefs, P2, B, g - q - turn);

    const double total = ChainLength(tables, chain);
    DoublePoint M;
    double angle = 0;
    MiddleOfChain(tables, chain, total / 2, &M, &angle);
    angle -= turn;
    const DoublePoint base = PolarPoint(M, prefs.flScLead, angle + kHalfPiWide);

    const bool outside = HeadsAreOutside(globals, total, 0);
    const DoublePoint startStub = PolarPoint(A, prefs.flOsLead, g), endStub = PolarPoint(B, prefs.flOsLead, f);

    AddLine2(group, first.start, first.end);
    AddLine2(group, second.start, second.end);
    AddChainLine(group, chain, outside ? &startStub : nullptr, outside ? &endStub : nullptr);
    const double wingAngle = ArrowWingAngle(prefs) + (outside ? kPi : 0.0);
    AddArrowMark(group, A, f, wingAngle, ArrowWingLength(prefs, false));
    AddArrowMark(group, B, g, wingAngle, ArrowWingLength(prefs, false));
    char text[kValueTextSize];
    const double slack = 2 * ShownTextTolerance() * std::sqrt(static_cast<double>(measuredSpans));
    FormatLengthShown(globals, 0, chain.length, LengthKind::plain, slack, text);
    AddDimensionText(group, PolarPoint(base, kTextHalfLength, angle + kPi), PolarPoint(base, kTextHalfLength, angle),
                     text);
}

}  // namespace

bool SharedPath(const ToolState& state, SnapCell* fromCell, SnapCell* toCell) {
    for (const SnapCell& from : state.fromCells) {
        if (from.art == nullptr) continue;
        for (const SnapCell& to : state.toCells) {
            if (from.art != to.art) continue;
            *fromCell = from;
            *toCell = to;
            return true;
        }
    }
    return false;
}

bool CurveCaseHolds(const ToolState& state) {
    SnapCell from, to;
    return state.stopCount == 0 && SharedPath(state, &from, &to);
}

namespace {

struct MeasuredPart {
    bool closed = false;  // of a closed path
    int spans = 1;
};

bool BuildChain(PluginGlobals* globals, const DoublePoint& E, bool showProgress, std::int16_t* side,
                MeasuredPart* measured) {
    const ToolState& state = globals->liveState;
    const BezierBasisTables& tables = globals->bezierTables;
    ChainBuffer* chain = globals->workBufferA;
    chain->count = 0;
    chain->reversed = 0;
    chain->length = 0;
    SnapCell fromCell, toCell;
    MeasuredPath path;
    if (!SharedPath(state, &fromCell, &toCell) || !ReadMeasuredPath(fromCell.art, &path)) return false;
    const auto isAnchor = [&](int index) { return index >= 0 && index < path.Count(); };
    if (!isAnchor(fromCell.index) || !isAnchor(toCell.index)) return false;

    ChainEnds ends{fromCell.index, toCell.index, ToDoublePoint(state.fromPoint), ToDoublePoint(state.toPoint)};
    ends = OrderEnds(tables, path, ends, E, state.choices.way);
    if (PointsEqual(ends.from, ToDoublePoint(path.End(ends.i).p))) {
        // A first span of no length is dropped.
        ends.i = path.NextIndex(ends.i);
        ends.sameSpanBack = false;
    }
    CollectChain(path, ends, chain);
    chain->reversed = ends.reversed ? 1 : 0;
    chain->length = MeasureChain(tables, *chain, ends);
    if (measured != nullptr) *measured = {path.closed, chain->count - 1};
    const double distance = DistanceToChain(tables, *chain, E, side);
    if (measured != nullptr) KeepSide(distance, side, &globals->liveState);
    OffsetChain(globals, ends, distance, *side, showProgress);
    return chain->count >= 2;
}

}  // namespace

bool BuildCurveChain(PluginGlobals* globals, const DoublePoint& E, bool showProgress, std::int16_t* side) {
    return BuildChain(globals, E, showProgress, side, nullptr);
}

void PaintCurvePreview(const PreviewPen& pen, PluginGlobals* globals, ToolState* state, bool isDrawn) {
    std::int16_t side = 0;
    if (!isDrawn && !BuildCurveChain(globals, ToDoublePoint(state->cursorPoint), false, &side)) return;
    const ChainBuffer* chain = isDrawn ? globals->workBufferB : globals->workBufferA;
    if (chain->count < 2) return;
    for (int k = 1; k < chain->count; ++k)
        DrawPreviewCurve(pen, globals->bezierTables, chain->segments[k - 1], chain->segments[k]);
    const RealPoint &first = chain->segments[0].p, &last = chain->segments[chain->count - 1].p;
    DrawPreviewLine(pen, first, chain->reversed ? state->toPoint : state->fromPoint);
    DrawPreviewLine(pen, last, chain->reversed ? state->fromPoint : state->toPoint);
}

namespace {

// The linked art that comes first has placed the point; in a rebuild that of the measured path is nearer to the truth.
void TakeAnchorOfPath(const ToolState& state, const SnapCell& cell, const PointHold& hold, RealPoint* point) {
    PathSegment anchor;
    if (!state.fromRecord || hold.kind != HoldKind::anchor || !ReadSegment(cell.art, cell.index, &anchor)) return;
    if (DistanceBetweenPoints(ToDoublePoint(anchor.p), ToDoublePoint(*point)) < kSameAnchor) *point = anchor.p;
}

}  // namespace

std::int32_t BuildCurveDimension(AIArtHandle oldGroup) {
    PluginGlobals* globals = gGlobals;
    ToolState* state = &globals->liveState;
    SnapCell fromCell, toCell;
    PathSegment anchor;
    if (!SharedPath(*state, &fromCell, &toCell) || SegmentCount(fromCell.art) < 1) return 0;
    if (ReadSegment(fromCell.art, fromCell.index, &anchor) && NearlyEqual(state->fromPoint.h, anchor.p.h) &&
        NearlyEqual(state->fromPoint.v, anchor.p.v))
        state->fromPoint = anchor.p;
    TakeAnchorOfPath(*state, fromCell, state->fromHold, &state->fromPoint);
    TakeAnchorOfPath(*state, toCell, state->toHold, &state->toPoint);
    AIArtHandle group = BeginDimensionGroup(oldGroup);
    if (group == nullptr) return 0;
    std::int16_t side = 0;
    MeasuredPart measured;
    if (BuildChain(globals, ToDoublePoint(state->endPoint), true, &side, &measured)) {
        if (measured.closed) state->choices.way = globals->workBufferA->reversed ? CurveWay::back : CurveWay::forward;
        AddChainArt(globals, group, side, measured.spans);
    }
    WriteDimensionRecord(group, kCurveTool, kCurveMode);
    EndDimensionGroup(oldGroup, group);
    return 1;
}

}  // namespace quorvel
