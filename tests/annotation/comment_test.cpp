// The annotation tools over real art: leader, arrowhead and shelf of a comment, balloons with running numbers, and the
// lengths and areas of what is pointed at or selected. Widths of texts are summed here from the fonts' own advances.
#include "plugin/annotation/comment.h"

#include <cmath>

#include "fonts/fonts.h"
#include "tests/support/drawing_hand.h"

namespace quorvel::tests {
namespace {

using doc::Art;
using doc::ArtId;
using doc::Document;

constexpr float kNear = 1e-3F;
constexpr char kComment[] = "Comment Tool", kNumber[] = "Object Number Tool", kLength[] = "Length Comment Tool";
constexpr char kArea[] = "Dimention Comment Tool";

template <std::size_t Size>
void Put(char (&field)[Size], const std::string& text) {
    std::snprintf(field, Size, "%s", text.c_str());
}

double WidthAt12(const std::u16string& text) {
    double sum = 0;
    for (const char16_t unit : text) sum += static_cast<double>(fonts::characterWidth(fonts::fonts().front(), unit));
    return sum * 12;
}

void expectAnchors(const Art* art, const std::vector<RealPoint>& anchors) {
    ASSERT_EQ(art->kind, kPathArt);
    ASSERT_EQ(art->path->segments.size(), anchors.size());
    for (std::size_t i = 0; i < anchors.size(); ++i) {
        EXPECT_NEAR(art->path->segments[i].p.h, anchors[i].h, kNear) << i;
        EXPECT_NEAR(art->path->segments[i].p.v, anchors[i].v, kNear) << i;
    }
}
void expectText(const Art* art, const char* text, float h, float v, float scale = 1) {
    ASSERT_EQ(art->kind, kTextFrameArt);
    EXPECT_EQ(TextOf(*art), text);
    EXPECT_NEAR(AnchorOf(*art).h, h, kNear) << text;
    EXPECT_NEAR(AnchorOf(*art).v, v, kNear) << text;
    EXPECT_NEAR(art->text->runs[0].features.horizontalScale, scale, 1e-5) << text;
}

struct Annotation : testing::Test {
    std::vector<const Art*> drag(const char* tool, RealPoint from, RealPoint to) {
        hand.take(tool);
        hand.drag(from, to);
        return hand.newestPieces();
    }
    std::vector<const Art*> click(const char* tool, RealPoint at) {
        hand.take(tool);
        hand.click(at);
        return hand.newestPieces();
    }
    ArtId path(const std::vector<RealPoint>& anchors, bool closed, bool selected = false) {
        return hand.plugin->addPath(anchors, closed, selected);
    }
    ArtId square(float left, float bottom, float side, bool selected = false) {
        return path({{left, bottom}, {left + side, bottom}, {left + side, bottom + side}, {left, bottom + side}}, true,
                    selected);
    }
    void change(const std::function<void(Document&)>& work) {
        hand.host().edit("Change", [&](Document& document) {
            work(document);
            return true;
        });
    }
    // What the tool writes when it is dragged from the point; the words alone. Its art, which would attract the next
    // cursor there, is taken away again.
    std::string words(const char* tool, RealPoint from) {
        const std::vector<const Art*> pieces = drag(tool, from, {from.h + 100, from.v + 100});
        const bool written = !pieces.empty() && pieces.back()->kind == kTextFrameArt;
        const std::string text = written ? TextOf(*pieces.back()) : "(none)";
        const ArtId made = hand.newest()->id;
        change([&](Document& document) { document.removeArt(made); });
        return text;
    }
    // What a tool has drawn attracts the cursor like any art.
    void clear() {
        change([&](Document& d) {
            while (const ArtId art = d.find(hand.root())->firstChild) d.removeArt(art);
        });
    }

    DrawingHand hand;
};

// --- comments -----------------------------------------------------------------------------------------------------

TEST_F(Annotation, AClickWritesWordsAlone) {
    const std::vector<const Art*> pieces = click(kComment, {200, 300});
    ASSERT_EQ(pieces.size(), 1U);
    expectText(pieces[0], "sample comment", 201, 302.4F);
    EXPECT_EQ(pieces[0]->text->justification, kJustifyLeft);
    EXPECT_TRUE(hand.newest()->tags.empty()) << "a comment has no record";
    EXPECT_EQ(hand.host().lastUndoName(), "Undo Comment Tool");
}

TEST_F(Annotation, TheShelfRunsOnAsTheLeaderDoes) {
    const float width = static_cast<float>(WidthAt12(u"sample comment")) + 2;
    const struct {
        RealPoint to;
        bool right;
    } rows[] = {{{300, 250}, true},  {{200, 400}, true},  {{200, 100}, true}, {{199.9F, 400}, false},
                {{100, 250}, false}, {{100, 200}, false}, {{300, 100}, true}, {{199.9F, 100}, false}};
    for (const auto& row : rows) {
        clear();
        const std::vector<const Art*> pieces = drag(kComment, {200, 200}, row.to);
        ASSERT_EQ(pieces.size(), 4U);
        expectAnchors(pieces[0], {{200, 200}, row.to});
        const double d = std::atan2(row.to.v - 200, row.to.h - 200), a = 15 * M_PI / 180;
        const auto wing = [](double angle) {
            return RealPoint{200 + 10 * static_cast<float>(std::cos(angle)),
                             200 + 10 * static_cast<float>(std::sin(angle))};
        };
        expectAnchors(pieces[1], {wing(d + a), {200, 200}, wing(d - a)});
        const float left = row.right ? row.to.h : row.to.h - width;
        expectAnchors(pieces[2], {{left, row.to.v}, {left + width, row.to.v}});
        expectText(pieces[3], "sample comment", left + 1, row.to.v + 2.4F);
        EXPECT_EQ(pieces[3]->text->justification, kJustifyLeft) << "also when it grows to the left";
    }
    clear();
    EXPECT_EQ(drag(kComment, {200, 200}, {201, 200}).size(), 1U) << "one point is no leader";
    clear();
    EXPECT_EQ(drag(kComment, {200, 200}, {201.25F, 200}).size(), 4U);
}

TEST_F(Annotation, AnEmptyCommentLeavesTheLeader) {
    Put(hand.prefs().flMrkComment, "");
    hand.prefs().flArType = 1;
    std::vector<const Art*> pieces = drag(kComment, {200, 200}, {300, 200});
    ASSERT_EQ(pieces.size(), 2U);
    EXPECT_EQ(pieces[1]->path->style->fillPaint, 1);
    hand.prefs().flArType = 3;
    pieces = drag(kComment, {200, 200}, {300, 200});
    ASSERT_EQ(pieces.size(), 2U);
    expectAnchors(pieces[1], {{201, 200}, {200, 201}, {199, 200}, {200, 199}});
    EXPECT_TRUE(pieces[1]->path->closed && pieces[1]->path->style->fillPaint == 1);
}

TEST_F(Annotation, ATwoBehindALetterIsRaised) {
    const struct {
        const char* comment;
        bool raised;
    } rows[] = {{"cm2", true},  {"Ab2", true},   {"m2", false}, {"122", false},
                {"a-2", false}, {"cm2 ", false}, {"cm3", false}};
    for (const auto& row : rows) {
        Put(hand.prefs().flMrkComment, row.comment);
        const Art* text = click(kComment, {200, 300}).at(0);
        EXPECT_EQ(TextOf(*text), row.comment);
        ASSERT_EQ(text->text->runs.size(), row.raised ? 2U : 1U) << row.comment;
        if (!row.raised) continue;
        const doc::TextRun& two = text->text->runs[1];
        EXPECT_TRUE(two.length == 1 && two.features.size == 6);
        EXPECT_NEAR(two.features.baselineShift, 3.6, 1e-6);
        EXPECT_TRUE(text->text->runs[0].features.size == 12 && text->text->runs[0].features.baselineShift == 0);
    }
    // The shelf has room for the whole text, so that what is left of it is not narrowed.
    Put(hand.prefs().flMrkComment, "area in m2");
    const std::vector<const Art*> pieces = drag(kComment, {200, 200}, {300, 200});
    expectAnchors(pieces.at(2), {{300, 200}, {302 + static_cast<float>(WidthAt12(u"area in m2")), 200}});
    expectText(pieces.at(3), "area in m2", 301, 202.4F);
}

TEST(JapaneseAnnotation, WordsAreMeasuredAndWritten) {
    DrawingHand japanese(DrawingHand::speaking("JAPANESE"));
    Put(japanese.prefs().flMrkComment, Sjis("表面ソ"));
    japanese.take("コメントツール");
    japanese.drag({200, 200}, {300, 200});
    const std::vector<const Art*> pieces = japanese.newestPieces();
    expectAnchors(pieces.at(2), {{300, 200}, {302 + static_cast<float>(WidthAt12(u"表面ソ")), 200}});
    expectText(pieces.at(3), "表面ソ", 301, 202.4F);
    japanese.prefs().flMrkItemNo = 5;
    japanese.take("部品番号ツール");
    japanese.options("部品番号ツール", {Look(5, "5"), Press(2)}, 16158);
}

TEST_F(Annotation, TheCursorSaysWhatWillBePointedAt) {
    path({{100, 100}, {300, 100}}, false);
    hand.take(kComment);
    hand.send(kSelectorTrackCursor, {101, 101});
    EXPECT_EQ(hand.spy->lastCursor(), 16105) << "an anchor";
    hand.send(kSelectorTrackCursor, {400, 400});
    EXPECT_EQ(hand.spy->lastCursor(), 16104) << "free paper";
    EXPECT_EQ(hand.plugin->panelText(2), "400 pt");
    EXPECT_EQ(hand.plugin->panelText(6), "");
    hand.send(kSelectorMouseDown, {400, 400});
    hand.send(kSelectorMouseDrag, {430, 360});
    EXPECT_EQ(hand.plugin->panelText(2), "400 pt");
    EXPECT_EQ(hand.plugin->panelText(6), "30 pt");
    EXPECT_EQ(hand.plugin->panelText(8), "-40 pt");
    EXPECT_GT(hand.spy->visiblePixels(), 30U);
    hand.send(kSelectorMouseUp, {430, 360});
    EXPECT_EQ(hand.spy->visiblePixels(), 0U);
    // Shift turns the leader to an eighth about the first point.
    hand.press({200, 200});
    hand.send(kSelectorMouseDrag, {300, 220}, kShiftModifier);
    hand.send(kSelectorMouseUp, {300, 220});
    expectAnchors(hand.newestPieces().at(0), {{200, 200}, {200 + std::hypot(100.0F, 20.0F), 200}});
}

TEST_F(Annotation, ABlockedLayerBeeps) {
    for (const bool hide : {true, false}) {
        change([&](Document& d) {
            d.setLayerVisible(d.currentLayer(), !hide);
            d.setLayerEditable(d.currentLayer(), hide);
        });
        const int beeps = hand.spy->beeps();
        for (const char* tool : {kComment, kNumber, kLength, kArea}) {
            hand.take(tool);
            hand.drag({200, 200}, {300, 200});
        }
        EXPECT_EQ(hand.spy->beeps(), beeps + 4);
    }
    EXPECT_EQ(hand.document().artCount(), 0U);
    EXPECT_EQ(hand.prefs().flMrkItemNo, 1);
}

TEST_F(Annotation, TheSelectionOutlivesTheTool) {
    const ArtId whole = path({{100, 100}, {200, 100}, {200, 200}}, false, true);
    const ArtId part = path({{400, 100}, {500, 100}, {500, 200}}, false);
    change([&](Document& document) { document.setSegmentSelected(part, 1, kSegmentPointSelected); });
    const ArtId other = path({{100, 500}, {200, 500}}, false);
    for (const char* tool : {kComment, kNumber, kLength}) {
        drag(tool, {600, 600}, {700, 650});
        EXPECT_FALSE(hand.newest()->selected);
        for (const Art* piece : hand.newestPieces()) EXPECT_FALSE(piece->selected);
        EXPECT_TRUE(hand.document().find(whole)->selected);
        EXPECT_TRUE(hand.document().find(part)->selected);
        EXPECT_EQ(hand.document().find(part)->path->segmentSelection,
                  (std::vector<std::uint8_t>{kSegmentNotSelected, kSegmentPointSelected, kSegmentNotSelected}));
        EXPECT_FALSE(hand.document().find(other)->selected);
    }
}

// --- balloons -----------------------------------------------------------------------------------------------------

TEST_F(Annotation, BalloonsCount) {
    hand.prefs().flMrkItemNo = 9;
    hand.prefs().flMrkINStep = 2;
    std::vector<const Art*> pieces = click(kNumber, {200, 300});
    ASSERT_EQ(pieces.size(), 2U);
    expectAnchors(pieces[0], {{208.4F, 300}, {200, 308.4F}, {191.6F, 300}, {200, 291.6F}});
    EXPECT_TRUE(pieces[0]->path->closed && pieces[0]->path->style->fillPaint == 0);
    expectText(pieces[1], "9", 200, 295.2F);
    EXPECT_EQ(pieces[1]->text->justification, kJustifyCenter);
    // The leader ends on the balloon's edge: 8.4 along (3, 4) / 5.
    pieces = drag(kNumber, {200, 300}, {230, 340});
    ASSERT_EQ(pieces.size(), 4U);
    expectText(pieces[3], "11", 235.04F, 341.92F, std::min(1.0F, static_cast<float>(12 / WidthAt12(u"11"))));
    expectAnchors(pieces[2], {{243.44F, 346.72F}, {235.04F, 355.12F}, {226.64F, 346.72F}, {235.04F, 338.32F}});
    hand.prefs().flMrkItemNo = -1234;
    pieces = click(kNumber, {200, 300});
    expectText(pieces[1], "-1234", 200, 295.2F, static_cast<float>(12 / WidthAt12(u"-1234")));
    EXPECT_EQ(hand.prefs().flMrkItemNo, -1232);
}

TEST_F(Annotation, NumberZeroStopsTheCount) {
    hand.prefs().flMrkItemNo = 1;
    hand.prefs().flMrkINStep = -1;
    EXPECT_EQ(click(kNumber, {200, 300}).size(), 2U);
    const int beeps = hand.spy->beeps();
    for (int i = 0; i < 2; ++i) EXPECT_EQ(click(kNumber, {200, 300}).size(), 0U);
    EXPECT_EQ(drag(kNumber, {200, 300}, {300, 300}).size(), 2U) << "leader and head alone";
    EXPECT_EQ(hand.prefs().flMrkItemNo, 0);
    EXPECT_EQ(hand.spy->beeps(), beeps);
    hand.prefs().flMrkItemNo = 32767;
    hand.prefs().flMrkINStep = 1;
    EXPECT_EQ(TextOf(*click(kNumber, {200, 300}).at(1)), "32767");
    EXPECT_EQ(TextOf(*click(kNumber, {200, 300}).at(1)), "-32768");
}

// --- lengths ------------------------------------------------------------------------------------------------------

TEST_F(Annotation, LengthOfWhatIsPointedAt) {
    hand.prefs().flArLenUnit = 5;
    hand.prefs().flScFix = 2;
    square(100, 100, 50);
    EXPECT_EQ(words(kLength, {100, 100}), "200") << "the closing side counts";
    const ArtId open = path({{300, 100}, {340, 130}, {340, 160}}, false);
    EXPECT_EQ(words(kLength, {340, 130}), "80");
    // On a stretch that is selected the selection is meant, on one that is not the whole path.
    change([&](Document& d) {
        d.setSegmentSelected(open, 1, kSegmentPointSelected);
        d.setSegmentSelected(open, 2, kSegmentPointSelected);
    });
    EXPECT_EQ(words(kLength, {340, 130}), "30");
    EXPECT_EQ(words(kLength, {300, 100}), "80");
    // A curve: a quarter of a circle of 100.
    change([&](Document& d) {
        const ArtId arc = d.insertArt(kPathArt, kPlaceAboveAll, 0);
        const float k = 55.2285F;
        d.setSegments(arc, 0,
                      std::vector<PathSegment>{{{600, 100}, {600, 100}, {600, 100 + k}, 1},
                                               {{500, 200}, {500 + k, 200}, {500, 200}, 1}});
    });
    EXPECT_NEAR(std::atof(words(kLength, {600, 100}).c_str()), 50 * M_PI, 0.1);
}

TEST_F(Annotation, LengthOfTheSelection) {
    hand.prefs().flArLenUnit = 0;
    hand.prefs().flScFix = 3;
    hand.prefs().flUseTani = 1;
    hand.prefs().flArLenScale = 0.5F;
    path({{100, 100}, {172, 100}}, false, true);
    path({{100, 200}, {100, 272}}, false, true);
    path({{300, 200}, {300, 272}}, false);
    const std::vector<const Art*> pieces = click(kLength, {500, 500});
    ASSERT_EQ(pieces.size(), 1U);
    expectText(pieces[0], "101.6 mm", 501, 502.4F);  // 144 points at half the size
    hand.prefs().flUseZero = 1;
    EXPECT_EQ(words(kLength, {500, 500}), "101.600 mm");
    hand.prefs().flUseTani = 0;
    hand.prefs().flArLenUnit = 4;
    EXPECT_EQ(words(kLength, {500, 500}), "0.333");
}

TEST_F(Annotation, NothingToMeasureLeavesTheLeaderAndBeeps) {
    const ArtId mark = square(100, 100, 50);
    for (const char* tool : {kLength, kArea}) {
        const int beeps = hand.spy->beeps();
        EXPECT_EQ(click(tool, {400, 400}).size(), 0U);
        EXPECT_EQ(hand.newest()->kind, kGroupArt) << "the group stays";
        EXPECT_EQ(drag(tool, {400, 400}, {500, 500}).size(), 2U) << "leader and head";
        change([&](Document& d) { d.removeArt(hand.newest()->id); });
        EXPECT_EQ(hand.spy->beeps(), beeps + 2);
        EXPECT_EQ(hand.host().editOptions(*hand.host().toolByTitle(tool)), kNoErr) << "without a dialog";
    }
    EXPECT_FALSE(hand.document().find(mark)->selected);
    // Art without a length under the leader is no failure: the leader stands alone, in silence.
    path({{600, 600}}, false);
    const int beeps = hand.spy->beeps();
    EXPECT_EQ(words(kLength, {600, 600}), "(none)");
    EXPECT_EQ(words(kArea, {600, 600}), "(none)");
    EXPECT_EQ(hand.spy->beeps(), beeps);
}

TEST_F(Annotation, DimensionsAreNoLengths) {
    const ArtId selected = square(100, 100, 50, true);
    change([&](Document& d) {
        const ArtId group = d.insertArt(kGroupArt, kPlaceAboveAll, 0);
        d.setTag(group, "QUORVEL_TOOLCNF", "0,0,0,0,0");
        d.duplicateArt(selected, "");
        d.moveArt(d.find(selected)->above, kPlaceInsideOnTop, group);
        d.setSelected(d.find(group)->firstChild, true);
        d.setSelected(group, true);
    });
    hand.prefs().flArLenUnit = hand.prefs().flArDim1ConvUnit = 5;
    EXPECT_EQ(words(kLength, {500, 500}), "200");
    EXPECT_EQ(words(kArea, {500, 500}), "2500");
}

// --- areas --------------------------------------------------------------------------------------------------------

TEST_F(Annotation, AreaOfWhatIsPointedAt) {
    hand.prefs().flArDim1ConvUnit = 0;
    hand.prefs().flScFix = 2;
    hand.prefs().flUseTani = 1;
    square(100, 100, 72);
    path({{300, 100}, {372, 100}, {300, 172}}, false);
    const std::vector<const Art*> pieces = drag(kArea, {100, 100}, {50, 50});
    expectText(pieces.at(3), "645.16 mm2", AnchorOf(*pieces.at(3)).h, 52.4F);
    ASSERT_EQ(pieces[3]->text->runs.size(), 2U) << "the 2 is raised";
    EXPECT_EQ(pieces[3]->text->runs[1].features.size, 6);
    change([&](Document& d) { d.removeArt(hand.newest()->id); });
    EXPECT_EQ(words(kArea, {300, 100}), "(none)") << "an open path";
    hand.prefs().flUseTani = 0;
    hand.prefs().flScFix = 0;
    hand.prefs().flArDim1ConvUnit = 5;
    hand.prefs().flArLenScale = 2;
    const std::vector<const Art*> bare = drag(kArea, {100, 100}, {50, 50});
    EXPECT_EQ(TextOf(*bare.at(3)), "1296");
    EXPECT_EQ(bare[3]->text->runs.size(), 1U);
}

TEST_F(Annotation, AreaOfTheSelection) {
    hand.prefs().flArDim1ConvUnit = 5;
    const auto compound = [&](std::initializer_list<ArtId> members) {
        change([&](Document& d) {
            const ArtId whole = d.insertArt(kCompoundPathArt, kPlaceAboveAll, 0);
            for (const ArtId member : members) d.moveArt(member, kPlaceInsideOnTop, whole);
            d.setSelected(whole, true);
        });
    };
    const auto area = [&] {
        const std::string text = words(kArea, {500, 500});
        clear();
        return text;
    };
    compound({square(100, 100, 100, true), square(120, 120, 20, true)});
    EXPECT_EQ(area(), "9600") << "less the hole";
    compound({square(100, 100, 100, true), square(100, 120, 20, true)});
    EXPECT_EQ(area(), "10400") << "a hole that touches the edge adds";
    compound({square(100, 100, 100, true), square(100.05F, 120, 20, true)});
    EXPECT_EQ(area(), "10400") << "or comes within a tenth of it";
    hand.prefs().flScFix = 2;
    compound({square(100, 100, 1, true), square(100.25F, 100.25F, 0.5F, true)});
    EXPECT_EQ(area(), "0.75") << "a compound of one point's side has holes too";
    hand.prefs().flScFix = 0;
    compound({square(100, 100, 50, true), square(160, 100, 50, true)});
    EXPECT_EQ(area(), "5000") << "side by side";
    square(100, 100, 100, true);
    square(120, 120, 20, true);
    EXPECT_EQ(area(), "10400") << "no compound path, no holes";
    const ArtId pointed = square(100, 100, 100, true);
    square(300, 300, 10, true);
    EXPECT_EQ(words(kArea, {100, 100}), "10100") << "selected art means the selection";
    change([&](Document& d) { d.setSelected(pointed, false); });
    EXPECT_EQ(words(kArea, {100, 100}), "10000");
}

}  // namespace
}  // namespace quorvel::tests
