#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <random>

#include "platform/headless/headless.h"
#include "tests/support/sanitized.h"

namespace quorvel::platform {
namespace {

class SurfaceTest : public testing::Test {
  protected:
    void SetUp() override {
        installBackend(&user_);
        user_.screen().openView("drawing.svg @ 100%", 800, 600);
        canvas_ = childNamed("Canvas");
    }
    void TearDown() override { installBackend(nullptr); }

    ViewWindowRef document() {
        for (ViewWindowRef w = GetTopWindow(nullptr); w != nullptr; w = GetNextWindow(w))
            if (w->title().find(" @ ") != std::string::npos) return w;
        return nullptr;
    }
    ViewWindowRef childNamed(const std::string& title) {
        for (ViewWindowRef w = GetTopWindow(document()); w != nullptr; w = GetNextWindow(w))
            if (w->title() == title) return w;
        return nullptr;
    }
    std::size_t afterDrawing(const std::function<void(SurfaceRef)>& shape) {
        const SurfaceRef surface = BeginSurface(canvas_);
        shape(surface);
        EndSurface(surface);
        return user_.visiblePixels();
    }
    std::size_t lineCount(Pixel a, Pixel b) {
        user_.screen().repainted();
        return afterDrawing([&](SurfaceRef s) {
            MoveTo(s, a);
            LineTo(s, b);
        });
    }
    // Is this very pixel inverted? A line to itself takes it off or puts it on.
    bool isInverted(Pixel p) {
        const auto dot = [&](SurfaceRef s) {
            MoveTo(s, p);
            LineTo(s, p);
        };
        const std::size_t before = user_.visiblePixels();
        const bool inverted = afterDrawing(dot) < before;
        afterDrawing(dot);
        return inverted;
    }

    HeadlessBackend user_;
    ViewWindowRef canvas_ = nullptr;
};

TEST_F(SurfaceTest, ALineLeavesItsEndOutAndAPointIsOnePixel) {
    EXPECT_EQ(lineCount({10, 10}, {20, 10}), 10u);
    EXPECT_TRUE(isInverted({10, 10}));
    EXPECT_TRUE(isInverted({19, 10}));
    EXPECT_FALSE(isInverted({20, 10}));
    EXPECT_EQ(lineCount({0, 0}, {-7, 30}), 30u) << "one pixel for each step of the longer axis";
    EXPECT_EQ(lineCount({5, 5}, {5, 5}), 1u);
    const auto polyline = [](SurfaceRef s) {
        MoveTo(s, {5, 5});
        LineTo(s, {5, 5});
        LineTo(s, {5, 5});
    };
    EXPECT_EQ(afterDrawing(polyline), 0u) << "a dot drawn over a dot, doubled lines counting once";
    EXPECT_EQ(afterDrawing(polyline), 1u);
}

TEST_F(SurfaceTest, LinesStayWithinHalfAPixelOfTheTrueLine) {
    user_.screen().repainted();
    ASSERT_EQ(lineCount({3, 4}, {40, 19}), 37u);
    for (int h = 3; h < 40; ++h) {
        const double v = 4.0 + (h - 3) * 15.0 / 37.0;
        EXPECT_TRUE(isInverted({h, static_cast<int>(std::lround(v))})) << h;
    }
}

TEST_F(SurfaceTest, WhateverIsDrawnTwiceIsGone) {
    std::mt19937 random(7);
    const std::int32_t reaches[] = {3, 500, 40000, 2000000000};
    for (int round = 0; round < tests::rounds(120); ++round) {
        std::uniform_int_distribution<std::int32_t> any(-reaches[round % 4], reaches[round % 4]);
        const auto point = [&] { return Pixel{any(random), any(random)}; };
        const Pixel p[] = {point(), point(), point(), point(), point()};
        const PixelRect box = {p[0].h, p[0].v, p[1].h, p[1].v};
        const auto shape = [&](SurfaceRef s) {
            MoveTo(s, p[0]);
            for (const Pixel& q : p) LineTo(s, q);
            DrawArc(s, box, p[2], p[3]);
            DrawArc(s, box, p[3], p[4]);
        };
        afterDrawing(shape);
        EXPECT_LT(user_.visiblePixels(), 1500000u);
        ASSERT_EQ(afterDrawing(shape), 0u);
    }
}

TEST_F(SurfaceTest, AnArcLiesOnItsCircleAndItsRestCompletesIt) {
    const PixelRect box = {100, 100, 300, 300};
    const std::size_t whole = afterDrawing([&](SurfaceRef s) { DrawArc(s, box, {300, 200}, {300, 200}); });
    int onCircle = 0;
    for (int h = 98; h <= 302; ++h)
        for (int v = 98; v <= 302; ++v) {
            const double off = std::abs(std::hypot(h - 200.0, v - 200.0) - 100.0);
            if (off > 0.75) continue;
            if (isInverted({h, v})) ++onCircle;
        }
    EXPECT_EQ(static_cast<std::size_t>(onCircle), whole);
    EXPECT_GE(whole, 540u) << "eight octants, one pixel for each of 70.7 columns or rows";
    EXPECT_LE(whole, 572u);

    // From right to top runs counter-clockwise: the upper right quarter, seen with v down.
    user_.screen().repainted();
    const std::size_t quarter = afterDrawing([&](SurfaceRef s) { DrawArc(s, box, {400, 200}, {200, 0}); });
    EXPECT_NEAR(static_cast<double>(quarter), static_cast<double>(whole) / 4.0, 2.0);
    EXPECT_TRUE(isInverted({300, 200}));
    EXPECT_TRUE(isInverted({270, 129})) << "column 70 right of the centre: the root of 10000 - 4900 is 71.4";
    EXPECT_FALSE(isInverted({129, 271}));
    EXPECT_FALSE(isInverted({200, 100})) << "the end is left out";

    std::mt19937 random(3);
    std::uniform_int_distribution<std::int32_t> any(-400, 400);
    for (int round = 0; round < 200; ++round) {
        const PixelRect other = {any(random), any(random), any(random), any(random)};
        const Pixel a{any(random), any(random)}, b{any(random), any(random)};
        user_.screen().repainted();
        afterDrawing([&](SurfaceRef s) { DrawArc(s, other, a, b); });
        afterDrawing([&](SurfaceRef s) { DrawArc(s, other, b, a); });
        EXPECT_EQ(afterDrawing([&](SurfaceRef s) { DrawArc(s, other, a, a); }), 0u)
            << "two arcs between the same directions make the whole ellipse";
    }
}

TEST_F(SurfaceTest, ARepaintedViewForgetsAndSaysSo) {
    const SurfaceRef surface = BeginSurface(canvas_);
    const std::uint32_t before = SurfaceGeneration(surface);
    MoveTo(surface, {0, 0});
    LineTo(surface, {9, 9});
    EXPECT_EQ(SurfaceGeneration(surface), before);
    EXPECT_EQ(user_.visiblePixels(), 9u);
    user_.screen().repainted();
    EXPECT_NE(SurfaceGeneration(surface), before);
    EXPECT_EQ(user_.visiblePixels(), 0u);
    EndSurface(surface);
    MoveTo(surface, {0, 0});  // a surface that has ended takes nothing any more
    LineTo(surface, {9, 9});
    EXPECT_EQ(user_.visiblePixels(), 0u);
}

TEST_F(SurfaceTest, ASurfaceOverTheScreenDrawsTheSamePixels) {
    const PixelRect rect = GetWindowRect(canvas_);
    afterDrawing([](SurfaceRef s) {
        MoveTo(s, {1, 2});
        LineTo(s, {30, 40});
    });
    const SurfaceRef screen = BeginSurface(nullptr);
    MoveTo(screen, {rect.left + 1, rect.top + 2});
    LineTo(screen, {rect.left + 30, rect.top + 40});
    EndSurface(screen);
    EXPECT_EQ(user_.visiblePixels(), 0u);
}

// The smallest visible window that holds the point a third into the document's window: the canvas, at every size of it.
TEST_F(SurfaceTest, ThePointAThirdIntoTheWindowMeetsTheCanvas) {
    const int sizes[][2] = {{1, 1}, {240, 240}, {800, 600}, {3000, 200}, {17, 5000}};
    for (const auto& [width, height] : sizes) {
        user_.screen().openView("x @ 50%", width, height);
        const PixelRect rect = GetWindowRect(document());
        const Pixel point = ClientToScreen(
            document(), {rect.left + (rect.right - rect.left) / 3, rect.top + (rect.bottom - rect.top) / 3});
        std::string smallest;
        int least = 1 << 30;
        for (ViewWindowRef w = GetTopWindow(document()); w != nullptr; w = GetNextWindow(w)) {
            const PixelRect r = GetWindowRect(w);
            const Pixel p = ScreenToClient(w, point);
            const bool holds = p.h > r.left && p.h < r.right && p.v > r.top && p.v < r.bottom;
            const int size = r.right - r.left + r.bottom - r.top;
            if (!holds || !IsWindowVisible(w) || size >= least) continue;
            least = size;
            smallest = w->title();
        }
        EXPECT_EQ(smallest, "Canvas") << width << " x " << height;
    }
    user_.screen().setTitle("表 @ 200%");
    char title[8];
    EXPECT_EQ(GetWindowTitle(document(), title, sizeof title), 7);
    EXPECT_STREQ(title, "\x95\x5C @ 20");
    const ViewWindowRef stale = document();
    user_.screen().closeView();
    EXPECT_EQ(document(), nullptr);
    EXPECT_EQ(GetNextWindow(stale), nullptr);
    EXPECT_FALSE(IsWindowVisible(stale));
}

}  // namespace
}  // namespace quorvel::platform
