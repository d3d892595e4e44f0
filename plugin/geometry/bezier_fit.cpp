// Cubics laid through a list of points: a curved dimension line of a few smooth pieces instead of a hundred corners. It
// is a greedy search that stretches one cubic as far as the error allows; there is no least-squares step.
#include <algorithm>

#include "plugin/geometry/bezier.h"
#include "plugin/geometry/chord.h"
#include "plugin/geometry/sampled_curve.h"

namespace quorvel {

namespace {

constexpr int kFitSteps = 64;
constexpr int kFirstWindow = 8;     // points in the first window of a piece
constexpr int kWholeWindow = 16;    // fewer points than this are taken at once
constexpr int kFitRounds = 6;       // refinements of the grid
constexpr int kGridSize = 4;        // values of a handle in one round: the start and three steps
constexpr double kHandleRange = 3;  // largest handle, in thirds of the polyline's length
constexpr double kFitError = 0.2;   // document points

struct FitWindow {
    const DoublePoint* points;
    int count;
    double startDirection, endDirection, length;
};

struct FitSamples {
    double h[kFitSteps + 1], v[kFitSteps + 1];
    // For each even k the box of the samples k - 2 to 62: all the chords of two from there on but the last, which leads
    // away to another place.
    double lowH[kFitSteps + 1], highH[kFitSteps + 1], lowV[kFitSteps + 1], highV[kFitSteps + 1];

    DoublePoint Point(int k) const { return {h[k], v[k]}; }
    double TailBound(int k, const DoublePoint& p) const { return BoxBound(lowH[k], highH[k], lowV[k], highV[k], p); }
};

struct FitPair {
    double x = 0, y = 0, error = 0;
    bool found = false;
};

FitWindow MeasureWindow(const DoublePoint* points, int count) {
    FitWindow window{points, count, 0, 0, 0};
    window.startDirection = AngleBetweenPoints(points[0], points[1]);
    window.endDirection = AngleBetweenPoints(points[count - 1], points[count - 2]);
    for (int i = 1; i < count; ++i) window.length += DistanceBetweenPoints(points[i - 1], points[i]);
    return window;
}

CurveControls ControlsOfPair(const FitWindow& window, double x, double y) {
    const DoublePoint &a = window.points[0], &b = window.points[window.count - 1];
    return {a, PolarPoint(a, window.length * (x / 3), window.startDirection),
            PolarPoint(b, window.length * (y / 3), window.endDirection), b};
}

void SampleForFit(const BezierBasisTables& tables, const CurveControls& c, FitSamples* __restrict samples) {
    const double *b0 = tables.b0n64, *b1 = tables.b1n64;
    for (int k = 1; k < kFitSteps; ++k) {
        const double w0 = b0[k], w1 = b1[k], w2 = b1[kFitSteps - k], w3 = b0[kFitSteps - k];
        samples->h[k] = w0 * c.p0.h + w1 * c.p1.h + w2 * c.p2.h + w3 * c.p3.h;
        samples->v[k] = w0 * c.p0.v + w1 * c.p1.v + w2 * c.p2.v + w3 * c.p3.v;
    }
    samples->h[0] = c.p0.h;
    samples->v[0] = c.p0.v;
    // The last sample is the first handle's end and not B. All fits are judged by that, so it must stay.
    samples->h[kFitSteps] = c.p1.h;
    samples->v[kFitSteps] = c.p1.v;

    int k = kFitSteps;
    samples->lowH[k] = samples->highH[k] = samples->h[k - 2];
    samples->lowV[k] = samples->highV[k] = samples->v[k - 2];
    for (k -= 2; k >= 2; k -= 2) {
        samples->lowH[k] = LesserOf(samples->h[k - 2], samples->lowH[k + 2]);
        samples->highH[k] = GreaterOf(samples->h[k - 2], samples->highH[k + 2]);
        samples->lowV[k] = LesserOf(samples->v[k - 2], samples->lowV[k + 2]);
        samples->highV[k] = GreaterOf(samples->v[k - 2], samples->highV[k + 2]);
    }
}

// Distance from the point to the samples. start is the first chord of two samples that is looked at, by the index of
// its end; it moves on with the points.
double DistanceToSamples(const FitSamples& samples, const DoublePoint& point, int* start) {
    int best = *start;
    double distance = kNoDistance, limit = kNoDistance * kNoDistance;
    const auto look = [&](int k) {
        const DoublePoint a = samples.Point(k - 2), b = samples.Point(k);
        if (ChordBound(a, b, point) > limit) return;
        const ChordDistance found = MeasureChord(a, b, point);
        if (!(distance > found.distance)) return;
        distance = found.distance;
        limit = found.squared;
        best = k;
    };
    for (int k = *start; k < kFitSteps && !(samples.TailBound(k, point) > limit); k += 2) look(k);
    look(kFitSteps);
    distance = kNoDistance;
    for (int k = best - 1; k <= best; ++k)
        distance = LesserOf(distance, MeasureChord(samples.Point(k - 1), samples.Point(k), point).distance);
    *start = std::max(best - 2, 2);
    return distance;
}

// The largest distance of every second point from the samples. A pair that is no better than the limit is given up as
// soon as that is sure; its error then is only known to be that large.
double ErrorOfPair(const FitSamples& samples, const FitWindow& window, double limit) {
    double error = 0;
    int start = 2;
    for (int i = 0; i < window.count && limit > error; i += 2)
        error = GreaterOf(error, DistanceToSamples(samples, window.points[i], &start));
    return error;
}

struct HandleRange {
    double low = 0, step = kHandleRange / 3;

    double Value(int i) const { return low + i * step; }
    void ShrinkAround(double best) {
        const double high = LesserOf(best + step, kHandleRange);
        low = GreaterOf(best - step, 0.0);
        step = (high - low) / 3;
    }
};

FitPair BestPair(const BezierBasisTables& tables, const FitWindow& window) {
    FitPair best;
    HandleRange rangeX, rangeY;
    for (int round = 0; round < kFitRounds; ++round) {
        for (int i = 0; i < kGridSize; ++i) {
            for (int j = 0; j < kGridSize; ++j) {
                const double x = rangeX.Value(i), y = rangeY.Value(j);
                FitSamples samples;
                SampleForFit(tables, ControlsOfPair(window, x, y), &samples);
                const double limit = best.found ? best.error : 2 * kNoDistance;
                const double error = ErrorOfPair(samples, window, limit);
                if (!best.found || best.error > error) best = {x, y, error, true};
            }
        }
        if (kFitError > best.error) break;
        rangeX.ShrinkAround(best.x);
        rangeY.ShrinkAround(best.y);
    }
    return best;
}

}  // namespace

void FitCubicsToPolyline(const BezierBasisTables& tables, const DoublePoint* points, int count, SegmentList* out) {
    out->count = 0;
    if (count < 1) return;
    out->segments[0].p = ToRealPoint(points[0]);
    out->segments[0].corner = 1;
    out->count = 1;
    int first = 0, remaining = count;
    while (remaining >= 2 && out->count < kSegmentListCapacity) {
        CurveControls accepted;
        int size = remaining < kWholeWindow ? remaining : kFirstWindow;
        for (; size <= remaining; ++size) {
            const FitWindow window = MeasureWindow(points + first, size);
            const FitPair pair = BestPair(tables, window);
            accepted = ControlsOfPair(window, pair.x, pair.y);
            // A window over the error is not taken back: its cubic is used as it is.
            if (pair.error > kFitError) break;
        }
        size = std::min(size, remaining);
        out->segments[out->count - 1].out = ToRealPoint(accepted.p1);
        PathSegment& record = out->segments[out->count++];
        record.in = ToRealPoint(accepted.p2);
        record.p = ToRealPoint(accepted.p3);
        record.corner = 1;
        remaining -= size - 1;
        first += size - 1;
    }
    out->segments[0].in = out->segments[0].p;
    PathSegment& last = out->segments[out->count - 1];
    last.out = last.p;
}

}  // namespace quorvel
