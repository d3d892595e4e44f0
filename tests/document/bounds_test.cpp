// Bounds of curves and texts, by hand and by sampling.
#include "document/bounds.h"

#include <gtest/gtest.h>

#include "tests/support/random_drawing.h"

namespace quorvel::doc {
namespace {

TEST(Bounds, ByHand) {
    // The top of the arch is at t = 1/2: 3/4 of the handles' height.
    const std::vector<PathSegment> arch{{{0, 0}, {0, 0}, {0, 4}, 0}, {{10, 0}, {10, 4}, {20, -9}, 0}};
    expectRect(pathBounds(arch, false), {0, 3, 10, 0}, "open");
    expectRect(pathControlBounds(arch), {0, 4, 20, -9}, "controls");
    // Closed by the curve (10,0) (20,-9) (0,0) (0,0), which swings out below: v = -27 t (1 - t)^2, least at 1/3.
    EXPECT_FLOAT_EQ(pathBounds(arch, true).bottom, -4);
    // A lone anchor whose handles make a loop.
    const std::vector<PathSegment> loop{{{0, 0}, {-4, 4}, {4, 4}, 0}};
    expectRect(pathBounds(loop, false), {0, 0, 0, 0}, "point");
    EXPECT_EQ(pathBounds(loop, true).top, 3);
    EXPECT_TRUE(isEmpty(pathBounds({}, true)));
    EXPECT_TRUE(isEmpty(uniteRects(emptyRect(), emptyRect())));
}

TEST(Bounds, HoldEveryPointOfACurveAndTouchIt) {
    RandomDrawing random(3);
    for (int trial = 0; trial < 300; ++trial) {
        std::vector<PathSegment> path{{random.point(), random.point(), random.point(), 0},
                                      {random.point(), random.point(), random.point(), 0}};
        if (trial % 3 == 0) path[1].in.h = path[0].out.h = path[0].p.h;
        const RealRect box = pathBounds(path, false);
        double low = 1e9, high = -1e9;
        for (int i = 0; i <= 4096; ++i) {
            const double t = i / 4096.0, s = 1 - t;
            const double v = s * s * s * path[0].p.v + 3 * s * s * t * path[0].out.v + 3 * s * t * t * path[1].in.v +
                             t * t * t * path[1].p.v;
            low = std::min(low, v);
            high = std::max(high, v);
        }
        // The samples miss an extremum by at most an eighth of the second derivative times the step squared.
        EXPECT_NEAR(box.bottom, low, 1e-4);
        EXPECT_NEAR(box.top, high, 1e-4);
    }
}

TEST(Bounds, OfText) {
    const TextMeasure before = setTextMeasure([](const std::string&, char32_t c) { return c == U'W' ? 1.0f : 0.5f; });
    TextData text;
    text.text = u"Wi\U0001F600";
    text.runs = {{1, {}}, {3, {}}};
    text.runs[0].features.size = 10;
    text.runs[1].features.size = 20;
    text.runs[1].features.horizontalScale = 0.5f;
    // 10 + 5 + 5 wide, the taller run counts.
    expectRect(textBounds(text), {0, 16, 20, -4}, "left");
    text.justification = kJustifyCenter;
    expectRect(textBounds(text), {-10, 16, 10, -4}, "centre");
    // A quarter turn to the left, then 100 to the right: (h, v) -> (100 - v, h).
    text.matrix = {0, 1, -1, 0, 100, 0};
    expectRect(textBounds(text), {84, 10, 104, -10}, "turned");
    text.text.clear();
    text.runs = {{0, {}}};
    EXPECT_TRUE(isEmpty(textBounds(text)));
    setTextMeasure(before);
}

}  // namespace
}  // namespace quorvel::doc
