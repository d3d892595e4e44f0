// The suites as a plug-in sees them: every slot can be called with anything, handles are refused once they are stale,
// and each operation does what its comment says.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <set>

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

}  // namespace
}  // namespace quorvel::host
