// The Curve Dimension tool: lengths along thousands of random paths against an independent fine sampling, and by hand
// the art that a dimension is made of, open and closed, both ways round.
#include "plugin/dimensioning/curve.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <tuple>

#include "tests/support/drafting_table.h"
#include "tests/support/sanitized.h"

namespace quorvel::tests {
namespace {

const double kHalfTurn = std::acos(-1);

// --- a path that is sampled finely --------------------------------------------------------------------------------

constexpr int kSteps = 2000;  // of a span

struct Sampled {
    std::vector<PathSegment> segments;
    bool closed = false;
    std::vector<std::vector<DoublePoint>> points;  // by span, named by the segment that ends it
    std::vector<std::vector<double>> lengths;      // from the path's start

    int spanCount() const { return static_cast<int>(segments.size()) - (closed ? 0 : 1); }
    int span(int k) const { return (k + 1) % static_cast<int>(segments.size()); }  // the kth from the start
    double total() const { return lengths[span(spanCount() - 1)].back(); }
    const PathSegment& start(int span) const { return segments[(span + segments.size() - 1) % segments.size()]; }

    void sample() {
        points.assign(segments.size(), {});
        lengths.assign(segments.size(), {});
        double sum = 0;
        for (int k = 0; k < spanCount(); ++k) {
            const PathSegment &s = start(span(k)), &t = segments[span(k)];
            for (int i = 0; i <= kSteps; ++i) {
                const double x = double(i) / kSteps, y = 1 - x;
                const double a = y * y * y, b = 3 * y * y * x, c = 3 * y * x * x, d = x * x * x;
                const DoublePoint p{a * s.p.h + b * s.out.h + c * t.in.h + d * t.p.h,
                                    a * s.p.v + b * s.out.v + c * t.in.v + d * t.p.v};
                if (i > 0) sum += std::hypot(p.h - points[span(k)].back().h, p.v - points[span(k)].back().v);
                points[span(k)].push_back(p);
                lengths[span(k)].push_back(sum);
            }
        }
    }
};

struct PathSource {
    explicit PathSource(unsigned seed) : random(seed) {}
    std::mt19937 random;

    int below(int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); }
    double uniform(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); }
    RealPoint point() { return {float(uniform(150, 850)), float(uniform(150, 850))}; }
    RealPoint near(RealPoint p) { return {float(p.h + uniform(-120, 120)), float(p.v + uniform(-120, 120))}; }

    // A line, a circular arc or any curve from s to t.
    void bend(PathSegment* s, PathSegment* t) {
        const int shape = below(3);
        if (shape == 0) return;
        if (shape == 1) {
            s->out = near(s->p);
            t->in = near(t->p);
            return;
        }
        const double delta = uniform(0.4, 1.6) * (below(2) == 0 ? 1 : -1), half = delta / 2;
        const double chord = std::hypot(t->p.h - s->p.h, t->p.v - s->p.v);
        const double direction = std::atan2(t->p.v - s->p.v, t->p.h - s->p.h);
        const double reach = chord / 2 / std::sin(std::fabs(half)) * 4 / 3 * std::tan(std::fabs(half) / 2);
        s->out = ToRealPoint(PolarPoint(ToDoublePoint(s->p), reach, direction - half));
        t->in = ToRealPoint(PolarPoint(ToDoublePoint(t->p), -reach, direction + half));
    }

    Sampled path() {
        Sampled path;
        path.closed = below(2) == 0;
        const int count = 2 + below(5);
        while (static_cast<int>(path.segments.size()) < count) {
            const RealPoint p = point();
            const RealPoint last = path.segments.empty() ? RealPoint{0, 0} : path.segments.back().p;
            if (std::hypot(p.h - last.h, p.v - last.v) > 40) path.segments.push_back(Corner(p));
        }
        for (int k = 0; k < path.spanCount(); ++k)
            bend(&path.segments[path.span(k) == 0 ? count - 1 : path.span(k) - 1], &path.segments[path.span(k)]);
        path.sample();
        return path;
    }
};

// A picked point: on which span, where, and how far along the path.
struct Pick {
    std::int16_t span = 0;
    RealPoint point;
    double along = 0;
};

// As a user picks: somewhere on a span and snapped onto it, or on an anchor. False for a pick that has no one length; a
// stop on the last sample of a curve is measured to its end.
bool PickOn(const Sampled& path, PathSource* source, const BezierBasisTables& tables, Pick* pick) {
    pick->span = static_cast<std::int16_t>(path.span(source->below(path.spanCount())));
    const auto& points = path.points[pick->span];
    bool onLast = false;
    const int way = source->below(6);
    if (way < 2) {
        const int end = way == 0 ? 0 : kSteps;
        pick->point = ToRealPoint(points[end]);
        pick->along = path.lengths[pick->span][end];
        return true;
    }
    const int aim = source->below(kSteps);
    pick->point = ToRealPoint(points[aim]);
    if (!SnapToSegment(tables, &pick->point, path.start(pick->span), path.segments[pick->span], 0.5, kAnyCurve))
        return false;
    // The foot on the sampled span, near where the aim was.
    double best = 1e9;
    for (int k = std::max(1, aim - 100); k <= std::min(kSteps, aim + 100); ++k) {
        const DoublePoint a = points[k - 1], p = ToDoublePoint(pick->point), b = points[k];
        const double h = b.h - a.h, v = b.v - a.v;
        const double part = std::clamp(((p.h - a.h) * h + (p.v - a.v) * v) / (h * h + v * v), 0.0, 1.0);
        const double away = std::hypot(a.h + part * h - p.h, a.v + part * v - p.v);
        if (away >= best) continue;
        best = away;
        const std::vector<double>& lengths = path.lengths[pick->span];
        pick->along = lengths[k - 1] + part * (lengths[k] - lengths[k - 1]);
        onLast = k > kSteps - kSteps / 200;
    }
    // Where a span comes back to the same place the pick has two lengths.
    for (int k = 0; k <= kSteps; ++k) {
        if (std::fabs(path.lengths[pick->span][k] - pick->along) < 1) continue;
        if (std::hypot(points[k].h - pick->point.h, points[k].v - pick->point.v) < 0.3) return false;
    }
    return !onLast;
}

// How near E comes to the part of the path from one length to another, forward; where is the nearest point's length.
double DistanceToRun(const Sampled& path, const DoublePoint& E, double from, double to, double* where) {
    double best = 1e9;
    for (int k = 0; k < path.spanCount(); ++k) {
        for (int i = 0; i <= kSteps; ++i) {
            const double along = path.lengths[path.span(k)][i];
            const bool within = from <= to ? along >= from && along <= to : along >= from || along <= to;
            const DoublePoint& p = path.points[path.span(k)][i];
            const double distance = within ? std::hypot(p.h - E.h, p.v - E.v) : 1e9;
            if (distance >= best) continue;
            best = distance;
            *where = along;
        }
    }
    return best;
}

double DistanceToChain(const ChainBuffer& chain, const BezierBasisTables& tables, const DoublePoint& E) {
    double best = 1e9;
    for (int k = 1; k < chain.count; ++k)
        best = std::min(best, DistanceToSegment(tables, chain.segments[k - 1], chain.segments[k], E, nullptr, nullptr));
    return best;
}

// --- properties ---------------------------------------------------------------------------------------------------

class CurveChain : public testing::Test {
  protected:
    // Two picks on the path and a placement near it. Picks without one length, and those too near, are passed over.
    void measureOnce(const Sampled& path, doc::ArtId art, bool showProgress) {
        PluginGlobals& globals = table.globals();
        Pick from, to;
        if (!PickOn(path, &source, globals.bezierTables, &from)) return;
        if (!PickOn(path, &source, globals.bezierTables, &to)) return;
        const double total = path.total(), apart = std::fabs(to.along - from.along);
        if (apart < 3 || (path.closed && total - apart < 3)) return;
        const bool backward = to.along < from.along;
        const DoublePoint E = ToDoublePoint(
            source.near(ToRealPoint(path.points[path.span(source.below(path.spanCount()))][source.below(kSteps)])));
        ContextBracket(&globals);
        globals.liveState.fromPoint = from.point;
        globals.liveState.toPoint = to.point;
        globals.liveState.fromCells[0] = {DraftingTable::handle(art), from.span};
        globals.liveState.toCells[0] = {DraftingTable::handle(art), to.span};
        std::int16_t side = 0;
        ASSERT_TRUE(BuildCurveChain(&globals, E, showProgress, &side));

        SCOPED_TRACE(testing::Message() << "spans " << from.span << " " << to.span
                                        << (path.closed ? " closed" : " open"));
        const ChainBuffer& chain = *globals.workBufferA;
        const bool runsBackward = chain.reversed != 0;
        const double forward = backward ? total - apart : apart;
        const double expected = !path.closed ? apart : (runsBackward ? total - forward : forward);
        EXPECT_NEAR(chain.length, expected, 0.15 + 3e-4 * expected);
        EXPECT_TRUE(path.closed || runsBackward == backward);
        ++checked;
        reversed += runsBackward ? 1 : 0;
        expectCopy(path, chain, E, runsBackward ? to.along : from.along, runsBackward ? from.along : to.along);
    }

    // The chain runs from start to end, lengths on the path, on the placement's side.
    void expectCopy(const Sampled& path, const ChainBuffer& chain, const DoublePoint& E, double start, double end) {
        double nearest = 0, other = 0;
        const double distance = DistanceToRun(path, E, start, end, &nearest);
        if (path.closed) {
            ++closed;
            EXPECT_LE(distance, DistanceToRun(path, E, end, start, &other) + 0.6);
        }
        // A copy beside the middle of a span runs through the placement point; corners have no copy.
        for (int k = 0; k < path.spanCount(); ++k) {
            const auto& lengths = path.lengths[path.span(k)];
            const double margin = 0.02 * (lengths.back() - lengths.front()) + 1;
            const auto clear = [&](double x) { return std::fabs(x - nearest) > margin; };
            if (nearest < lengths.front() || nearest > lengths.back()) continue;
            if (!clear(lengths.front()) || !clear(lengths.back()) || !clear(start) || !clear(end)) continue;
            if (distance < 1 || DistanceToRun(path, E, 0, path.total(), &other) < distance) continue;
            ++passing;
            missing += DistanceToChain(chain, table.globals().bezierTables, E) > 1.5 ? 1 : 0;
        }
    }

    DraftingTable table;
    PathSource source{41};
    int checked = 0, reversed = 0, closed = 0, passing = 0, missing = 0;
};

TEST_F(CurveChain, LengthIsThatOfThePathOnThePlacementsSide) {
    for (int round = 0; round < rounds(900); ++round) {
        SCOPED_TRACE(round);
        const Sampled path = source.path();
        const doc::ArtId art = table.draw(path.segments, path.closed);
        table.inside([&] {
            for (int i = 0; i < 4; ++i) measureOnce(path, art, round % 20 == 0);
        });
        table.change([&](doc::Document& document) { return document.removeArt(art); });
    }
    EXPECT_GT(checked, rounds(2000));
    EXPECT_GT(reversed, rounds(600));
    EXPECT_GT(closed, rounds(800));
    EXPECT_GT(passing, rounds(800));
    EXPECT_LT(missing, passing / 100);  // beyond the tip of a hairpin a copy does not reach
}

// --- by hand --------------------------------------------------------------------------------------------------------

void expectPoint(const RealPoint& point, double h, double v) {
    EXPECT_NEAR(point.h, h, 2e-3);
    EXPECT_NEAR(point.v, v, 2e-3);
}
void expectText(const Piece& piece, const char16_t* text, double h, double v, double degrees) {
    EXPECT_EQ(piece.text, text);
    expectPoint(piece.place, h, v);
    EXPECT_NEAR(std::remainder(piece.angle - degrees * kHalfTurn / 180, 2 * kHalfTurn), 0, 1e-5);
}

class Curve : public testing::Test {
  protected:
    void SetUp() override {
        PrefsRecord& prefs = table.prefs();
        prefs.flUseFcur = prefs.flUseFcrs = prefs.flUseFrad = 0;
        prefs.flArUnit = 5;
        prefs.flScFix = 2;
    }
    std::vector<Piece> measure(RealPoint from, RealPoint to, RealPoint placement,
                               const std::vector<RealPoint>& stops = {}) {
        table.removeDimensions();
        table.pull("Curve Dimension Tool", from, to, stops);
        table.track(placement);
        EXPECT_GT(table.user().visiblePixels(), 0U);
        table.down();
        EXPECT_EQ(table.user().visiblePixels(), 0U);
        return table.pieces(table.dimension());
    }
    DraftingTable table;
};

constexpr RealPoint kLower{120, 100}, kUpper{200, 150};

TEST_F(Curve, PartsAlongAnOpenPath) {
    table.drawLines({{100, 100}, {200, 100}, {200, 200}}, false);
    std::vector<Piece> art = measure(kLower, kUpper, {160, 80});
    ASSERT_EQ(art.size(), 6U);
    expectPoint(art[0].segments[0].p, 120, 100);
    expectPoint(art[0].segments[1].p, 120, 70);
    expectPoint(art[1].segments[1].p, 230, 150);
    // The copies of both spans, joined as they are.
    ASSERT_EQ(art[2].segments.size(), 4U);
    expectPoint(art[2].segments[0].p, 120, 80);
    expectPoint(art[2].segments[1].p, 200, 80);
    expectPoint(art[2].segments[2].p, 220, 100);
    expectPoint(art[2].segments[3].p, 220, 150);
    const double c = 10 * std::cos(kHalfTurn / 12), s = 10 * std::sin(kHalfTurn / 12);
    expectPoint(art[3].segments[0].p, 120 + c, 80 + s);
    expectPoint(art[3].segments[2].p, 120 + c, 80 - s);
    expectPoint(art[4].segments[0].p, 220 + s, 150 - c);
    // 80 and 50 are measured; the copy is 80 + 20 sqrt 2 + 50 long, and its middle bears the text.
    const double middle = 120 + (130 + 20 * std::sqrt(2.0)) / 2;
    expectText(art[5], u"130", middle, 82, 0);
    EXPECT_EQ(table.tag(table.dimension(), "QUORVEL_TOOLCNF").substr(0, 6), "14003,");

    // The other order of clicks measures the same and stands the text on its head.
    art = measure(kUpper, kLower, {160, 80});
    expectPoint(art[0].segments[1].p, 120, 70);
    expectPoint(art[2].segments[0].p, 120, 80);
    expectText(art[5], u"130", middle, 78, 180);
}

TEST_F(Curve, NarrowCopyGetsItsHeadsOutside) {
    table.drawLines({{100, 100}, {400, 100}}, false);
    table.prefs().flScOfst = 3;
    const std::vector<Piece> art = measure({120, 100}, {149, 100}, {130, 150});
    expectPoint(art[0].segments[0].p, 120, 103);
    ASSERT_EQ(art[2].segments.size(), 4U);
    expectPoint(art[2].segments[0].p, 110, 150);
    expectPoint(art[2].segments[3].p, 159, 150);
    EXPECT_EQ(art[2].segments[0].corner, 1);
    EXPECT_LT(art[3].segments[0].p.h, 120);
    EXPECT_GT(art[4].segments[0].p.h, 149);
}

TEST_F(Curve, PlacementOnThePathTakesTheDirectionOfThePath) {
    table.drawLines({{100, 100}, {200, 100}, {200, 200}}, false);
    std::vector<Piece> art = measure(kLower, kUpper, {160, 100});
    expectPoint(art[0].segments[0].p, 120, 100);
    expectPoint(art[0].segments[1].p, 120, 110);
    expectPoint(art[1].segments[1].p, 190, 150);
    expectPoint(art[2].segments[3].p, 200, 150);
    art = measure(kUpper, kLower, {160, 100});
    expectPoint(art[0].segments[1].p, 120, 90);
    expectPoint(art[1].segments[1].p, 210, 150);
}

TEST_F(Curve, ClosedPathIsMeasuredOnThePlacementsSide) {
    table.drawLines({{100, 100}, {200, 100}, {200, 200}, {100, 200}}, true);
    const auto value = [&](RealPoint from, RealPoint to, RealPoint placement) {
        return measure(from, to, placement).back().text;
    };
    const RealPoint bottom{150, 100}, right{200, 150};
    EXPECT_EQ(value(bottom, right, {180, 110}), u"100");
    EXPECT_EQ(value(right, bottom, {220, 140}), u"100");
    EXPECT_EQ(value(bottom, right, {110, 190}), u"300");
    EXPECT_EQ(value(right, bottom, {90, 130}), u"300");
    // On one span: e before i, between, beyond j, and elsewhere.
    for (const auto& [from, to] :
         {std::pair{RealPoint{120, 100}, RealPoint{180, 100}}, std::pair{RealPoint{180, 100}, RealPoint{120, 100}}}) {
        EXPECT_EQ(value(from, to, {150, 90}), u"60");
        EXPECT_EQ(value(from, to, {110, 95}), u"340");
        EXPECT_EQ(value(from, to, {190, 95}), u"340");
        EXPECT_EQ(value(from, to, {150, 210}), u"340");
    }
    // The closing span has the index 0.
    EXPECT_EQ(value({100, 150}, bottom, {90, 110}), u"100");
}

TEST_F(Curve, ArcsStandTheTextOver) {
    table.drawCircle({200, 200}, 50);
    const RealPoint from{243.30127F, 225}, to{156.69873F, 225};
    std::vector<Piece> art = measure(from, to, {200, 270});
    // 120 degrees of 50; the path runs to the left at its top, the text to the right.
    expectText(art.back(), u"104.72", 200, 272, 0);
    expectPoint(art[2].segments.front().p, 200 + 70 * std::cos(kHalfTurn / 6), 235);
    EXPECT_EQ(measure(to, from, {200, 270}).back().text, u"104.72");
    EXPECT_EQ(measure(from, to, {200, 120}).back().text, u"209.44");
}

// Spaced from the path's nearest point, where an open path has none between its ends.
TEST_F(Curve, SpacingIsMeasuredFromThePathItself) {
    table.prefs().flUseFdis = 1;
    table.prefs().flGrDistance = 10;
    // 50.16 from the open path's end at (100, 300); 4 from the closing side of the other
    for (const auto& [left, closed, place] :
         {std::tuple{100.0F, false, "32000,0,149.841,303.987"}, {500.0F, true, "32000,0,550,300"}}) {
        table.drawLines({{left, 300}, {left, 100}, {left + 200, 100}, {left + 200, 300}}, closed);
        measure({left, 200}, {left + 100, 100}, {left + 50, 304});
        EXPECT_EQ(table.tag(table.dimension(), "QUORVEL_ENDPOS"), place);
    }
}

TEST_F(Curve, StopsOrTwoPathsMakeItOblique) {
    table.drawLines({{100, 100}, {200, 100}, {200, 200}}, false);
    table.drawLines({{100, 300}, {200, 300}}, false);
    std::vector<Piece> art = measure({120, 100}, {200, 160}, {160, 60}, {{180, 100}});
    ASSERT_EQ(art.size(), 10U);
    EXPECT_EQ(art.back().segments.size(), 2U);
    EXPECT_EQ(table.tag(table.dimension(), "QUORVEL_TOOLCNF").substr(0, 6), "14003,");
    art = measure({150, 100}, {150, 300}, {80, 200});
    ASSERT_EQ(art.size(), 6U);
    EXPECT_EQ(art[4].text, u"200");
    EXPECT_EQ(table.tag(table.dimension(), "QUORVEL_TOOLCNF").substr(0, 6), "14003,");
}

}  // namespace
}  // namespace quorvel::tests
