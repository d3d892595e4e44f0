// What stands on the canvas is what a drawing from scratch shows, whatever has happened before.
#include <random>
#include <set>

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
            most = std::max(most, rig.session->user().screen().inverted().count());
        }
        if (held) QTest::mouseRelease(&rig.canvas(), Qt::LeftButton, {}, place());
        rig.window->tools()->choose("select");
        EXPECT_EQ(rig.session->user().screen().inverted().count(), 0U) << title;
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
    // A pixel of the screen is of that of the view which its middle lies in, whatever the ratio between them.
    const double ratio = rig.canvas().devicePixelRatioF();
    std::set<std::pair<std::int64_t, std::int64_t>> told, found;
    rig.session->user().screen().inverted().forEach([&](std::int64_t h, std::int64_t v) { told.insert({h, v}); });
    std::size_t inverted = 0, other = 0;
    for (int y = 0; y < shown.height(); ++y)
        for (int x = 0; x < shown.width(); ++x) {
            const QRgb a = shown.pixel(x, y), b = fresh.pixel(x, y);
            const bool changed = a == (b ^ 0x00FFFFFFU);
            if (changed) found.insert({std::int64_t((x + 0.5) / ratio), std::int64_t((y + 0.5) / ratio)});
            inverted += changed ? 1 : 0;
            other += !changed && a != b ? 1 : 0;
        }
    EXPECT_EQ(other, 0U);
    EXPECT_EQ(found, told);
    EXPECT_NEAR(double(inverted), double(told.size()) * ratio * ratio, double(told.size()) * (ratio - int(ratio)));
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

// So many circles on top of each other in a group, and a plate.
void writeCircles(const WindowRig& rig, int count, const QByteArray& look) {
    QFile file(rig.drawing());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    std::mt19937 random(3);
    QByteArray svg =
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"600pt\" height=\"400pt\" viewBox=\"0 0 600 400\">"
        "<defs><clipPath id=\"c\"><circle cx=\"300\" cy=\"200\" r=\"190\"/></clipPath></defs>"
        "<g id=\"all\" fill=\"none\" stroke=\"#246\" " +
        look + ">";
    for (int i = 0; i < count; ++i)
        svg += "<circle r=\"9\" cx=\"" + QByteArray::number(int(random() % 600)) + "\" cy=\"" +
               QByteArray::number(int(random() % 400)) + "\"/>";
    file.write(svg + "</g><path id=\"plate\" stroke=\"#000\" fill=\"none\" d=\"M100 300H300V200H100Z\"/></svg>");
}

// A drawing too large for one slice: what stands there meanwhile is never blank, and the end is exact whatever happens
// before it.
TEST(Canvas, LargePictureIsSharpInTheEnd) {
    WindowRig rig;
    writeCircles(rig, 30'000, "");
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

// Much is drawn in slices, be it one group or what an edit has touched; the end is the same as ever.
TEST(Canvas, MuchIsDrawnInSlices) {
    WindowRig rig;
    writeCircles(rig, 5'000, "clip-path=\"url(#c)\"");
    ASSERT_TRUE(rig.window->file().open(rig.drawing()));
    rig.canvas().shown();
    rig.canvas().zoomAt({300, 200}, 1.25);
    rig.canvas().repaint();
    EXPECT_FALSE(rig.canvas().isSharp()) << "the group that cuts";
    EXPECT_EQ(rig.canvas().shown(), rig.canvas().fresh()) << "zoomed";
    rig.window->editing().selectAll();
    rig.canvas().repaint();
    EXPECT_FALSE(rig.canvas().isSharp()) << "the marks";
    rig.canvas().repaint();
    EXPECT_EQ(rig.canvas().shown(), rig.canvas().fresh()) << "selected";
    rig.window->editing().move({37.3F, -11.7F});
    rig.canvas().repaint();
    EXPECT_FALSE(rig.canvas().isSharp()) << "the move";
    rig.dimensionEdge();
    rig.canvas().repaint();
    EXPECT_TRUE(QTest::qWaitFor([&] { return rig.canvas().isSharp(); }, 20'000));
    EXPECT_EQ(rig.canvas().shown(), rig.canvas().fresh()) << "moved, and dimensioned meanwhile";
    rig.document().markSaved();
}

// Whatever the zoom: what panning uncovers is the drawing and no bare page.
TEST(Canvas, PanningUncoversTheDrawing) {
    WindowRig rig;
    writeCircles(rig, 4'000, "");
    ASSERT_TRUE(rig.window->file().open(rig.drawing()));
    for (const double zoom : {1.93, 2.7, 3.33}) {
        // How much is painted at once is a matter of milliseconds: another program's turn may take them.
        int inked = 0, different = 1;
        for (int attempt = 0; attempt < 8 && different >= inked / 4; ++attempt) {
            rig.canvas().setZoom(zoom);
            rig.canvas().shown();
            rig.canvas().scrollBy({0, -17});
            const QImage now = rig.canvas().grab().toImage().convertToFormat(QImage::Format_RGB32);
            const QImage fresh = rig.canvas().fresh();
            ASSERT_EQ(now.size(), fresh.size());
            const int strip = static_cast<int>(17 * rig.canvas().devicePixelRatioF());
            inked = different = 0;
            for (int y = now.height() - strip; y < now.height(); ++y)
                for (int x = 0; x < now.width(); ++x) {
                    inked += fresh.pixel(x, y) != fresh.pixel(0, fresh.height() / 2) ? 1 : 0;
                    different += now.pixel(x, y) != fresh.pixel(x, y) ? 1 : 0;
                }
            EXPECT_GT(inked, now.width()) << zoom;
        }
        EXPECT_LT(different, inked / 4) << zoom;
        EXPECT_EQ(rig.canvas().shown(), rig.canvas().fresh());
    }
    rig.document().markSaved();
}

// What acts on a group as a whole must follow each of its members.
TEST(Canvas, EditsInGroupsRedrawTheGroups) {
    WindowRig rig;
    {
        QFile file(rig.drawing());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(
            "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"600pt\" height=\"400pt\" viewBox=\"0 0 600 400\"><defs>"
            "<clipPath id=\"c\" clipPathUnits=\"objectBoundingBox\"><circle cx=\".5\" cy=\".5\" r=\".4\"/></clipPath>"
            "<marker id=\"m\" markerWidth=\"9\" markerHeight=\"9\" refX=\"4\" refY=\"4\"><circle cx=\"4\" cy=\"4\" "
            "r=\"4\"/></marker><linearGradient id=\"g\"><stop stop-color=\"#f00\"/><stop offset=\"1\" "
            "stop-color=\"#00f\"/></linearGradient></defs><g clip-path=\"url(#c)\"><rect id=\"a\" x=\"20\" y=\"20\" "
            "width=\"80\" height=\"300\"/><rect id=\"b\" x=\"150\" y=\"90\" width=\"80\" height=\"80\"/></g>"
            "<g opacity=\".5\"><path id=\"d\" marker-end=\"url(#m)\" marker-start=\"url(#m)\" stroke-width=\"8\" "
            "stroke=\"#060\" d=\"M300 50H400\"/><path id=\"e\" fill=\"url(#g)\" d=\"M300 300h40v40h-40z m200 "
            "0h20v20h-20z"
            "\"/></g></svg>");
    }
    ASSERT_TRUE(rig.window->file().open(rig.drawing()));
    rig.canvas().shown();
    for (const char* id : {"b", "d", "e"}) {
        doc::ArtId art = rig.document().findByName(id);
        if (rig.document().find(art)->kind == kCompoundPathArt) art = rig.document().find(art)->firstChild;
        ASSERT_TRUE(rig.session->host().edit("Move", [&](doc::Document& document) {
            return document.transform(art, {1, 0, 0, 1, 71.3F, -33.9F}, 1);
        }));
        EXPECT_EQ(rig.canvas().shown(), rig.canvas().fresh()) << id;
        rig.window->undo();
        EXPECT_EQ(rig.canvas().shown(), rig.canvas().fresh()) << id << " undone";
    }
    rig.document().markSaved();
}

TEST(Canvas, LostReleasesAndKeysLeaveNothingHeld) {
    WindowRig rig;
    rig.window->tools()->choose("select");
    const QPoint start = rig.pixel(50, 50);
    QTest::mousePress(&rig.canvas(), Qt::LeftButton, {}, start);
    rig.moveTo(rig.pixel(350, 350), Qt::LeftButton);
    rig.moveTo(rig.pixel(350, 350));  // the button was let go over an alert
    EXPECT_TRUE(rig.document().find(rig.document().findByName("plate"))->selected) << "the band has ended";
    rig.click(rig.pixel(20, 20));
    EXPECT_FALSE(rig.document().find(rig.document().findByName("plate"))->selected) << "no press is swallowed";
    QTest::keyPress(&rig.canvas(), Qt::Key_Space);
    EXPECT_EQ(rig.canvas().cursor().shape(), Qt::OpenHandCursor);
    QFocusEvent away(QEvent::FocusOut);
    QApplication::sendEvent(&rig.canvas(), &away);
    EXPECT_NE(rig.canvas().cursor().shape(), Qt::OpenHandCursor);
}

}  // namespace
}  // namespace quorvel::tests
