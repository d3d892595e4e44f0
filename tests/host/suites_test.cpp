// The suites as a plug-in sees them: every slot can be called with anything, handles are refused once they are stale,
// and each operation does what its comment says.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <set>

#include "fonts/fonts.h"
#include "tests/host/fake_plugin.h"

namespace quorvel::host {
namespace {

using AnySlot = std::int64_t (*)(std::int64_t, std::int64_t, std::int64_t, std::int64_t, std::int64_t, std::int64_t,
                                 std::int64_t, std::int64_t);

// Arguments of every type are zero in their registers: integers and pointers by the call, numbers by chance or not.
int callEverySlot() {
    int called = 0;
    for (const auto& [name, version] : offeredSuites()) {
        std::size_t size = 0;
        const void* record = findSuite(name, version, &size);
        EXPECT_NE(record, nullptr) << name;
        const auto* slots = static_cast<const AnySlot*>(record);
        for (std::size_t i = 0; i < size / sizeof(AnySlot); ++i, ++called) {
            EXPECT_NE(slots[i], nullptr) << name << " slot " << i;
            slots[i](0, 0, 0, 0, 0, 0, 0, 0);
        }
    }
    return called;
}

class Suites : public testing::Test {
  protected:
    Suites() {
        host.attachPlugin(FakePlugin::main, nullptr);
        host.newDocument(400, 300);
    }
    void within(const std::function<void()>& code) {
        FakePlugin::within(host, [&](SPMessageData*) { code(); });
    }

    Host host{HostOptions{.seed = 1}};
};

TEST(EverySlot, TakesNothingWithoutAHostOrADrawingOrAMessage) {
    EXPECT_GT(callEverySlot(), 150);
    Host host;
    callEverySlot();
    host.attachPlugin(FakePlugin::main, nullptr);
    host.newDocument(100, 100);
    callEverySlot();
    FakePlugin::within(host, [](SPMessageData*) { callEverySlot(); });
    EXPECT_EQ(host.document()->artCount(), 0u);
    EXPECT_EQ(host.suitesHeld(), 0);
    EXPECT_TRUE(host.tools().empty() && host.menuItems().empty() && host.panels().empty());
}

TEST(SuiteTable, OffersEachNameOnceAndByItsVersionAlone) {
    Host host;
    host.attachPlugin(FakePlugin::main, nullptr);
    std::set<std::string> names;
    for (const auto& [name, version] : offeredSuites()) names.insert(name);
    EXPECT_EQ(names.size(), 112u);
    EXPECT_EQ(offeredSuites().size(), 112u);
    EXPECT_EQ(offeredSuites().front().first, "SP Blocks Suite");
    EXPECT_EQ(offeredSuites()[109].first, "AI Unicode String Suite");
    FakePlugin::within(host, [&](SPMessageData* message) {
        const SPBasicSuite& basic = *message->basic;
        const void* suite = &suite;
        EXPECT_EQ(basic.AcquireSuite("AI Art Suite", 15, &suite), kSuiteNotFoundErr);
        EXPECT_EQ(suite, nullptr);
        EXPECT_EQ(basic.AcquireSuite("ai art suite", 16, &suite), kSuiteNotFoundErr);
        EXPECT_EQ(basic.AcquireSuite("AI Art Suite", 16, &suite), kNoErr);
        EXPECT_EQ(basic.AcquireSuite("AI Art Suite", 16, &suite), kNoErr);
        EXPECT_EQ(host.suitesHeld(), 2);
        EXPECT_EQ(basic.ReleaseSuite("AI Art Suite", 16), kNoErr);
        EXPECT_EQ(basic.ReleaseSuite("AI Tag Suite", 3), kNoErr);  // never acquired
        EXPECT_EQ(host.suitesHeld(), 1);
        EXPECT_EQ(basic.ReleaseSuite("AI Art Suite", 16), kNoErr);
        EXPECT_NE(basic.IsEqual("a", "a"), 0);
        EXPECT_EQ(basic.IsEqual("a", "A"), 0);
        EXPECT_EQ(basic.IsEqual(nullptr, "a"), 0);
    });
    EXPECT_EQ(host.suitesHeld(), 0);
}

TEST(SuiteTable, LeavesOutWhatTheOptionsSay) {
    Host host(HostOptions{.offerArtQuery = false, .failSuite = "AI Tag Suite", .failAdding = "block"});
    host.attachPlugin(FakePlugin::main, nullptr);
    EXPECT_EQ(findSuite(kSuiteKey<AIArtQuerySuite>.name, kSuiteKey<AIArtQuerySuite>.version), nullptr);
    FakePlugin::within(host, [&](SPMessageData* message) {
        const void* suite = nullptr;
        EXPECT_EQ(message->basic->AcquireSuite("AI Tag Suite", 3, &suite), kSuiteNotFoundErr);
        EXPECT_EQ(message->basic->ReleaseSuite("AI Tag Suite", 3), kNoErr);
        void* block = message;
        EXPECT_EQ(message->basic->AllocateBlock(10, &block), kOutOfMemoryErr);
        EXPECT_EQ(block, nullptr);
    });
}

TEST_F(Suites, RealMathCountsUpwardsAndTestsInclusively) {
    const auto& math = suiteOf<AIRealMathSuite>();
    const RealPoint a{1, 1}, b{4, 5};
    EXPECT_EQ(math.AIRealPointLength(&a, &b), 5.0f);
    EXPECT_EQ(math.AIRealPointAngle(&a, &b), static_cast<float>(std::atan2(4.0, 3.0)));
    RealRect rect{0, 10, 20, 5};  // left, top, right, bottom
    const RealPoint corner{20, 10}, outside{20.001f, 10};
    EXPECT_NE(math.AIRealPointInRect(&rect, &corner), 0);
    EXPECT_EQ(math.AIRealPointInRect(&rect, &outside), 0);
    math.AIRealRectInset(&rect, -2, -1);
    EXPECT_EQ(rect.left, -2);
    EXPECT_EQ(rect.top, 11);
    EXPECT_EQ(rect.right, 22);
    EXPECT_EQ(rect.bottom, 4);
    RealRect empty, common, touching{22, 20, 30, 11}, far{23, 20, 30, 11};
    math.AIRealRectEmptySet(&empty);
    EXPECT_NE(math.AIRealRectIsEmpty(&empty), 0);
    EXPECT_NE(math.AIRealRectIntersect(&rect, &touching, &common), 0);
    EXPECT_EQ(common.left, 22);
    EXPECT_EQ(common.bottom, 11);
    EXPECT_EQ(math.AIRealRectIntersect(&rect, &far, &common), 0);
    EXPECT_NE(math.AIRealRectIsEmpty(&common), 0);
    math.AIRealRectUnion(&empty, &rect, &empty);  // in place
    EXPECT_EQ(empty.right, 22);

    // A quarter turn, then a move, then a doubling: (1, 0) -> (0, 1) -> (3, 1) -> (6, 2).
    RealMatrix matrix;
    math.AIRealMatrixSetRotate(&matrix, std::numbers::pi_v<float> / 2);
    math.AIRealMatrixConcatTranslate(&matrix, 3, 0);
    math.AIRealMatrixConcatScale(&matrix, 2, 2);
    EXPECT_NEAR(matrix.a + matrix.tx, 6, 1e-6);
    EXPECT_NEAR(matrix.b + matrix.ty, 2, 1e-6);
}

TEST_F(Suites, HandlesAreRefusedWhenStaleOrOfAnotherKind) {
    AIArtHandle path = nullptr;
    std::int16_t kind = 0;
    within([&] { path = newPath({{0, 0}, {10, 0}}); });
    EXPECT_EQ(art().GetArtType(path, &kind), kNoErr);
    EXPECT_EQ(art().GetArtType(reinterpret_cast<AIArtHandle>(std::uintptr_t{1}), &kind), kBadParameterErr);
    AILayerHandle layer = nullptr;
    EXPECT_EQ(art().GetLayerOfArt(path, &layer), kNoErr);
    EXPECT_EQ(art().GetArtType(reinterpret_cast<AIArtHandle>(layer), &kind), kBadParameterErr);
    within([&] { EXPECT_EQ(art().DisposeArt(path), kNoErr); });
    EXPECT_EQ(art().GetArtType(path, &kind), kStaleHandleErr);
    EXPECT_TRUE(host.undo());
    EXPECT_EQ(art().GetArtType(path, &kind), kNoErr);
    EXPECT_NE(art().DisposeArt(rootOfCurrentLayer()), kNoErr);
    host.newDocument(10, 10);
    EXPECT_EQ(art().GetArtType(path, &kind), kStaleHandleErr);
    host.closeDocument();
    EXPECT_EQ(art().GetArtType(path, &kind), kNoDocumentErr);
}

TEST_F(Suites, NewArtNeedsAnOpenLayer) {
    doc::Document& document = *host.document();
    const doc::LayerId layer = document.currentLayer();
    for (const bool hide : {true, false}) {
        hide ? document.setLayerVisible(layer, false) : document.setLayerEditable(layer, false);
        within([&] {
            AIArtHandle made = nullptr;
            EXPECT_EQ(art().NewArt(kGroupArt, kPlaceInsideOnTop, rootOfCurrentLayer(), &made), kLockedErr);
            EXPECT_EQ(art().NewArt(kGroupArt, kPlaceAboveAll, nullptr, &made), kLockedErr);
            EXPECT_EQ(made, nullptr);
        });
        hide ? document.setLayerVisible(layer, true) : document.setLayerEditable(layer, true);
    }
    EXPECT_EQ(document.artCount(), 0u);
    within([&] {
        AIArtHandle made = nullptr;
        EXPECT_EQ(art().NewArt(kTextFrameArt, kPlaceInsideOnTop, rootOfCurrentLayer(), &made), kBadParameterErr);
        AIArtHandle path = newPath();
        EXPECT_NE(art().NewArt(kPathArt, kPlaceInsideOnTop, path, &made), kNoErr);
        EXPECT_EQ(art().NewArt(kPathArt, kPlaceAbove, path, &made), kNoErr);
        AIArtHandle first = nullptr, second = nullptr;
        art().GetArtFirstChild(rootOfCurrentLayer(), &first);
        art().GetArtSibling(first, &second);
        EXPECT_EQ(first, made);
        EXPECT_EQ(second, path);
        EXPECT_EQ(art().GetArtSibling(second, &second), kNoErr);
        EXPECT_EQ(second, nullptr);
    });
}

TEST_F(Suites, ANewLayerGoesOnTopAndIsNotCurrent) {
    within([&] {
        AILayerHandle before = nullptr, made = nullptr, current = nullptr, found = made;
        layers().GetCurrentLayer(&before);
        ASSERT_EQ(layers().InsertLayer(nullptr, kPlaceAboveAll, &made), kNoErr);
        EXPECT_EQ(layers().SetLayerTitle(made, hostText("寸法")), kNoErr);
        layers().GetCurrentLayer(&current);
        EXPECT_EQ(current, before);
        EXPECT_EQ(layers().GetNthLayer(0, &found), kNoErr);
        EXPECT_EQ(found, made);
        EXPECT_EQ(layers().GetLayerByTitle(hostText("寸法"), &found), kNoErr);
        EXPECT_EQ(found, made);
        EXPECT_EQ(layers().GetLayerByTitle(hostText("none"), &found), kNoErr);
        EXPECT_EQ(found, nullptr);
        EXPECT_NE(layers().GetNthLayer(2, &found), kNoErr);
    });
}

TEST_F(Suites, PathsGrowAtTheEndAndRefuseGapsAndNumbersThatAreNone) {
    within([&] {
        const AIArtHandle path = newPath({{0, 0}, {10, 0}, {10, 10}});
        std::int16_t count = 0;
        paths().GetPathSegmentCount(path, &count);
        EXPECT_EQ(count, 3);
        PathSegment segment;
        EXPECT_NE(paths().SetPathSegments(path, 4, 1, &segment), kNoErr);
        segment.out.v = std::numeric_limits<float>::quiet_NaN();
        EXPECT_NE(paths().SetPathSegments(path, 1, 1, &segment), kNoErr);
        EXPECT_NE(paths().GetPathSegments(path, 2, 2, &segment), kNoErr);
        EXPECT_NE(paths().GetPathSegments(path, -1, 1, &segment), kNoErr);
        EXPECT_EQ(paths().GetPathSegments(path, 2, 1, &segment), kNoErr);
        EXPECT_EQ(segment.p.v, 10);
        EXPECT_EQ(paths().SetPathSegmentCount(path, 1), kNoErr);
        paths().GetPathSegmentCount(path, &count);
        EXPECT_EQ(count, 1);
        EXPECT_NE(paths().GetPathSegmentCount(rootOfCurrentLayer(), &count), kNoErr);
    });
}

// 16 bits count no further, so that a change of all that is seen would leave the rest behind.
TEST_F(Suites, PathsWithMoreAnchorsThanCanBeCountedAreNotTorn) {
    const std::vector<PathSegment> many(INT16_MAX, PathSegment{{1, 2}, {1, 2}, {1, 2}, 1});
    AIArtHandle path = nullptr;
    within([&] {
        path = newPath({{0, 0}});
        EXPECT_EQ(paths().SetPathSegments(path, 0, INT16_MAX, many.data()), kNoErr);
        EXPECT_EQ(paths().SetPathSegments(path, 7, 1, many.data()), kNoErr);
        EXPECT_NE(paths().SetPathSegments(path, INT16_MAX, 1, many.data()), kNoErr);
    });
    doc::Document& document = *host.document();
    const doc::ArtId id = document.find(document.layer(document.layers()[0])->root)->firstChild;
    document.setSegments(id, INT16_MAX, std::span(many).first(1));
    within([&] {
        std::int16_t count = 0;
        EXPECT_EQ(paths().GetPathSegmentCount(path, &count), kNoErr);
        EXPECT_EQ(count, INT16_MAX);
        EXPECT_NE(paths().SetPathSegments(path, 7, 1, many.data()), kNoErr);
        EXPECT_NE(paths().SetPathSegmentCount(path, 5), kNoErr);
    });
}

TEST_F(Suites, SelectionOfAPathIsWholeUntilOneSegmentIsSet) {
    within([&] {
        const AIArtHandle path = newPath({{0, 0}, {10, 0}, {10, 10}});
        const auto states = [&] {
            std::string all;
            for (std::int16_t i = 0, state = 0; i < 3; ++i) {
                paths().GetPathSegmentSelected(path, i, &state);
                all += static_cast<char>('0' + state);
            }
            return all;
        };
        EXPECT_EQ(states(), "000");
        art().SetArtUserAttr(path, kArtSelected, kArtSelected);
        EXPECT_EQ(states(), "111");
        paths().SetPathSegmentSelected(path, 1, kSegmentOutSelected);
        EXPECT_EQ(states(), "131");
        EXPECT_NE(paths().SetPathSegmentSelected(path, 3, kSegmentPointSelected), kNoErr);
        EXPECT_NE(paths().SetPathSegmentSelected(path, 1, 5), kNoErr);
        std::int32_t attributes = 0;
        art().SetArtUserAttr(path, kArtHidden, kArtHidden);
        art().GetArtUserAttr(path, kArtSelected | kArtHidden | kArtLocked, &attributes);
        EXPECT_EQ(attributes, kArtSelected | kArtHidden);
        art().GetArtUserAttr(path, kArtHidden, &attributes);
        EXPECT_EQ(attributes, kArtHidden);
    });
}

TEST_F(Suites, TransformBoundsTurnControlPointsNotBoxes) {
    within([&] {
        const AIArtHandle path = newPath({{0, 0}, {10, 10}});
        PathSegment bent{{0, 0}, {0, 0}, {0, 20}, 0};
        paths().SetPathSegments(path, 0, 1, &bent);
        RealRect box;
        art().GetArtTransformBounds(path, nullptr, kTransformBoundsWithControls, &box);
        EXPECT_EQ(box.top, 20);
        art().GetArtBounds(path, &box);
        EXPECT_LT(box.top, 20);
        // Turned by -45 degrees (10, 10) lies on the h axis and (0, 20) at (14.1, 14.1).
        const float r = std::sqrt(0.5f);
        const RealMatrix turn{r, -r, r, r, 0, 0};
        for (const AIArtHandle one : {path, rootOfCurrentLayer()}) {
            art().GetArtTransformBounds(one, &turn, kTransformBoundsWithControls, &box);
            EXPECT_NEAR(box.left, 0, 1e-5);
            EXPECT_NEAR(box.right, 20 * r, 1e-5);
            EXPECT_NEAR(box.top, 20 * r, 1e-5);
            EXPECT_NEAR(box.bottom, 0, 1e-5);
        }
    });
}

TEST_F(Suites, TagsKeepBytesAndAnswerNullWhenAbsent) {
    within([&] {
        const AIArtHandle path = newPath();
        const char value[] = "\x83\x5C \xFF%";
        const void* read = value;
        EXPECT_EQ(tags().GetTag(path, "A", "string", &read), kNoErr);
        EXPECT_EQ(read, nullptr);
        EXPECT_EQ(tags().SetTag(path, "A", "string", value), kNoErr);
        EXPECT_EQ(tags().GetTag(path, "A", "string", &read), kNoErr);
        for (const char* other : {"B", "C", "D", "E"}) tags().SetTag(path, other, "string", other);
        EXPECT_STREQ(static_cast<const char*>(read), value);  // what was given stays where it is
        EXPECT_NE(tags().SetTag(path, "A", "integer", value), kNoErr);
        EXPECT_EQ(tags().RemoveTag(path, "A"), kNoErr);
        EXPECT_EQ(tags().GetTag(path, "A", "string", &read), kNoErr);
        EXPECT_EQ(read, nullptr);
        const AIArtHandle* found = nullptr;
        std::int32_t count = 0;
        suiteOf<AIArtQuerySuite>().FindArtByTag("D", nullptr, &found, &count);
        ASSERT_EQ(count, 1);
        EXPECT_EQ(*found, path);
    });
}

struct TextEngine {
    const AITextFrameSuite& frames = suiteOf<AITextFrameSuite>();
    const ATETextRangeSuite& ranges = suiteOf<ATETextRangeSuite>();
    const ATECharFeaturesSuite& chars = suiteOf<ATECharFeaturesSuite>();

    AIArtHandle frame = nullptr;
    ATETextRangeRef range = nullptr;
    ATECharFeaturesRef features = nullptr;

    TextEngine() {
        frames.NewPointText(kPlaceInsideOnTop, rootOfCurrentLayer(), kHorizontalText, {5, 7}, &frame);
        frames.GetATETextRange(frame, &range);
        ranges.GetLocalCharFeatures(range, &features);
    }
    AIErr insert(const std::u16string& text) {
        const std::vector<std::uint16_t> units(text.begin(), text.end());
        return ranges.InsertAfter(range, units.data(), static_cast<std::int32_t>(units.size()));
    }
};

TEST_F(Suites, FeaturesOfAnEmptyRangeAreThoseOfWhatIsInsertedNext) {
    within([&] {
        TextEngine text;
        text.ranges.Remove(text.range);
        text.chars.SetFontSize(text.features, 10);
        text.ranges.SetLocalCharFeatures(text.range, text.features);
        EXPECT_EQ(text.insert(u"cm"), kNoErr);
        EXPECT_EQ(text.insert(u"\x00B0"), kNoErr);
        std::int32_t start = -1, end = -1;
        text.ranges.GetStart(text.range, &start);
        text.ranges.GetEnd(text.range, &end);
        EXPECT_EQ(start, 0);
        EXPECT_EQ(end, 3);
        // A raised small figure behind it.
        text.ranges.SetRange(text.range, end, end);
        text.chars.SetFontSize(text.features, 5);
        text.chars.SetBaselineShift(text.features, 3);
        text.ranges.SetLocalCharFeatures(text.range, text.features);
        text.insert(u"2");
        EXPECT_EQ(text.ranges.SetRange(text.range, 0, 4), kNoErr);
        EXPECT_NE(text.ranges.SetRange(text.range, 0, 5), kNoErr);
        EXPECT_NE(text.ranges.SetRange(text.range, 3, 2), kNoErr);

        const doc::Document& document = *host.document();
        const doc::Art& root = *document.find(document.layer(document.currentLayer())->root);
        const doc::TextData& data = *document.find(root.firstChild)->text;
        EXPECT_EQ(data.text,
                  u"cm\x00B0"
                  u"2");
        ASSERT_EQ(data.runs.size(), 2u);
        EXPECT_EQ(data.runs[0].length, 3);
        EXPECT_EQ(data.runs[0].features.size, 10);
        EXPECT_EQ(data.runs[0].features.font, fonts::fonts().front().fullName);
        EXPECT_EQ(data.runs[1].length, 1);
        EXPECT_EQ(data.runs[1].features.size, 5);
        EXPECT_EQ(data.runs[1].features.baselineShift, 3);

        // Cut out of the middle; the runs around it stay.
        text.ranges.SetRange(text.range, 1, 3);
        text.ranges.Remove(text.range);
        EXPECT_EQ(data.text, u"c2");
        ASSERT_EQ(data.runs.size(), 2u);
        EXPECT_EQ(data.runs[0].length, 1);
        // Everything out: one run stays for what comes, and new text takes it.
        text.ranges.SetRange(text.range, 0, 2);
        text.ranges.Remove(text.range);
        ASSERT_EQ(data.runs.size(), 1u);
        EXPECT_EQ(data.runs[0].length, 0);
        text.insert(u"x");
        EXPECT_EQ(data.runs[0].features.size, 10);
    });
}

TEST_F(Suites, FeaturesOfARangeReplaceThoseOfItsCharactersAlone) {
    within([&] {
        TextEngine text;
        text.insert(u"abcdef");
        text.ranges.SetRange(text.range, 2, 4);
        text.chars.SetHorizontalScale(text.features, 0.5f);
        text.ranges.SetLocalCharFeatures(text.range, text.features);
        const doc::Document& document = *host.document();
        const doc::Art& root = *document.find(document.layer(document.currentLayer())->root);
        const std::vector<doc::TextRun>& runs = document.find(root.firstChild)->text->runs;
        ASSERT_EQ(runs.size(), 3u);
        EXPECT_EQ(runs[0].features.horizontalScale, 1);
        EXPECT_EQ(runs[1].length, 2);
        EXPECT_EQ(runs[1].features.horizontalScale, 0.5f);
        EXPECT_EQ(runs[2].length, 2);
        RealPoint anchor;
        EXPECT_EQ(text.frames.GetPointTextAnchor(text.frame, &anchor), kNoErr);
        EXPECT_EQ(anchor.h, 5);
        AIArtHandle path = nullptr;
        EXPECT_NE(text.frames.GetPathObject(text.frame, &path), kNoErr);
    });
}

TEST_F(Suites, RangesEndWithTheirMessage) {
    ATETextRangeRef range = nullptr;
    AIUnicodeStringRef string = nullptr;
    within([&] {
        range = TextEngine().range;
        string = hostText("x");
    });
    within([&] {
        TextEngine another;
        hostText("y");
        std::int32_t start = 0, count = 0;
        const std::uint16_t* units = nullptr;
        EXPECT_EQ(another.ranges.GetStart(range, &start), kStaleHandleErr);
        EXPECT_EQ(strings().GetUTF16(string, &units, &count), kStaleHandleErr);
    });
}

TEST_F(Suites, StringsComeFromTheCodePages) {
    const auto read = [](const std::string& bytes, int codePage) {
        AIUnicodeStringRef string = nullptr;
        EXPECT_EQ(strings().FromCodePage(bytes.data(), static_cast<std::int32_t>(bytes.size()), codePage, &string),
                  kNoErr);
        const std::uint16_t* units = nullptr;
        std::int32_t count = 0;
        EXPECT_EQ(strings().GetUTF16(string, &units, &count), kNoErr);
        return std::u16string(units, units + count);
    };
    within([&] {
        EXPECT_EQ(read("\x90\xA1\x96\x40~\\", 932), u"寸法~\\");
        EXPECT_EQ(read("\x87\x40", 932), u"①");  // the vendor's own row
        EXPECT_EQ(read("a\x81", 932), u"a\xFFFD");
        EXPECT_EQ(read("\xC7\xD1", 949), u"한");
        EXPECT_EQ(read("\xF0\x9F\x98\x80", 65001), u"\xD83D\xDE00");
        EXPECT_EQ(read("", 932), u"");
        AIUnicodeStringRef string = nullptr;
        EXPECT_NE(strings().FromCodePage("a", 1, 1252, &string), kNoErr);
        EXPECT_NE(strings().FromCodePage("a", -1, 932, &string), kNoErr);
    });
}

TEST_F(Suites, RulerTextsEndInTheUnit) {
    const auto& user = suiteOf<AIUserSuite>();
    const auto format = [&](const char* unit, float points, int precision) {
        host.setRulerUnit(unit);
        char text[32] = "";
        EXPECT_EQ(user.FormatWithRulerUnit(points, precision, text, sizeof(text)), kNoErr);
        return std::string(text);
    };
    const char* zeros[][2] = {{"mm", "0 mm"}, {"cm", "0 cm"}, {"in", "0 in"}, {"pt", "0 pt"},
                              {"pc", "0p0"},  {"px", "0 px"}, {"H", "0 H"}};
    for (const auto& [unit, text] : zeros) EXPECT_EQ(format(unit, 0, -1), text);
    EXPECT_EQ(format("mm", 72, -1), "25.4 mm");
    EXPECT_EQ(format("H", 72, -1), "101.6 H");
    EXPECT_EQ(format("mm", 72, 2), "25.40 mm");
    EXPECT_EQ(format("in", -0.000001f, -1), "0 in");
    EXPECT_EQ(format("pc", 30, -1), "2p6");
    EXPECT_EQ(format("pc", 11.99999f, -1), "1p0");
    EXPECT_EQ(format("pc", -18.5f, -1), "-1p6.5");
    EXPECT_EQ(format("furlong", 72, -1), "6p0");  // an unknown unit keeps the present one
    char small[4] = "";
    EXPECT_EQ(user.FormatWithRulerUnit(0, -1, small, sizeof(small)), kNoErr);
    EXPECT_STREQ(small, "0p0");
    EXPECT_NE(user.FormatWithRulerUnit(0, -1, small, 0), kNoErr);
}

TEST_F(Suites, ViewPointsRoundToPixelsDownwards) {
    const auto& views = suiteOf<AIDocumentViewSuite>();
    AIDocumentViewHandle view = nullptr;
    ASSERT_EQ(views.GetNthDocumentView(0, &view), kNoErr);
    host.setCentre({100, 50});
    host.setZoom(2);
    host.setZoom(0);                                        // no zoom at all: the present one stays
    host.setZoom(std::numeric_limits<float>::quiet_NaN());  // neither is this
    float zoom = 0;
    views.GetDocumentViewZoom(view, &zoom);
    EXPECT_EQ(zoom, 2);
    const RealPoint point{110.3f, 60};
    AIPoint pixel;
    views.ArtworkPointToViewPoint(view, &point, &pixel);  // 1000 by 800 pixels
    EXPECT_EQ(pixel.h, 521);
    EXPECT_EQ(pixel.v, 380);
    const RealPoint back = host.toArtwork(pixel);
    EXPECT_EQ(back.h, 110.5f);
    EXPECT_EQ(back.v, 60);
    host.closeDocument();
    EXPECT_EQ(views.GetNthDocumentView(0, &view), kNoErr);
    EXPECT_EQ(view, nullptr);
}

TEST_F(Suites, RandomNumbersFollowTheSeed) {
    const auto& random = suiteOf<AIRandomSuite>();
    std::mt19937_64 same(1);
    double sum = 0;
    for (int i = 0; i < 1000; ++i) {
        const float number = random.FloatRnd();
        EXPECT_GE(number, 0);
        EXPECT_LT(number, 1);
        EXPECT_EQ(std::floor(number * 0x1p24f), static_cast<double>(same() >> 40));
        sum += number;
    }
    EXPECT_NEAR(sum / 1000, 0.5, 0.05);
}

}  // namespace
}  // namespace quorvel::host
