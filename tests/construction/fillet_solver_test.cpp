// Rounded corners on random shapes: what the solver builds must be a circle of the radius that touches both shapes on
// the sides of the picks, and what it refuses must have no such circle.
#include "plugin/construction/fillet_solver.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <random>

namespace quorvel::tests {
namespace {

constexpr double kRealPi = std::numbers::pi;
constexpr int kCases = 20000;
constexpr double kTangentTolerance = 0.5 * kRealPi / 180;

DoublePoint operator+(const DoublePoint& a, const DoublePoint& b) { return {a.h + b.h, a.v + b.v}; }
DoublePoint operator-(const DoublePoint& a, const DoublePoint& b) { return {a.h - b.h, a.v - b.v}; }
DoublePoint operator*(double f, const DoublePoint& a) { return {f * a.h, f * a.v}; }
double Dot(const DoublePoint& a, const DoublePoint& b) { return a.h * b.h + a.v * b.v; }
double Cross(const DoublePoint& a, const DoublePoint& b) { return a.h * b.v - a.v * b.h; }
double Length(const DoublePoint& a) { return std::hypot(a.h, a.v); }
DoublePoint Unit(double angle) { return {std::cos(angle), std::sin(angle)}; }
DoublePoint UnitOf(const DoublePoint& a) { return (1 / Length(a)) * a; }
DoublePoint Wide(const RealPoint& p) { return {p.h, p.v}; }
PathSegment Corner(const DoublePoint& p) { return {ToRealPoint(p), ToRealPoint(p), ToRealPoint(p), 1}; }

// A line, or a quarter circle counter-clockwise from start.
struct Shape {
    FilletPick pick;
    bool straight = false;
    DoublePoint a, b;  // of a line
    DoublePoint centre;
    double radius = 0, start = 0;

    // How far a point is from the shape's line or circle.
    double gap(const DoublePoint& p) const {
        return straight ? std::fabs(Cross(UnitOf(b - a), p - a)) : std::fabs(Length(p - centre) - radius);
    }
    DoublePoint tangent(const DoublePoint& p) const {
        if (straight) return UnitOf(b - a);
        const DoublePoint out = UnitOf(p - centre);
        return {-out.v, out.h};
    }
    // Is the point so far within the shape that small corrections keep it there? Lines have no ends here.
    bool holds(const DoublePoint& p, double margin) const {
        if (straight) return true;
        const double turn =
            std::remainder(std::atan2(p.v - centre.v, p.h - centre.h) - start - kRealPi / 4, 2 * kRealPi);
        return std::fabs(turn) < kRealPi / 4 - margin;
    }
};

struct FilletCases : testing::Test {
    std::mt19937 random{20240607};
    BezierBasisTables tables;
    FilletCases() { BuildBezierBasisTables(&tables); }

    double between(double low, double high) { return std::uniform_real_distribution<>(low, high)(random); }
    DoublePoint somewhere(double size) { return {between(-size, size), between(-size, size)}; }

    Shape line() {
        Shape shape;
        shape.straight = true;
        shape.a = somewhere(300);
        const int special = std::uniform_int_distribution<>(0, 9)(random);
        const double angle = special < 4 ? special * kRealPi / 2 : between(-kRealPi, kRealPi);
        shape.b = shape.a + between(50, 500) * Unit(angle);
        shape.pick = {Corner(shape.a), Corner(shape.b), {}};
        // The solver sees the floats.
        shape.a = Wide(shape.pick.s.p);
        shape.b = Wide(shape.pick.t.p);
        shape.pick.point = shape.a + between(0, 1) * (shape.b - shape.a);
        return shape;
    }
    Shape quarter() {
        constexpr double kQuarterRatio = 0.5522847;
        Shape shape;
        shape.centre = somewhere(200);
        shape.radius = between(30, 300);
        shape.start = between(-kRealPi, kRealPi);
        const DoublePoint out = shape.radius * Unit(shape.start), up{-out.v, out.h};
        const DoublePoint s = shape.centre + out, t = shape.centre + up;
        shape.pick.s = {ToRealPoint(s), ToRealPoint(s), ToRealPoint(s + kQuarterRatio * up), 0};
        shape.pick.t = {ToRealPoint(t), ToRealPoint(t + kQuarterRatio * out), ToRealPoint(t), 0};
        shape.pick.point = shape.centre + shape.radius * Unit(shape.start + between(0, kRealPi / 2));
        return shape;
    }
};

// Both cubics keep to one circle of the radius; gives its centre. The handles' ratio is right to a sixtieth at most,
// which shifts the curve by less than a two hundredth of the whole arc's height; the rest is for floats and for the
// move onto the drawn curves.
DoublePoint ExpectCircle(const FilletArc& arc, double radius) {
    const PathSegment* r = arc.records;
    EXPECT_TRUE(r[0].corner && !r[1].corner && r[2].corner);
    EXPECT_TRUE(PointsEqual(r[0].in, r[0].p) && PointsEqual(r[2].out, r[2].p));
    const DoublePoint chord = UnitOf(Wide(r[2].p) - Wide(r[0].p));
    const DoublePoint bulge = Wide(r[1].p) - 0.5 * (Wide(r[0].p) + Wide(r[2].p));
    const double height = Cross(chord, bulge);
    // Upright on the chord, at the distance that the middle has from the circle.
    const DoublePoint centre = Wide(r[1].p) - (height < 0 ? -radius : radius) * DoublePoint{-chord.v, chord.h};
    for (int piece = 0; piece < 2; ++piece) {
        for (double t = 0; t <= 1; t += 0.125) {
            const double u = 1 - t;
            const DoublePoint point = u * u * u * Wide(r[piece].p) + 3 * u * u * t * Wide(r[piece].out) +
                                      3 * u * t * t * Wide(r[piece + 1].in) + t * t * t * Wide(r[piece + 1].p);
            EXPECT_NEAR(Length(point - centre), radius, 0.005 * std::fabs(height) + 0.005);
        }
    }
    return centre;
}

// A quarter cubic strays from its circle by up to 0.00027 of the radius.
constexpr double kStray = 0.0003;

void ExpectOn(const Shape& shape, const RealPoint& at) {
    EXPECT_LT(shape.gap(Wide(at)), shape.straight ? 0.003 : kStray * shape.radius);
    EXPECT_TRUE(shape.holds(Wide(at), -0.001));
}

void ExpectTangent(const Shape& shape, const RealPoint& at, const RealPoint& handle) {
    const DoublePoint way = UnitOf(Wide(handle) - Wide(at));
    EXPECT_LT(std::fabs(Cross(way, shape.tangent(Wide(at)))), std::sin(kTangentTolerance));
}

// A rounding is turned as its tangent points follow the curves that stray, a short one visibly so. False for one that
// is too short to say how it leaves its shapes.
bool ExpectTouchesBoth(const Shape& first, const Shape& second, const FilletArc& arc, double radius) {
    ExpectOn(first, arc.records[0].p);
    ExpectOn(second, arc.records[2].p);
    ExpectCircle(arc, radius);
    const double chord = Length(Wide(arc.records[0].p) - Wide(arc.records[2].p));
    if (kStray * (first.radius + second.radius) > chord * kTangentTolerance) return false;
    ExpectTangent(first, arc.records[0].p, arc.records[0].out);
    ExpectTangent(second, arc.records[2].p, arc.records[2].in);
    return true;
}

bool Near(double a, double b, double scale) { return std::fabs(a - b) < 0.01 * scale; }

TEST_F(FilletCases, LinesAreRoundedBetweenThePicks) {
    int parallel = 0, far = 0;
    for (int i = 0; i < kCases && !HasFailure(); ++i) {
        SCOPED_TRACE(i);
        const Shape first = line(), second = line();
        const DoublePoint d1 = UnitOf(first.b - first.a), d2 = UnitOf(second.b - second.a);
        const double radius = between(0.5, 100), sine = Cross(d1, d2);
        FilletArc arc;
        const bool built = SolveLineLine(first.pick, second.pick, radius, &arc);
        if (std::fabs(sine) < 0.02) {
            EXPECT_FALSE(built && sine == 0);
            ++parallel;
            continue;
        }
        ASSERT_TRUE(built);
        const DoublePoint X = first.a + (Cross(second.a - first.a, d2) / sine) * d1;
        // Floats stand for points as far away as the crossing and the legs.
        if (Length(X) > 5000 || radius > 1000 * std::fabs(sine)) {
            ++far;
            continue;
        }
        EXPECT_TRUE(ExpectTouchesBoth(first, second, arc, radius));
        EXPECT_GT(Dot(Wide(arc.records[0].p) - X, first.pick.point - X), 0);
        EXPECT_GT(Dot(Wide(arc.records[2].p) - X, second.pick.point - X), 0);
        const DoublePoint t1 = Wide(arc.records[0].p), t2 = Wide(arc.records[2].p);
        EXPECT_NEAR(Length(t1 - X), Length(t2 - X), 0.01 * radius);
    }
    EXPECT_LT(parallel, kCases / 8);  // four lines in ten are level or upright
    EXPECT_LT(far, kCases / 40);
}

// The circle that the picks ask of a line and a circle: which side of the line, which half, and how it lies to the
// circle. place: |OC| for a radius.
struct LineArcWish {
    DoublePoint normal, along, foot;
    double d = 0;
    bool around = false, inside = false;
    double place(double R, double p) const { return around ? R - p : inside ? p - R : p + R; }
};

LineArcWish WishOf(const Shape& line, const Shape& curve) {
    LineArcWish wish;
    const DoublePoint ab = UnitOf(line.b - line.a), &P = curve.pick.point, &L = line.pick.point, &C = curve.centre;
    wish.normal = Cross(ab, P - line.a) < 0 ? DoublePoint{ab.v, -ab.h} : DoublePoint{-ab.v, ab.h};
    wish.foot = line.a + Dot(C - line.a, ab) * ab;
    wish.d = Dot(C - wish.foot, wish.normal);
    const double pickHalf = Dot(P - C, ab) < 0 ? -1 : 1, lineHalf = Dot(L - C, ab) < 0 ? -1 : 1;
    wish.around = pickHalf != lineHalf && std::fabs(wish.d) >= curve.radius;
    wish.inside = !wish.around && Length(L - C) <= curve.radius;
    wish.along = (wish.around ? lineHalf : pickHalf) * ab;
    return wish;
}

// Is there clearly such a circle, with its tangent point on the arc, for radii near this one too?
bool Exists(const LineArcWish& wish, const Shape& curve, double R) {
    for (const double radius : {R * 0.99, R, R * 1.01}) {
        const double place = wish.place(radius, curve.radius), height = radius - wish.d;
        if (!(place > 0.02 * radius && place > std::fabs(height) * 1.001)) return false;
        const DoublePoint centre =
            wish.foot + radius * wish.normal + std::sqrt(place * place - height * height) * wish.along;
        const DoublePoint way = (wish.around ? -1.0 : 1.0) * UnitOf(centre - curve.centre);
        if (!curve.holds(curve.centre + curve.radius * way, 0.05)) return false;
    }
    return true;
}

TEST_F(FilletCases, LineAndArcAreRoundedWhereACircleFits) {
    int built = 0, refused = 0, tooShort = 0;
    for (int i = 0; i < kCases && !HasFailure(); ++i) {
        SCOPED_TRACE(i);
        const Shape straight = line(), curve = quarter();
        const bool lineFirst = i % 2 == 0;
        const Shape &first = lineFirst ? straight : curve, &second = lineFirst ? curve : straight;
        const double p = curve.radius, radius = p * std::exp2(between(-3, 2));
        const LineArcWish wish = WishOf(straight, curve);
        FilletArc arc;
        if (!SolveLineArc(tables, first.pick, second.pick, radius, &arc)) {
            EXPECT_FALSE(Exists(wish, curve, radius));
            ++refused;
            continue;
        }
        ++built;
        if (!ExpectTouchesBoth(first, second, arc, radius)) ++tooShort;
        const DoublePoint onLine = Wide(arc.records[lineFirst ? 0 : 2].p);
        const DoublePoint centre = onLine + radius * wish.normal;
        EXPECT_TRUE(Near(Length(centre - curve.centre), wish.place(radius, p), p + radius));
        EXPECT_GT(Dot(onLine - wish.foot, wish.along), -0.01 * (p + radius));
    }
    EXPECT_GT(built, kCases / 20);
    EXPECT_GT(refused, kCases / 20);
    EXPECT_LT(tooShort, built / 200);
}

// How the picks want the circle to lie to the two arcs: held by it, holding it, or beside it.
enum class Lies { beside, held, holding };
double PlaceOf(Lies lies, double R, double p) {
    return lies == Lies::beside ? R + p : lies == Lies::held ? R - p : p - R;
}

struct ArcArcWish {
    Lies first = Lies::beside, second = Lies::beside;
    bool possible = true;  // mixed places need circles that are apart, inner ones circles that overlap
};

ArcArcWish WishOfArcs(const Shape& one, const Shape& two) {
    const DoublePoint u = two.centre - one.centre;
    const double d = Length(u);
    const bool firstInTwo = Length(one.pick.point - two.centre) < two.radius;
    const bool secondInOne = Length(two.pick.point - one.centre) < one.radius;
    const bool away1 = Dot(one.pick.point - one.centre, u)<0, away2 = Dot(two.pick.point - two.centre, u)> 0;
    ArcArcWish wish;
    if (firstInTwo || secondInOne) {
        if (secondInOne) wish.first = Lies::holding;
        if (firstInTwo) wish.second = Lies::holding;
        wish.possible = d > std::fabs(one.radius - two.radius);
        return wish;
    }
    if (away1) wish.first = Lies::held;
    if (away2) wish.second = Lies::held;
    if (away1 != away2) wish.possible = d > one.radius + two.radius;
    return wish;
}

// The two mirror images of the circle; side: on which side of the centre line it touches the second arc.
bool Exists(const ArcArcWish& wish, const Shape& one, const Shape& two, double R) {
    const DoublePoint u = two.centre - one.centre;
    const double d = Length(u), side = Cross(u, two.pick.point - two.centre) < 0 ? -1 : 1;
    for (const double radius : {R * 0.99, R, R * 1.01}) {
        const double a = PlaceOf(wish.first, radius, one.radius), b = PlaceOf(wish.second, radius, two.radius);
        if (!wish.possible || !(a > 0.02 * radius && b > 0.02 * radius)) return false;
        const double along = (a * a - b * b + d * d) / (2 * d), square = a * a - along * along;
        if (!(square > 0.001 * a * a)) return false;
        const DoublePoint up{-u.v / d, u.h / d};
        const double upward = (wish.second == Lies::held ? -side : side) * std::sqrt(square);
        const DoublePoint centre = one.centre + (along / d) * u + upward * up;
        const auto touch = [&](const Shape& s, Lies lies) {
            return s.centre + (lies == Lies::held ? -1.0 : 1.0) * s.radius * UnitOf(centre - s.centre);
        };
        if (!one.holds(touch(one, wish.first), 0.05) || !two.holds(touch(two, wish.second), 0.05)) return false;
    }
    return true;
}

TEST_F(FilletCases, ArcsAreRoundedWhereACircleFits) {
    int built = 0, refused = 0, tooShort = 0;
    for (int i = 0; i < 2 * kCases && !HasFailure(); ++i) {
        SCOPED_TRACE(i);
        const Shape one = quarter(), two = quarter();
        const double radius = std::max(one.radius, two.radius) * std::exp2(between(-3, 3));
        const ArcArcWish wish = WishOfArcs(one, two);
        FilletArc arc;
        if (!SolveArcArc(tables, one.pick, two.pick, radius, &arc)) {
            EXPECT_FALSE(Exists(wish, one, two, radius));
            ++refused;
            continue;
        }
        ++built;
        EXPECT_TRUE(wish.possible);
        if (!ExpectTouchesBoth(one, two, arc, radius)) ++tooShort;
        const DoublePoint t1 = Wide(arc.records[0].p), t2 = Wide(arc.records[2].p);
        const double a = PlaceOf(wish.first, radius, one.radius), b = PlaceOf(wish.second, radius, two.radius);
        const DoublePoint O1 = one.centre + (wish.first == Lies::held ? -a : a) / one.radius * (t1 - one.centre);
        const DoublePoint O2 = two.centre + (wish.second == Lies::held ? -b : b) / two.radius * (t2 - two.centre);
        EXPECT_LT(Length(O1 - O2), 0.02 * (radius + one.radius + two.radius));
        const DoublePoint u = two.centre - one.centre;
        EXPECT_GT(Cross(u, t2 - two.centre) * Cross(u, two.pick.point - two.centre), -1.0);
    }
    EXPECT_GT(built, kCases / 20);
    EXPECT_GT(refused, kCases / 20);
    EXPECT_LT(tooShort, built / 200);
}

TEST_F(FilletCases, HandComputedCorner) {
    // A right angle at the origin: tangent points 10 along the legs, the arc's middle 10 (1 - 1 / sqrt 2) from both.
    const FilletPick right{Corner({0, 0}), Corner({50, 0}), {30, 0}}, up{Corner({0, 40}), Corner({0, 0}), {0, 20}};
    FilletArc arc;
    ASSERT_TRUE(SolveLineLine(right, up, 10, &arc));
    EXPECT_NEAR(arc.records[0].p.h, 10, 1e-5);
    EXPECT_EQ(arc.records[0].p.v, 0);
    EXPECT_NEAR(arc.records[1].p.h, 2.9289322, 1e-5);
    EXPECT_NEAR(arc.records[1].p.v, 2.9289322, 1e-5);
    EXPECT_EQ(arc.records[2].p.h, 0);
    EXPECT_NEAR(arc.records[2].p.v, 10, 1e-5);
    // An eighth turn's handle: 10 tan(pi / 8) times sin(pi / 4) / 8 + 0.552277.
    EXPECT_NEAR(10 - arc.records[0].out.h, 4.14213562 * 0.64066535, 1e-4);
    const DoublePoint centre = ExpectCircle(arc, 10);
    EXPECT_NEAR(centre.h, 10, 0.01);
    EXPECT_NEAR(centre.v, 10, 0.01);
}

TEST_F(FilletCases, LinesWithoutACornerAreRefused) {
    FilletArc arc;
    const auto pick = [](DoublePoint a, DoublePoint b) { return FilletPick{Corner(a), Corner(b), 0.5 * (a + b)}; };
    EXPECT_FALSE(SolveLineLine(pick({0, 0}, {0, 9}), pick({5, 0}, {5, 9}), 1, &arc));    // upright
    EXPECT_FALSE(SolveLineLine(pick({0, 0}, {9, 0}), pick({0, 5}, {9, 5}), 1, &arc));    // level
    EXPECT_FALSE(SolveLineLine(pick({0, 0}, {4, 4}), pick({8, 8}, {16, 16}), 1, &arc));  // one line
    EXPECT_FALSE(SolveLineLine(pick({0, 0}, {9, 0}), pick({20, 0}, {40, 0}), 1, &arc));
}

TEST_F(FilletCases, MapCarriesTheChordAndTurnsTheRest) {
    const TwoPointMap map = MapOfChords({0, 0}, {10, 0}, {3, 4}, {3, 24});
    const DoublePoint end = MapByTwoPoints(map, {10, 0}), beside = MapByTwoPoints(map, {0, 5});
    EXPECT_NEAR(end.h, 3, 1e-9);
    EXPECT_NEAR(end.v, 24, 1e-9);
    EXPECT_NEAR(beside.h, -7, 1e-9);
    EXPECT_NEAR(beside.v, 4, 1e-9);
}

TEST_F(FilletCases, TangentsCrossAlsoNearAnUprightOne) {
    // The second radius is level but for a rounding; its tangent is the upright line h = 10.
    DoublePoint x;
    ASSERT_TRUE(CrossTangents({0, 0}, {0, 10}, {10, 1e-15}, 0, &x));
    EXPECT_NEAR(x.h, 10, 1e-9);
    EXPECT_NEAR(x.v, 10, 1e-9);
    ASSERT_TRUE(CrossTangents({0, 0}, {10, 1e-15}, {0, 10}, 0, &x));
    EXPECT_NEAR(x.v, 10, 1e-9);
    EXPECT_FALSE(CrossTangents({0, 0}, {10, 0}, {-10, 0}, 0, &x));
    EXPECT_FALSE(CrossTangents({0, 0}, {10, 0.00005}, {-10, 0}, 0.0001, &x));
}

}  // namespace
}  // namespace quorvel::tests
