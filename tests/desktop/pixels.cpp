// What stands on the canvas is what a drawing from scratch shows, whatever has happened before.
#include <random>

#include "tests/desktop/window_rig.h"

namespace quorvel::tests {
namespace {

TEST(Canvas, NoTraceOfThePreviewAfterAThousandMovesWithZoomsAndScrolls) {
    WindowRig rig;
    std::mt19937 random(7);
    const auto within = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
    const auto place = [&] {
        return QPoint(within(0, rig.canvas().width() - 1), within(0, rig.canvas().height() - 1));
    };
    std::size_t most = 0;
    for (const char* title :
         {"Straight Dimension Tool", "Curve Dimension Tool", "Radius Tool", "Arc Tool [Three Points]"}) {
        rig.window->tools()->choose(title);
        bool held = false;
        for (int i = 0; i < 250; ++i) {
            const QPoint at = i % 40 == 5 ? rig.pixel(100, 100) : i % 40 == 11 ? rig.pixel(300, 200) : place();
            rig.moveTo(at, held ? Qt::LeftButton : Qt::NoButton);
            if (i % 7 == 5) {
                if (held)
                    QTest::mouseRelease(&rig.canvas(), Qt::LeftButton, {}, at);
                else
                    QTest::mousePress(&rig.canvas(), Qt::LeftButton, {}, at);
                held = !held;
            }
            if (i % 13 == 0) rig.canvas().zoomAt(at, within(0, 1) ? 1.25 : 0.8);
            if (i % 17 == 0) rig.canvas().scrollBy(QPointF(within(-60, 60), within(-60, 60)));
            if (i % 29 == 0) rig.canvas().shown();  // as a painting in between does
            most = std::max(most, rig.desk->user().screen().visiblePixels());
        }
        if (held) QTest::mouseRelease(&rig.canvas(), Qt::LeftButton, {}, place());
        rig.window->tools()->choose("select");
        EXPECT_EQ(rig.desk->user().screen().visiblePixels(), 0U) << title;
        EXPECT_EQ(rig.canvas().shown(), rig.canvas().fresh()) << title;
    }
    EXPECT_GT(most, 100U);  // there was a preview at all
    rig.document().markSaved();
}

TEST(Canvas, PreviewIsTheDrawingInvertedAndNothingElse) {
    WindowRig rig;
    rig.window->tools()->choose("Straight Dimension Tool");
    rig.moveTo(rig.pixel(100, 100));
    QTest::mousePress(&rig.canvas(), Qt::LeftButton, {}, rig.pixel(100, 100));
    rig.moveTo(rig.pixel(300, 200), Qt::LeftButton);
    const QImage shown = rig.canvas().shown(), fresh = rig.canvas().fresh();
    std::size_t inverted = 0, other = 0;
    for (int y = 0; y < shown.height(); ++y)
        for (int x = 0; x < shown.width(); ++x) {
            const QRgb a = shown.pixel(x, y), b = fresh.pixel(x, y);
            if (a == (b ^ 0x00FFFFFFU))
                ++inverted;
            else if (a != b)
                ++other;
        }
    EXPECT_EQ(other, 0U);
    const double ratio = rig.canvas().devicePixelRatioF();  // of the screen's pixels to the view's, each way
    EXPECT_EQ(double(inverted), double(rig.desk->user().screen().visiblePixels()) * ratio * ratio);
    EXPECT_GT(inverted, 100U);
    rig.picture(rig.window.get(), "preview-en-light");
    QTest::mouseRelease(&rig.canvas(), Qt::LeftButton, {}, rig.pixel(300, 200));
}

// Editing draws only what has changed; the picture must be the same as one that is drawn whole.
TEST(Canvas, EditsRedrawAllTheyTouch) {
    WindowRig rig;
    rig.canvas().shown();
    rig.dimensionEdge();
    EXPECT_EQ(rig.canvas().shown(), rig.canvas().fresh()) << "dimension";
    rig.window->editing().selectAll();
    EXPECT_EQ(rig.canvas().shown(), rig.canvas().fresh()) << "selected";
    rig.window->editing().turn(30, {200, 150});
    EXPECT_EQ(rig.canvas().shown(), rig.canvas().fresh()) << "turned";
    rig.window->editing().move({37.3F, -11.7F});
    EXPECT_EQ(rig.canvas().shown(), rig.canvas().fresh()) << "moved";
    rig.window->undo();
    EXPECT_EQ(rig.canvas().shown(), rig.canvas().fresh()) << "undone";
    rig.window->editing().remove();
    EXPECT_EQ(rig.canvas().shown(), rig.canvas().fresh()) << "deleted";
    rig.document().markSaved();
}

// A drawing too large for one slice: what stands there meanwhile is never blank, and the end is exact whatever happens
// before it.
TEST(Canvas, LargePictureIsSharpInTheEnd) {
    WindowRig rig;
    {
        QFile file(rig.drawing());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        std::mt19937 random(3);
        QByteArray svg =
            "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"600pt\" height=\"400pt\" viewBox=\"0 0 600 400\">"
            "<g id=\"all\" fill=\"none\" stroke=\"#246\">";
        for (int i = 0; i < 30'000; ++i)
            svg += "<circle r=\"9\" cx=\"" + QByteArray::number(int(random() % 600)) + "\" cy=\"" +
                   QByteArray::number(int(random() % 400)) + "\"/>";
        file.write(svg + "</g><path id=\"plate\" stroke=\"#000\" fill=\"none\" d=\"M100 300H300V200H100Z\"/></svg>");
    }
    ASSERT_TRUE(rig.window->file().open(rig.drawing()));
    int steps = 0;
    QObject::connect(&rig.canvas(), &desktop::Canvas::pictureProgressed,
                     [&](int done, int total) { steps += done < total ? 1 : 0; });
    rig.canvas().shown();
    rig.canvas().zoomAt({300, 200}, 1.25);
    rig.canvas().repaint();
    EXPECT_FALSE(rig.canvas().isSharp());
    QApplication::processEvents();
    EXPECT_GT(steps, 0);
    rig.dimensionEdge();  // drawn over what stands there, and into what is in the making
    rig.canvas().repaint();
    EXPECT_EQ(rig.canvas().shown(), rig.canvas().fresh()) << "an edit meanwhile";
    rig.canvas().scrollBy({30, -20});
    rig.canvas().repaint();
    rig.canvas().scrollBy({-7.5, 12.25});
    rig.canvas().repaint();
    rig.document().setLayerVisible(rig.document().currentLayer(), false);
    rig.canvas().repaint();
    rig.window->undo();
    EXPECT_TRUE(QTest::qWaitFor([&] { return rig.canvas().isSharp(); }, 20'000)) << "the slices come to an end";
    EXPECT_EQ(rig.canvas().shown(), rig.canvas().fresh()) << "scrolled, hidden, undone";
    rig.document().markSaved();
}

}  // namespace
}  // namespace quorvel::tests
