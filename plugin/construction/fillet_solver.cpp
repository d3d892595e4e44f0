// Where a rounding touches its two shapes. Two lines have a closed answer; with an arc in the pair the ideal circles
// are solved first, and the result is then fitted to the cubics that stand for them in the drawing.
#include "plugin/construction/fillet_solver.h"

#include <cmath>
#include <utility>

#include "plugin/geometry/chord.h"

namespace quorvel {

namespace {

constexpr double kSmallestHalfAngle = 0.0001;  // radians; two lines that meet at less are one line
constexpr double kOntoLine = 0.001;            // how far a point of the arc may be moved to lie on its line
constexpr double kOntoArc = 0.0005;            // the same for an arc, of its radius: above what a quarter cubic strays

DoublePoint Between(const DoublePoint& a, const DoublePoint& b, double ratio) {
    return {a.h + (b.h - a.h) * ratio, a.v + (b.v - a.v) * ratio};
}

// --- line with line -----------------------------------------------------------------------------------------------

// Infinite or no number for parallel lines.
bool CrossLines(const FilletPick& first, const FilletPick& second, DoublePoint* crossing) {
    const DoublePoint a0 = ToDoublePoint(first.s.p), a1 = ToDoublePoint(first.t.p);
    const DoublePoint b0 = ToDoublePoint(second.s.p), b1 = ToDoublePoint(second.t.p);
    DoublePoint found;
    if (!IntersectLines(a0, a1, a0, b0, b1, b0, &found)) return false;
    if (!std::isfinite(found.h) || !std::isfinite(found.v)) return false;
    *crossing = found;
    return true;
}

RealPoint OntoLine(const DoublePoint& point, const FilletPick& line) {
    RealPoint moved = ToRealPoint(point);
    SnapPointToFlatLine(&moved, line.s.p, line.t.p, kOntoLine);
    return moved;
}

// --- arcs: the ideal circles --------------------------------------------------------------------------------------

// A solution on the ideal circles. x1 and x2: where the tangents at the middle meet those at t1 and t2.
struct IdealArc {
    DoublePoint t1, t2, middle, x1, x2;
    double sweep = 0;
};

double DirectionDifference(const DoublePoint& centre, const DoublePoint& a, const DoublePoint& b, double* mean) {
    double u1 = AngleBetweenPoints(centre, a), u2 = AngleBetweenPoints(centre, b);
    WrapDirections(&u1, &u2);
    *mean = (u1 + u2) / 2;
    return AbsOf(u2 - u1);
}

// Adds middle and tangent crossings to t1 and t2.
bool FinishIdealArc(const DoublePoint& centre, double radius, IdealArc* arc) {
    double mean = 0;
    arc->sweep = DirectionDifference(centre, arc->t1, arc->t2, &mean);
    arc->middle = PolarPoint(centre, radius, mean);
    return CrossTangents(centre, arc->t1, arc->middle, 0, &arc->x1) &&
           CrossTangents(centre, arc->middle, arc->t2, 0, &arc->x2);
}

// The quarter, 1 to 4, in which a direction lies counter-clockwise from a base direction.
int QuadrantFrom(double base, double direction) {
    double w = direction - base;
    if (w < 0) w += kTwoPi;
    return static_cast<int>(w / kHalfPiWide + 1);
}

// -1 below the line, or left of an upright one; +1 elsewhere.
double SideOfLine(const DoublePoint& through, double run, double rise, const DoublePoint& point) {
    if (run == 0) return SignOf(point.h - through.h);
    return SignOf(point.v - (through.v + rise / run * (point.h - through.h)));
}

// --- arcs: fitting to what is drawn -------------------------------------------------------------------------------

// A shape that the arc touches, and how far its tangent point may be moved onto it.
struct Touched {
    const FilletPick* pick;
    double tolerance;
};

bool PushBoth(const BezierBasisTables& tables, const Touched& first, const Touched& second, DoublePoint* t1,
              DoublePoint* t2) {
    return PushOntoSegment(tables, t1, first.pick->s, first.pick->t, first.tolerance) &&
           PushOntoSegment(tables, t2, second.pick->s, second.pick->t, second.tolerance);
}

// Where the drawn shapes are touched. When the points do not fit their shapes, the arc may be turned round.
bool PushTangentPoints(const BezierBasisTables& tables, const Touched& first, const Touched& second, bool mayTurnRound,
                       IdealArc* ideal, DoublePoint* t1, DoublePoint* t2) {
    *t1 = ideal->t1;
    *t2 = ideal->t2;
    if (PushBoth(tables, first, second, t1, t2)) return true;
    if (!mayTurnRound) return false;
    std::swap(ideal->t1, ideal->t2);
    std::swap(ideal->x1, ideal->x2);
    *t1 = ideal->t1;
    *t2 = ideal->t2;
    return PushBoth(tables, first, second, t1, t2);
}

void WriteRecords(const IdealArc& arc, FilletArc* out) {
    const double k = ArcHandleRatio(arc.sweep / 2);
    PathSegment& first = out->records[0];
    PathSegment& middle = out->records[1];
    PathSegment& last = out->records[2];
    first.p = first.in = ToRealPoint(arc.t1);
    first.out = ToRealPoint(Between(arc.t1, arc.x1, k));
    middle.in = ToRealPoint(Between(arc.middle, arc.x1, k));
    middle.p = ToRealPoint(arc.middle);
    middle.out = ToRealPoint(Between(arc.middle, arc.x2, k));
    last.in = ToRealPoint(Between(arc.t2, arc.x2, k));
    last.p = last.out = ToRealPoint(arc.t2);
    first.corner = last.corner = 1;
    middle.corner = 0;
}

// Solves, sees how far the drawn shapes lie from the ideal ones, and solves again for the radius that comes out right;
// what is left is taken up by mapping the arc from its ideal chord to the drawn one.
template <typename SolveAt>
bool FitToSegments(const BezierBasisTables& tables, const Touched& first, const Touched& second, bool mayTurnRound,
                   double radius, SolveAt solveAt, FilletArc* out) {
    IdealArc ideal;
    DoublePoint t1, t2;
    if (!solveAt(radius, &ideal)) return false;
    if (!PushTangentPoints(tables, first, second, mayTurnRound, &ideal, &t1, &t2)) return false;
    const TwoPointMap rough = MapOfChords(ideal.t1, ideal.t2, t1, t2);

    if (!solveAt(radius * (1 / rough.ratio), &ideal)) return false;
    if (!PushTangentPoints(tables, first, second, mayTurnRound, &ideal, &t1, &t2)) return false;
    const TwoPointMap map = MapOfChords(ideal.t1, ideal.t2, t1, t2);
    for (DoublePoint* point : {&ideal.middle, &ideal.x1, &ideal.x2}) *point = MapByTwoPoints(map, *point);
    ideal.t1 = t1;
    ideal.t2 = t2;
    WriteRecords(ideal, out);
    return true;
}

// --- line with arc ------------------------------------------------------------------------------------------------

// How a line and a circle lie to each other and to the picks; the radius of the rounding is still open.
struct LineAndCircle {
    DoublePoint foot;    // of the centre on the line
    DoublePoint normal;  // unit, to the side of the line on which the arc was picked
    DoublePoint along;   // unit, towards the rounding
    DoublePoint centre;
    double p = 0;         // the circle's radius
    double d = 0;         // height of the centre above the line, along normal
    bool around = false;  // the rounding holds the circle
    bool inside = false;  // the circle holds the rounding
};

// The normal a quarter turn from direction a, turned to the given side (-1 or +1) of the line.
DoublePoint NormalTowards(double side, double run, double rise, double a) {
    const DoublePoint normal = PolarPoint({0, 0}, 1, a - kHalfPiWide);
    // Above a line, or right of an upright one, is where -rise, run leads when the line runs to the right.
    const double across = run == 0 ? normal.h : (normal.v * run - normal.h * rise) * SignOf(run);
    const double sign = SignOf(across) == side ? 1 : -1;
    return {normal.h * sign, normal.v * sign};
}

LineAndCircle ArrangeLineAndCircle(const FilletPick& line, const FilletPick& curve, const ArcCircle& circle) {
    const DoublePoint A = ToDoublePoint(line.s.p), B = ToDoublePoint(line.t.p);
    const DoublePoint &L = line.point, &P = curve.point, &C = circle.centre;
    const double run = B.h - A.h, rise = B.v - A.v;
    double a = AngleBetweenPoints(A, B);
    const int q = QuadrantFrom(a, AngleBetweenPoints(C, P));

    LineAndCircle found;
    found.centre = C;
    found.p = circle.radius;
    found.foot = FootOnLine(A, B, C);
    const double sideOfPick = SideOfLine(A, run, rise, P), sideOfCentre = SideOfLine(A, run, rise, C);
    const double d = DistanceBetweenPoints(found.foot, C);
    // A line that cuts the circle is rounded on the arc pick's side of the normal, wherever it was picked itself.
    const bool sameHalf = SideOfLine(C, -rise, run, L) == SideOfLine(C, -rise, run, P) || d < circle.radius;
    found.d = sideOfPick == sideOfCentre ? d : -d;
    found.around = !sameHalf;
    found.inside = sameHalf && DistanceBetweenPoints(L, C) <= circle.radius;
    const bool turned = sameHalf ? q == 2 || q == 3 : q == 1 || q == 4;
    if (turned) a += a <= 0 ? kPi : -kPi;
    found.along = PolarPoint({0, 0}, 1, a);
    found.normal = NormalTowards(sideOfPick, run, rise, a);
    return found;
}

struct LineArcTouch {
    DoublePoint centre, onLine, onCircle;
};

bool TouchLineAndCircle(const LineAndCircle& s, double R, LineArcTouch* touch) {
    // g: from the circle's centre to that of the rounding.
    double g = 0;
    if (s.around) {
        if (!(R >= (s.d + s.p) / 2)) return false;
        g = R - s.p;
    } else if (s.inside) {
        if (!((s.d + s.p) / 2 >= R)) return false;
        g = s.p - R;
    } else {
        if (!(R >= (s.d - s.p) / 2)) return false;
        g = s.p + R;
    }
    const double height = R - s.d;
    const double square = g * g - height * height;
    if (!(square >= 0) || !(g > 0)) return false;
    const double t = SqrtOf(square);
    const double p = s.around ? -s.p : s.p;
    const auto at = [](const DoublePoint& from, const DoublePoint& normal, double n, const DoublePoint& along,
                       double e) {
        return DoublePoint{from.h + n * normal.h + e * along.h, from.v + n * normal.v + e * along.v};
    };
    touch->centre = at(s.centre, s.normal, height, s.along, t);
    touch->onCircle = at(s.centre, s.normal, height * p / g, s.along, t * p / g);
    touch->onLine = at(s.foot, s.normal, 0, s.along, t);
    return true;
}

// --- arc with arc -------------------------------------------------------------------------------------------------

enum class CirclesMust : std::uint8_t { anywhere, apart, overlap };

// The triangle of the two centres and the rounding's centre has the sides d, a = aR R + aP p1 and b = bR R + bP p2. The
// signs turn its angles into directions; the bound (boundD d + bound1 p1 + bound2 p2) / 2 holds the radius from below
// or from above.
struct ArcArcCase {
    double aR, aP, bR, bP;
    double turn;    // of the angles, times the side on which the second arc was picked
    double e1, e2;  // the tangent points: towards the rounding's centre or away from it
    bool outerAngle;
    CirclesMust circles;
    bool atLeast;
    double boundD, bound1, bound2;
};

constexpr ArcArcCase kBothHeld = {1, -1, 1, -1, -1, -1, -1, false, CirclesMust::anywhere, true, 1, 1, 1};
constexpr ArcArcCase kBetween = {1, 1, 1, 1, 1, 1, 1, false, CirclesMust::anywhere, true, 1, -1, -1};
constexpr ArcArcCase kFirstHeld = {1, -1, 1, 1, 1, -1, 1, false, CirclesMust::apart, true, 1, 1, -1};
constexpr ArcArcCase kSecondHeld = {1, 1, 1, -1, -1, 1, -1, false, CirclesMust::apart, true, 1, -1, 1};
constexpr ArcArcCase kInFirst = {-1, 1, 1, 1, 1, 1, 1, true, CirclesMust::overlap, false, 1, 1, -1};
constexpr ArcArcCase kInSecond = {1, 1, -1, 1, 1, 1, 1, true, CirclesMust::overlap, false, 1, -1, 1};
constexpr ArcArcCase kInBoth = {-1, 1, -1, 1, 1, 1, 1, false, CirclesMust::overlap, false, -1, 1, 1};

struct TwoCircles {
    ArcCircle first, second;
    double d = 0;  // between the centres
    double u = 0;  // from the first centre to the second
    double side = 1;
    const ArcArcCase* rule = nullptr;
};

const ArcArcCase& ChooseArcArcCase(bool firstInSecond, bool secondInFirst, int q1, int q2) {
    if (firstInSecond && secondInFirst) return kInBoth;
    if (firstInSecond) return kInSecond;
    if (secondInFirst) return kInFirst;
    if (q1 == 2 || q1 == 3) return q2 == 1 || q2 == 4 ? kBothHeld : kFirstHeld;
    return q2 == 2 || q2 == 3 ? kBetween : kSecondHeld;
}

bool ArrangeCircles(const FilletPick& first, const FilletPick& second, TwoCircles* found) {
    ArcCircle &c1 = found->first, &c2 = found->second;
    if (!ArcCenterFromNormals(first.s, first.t, &c1.centre, &c1.radius)) return false;
    if (!ArcCenterFromNormals(second.s, second.t, &c2.centre, &c2.radius)) return false;
    found->d = DistanceBetweenPoints(c1.centre, c2.centre);
    if (found->d == 0) return false;
    found->u = AngleBetweenPoints(c1.centre, c2.centre);
    const bool firstInSecond = DistanceBetweenPoints(first.point, c2.centre) < c2.radius;
    const bool secondInFirst = DistanceBetweenPoints(second.point, c1.centre) < c1.radius;
    const int q1 = QuadrantFrom(found->u, AngleBetweenPoints(c1.centre, first.point));
    const int q2 = QuadrantFrom(found->u, AngleBetweenPoints(c2.centre, second.point));
    found->side = q2 == 1 || q2 == 2 ? 1 : -1;
    found->rule = &ChooseArcArcCase(firstInSecond, secondInFirst, q1, q2);
    return true;
}

bool RadiusFits(const TwoCircles& s, double R) {
    const ArcArcCase& rule = *s.rule;
    const double p1 = s.first.radius, p2 = s.second.radius, d = s.d;
    if (rule.circles == CirclesMust::apart && !(d > p1 + p2)) return false;
    if (rule.circles == CirclesMust::overlap && !(p1 + d > p2 && p2 + d > p1)) return false;
    const double bound = (rule.boundD * d + rule.bound1 * p1 + rule.bound2 * p2) / 2;
    return rule.atLeast ? R >= bound : R <= bound;
}

// The angle beside the third side's end, of a triangle with the sides near and d there and far opposite. A triangle
// that does not close, or that has no side, has none.
bool TriangleAngle(double near, double d, double far, double* angle) {
    const double cosine = (near * near + d * d - far * far) / (2 * near * d);
    if (!(AbsOf(cosine) <= 1)) return false;
    *angle = Atan2Of(SqrtOf(1 - cosine * cosine), cosine);
    return true;
}

bool TouchCircles(const TwoCircles& s, double R, IdealArc* arc) {
    if (!RadiusFits(s, R)) return false;
    const ArcArcCase& rule = *s.rule;
    const double p1 = s.first.radius, p2 = s.second.radius;
    const double a = rule.aR * R + rule.aP * p1, b = rule.bR * R + rule.bP * p2;
    double A = 0, B = 0;
    if (!TriangleAngle(a, s.d, b, &A) || !TriangleAngle(b, s.d, a, &B)) return false;
    const double sigma = rule.turn * s.side;
    const double toFirst = s.u + sigma * A, toSecond = s.u + kPi - sigma * B;
    arc->t1 = PolarPoint(s.first.centre, rule.e1 * p1, toFirst);
    arc->t2 = PolarPoint(s.second.centre, rule.e2 * p2, toSecond);
    if (!FinishIdealArc(PolarPoint(s.first.centre, a, toFirst), R, arc)) return false;
    arc->sweep = rule.outerAngle ? A + B : kPi - (A + B);
    return true;
}

}  // namespace

void WrapDirections(double* u1, double* u2) {
    if (!(AbsOf(*u2 - *u1) > kPi)) return;
    if (*u2 >= 0) {
        *u1 += kTwoPi;
    } else {
        *u2 += kTwoPi;
    }
}

// Of two slopes the gentler one gives the height: a nearly upright tangent has no digits left for it.
bool CrossTangents(const DoublePoint& centre, const DoublePoint& a, const DoublePoint& b, double levelRadius,
                   DoublePoint* crossing) {
    const double riseA = a.v - centre.v, riseB = b.v - centre.v;
    const bool levelA = riseA == 0 || levelRadius > AbsOf(riseA), levelB = riseB == 0 || levelRadius > AbsOf(riseB);
    if (levelA && levelB) return false;
    const double slopeA = levelA ? 0 : -(a.h - centre.h) / riseA, slopeB = levelB ? 0 : -(b.h - centre.h) / riseB;
    const double interceptA = a.v - slopeA * a.h, interceptB = b.v - slopeB * b.h;
    double h = (interceptA - interceptB) / (slopeB - slopeA);
    if (levelA) h = a.h;
    if (levelB) h = b.h;
    const bool takesB = levelA || (!levelB && AbsOf(slopeB) < AbsOf(slopeA));
    *crossing = {h, takesB ? h * slopeB + interceptB : h * slopeA + interceptA};
    return true;
}

TwoPointMap MapOfChords(const DoublePoint& from0, const DoublePoint& from1, const DoublePoint& to0,
                        const DoublePoint& to1) {
    TwoPointMap map;
    map.origin = from0;
    map.shift = {to0.h - from0.h, to0.v - from0.v};
    map.ratio = DistanceBetweenPoints(to0, to1) / DistanceBetweenPoints(from0, from1);
    map.turn = AngleBetweenPoints(to0, to1) - AngleBetweenPoints(from0, from1);
    return map;
}

DoublePoint MapByTwoPoints(const TwoPointMap& map, const DoublePoint& point) {
    const DoublePoint start{map.origin.h + map.shift.h, map.origin.v + map.shift.v};
    return PolarPoint(start, DistanceBetweenPoints(map.origin, point) * map.ratio,
                      AngleBetweenPoints(map.origin, point) + map.turn);
}

bool PushOntoSegment(const BezierBasisTables& tables, DoublePoint* point, const PathSegment& s, const PathSegment& t,
                     double tolerance) {
    if (!IsStraightSegment(s, t)) return SnapPointToChords(tables, point, s, t, tolerance);
    SnapPointToChord(point, ToDoublePoint(s.p), ToDoublePoint(t.p), tolerance);
    return true;
}

// Lengths from the crossing X: D to the arc's middle, Q to where the middle's tangent meets a line, T to a tangent
// point. L is the half length of the middle's tangent between the lines.
bool SolveLineLine(const FilletPick& first, const FilletPick& second, double radius, FilletArc* arc) {
    DoublePoint X;
    if (!CrossLines(first, second, &X)) return false;
    double u1 = AngleBetweenPoints(X, first.point), u2 = AngleBetweenPoints(X, second.point);
    WrapDirections(&u1, &u2);
    const double h = AbsOf((u2 - u1) / 2), b = (u1 + u2) / 2;
    if (!(h >= kSmallestHalfAngle) || !std::isfinite(h)) return false;

    const double sine = SinOf(h), cosine = CosOf(h);
    const double D = AbsOf(radius / sine) - radius;
    const double L = AbsOf(sine / cosine * D);
    const double Q = AbsOf(D / cosine);
    const double T = AbsOf(cosine / sine * radius);
    const double k = AbsOf(sine / 8.0) + 0.552277;
    const double handle = (T - Q) * k;
    const DoublePoint t1 = PolarPoint(X, T, u1), t2 = PolarPoint(X, T, u2), m = PolarPoint(X, D, b);

    PathSegment& start = arc->records[0];
    PathSegment& middle = arc->records[1];
    PathSegment& end = arc->records[2];
    start.p = start.in = OntoLine(t1, first);
    start.out = OntoLine(PolarPoint(t1, -handle, u1), first);
    end.p = end.out = OntoLine(t2, second);
    end.in = OntoLine(PolarPoint(t2, -handle, u2), second);
    const double turn = u2 < u1 ? -1 : 1;
    const double across = turn * SinOf(b) * L * k, up = turn * CosOf(b) * L * k;
    middle.in = ToRealPoint({m.h + across, m.v - up});
    middle.p = ToRealPoint(m);
    middle.out = ToRealPoint({m.h - across, m.v + up});
    start.corner = end.corner = 1;
    middle.corner = 0;
    return true;
}

bool SolveLineArc(const BezierBasisTables& tables, const FilletPick& first, const FilletPick& second, double radius,
                  FilletArc* arc) {
    const bool lineFirst = IsStraightSegment(first.s, first.t);
    const FilletPick &line = lineFirst ? first : second, &curve = lineFirst ? second : first;
    ArcCircle circle;
    if (!ArcCenterFromNormals(curve.s, curve.t, &circle.centre, &circle.radius)) return false;
    const LineAndCircle arranged = ArrangeLineAndCircle(line, curve, circle);
    const auto solveAt = [&](double R, IdealArc* ideal) {
        LineArcTouch touch;
        if (!TouchLineAndCircle(arranged, R, &touch)) return false;
        ideal->t1 = lineFirst ? touch.onLine : touch.onCircle;
        ideal->t2 = lineFirst ? touch.onCircle : touch.onLine;
        return FinishIdealArc(touch.centre, R, ideal);
    };
    const double tolerance = kOntoArc * circle.radius;
    return FitToSegments(tables, {&first, tolerance}, {&second, tolerance}, true, radius, solveAt, arc);
}

bool SolveArcArc(const BezierBasisTables& tables, const FilletPick& first, const FilletPick& second, double radius,
                 FilletArc* arc) {
    TwoCircles circles;
    if (!ArrangeCircles(first, second, &circles)) return false;
    const auto solveAt = [&](double R, IdealArc* ideal) { return TouchCircles(circles, R, ideal); };
    return FitToSegments(tables, {&first, kOntoArc * circles.first.radius}, {&second, kOntoArc * circles.second.radius},
                         false, radius, solveAt, arc);
}

}  // namespace quorvel
