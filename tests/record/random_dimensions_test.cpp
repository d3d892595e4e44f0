// Random dimensions of every kind: a rebuild changes nothing by itself, and moving all art moves them along.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "plugin/dimensioning/angle.h"
#include "plugin/dimensioning/diameter.h"
#include "plugin/dimensioning/linear.h"
#include "plugin/dimensioning/radius.h"
#include "tests/support/drafting_table.h"

namespace quorvel::tests {
namespace {

using doc::ArtId;
// A record keeps six digits of a coordinate, and all that are recorded here lie below 1,000: each is off by up to
// 0.0005. The placement is kept as a distance and a turn from the middle of the measured points, so it comes back with
// its own rounding, with the middle's, and with that of the direction between the points, several times over where it
// lies farther from the middle than they do: all in all ten roundings. What is drawn stands as far off as the
// placement; what is measured from anchors alone is right to the last digit of a float.
constexpr double kSixDigits = 0.005;
// Lines are measured between anchors, and so their texts turn with them; a label's turns with its placement, which is
// 30 or more from the centre.
constexpr double kTurnOfSixDigits = kSixDigits / 30;

void expectSameStyle(const AIPathStyle& was, const AIPathStyle& is) {
    const auto paint = [](const AIColor& c) { return std::tuple(c.kind, c.gray, c.rgb[0], c.rgb[1], c.rgb[2]); };
    const auto stroke = [](const AIPathStyle& s) {
        return std::tuple(s.fillPaint, s.strokePaint, s.strokeWidth, s.miterLimit, s.cap, s.join, s.dashCount);
    };
    EXPECT_EQ(stroke(was), stroke(is));
    EXPECT_EQ(paint(was.fill), paint(is.fill));
    EXPECT_EQ(paint(was.stroke), paint(is.stroke));
}

void expectSameText(const doc::TextData& was, const doc::TextData& is) {
    EXPECT_EQ(std::tie(was.text, was.type, was.orientation, was.justification),
              std::tie(is.text, is.type, is.orientation, is.justification));
    ASSERT_EQ(was.runs.size(), is.runs.size());
    for (std::size_t i = 0; i < was.runs.size(); ++i) {
        EXPECT_EQ(was.runs[i].length, is.runs[i].length);
        EXPECT_TRUE(was.runs[i].features == is.runs[i].features);
    }
    const RealMatrix &a = was.matrix, &b = is.matrix;
    for (const auto& [x, y] : {std::pair{a.a, b.a}, {a.b, b.b}, {a.c, b.c}, {a.d, b.d}})
        EXPECT_NEAR(x, y, kTurnOfSixDigits);
}

// The same pieces, all moved by (h, v).
void expectMoved(const std::vector<Piece>& before, const std::vector<Piece>& after, double h, double v) {
    ASSERT_EQ(before.size(), after.size());
    const auto near = [&](const RealPoint& was, const RealPoint& is) {
        EXPECT_NEAR(is.h - was.h, h, kSixDigits);
        EXPECT_NEAR(is.v - was.v, v, kSixDigits);
    };
    for (std::size_t i = 0; i < before.size(); ++i) {
        const Piece &was = before[i], &is = after[i];
        expectSameStyle(was.style, is.style);
        expectSameText(was.data, is.data);
        if (!was.text.empty()) near(was.place, is.place);
        EXPECT_EQ(was.closed, is.closed);
        ASSERT_EQ(was.segments.size(), is.segments.size());
        for (std::size_t k = 0; k < was.segments.size(); ++k) {
            near(was.segments[k].p, is.segments[k].p);
            near(was.segments[k].in, is.segments[k].in);
            near(was.segments[k].out, is.segments[k].out);
            EXPECT_EQ(was.segments[k].corner, is.segments[k].corner);
        }
    }
}

class RandomDimensions : public testing::Test {
  protected:
    void SetUp() override {
        PrefsRecord& prefs = table.prefs();
        prefs.flUseFcrs = prefs.flUseFops = prefs.flUseFrad = 0;
        prefs.flArUnit = 5;
        prefs.flArSpStr = 1;
    }
    double uniform(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); }
    int below(int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); }
    double eitherWay(double low, double high) {
        const double size = uniform(low, high);
        return below(2) == 0 ? size : -size;
    }
    RealPoint point() { return {float(uniform(350, 520)), float(uniform(350, 520))}; }

    // An open path of two lines and an arc between them. (The copy of a curve of another kind is fitted anew each time,
    // and the last digit of a coordinate may decide where it is cut.) It neither runs straight on nor folds back, and
    // the arc is no line: its anchors are 60 or more from each other, and no digit decides to which side it bulges.
    ArtId drawPath() {
        std::vector<PathSegment> segments{Corner(point())};
        const double half = eitherWay(0.2, 0.7);
        double direction = uniform(0, 6.28);
        for (int i = 1; i < 4; ++i) {
            const double length = uniform(60, 120);
            direction += eitherWay(0.4, 2);
            const DoublePoint last = ToDoublePoint(segments.back().p), next = PolarPoint(last, length, direction);
            const double reach = length / std::sin(half) * std::tan(half / 2) * 2 / 3;
            if (i == 2) segments.back().out = ToRealPoint(PolarPoint(last, reach, direction - half));
            segments.push_back(Corner(ToRealPoint(next)));
            if (i == 2) segments.back().in = ToRealPoint(PolarPoint(next, -reach, direction + half));
        }
        return table.draw(segments, false);
    }

    // Each dimension has a look of its own, which its record has to bring back.
    void chooseSettings(std::int16_t kind) {
        PrefsRecord& prefs = table.prefs();
        prefs.flDistanceMode = kind == kStraightTool ? kStraightMode : kind == kCurveTool ? kCurveMode : kObliqueMode;
        prefs.flRadiusMode = prefs.flDiameterMode = std::int16_t(below(2));
        prefs.flArType = std::int16_t(below(4));
        prefs.flRdSpos = std::int16_t(below(3));
        prefs.flArThick = 0.25F * float(1 + below(4));
        prefs.flArFSize = 6 + 1.5F * float(below(4));
    }

    // A label of a circle of 60 keeps away from its centre, where a digit would turn the leader, and from the circle,
    // where the leader has no length.
    RealPoint placementBeside(const RealPoint& anchor, const DoublePoint* centre) {
        for (;;) {
            const double way = uniform(0, 6.28), reach = uniform(30, 120);
            const DoublePoint placed = PolarPoint(ToDoublePoint(anchor), reach, way);
            const double away = centre == nullptr ? 0 : DistanceBetweenPoints(placed, *centre);
            if (centre == nullptr || (away > 30 && std::fabs(away - 60) > 5)) return ToRealPoint(placed);
        }
    }

    // A dimension by its builder; linear ones measure anchors of the path.
    bool build(std::int16_t kind) {
        const bool isRound = kind == kRadiusTool || kind == kDiameterTool;
        const RealPoint centre = point();
        const DoublePoint about = ToDoublePoint(centre);
        const ArtId path = isRound ? table.drawCircle(centre, 60) : drawPath();
        paths.push_back(path);
        chooseSettings(kind);
        ContextBracket(&table.globals());
        ToolState& live = table.globals().liveState;
        const std::vector<PathSegment>& anchors = table.document().find(path)->path->segments;
        const int from = kind == kAngleTool ? 1 : below(2), to = from + 1 + (kind == kAngleTool ? 0 : below(2));
        live.fromCells[0] = {table.handle(path), std::int16_t(from)};
        live.toCells[0] = {table.handle(path), std::int16_t(to)};
        live.fromPoint = anchors[from].p;
        live.toPoint = anchors[to].p;
        live.endPoint = placementBeside(live.toPoint, isRound ? &about : nullptr);
        live.tmpPos = ToDoublePoint(live.endPoint);
        if (kind == kAngleTool) {
            live.fromPoint = {(anchors[0].p.h + anchors[1].p.h) / 2, (anchors[0].p.v + anchors[1].p.v) / 2};
            live.toPoint = {(anchors[1].p.h + anchors[2].p.h) / 2, (anchors[1].p.v + anchors[2].p.v) / 2};
        }
        std::int32_t made = 0;
        table.inside([&] {
            made = kind == kAngleTool      ? BuildAngleDimension(nullptr)
                   : kind == kRadiusTool   ? BuildRadiusDimension(nullptr)
                   : kind == kDiameterTool ? BuildDiameterDimension(nullptr)
                                           : BuildLinearDimension(nullptr);
        });
        return made == 1;
    }
    // How many came about.
    int buildEach(const std::vector<std::int16_t>& kinds, int count) {
        int made = 0;
        for (const std::int16_t kind : kinds)
            for (int i = 0; i < count; ++i) made += build(kind) ? 1 : 0;
        return made;
    }

    std::vector<std::vector<Piece>> everything() {
        std::vector<std::vector<Piece>> all;
        for (const ArtId group : table.dimensions()) all.push_back(table.pieces(group));
        return all;
    }

    // Recalculates all after each path was moved by (h, v); what is drawn has to follow.
    void expectAllMoved(const std::vector<std::int16_t>& kinds, int count, float h, float v) {
        const std::size_t total = kinds.size() * static_cast<std::size_t>(count);
        EXPECT_EQ(buildEach(kinds, count), static_cast<int>(total));
        const auto before = everything();
        ASSERT_EQ(before.size(), total);
        if (h != 0 || v != 0)
            for (const ArtId path : paths) table.move(path, h, v);
        table.user().queueAnswer(true);
        EXPECT_EQ(table.host().playAction("Recalculate_Dimension_lines"), kNoErr);
        const auto after = everything();
        ASSERT_EQ(after.size(), total);
        for (std::size_t i = 0; i < total; ++i) {
            SCOPED_TRACE(i);
            expectMoved(before[i], after[i], h, v);
        }
    }

    DraftingTable table;
    // Under one seed in thirty a curve's copy or its distance from the curve comes out shorter than 0.1, and where that
    // points is the rounding's business.
    std::mt19937 random{5};
    std::vector<ArtId> paths;
};

TEST_F(RandomDimensions, ARebuildOfWhatHasNotMovedGivesTheSame) {
    expectAllMoved({kObliqueTool, kStraightTool, kCurveTool, kAngleTool, kRadiusTool, kDiameterTool}, 40, 0, 0);
}

TEST_F(RandomDimensions, MovingAllArtMovesObliqueAndCurveDimensionsWithIt) {
    expectAllMoved({kObliqueTool, kCurveTool}, 60, -37, 52.5F);
}

}  // namespace
}  // namespace quorvel::tests
