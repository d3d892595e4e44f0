// Straightforward scalar code: a call for each sample and each chord, distances and not their squares.
#include "tests/support/plain_bezier.h"

#include <algorithm>
#include <cmath>

namespace quorvel::plain {

namespace {

struct Curve {
    const BezierBasisTables& tables;
    DoublePoint p0, p1, p2, p3;

    Curve(const BezierBasisTables& basis, const PathSegment& s, const PathSegment& t)
        : tables(basis),
          p0(ToDoublePoint(s.p)),
          p1(ToDoublePoint(s.out)),
          p2(ToDoublePoint(t.in)),
          p3(ToDoublePoint(t.p)) {}
    DoublePoint Sample(int k) const {
        const double a = tables.b0n256[k], b = tables.b1n256[k], c = tables.b1n256[256 - k], d = tables.b0n256[256 - k];
        return {a * p0.h + b * p1.h + c * p2.h + d * p3.h, a * p0.v + b * p1.v + c * p2.v + d * p3.v};
    }
};

double Distance(const DoublePoint& a, const DoublePoint& b) {
    return std::sqrt((b.h - a.h) * (b.h - a.h) + (b.v - a.v) * (b.v - a.v));
}

int NextCoarse(int k) { return k + 2 == 257 ? 256 : k + 2; }

DoublePoint Foot(const DoublePoint& a, const DoublePoint& b, const DoublePoint& p) {
    if (a.h == b.h) return {a.h, p.v};
    if (a.v == b.v) return {p.h, a.v};
    const double m = (b.v - a.v) / (b.h - a.h), c = a.v - m * a.h;
    const double n = (a.h - b.h) / (b.v - a.v), e = p.v - n * p.h;
    const double h = (c - e) / (n - m);
    return {h, h * m + c};
}

double Lesser(double a, double b) { return b > a ? a : b; }
double Greater(double a, double b) { return a > b ? a : b; }

bool Within(double x, double a, double b, double grow) { return x >= Lesser(a, b) - grow && x <= Greater(a, b) + grow; }

}  // namespace

double LineDistance(const DoublePoint& a, const DoublePoint& b, const DoublePoint& p, DoublePoint* nearest) {
    if (PointsEqual(a, b)) return Distance(p, a);
    const DoublePoint foot = Foot(a, b, p);
    if (Within(foot.h, a.h, b.h, 0) && Within(foot.v, a.v, b.v, 0)) {
        *nearest = foot;
        return Distance(p, foot);
    }
    const double toA = Distance(p, a), toB = Distance(p, b);
    *nearest = toA > toB ? b : a;
    return toA > toB ? toB : toA;
}

bool SnapToChord(DoublePoint* point, const DoublePoint& a, const DoublePoint& b, double tolerance) {
    if (!Within(point->h, a.h, b.h, tolerance) || !Within(point->v, a.v, b.v, tolerance)) return false;
    if (PointsEqual(a, b)) {
        *point = a;
        return true;
    }
    DoublePoint foot = Foot(a, b, *point);
    foot.h = std::clamp(foot.h, Lesser(a.h, b.h), Greater(a.h, b.h));
    foot.v = std::clamp(foot.v, Lesser(a.v, b.v), Greater(a.v, b.v));
    if (!(tolerance > Distance(foot, *point))) return false;
    *point = foot;
    return true;
}

bool SnapToChords(const BezierBasisTables& tables, DoublePoint* point, const PathSegment& s, const PathSegment& t,
                  double tolerance) {
    const Curve curve(tables, s, t);
    DoublePoint previous = curve.p0;
    for (int k = 1; k <= 256; k = NextCoarse(k)) {
        const DoublePoint current = curve.Sample(k);
        DoublePoint copy = *point;
        if (!SnapToChord(&copy, previous, current, tolerance)) {
            previous = current;
            continue;
        }
        const DoublePoint middle = curve.Sample(k - 1);
        DoublePoint first = *point, second = *point;
        double firstDistance = kNoDistance;
        if (SnapToChord(&first, previous, middle, tolerance)) firstDistance = Distance(*point, first);
        if (SnapToChord(&second, middle, current, tolerance)) {
            *point = Distance(*point, second) > firstDistance ? first : second;
        } else {
            *point = first;
        }
        return true;
    }
    return false;
}

double DistanceToCurve(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t,
                       const DoublePoint& point, DoublePoint* nearest, std::int16_t* side) {
    const Curve curve(tables, s, t);
    DoublePoint previous = curve.p0, before = previous, foot;
    double distance = kNoDistance;
    int best = 0;
    for (int k = 1; k <= 256; k = NextCoarse(k)) {
        const DoublePoint current = curve.Sample(k);
        const double found = LineDistance(previous, current, point, &foot);
        if (distance > found) {
            distance = found;
            best = k;
            before = previous;
        }
        previous = current;
    }
    *side = kRightSide;
    if (best == 0) return kNoDistance;
    const DoublePoint middle = curve.Sample(best - 1), after = curve.Sample(best);
    DoublePoint firstFoot = before, secondFoot = middle;
    double first = kNoDistance, second = kNoDistance;
    if (!PointsEqual(before, middle)) first = LineDistance(before, middle, point, &firstFoot);
    if (!PointsEqual(middle, after)) second = LineDistance(middle, after, point, &secondFoot);
    const bool takeFirst = second > first;
    const DoublePoint a = takeFirst ? before : middle, b = takeFirst ? middle : after;
    distance = takeFirst ? first : second;
    *nearest = takeFirst ? firstFoot : secondFoot;
    const DoublePoint centre{(a.h + b.h) / 2, (a.v + b.v) / 2};
    const double direction = AngleBetweenPoints(a, b);
    const double toRight = Distance(PolarPoint(centre, distance, direction - kHalfPi), point);
    const double toLeft = Distance(PolarPoint(centre, distance, direction + kHalfPi), point);
    if (toRight > toLeft) *side = kLeftSide;
    return distance;
}

namespace {

double Tolerance(const PathSegment& s, const PathSegment& t, const DoublePoint& point) {
    double largest = std::fmax(std::fabs(point.h), std::fabs(point.v));
    for (const RealPoint& p : {s.p, s.out, t.in, t.p})
        largest = std::fmax(largest, std::fmax(std::fabs(p.h), std::fabs(p.v)));
    if (!(largest >= 1024) || std::isinf(largest)) return 0.0001;
    // The spacing at and above the largest float that is not above it.
    float below = static_cast<float>(largest);
    if (below > largest) below = std::nextafter(below, 0.0F);
    return 2 * (static_cast<double>(std::nextafter(below, INFINITY)) - below);
}

}  // namespace

double CurveLength(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t, DoublePoint* stop) {
    const Curve curve(tables, s, t);
    DoublePoint previous = curve.p0, nearest;
    double length = 0, best = -1, lengthToNearest = 0;
    for (int k = 1; k <= 256; ++k) {
        const DoublePoint current = k < 256 ? curve.Sample(k) : curve.p3;
        if (stop != nullptr && k < 256 && SnapToChord(stop, previous, current, Tolerance(s, t, *stop)))
            return length + Distance(previous, *stop);
        DoublePoint foot = previous;
        const double distance = stop == nullptr ? 0 : LineDistance(previous, current, *stop, &foot);
        if (best < 0 || best > distance) {
            best = distance;
            nearest = foot;
            lengthToNearest = length + Distance(previous, foot);
        }
        length += Distance(previous, current);
        previous = current;
    }
    if (stop == nullptr) return length;
    *stop = nearest;
    return lengthToNearest;
}

bool PointAtCurveLength(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t, double length,
                        DoublePoint* point, double* angle) {
    const Curve curve(tables, s, t);
    DoublePoint previous = curve.p0;
    double sum = 0;
    for (int k = 1; k <= 256; ++k) {
        const DoublePoint current = curve.Sample(k);
        const double chord = Distance(previous, current);
        if (length <= sum + chord) {
            *angle = AngleBetweenPoints(previous, current);
            *point = PolarPoint(previous, length - sum, *angle);
            return true;
        }
        sum += chord;
        previous = current;
    }
    return false;
}

std::vector<DoublePoint> OffsetCurve(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t,
                                     const DoublePoint* from, const DoublePoint* to, std::int16_t side,
                                     double distance) {
    const Curve curve(tables, s, t);
    const double h = side == 0 ? kHalfPi : -kHalfPi;
    int start = 0, end = 0;
    DoublePoint previous = curve.p0;
    for (int k = 1; k <= 256; ++k) {
        const DoublePoint current = curve.Sample(k);
        DoublePoint copy;
        const auto holds = [&](const DoublePoint& cut) {
            return SnapToChord(&(copy = cut), previous, current, Tolerance(s, t, cut));
        };
        if (from != nullptr && start == 0 && holds(*from)) start = k;
        if (to != nullptr && end == 0 && holds(*to)) end = k;
        previous = current;
    }
    std::vector<DoublePoint> points{start != 0 ? *from : curve.p0};
    const int first = start != 0 ? start : 1, behind = end != 0 ? end : 255;
    for (int k = first; k <= behind - 1; ++k) {
        const DoublePoint sample = curve.Sample(k);
        const bool atFrom = start != 0 && k == first && 0.01 > Distance(sample, *from);
        const bool atTo = end != 0 && k == behind - 1 && 0.01 > Distance(sample, *to);
        if (!atFrom && !atTo) points.push_back(sample);
    }
    points.push_back(end != 0 ? *to : curve.p3);
    if (distance == 0) return points;

    const std::vector<DoublePoint> old = points;
    const int count = static_cast<int>(old.size());
    points[0] = PolarPoint(old[0], distance, AngleBetweenPoints(old[0], old[1]) - h);
    for (int i = 1; i < count; ++i) {
        const DoublePoint p = old[i], before = old[i - 1], after = old[std::min(i + 1, count - 1)];
        double a1 = AngleBetweenPoints(p, before), a2 = AngleBetweenPoints(p, after);
        if (PointsEqual(p, before)) a1 = a2 + kPi;
        if (PointsEqual(p, after)) a2 = a1 - kPi;
        const DoublePoint o1 = PolarPoint(p, distance, a1 + h), o2 = PolarPoint(p, distance, a2 - h);
        points[i] = o2;
        if (!PointsEqual(p, before) && !PointsEqual(p, after)) IntersectLines(before, p, o1, p, after, o2, &points[i]);
    }
    return points;
}

namespace {

double PairError(const DoublePoint* samples, const DoublePoint* points, int count) {
    double error = 0;
    int start = 2;
    DoublePoint foot;
    for (int i = 0; i < count; i += 2) {
        double distance = kNoDistance;
        int best = start;
        for (int k = start; k <= 64; k += 2) {
            const double found = LineDistance(samples[k - 2], samples[k], points[i], &foot);
            if (distance > found) {
                distance = found;
                best = k;
            }
        }
        double halves = kNoDistance;
        for (int k = best - 1; k <= best; ++k)
            halves = MinOf(halves, LineDistance(samples[k - 1], samples[k], points[i], &foot));
        start = std::max(2, best - 2);
        error = MaxOf(error, halves);
    }
    return error;
}

// The best cubic through the window; its error is the result.
double FitWindow(const BezierBasisTables& tables, const DoublePoint* points, int count, DoublePoint* p1,
                 DoublePoint* p2) {
    const DoublePoint a = points[0], b = points[count - 1];
    const double dA = AngleBetweenPoints(a, points[1]), dB = AngleBetweenPoints(b, points[count - 2]);
    double length = 0;
    for (int i = 0; i + 1 < count; ++i) length += Distance(points[i], points[i + 1]);
    double lowX = 0, lowY = 0, stepX = 1, stepY = 1, bestX = 0, bestY = 0, best = -1;
    for (int round = 0; round < 6; ++round) {
        for (int i = 0; i < 4; ++i) {
            for (int j = 0; j < 4; ++j) {
                const double x = lowX + i * stepX, y = lowY + j * stepY;
                const DoublePoint h1 = PolarPoint(a, length * (x / 3), dA), h2 = PolarPoint(b, length * (y / 3), dB);
                DoublePoint samples[65];
                for (int k = 1; k < 64; ++k) samples[k] = BezierSample(tables, 64, k, a, h1, h2, b);
                samples[0] = a;
                samples[64] = h1;
                const double error = PairError(samples, points, count);
                if (best >= 0 && !(best > error)) continue;
                best = error;
                bestX = x;
                bestY = y;
                *p1 = h1;
                *p2 = h2;
            }
        }
        if (0.2 > best) return best;
        const double highX = std::min(3.0, bestX + stepX), highY = std::min(3.0, bestY + stepY);
        lowX = std::max(0.0, bestX - stepX);
        lowY = std::max(0.0, bestY - stepY);
        stepX = (highX - lowX) / 3;
        stepY = (highY - lowY) / 3;
    }
    return best;
}

}  // namespace

void FitCubics(const BezierBasisTables& tables, const std::vector<DoublePoint>& points, SegmentList* out) {
    out->count = 1;
    out->segments[0].p = out->segments[0].in = ToRealPoint(points[0]);
    out->segments[0].corner = 1;
    int first = 0, remaining = static_cast<int>(points.size());
    while (remaining >= 2) {
        DoublePoint p1, p2;
        int n = remaining < 16 ? remaining : 8;
        while (FitWindow(tables, &points[first], n, &p1, &p2) <= 0.2 && n < remaining) ++n;
        PathSegment& before = out->segments[out->count - 1];
        PathSegment& record = out->segments[out->count++];
        before.out = ToRealPoint(p1);
        record.in = ToRealPoint(p2);
        record.p = ToRealPoint(points[first + n - 1]);
        record.corner = 1;
        remaining -= n - 1;
        first += n - 1;
    }
    out->segments[out->count - 1].out = out->segments[out->count - 1].p;
}

}  // namespace quorvel::plain
