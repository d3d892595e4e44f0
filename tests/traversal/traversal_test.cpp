// Selection, area and the small questions of a walk, on a drawing of two layers.
#include "plugin/traversal/traverse.h"

#include <gtest/gtest.h>

#include <vector>

#include "plugin/shell/suites.h"
#include "tests/support/drafting_table.h"

namespace quorvel::tests {
namespace {

using doc::ArtId;
using doc::Document;
using Ids = std::vector<ArtId>;
using States = std::vector<std::uint8_t>;

float shownZoom = 1;
int attributeWrites = 0;
AIArtHandle locked = nullptr;  // attributes of this one cannot be set
const AIArtSuite* hostArt = nullptr;

AIErr SetAttributes(AIArtHandle art, std::int32_t which, std::int32_t bits) {
    ++attributeWrites;
    return art == locked ? kLockedErr : hostArt->SetArtUserAttr(art, which, bits);
}

class Walking : public testing::Test {
  protected:
    Walking() {
        table.change([&](Document& document) {
            root = document.layer(document.currentLayer())->root;
            group = document.insertArt(kGroupArt, kPlaceInsideOnTop, root);
            compound = document.insertArt(kCompoundPathArt, kPlaceInsideOnBottom, root);
            text = document.insertArt(kTextFrameArt, kPlaceInsideOnBottom, root);
            upperRoot = document.layer(document.insertLayer("upper", 0))->root;
            const PathSegment anchors[] = {Corner({0, 0}), Corner({10, 0}), Corner({10, 4})};
            const std::pair<ArtId*, ArtId> paths[] = {
                {&first, group}, {&second, group}, {&member, compound}, {&upper, upperRoot}};
            for (const auto& [path, parent] : paths) {
                *path = document.insertArt(kPathArt, kPlaceInsideOnBottom, parent);
                document.setSegments(*path, 0, anchors);
            }
            return true;
        });
    }
    static AIArtHandle handle(ArtId art) { return DraftingTable::handle(art); }
    void select(const Ids& arts) {
        for (const ArtId art : arts) table.select(art, true);
    }
    Ids selected() {
        Ids found;
        for (const ArtId id : {group, first, second, compound, member, text, upper})
            if (const doc::Art* art = table.document().find(id); art != nullptr && art->selected) found.push_back(id);
        return found;
    }
    States states(ArtId path) {
        const doc::Art& art = *table.document().find(path);
        return art.path->segmentSelection.empty() ? States(3, art.selected ? 1 : 0) : art.path->segmentSelection;
    }

    DraftingTable table;
    ArtId root = 0, group = 0, first = 0, second = 0, compound = 0, member = 0, text = 0, upperRoot = 0, upper = 0;
};

TEST_F(Walking, ToleranceIsTwoPixels) {
    table.inside([] {
        AIDocumentViewSuite view = *sAIDocumentView;
        view.GetDocumentViewZoom = [](AIDocumentViewHandle, float* zoom) { return *zoom = shownZoom, kNoErr; };
        const AIDocumentViewSuite* own = sAIDocumentView;
        sAIDocumentView = &view;
        for (const auto& [zoom, tolerance] : {std::pair{4.0F, 0.5}, {0.5F, 4.0}, {0.0F, 0.0}, {-3.0F, 6.0}}) {
            shownZoom = zoom;
            EXPECT_EQ(PickTolerance(), tolerance) << zoom;
        }
        sAIDocumentView = own;
    });
}

TEST_F(Walking, SelectionComesBackDownToTheHandles) {
    select({text, compound, upper, member});  // inside a compound path: not looked at, neither way
    table.change([&](Document& document) {
        return document.setSegmentSelected(first, 1, kSegmentInAndOutSelected) &&
               document.setSegmentSelected(first, 2, kSegmentOutSelected);
    });
    table.inside([&] {
        SaveSelection();
        ClearArtSelected(handle(root));
        ClearArtSelected(handle(upperRoot));
        EXPECT_EQ(selected(), Ids{});
        SetArtSelected(handle(group));
        EXPECT_EQ(selected(), (Ids{group, first, second}));
        RestoreSelection();
    });
    EXPECT_EQ(selected(), (Ids{first, compound, text, upper}));
    EXPECT_EQ(states(first), (States{0, 4, 3}));
    EXPECT_EQ(states(upper), (States{1, 1, 1}));
    EXPECT_EQ(states(second), (States{0, 0, 0}));
}

TEST_F(Walking, RestoreAfterArtCameAndWent) {
    select({first, second});
    table.inside([&] {
        SaveSelection();
        sAIArt->DisposeArt(handle(first));
        sAIArt->SetArtUserAttr(handle(upper), kArtSelected, kArtSelected);  // made in between
        hostArt = sAIArt;
        AIArtSuite counting = *sAIArt;
        counting.SetArtUserAttr = SetAttributes;
        sAIArt = &counting;
        attributeWrites = 0;
        locked = handle(text);  // as it should be already, so it is no obstacle
        RestoreSelection();
        EXPECT_EQ(selected(), Ids{second});
        EXPECT_EQ(attributeWrites, 1);
        // The saved selection is gone after one use.
        RestoreSelection();
        EXPECT_EQ(selected(), Ids{});
        sAIArt = hostArt;
    });
}

TEST_F(Walking, AreaOfClosedPathsAlone) {
    const auto area = [&] {
        double found = -1;
        table.inside([&] { found = PathArea(handle(first)); });
        return found;
    };
    EXPECT_EQ(area(), 0);
    table.change([&](Document& document) { return document.setClosed(first, true); });
    EXPECT_EQ(area(), 20);
    table.change([&](Document& document) { return document.setSegmentCount(first, 0); });
    EXPECT_EQ(area(), 0);
}

TEST_F(Walking, PairsCloseThePath) {
    table.inside([&] {
        PathSegment previous, segment;
        ASSERT_TRUE(ReadSegmentPair(handle(first), 0, &previous, &segment));
        EXPECT_EQ(previous.p.v, 4);
        EXPECT_EQ(segment.p.h, 0);
        ASSERT_TRUE(ReadSegmentPair(handle(first), 2, &previous, &segment));
        EXPECT_EQ(previous.p.h, 10);
        EXPECT_FALSE(ReadSegmentPair(handle(first), 3, &previous, &segment));
        EXPECT_FALSE(IsToolGroup(handle(group)));
        sAITag->SetTag(handle(group), kToolConfigTag, "string", "");
        EXPECT_TRUE(IsToolGroup(handle(group)));
    });
}

}  // namespace
}  // namespace quorvel::tests
