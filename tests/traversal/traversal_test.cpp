// Selection, area and the small questions of a walk, over a host of a dozen functions whose whole document is a table.
#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "plugin/shell/suites.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {
namespace {

struct FakeArt {
    std::int16_t kind = kGroupArt;
    std::vector<int> children;
    bool selected = false, closed = false, locked = false;
    std::vector<RealPoint> anchors;
    std::vector<std::int16_t> states;
    const char* tag = nullptr;
};

// Art is named by its number from 1; layers are the roots listed in order.
struct FakeDocument {
    std::map<int, FakeArt> art;
    std::vector<int> layers;
    std::map<int, int> parents;
    float zoom = 1;
    int writes = 0;
};
FakeDocument document;

int Number(const void* handle) { return static_cast<int>(reinterpret_cast<std::intptr_t>(handle)); }
AIArtHandle Art(int number) { return reinterpret_cast<AIArtHandle>(static_cast<std::intptr_t>(number)); }
FakeArt* Find(AIArtHandle handle) {
    const auto found = document.art.find(Number(handle));
    return found == document.art.end() ? nullptr : &found->second;
}

int SiblingOf(int number) {
    const auto parent = document.parents.find(number);
    if (parent == document.parents.end()) return 0;
    const std::vector<int>& row = document.art[parent->second].children;
    for (std::size_t i = 0; i + 1 < row.size(); ++i)
        if (row[i] == number) return row[i + 1];
    return 0;
}

AIErr GetKind(AIArtHandle art, std::int16_t* kind) { return *kind = Find(art)->kind, kNoErr; }
AIErr GetChild(AIArtHandle art, AIArtHandle* child) {
    const std::vector<int>& children = Find(art)->children;
    return *child = children.empty() ? nullptr : Art(children[0]), kNoErr;
}
AIErr GetSibling(AIArtHandle art, AIArtHandle* sibling) { return *sibling = Art(SiblingOf(Number(art))), kNoErr; }
AIErr GetRoot(AILayerHandle layer, AIArtHandle* root) { return *root = Art(Number(layer)), kNoErr; }
AIErr GetAttributes(AIArtHandle art, std::int32_t, std::int32_t* bits) {
    return *bits = Find(art)->selected ? kArtSelected : 0, kNoErr;
}
AIErr SetAttributes(AIArtHandle art, std::int32_t, std::int32_t bits) {
    if (Find(art)->locked) return kLockedErr;
    ++document.writes;
    Find(art)->selected = bits != 0;
    if (bits == 0) std::fill(Find(art)->states.begin(), Find(art)->states.end(), 0);
    return kNoErr;
}
AIErr CountLayers(std::int32_t* count) { return *count = static_cast<std::int32_t>(document.layers.size()), kNoErr; }
AIErr GetLayer(std::int32_t index, AILayerHandle* layer) {
    *layer = reinterpret_cast<AILayerHandle>(static_cast<std::intptr_t>(document.layers[index]));
    return kNoErr;
}
AIErr GetCount(AIArtHandle path, std::int16_t* count) {
    return *count = static_cast<std::int16_t>(Find(path)->anchors.size()), kNoErr;
}
AIErr GetSegments(AIArtHandle path, std::int16_t first, std::int16_t count, PathSegment* segments) {
    if (first < 0 || first + count > static_cast<int>(Find(path)->anchors.size())) return kBadParameterErr;
    for (int i = 0; i < count; ++i) segments[i].p = segments[i].in = segments[i].out = Find(path)->anchors[first + i];
    return kNoErr;
}
AIErr GetClosed(AIArtHandle path, AIBoolean* closed) { return *closed = Find(path)->closed, kNoErr; }
AIErr GetState(AIArtHandle path, std::int16_t i, std::int16_t* state) { return *state = Find(path)->states[i], kNoErr; }
AIErr SetState(AIArtHandle path, std::int16_t i, std::int16_t state) {
    ++document.writes;
    return Find(path)->states[i] = state, kNoErr;
}
AIErr GetTag(AIArtHandle art, const char*, const char*, const void** value) { return *value = Find(art)->tag, kNoErr; }
AIErr GetView(std::int32_t, AIDocumentViewHandle* view) {
    return *view = reinterpret_cast<AIDocumentViewHandle>(&document), kNoErr;
}
AIErr GetZoom(AIDocumentViewHandle, float* zoom) { return *zoom = document.zoom, kNoErr; }

// 1 is the root with the group 2 (paths 3 and 4), the compound 5 (path 6) and the text 7; 8 is the root of a second
// layer with the path 9.
class Walking : public testing::Test {
  protected:
    void SetUp() override {
        document = {};
        document.layers = {1, 8};
        const std::map<int, std::vector<int>> tree = {{1, {2, 5, 7}}, {2, {3, 4}}, {5, {6}}, {8, {9}}};
        for (int i = 1; i <= 9; ++i) document.art[i] = {};
        for (const auto& [parent, children] : tree) {
            document.art[parent].children = children;
            for (const int child : children) document.parents[child] = parent;
        }
        document.art[5].kind = kCompoundPathArt;
        document.art[7].kind = kTextFrameArt;
        for (const int path : {3, 4, 6, 9}) {
            FakeArt& art = document.art[path];
            art.kind = kPathArt;
            art.anchors = {{0, 0}, {10, 0}, {10, 4}};
            art.states = {0, 0, 0};
        }
        art_.GetArtType = GetKind;
        art_.GetArtFirstChild = GetChild;
        art_.GetArtSibling = GetSibling;
        art_.GetFirstArtOfLayer = GetRoot;
        art_.GetArtUserAttr = GetAttributes;
        art_.SetArtUserAttr = SetAttributes;
        layer_.CountLayers = CountLayers;
        layer_.GetNthLayer = GetLayer;
        path_.GetPathSegmentCount = GetCount;
        path_.GetPathSegments = GetSegments;
        path_.GetPathClosed = GetClosed;
        path_.GetPathSegmentSelected = GetState;
        path_.SetPathSegmentSelected = SetState;
        tag_.GetTag = GetTag;
        view_.GetNthDocumentView = GetView;
        view_.GetDocumentViewZoom = GetZoom;
        sAIArt = &art_;
        sAILayer = &layer_;
        sAIPath = &path_;
        sAITag = &tag_;
        sAIDocumentView = &view_;
    }
    void TearDown() override {
        sAIArt = nullptr;
        sAILayer = nullptr;
        sAIPath = nullptr;
        sAITag = nullptr;
        sAIDocumentView = nullptr;
    }

  private:
    AIArtSuite art_{};
    AILayerSuite layer_{};
    AIPathSuite path_{};
    AITagSuite tag_{};
    AIDocumentViewSuite view_{};
};

std::vector<int> Selected() {
    std::vector<int> numbers;
    for (const auto& [number, art] : document.art)
        if (art.selected) numbers.push_back(number);
    return numbers;
}

TEST_F(Walking, ToleranceIsTwoPixels) {
    document.zoom = 4;
    EXPECT_EQ(PickTolerance(), 0.5);
    document.zoom = 0.5F;
    EXPECT_EQ(PickTolerance(), 4);
    document.zoom = 0;
    EXPECT_EQ(PickTolerance(), 0);
    document.zoom = -3;
    EXPECT_EQ(PickTolerance(), 6);
}

TEST_F(Walking, SelectionComesBackDownToTheHandles) {
    document.art[3].selected = document.art[7].selected = document.art[5].selected = document.art[9].selected = true;
    document.art[3].states = {0, kSegmentInAndOutSelected, kSegmentOutSelected};
    document.art[9].states = {1, 1, 1};
    document.art[6].selected = true;  // inside a compound path: not looked at, neither way
    SaveSelection();
    ClearArtSelected(Art(1));
    ClearArtSelected(Art(8));
    EXPECT_TRUE(Selected().empty());
    SetArtSelected(Art(2));
    EXPECT_EQ(Selected(), (std::vector<int>{2, 3, 4}));
    RestoreSelection();
    EXPECT_EQ(Selected(), (std::vector<int>{3, 5, 7, 9}));
    EXPECT_EQ(document.art[3].states, (std::vector<std::int16_t>{0, 4, 3}));
    EXPECT_EQ(document.art[9].states, (std::vector<std::int16_t>{1, 1, 1}));
    EXPECT_EQ(document.art[4].states, (std::vector<std::int16_t>{0, 0, 0}));
}

TEST_F(Walking, RestoreAfterArtCameAndWent) {
    document.art[3].selected = document.art[4].selected = true;
    document.art[3].states = document.art[4].states = {1, 1, 1};
    SaveSelection();
    document.art.erase(3);
    document.art[2].children = {4};
    document.art[9].selected = true;  // what was made in between
    document.art[9].states = {1, 1, 1};
    document.art[6].locked = document.art[7].locked = true;  // stands right already, so it is no obstacle
    RestoreSelection();
    EXPECT_EQ(Selected(), (std::vector<int>{4}));
    EXPECT_EQ(document.art[9].states, (std::vector<std::int16_t>{0, 0, 0}));
    EXPECT_EQ(document.writes, 1);
    // The saved selection is gone after one use.
    RestoreSelection();
    EXPECT_TRUE(Selected().empty());
}

TEST_F(Walking, AreaOfClosedPathsAlone) {
    EXPECT_EQ(PathArea(Art(3)), 0);
    document.art[3].closed = true;
    EXPECT_EQ(PathArea(Art(3)), 20);
    std::swap(document.art[3].anchors[0], document.art[3].anchors[2]);
    EXPECT_EQ(PathArea(Art(3)), 20);
    document.art[3].anchors.clear();
    EXPECT_EQ(PathArea(Art(3)), 0);
}

TEST_F(Walking, PairsCloseThePath) {
    PathSegment previous, segment;
    ASSERT_TRUE(ReadSegmentPair(Art(3), 0, &previous, &segment));
    EXPECT_EQ(previous.p.v, 4);
    EXPECT_EQ(segment.p.h, 0);
    ASSERT_TRUE(ReadSegmentPair(Art(3), 2, &previous, &segment));
    EXPECT_EQ(previous.p.h, 10);
    EXPECT_FALSE(ReadSegmentPair(Art(3), 3, &previous, &segment));
    EXPECT_FALSE(IsToolGroup(Art(2)));
    document.art[2].tag = "";
    EXPECT_TRUE(IsToolGroup(Art(2)));
}

}  // namespace
}  // namespace quorvel
