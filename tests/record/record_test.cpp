// Links of a dimension that survive copying, and the search for the art behind an id, with the host's index and
// without.
#include <cmath>
#include <random>
#include <set>
#include <utility>

#include "tests/record/record_rig.h"
#include "tests/support/random_drawing.h"

namespace quorvel::tests {
namespace {

// With true the host's index is asked, with false the layers are walked.
class Record : public RecordRig, public testing::WithParamInterface<bool> {
  protected:
    Record() : RecordRig(GetParam()) {}
};
INSTANTIATE_TEST_SUITE_P(Roads, Record, testing::Bool());

// --- links ----------------------------------------------------------------------------------------------------------

TEST_P(Record, CellsAndStopsAreLinkedByIds) {
    std::vector<ArtId> paths;
    for (int i = 0; i < 6; ++i) paths.push_back(table.drawLines({{0, 10.0F * i}, {50.5F, 10.0F * i}}, false));
    for (int i = 0; i < 5; ++i) live.fromCells[i] = cell(paths[i], i % 2);
    live.toCells[0] = cell(paths[5], 1);
    live.toCells[2] = cell(paths[0], 1);  // behind an empty one: not reached
    live.stopCount = 2;
    live.stops[0].point = {7, 8.5F};
    live.stops[1].point = {-1, 0};
    live.stops[1].cells[0] = cell(paths[1], 0);
    const ArtId group = write(0, 0);
    std::set<std::string> ids;
    for (ArtId path : paths) {
        EXPECT_TRUE(ids.insert(id(path)).second);
        EXPECT_LT(std::stod(id(path)), 1e8);
    }
    EXPECT_EQ(table.tag(group, "QUORVEL_FROMCELL"), id(paths[0]) + ",0," + id(paths[1]) + ",1," + id(paths[2]) + ",0," +
                                                        id(paths[3]) + ",1," + id(paths[4]) + ",0,0,0,0");
    EXPECT_EQ(table.tag(group, "QUORVEL_TOCELL"), id(paths[5]) + ",1,0,50.5,50");
    EXPECT_EQ(table.tag(group, "QUORVEL_STOPCELL01"), "0,7,8.5");
    EXPECT_EQ(table.tag(group, "QUORVEL_STOPCELL02"), id(paths[1]) + ",0,0,-1,0");

    // Lost art leaves no gap, a lost stop closes ranks, an index beyond the path is a lost link.
    table.change([&](Document& document) {
        return document.removeArt(paths[1]) && document.removeTag(group, "QUORVEL_STOPCELL01") &&
               document.setSegmentCount(paths[3], 1);
    });
    const Read found = read(group);
    EXPECT_EQ(table.artOf(live.fromCells[0].art), paths[0]);
    EXPECT_EQ(table.artOf(live.fromCells[1].art), paths[2]);
    EXPECT_EQ(table.artOf(live.fromCells[2].art), paths[4]);
    EXPECT_EQ(live.fromCells[3].art, nullptr);
    EXPECT_EQ(live.fromCells[3].index, -1);
    EXPECT_EQ(live.toCells[0].index, 1);
    EXPECT_EQ(found.to.h, 50.5);
    EXPECT_EQ(found.to.v, 50);
    EXPECT_EQ(live.stopCount, 1);
    EXPECT_EQ(live.stops[0].point.h, -1);
    EXPECT_EQ(live.stops[0].cells[0].art, nullptr);
    // Anchors are read in full, stops as the floats that they are.
    table.change([&](Document& document) {
        return document.setTag(group, "QUORVEL_TOCELL", "0,1234.57,-0.1") &&
               document.setTag(group, "QUORVEL_STOPCELL02", "0,1234.57,-0.1");
    });
    const Read fine = read(group);
    EXPECT_EQ(fine.to.h, 1234.57);
    EXPECT_EQ(fine.to.v, -0.1);
    EXPECT_EQ(live.stops[0].point.h, 1234.57F);
    table.change([&](Document& document) { return document.setTag(group, "QUORVEL_STOPCELL02", "0,-1,0"); });
    read(group);
    // Written again, only what was found is linked.
    const ArtId again = write(0, 0);
    EXPECT_EQ(table.tag(again, "QUORVEL_STOPCELL01"), "0,-1,0");
    EXPECT_EQ(table.tag(again, "QUORVEL_STOPCELL02"), "(none)");
}

// Ids have 24 random bits: a drawing of a thousand holds two of the same in 3 cases of 100.
TEST_P(Record, NoTwoArtsGetOneId) {
    static int calls = 0;
    calls = 0;
    for (int i = 0; i < 2; ++i) live.fromCells[i] = cell(table.drawLines({{0, 10.0F * i}, {50, 10.0F * i}}, false), 0);
    const ArtId group = table.newGroup([&](AIArtHandle made) {
        const AIRandomSuite repeating{[] { return calls++ < 3 ? 0.25F : 0.75F; }};
        const AIRandomSuite* const kept = std::exchange(sAIRandom, &repeating);
        WriteDimensionRecord(made, 0, 0);
        sAIRandom = kept;
    });
    EXPECT_EQ(table.tag(group, "QUORVEL_FROMCELL"), "25000000,0,75000000,0,0,0,0");
}

TEST_P(Record, TextsAreLinkedByTheirAnchors) {
    ArtId text = 0;
    table.change([&](Document& document) {
        doc::TextData data;
        data.matrix = {1, 0, 0, 1, 300.5F, 40};
        data.text = u"Bolt";
        data.runs = {{4, {}}};
        text = document.insertArt(kTextFrameArt, kPlaceAboveAll, 0);
        return document.setText(text, data);
    });
    live.fromCells[0] = cell(text, 0);
    const ArtId group = write(0, 0);
    EXPECT_EQ(table.tag(group, "QUORVEL_FROMCELL"), id(text) + ",0,0,300.5,40");
    EXPECT_EQ(find(std::stoi(id(text)), 0, {0, 0}), text);
    EXPECT_EQ(find(std::stoi(id(text)), 1, {0, 0}), 0U);
}

TEST_P(Record, ACopyIsToldApartAndOlderDimensionsFollowTheirOwnArt) {
    const ArtId original = table.drawLines({{100, 100}, {200, 100}}, false);
    const ArtId other = table.drawLines({{100, 300}, {200, 300}}, false);
    const ArtId onCopy = dimensionAt({150, 120}, cell(original, 1), cell(original, 0));
    const std::string oldId = id(original);
    ArtId copy = 0;
    table.change([&](Document& document) { return (copy = document.duplicateArt(original, "copy")) != 0; });
    // The original moves away: the copy lies where the older dimension is.
    table.move(original, 500, 500);
    const ArtId onOriginal = dimensionAt({650, 620}, cell(other, 1));
    const std::string otherList = oldId + ",1," + id(other) + ",0,0,3,4";
    setTag(onOriginal, "QUORVEL_FROMCELL", otherList);
    const std::string toList = table.tag(onCopy, "QUORVEL_TOCELL");

    const ArtId made = dimensionAt({150, 90}, cell(copy, 1));
    EXPECT_EQ(id(original), oldId);
    EXPECT_NE(id(copy), oldId);
    EXPECT_EQ(table.tag(made, "QUORVEL_FROMCELL"), id(copy) + ",1,0,200,100");
    // Re-pointed, and the coordinates behind the id 0 are gone; only the list of this name.
    EXPECT_EQ(table.tag(onCopy, "QUORVEL_FROMCELL"), id(copy) + ",1");
    EXPECT_EQ(table.tag(onCopy, "QUORVEL_TOCELL"), toList);
    EXPECT_EQ(table.tag(onOriginal, "QUORVEL_FROMCELL"), otherList);
    const Read found = read(onCopy);
    EXPECT_EQ(table.artOf(live.fromCells[0].art), copy);
    EXPECT_EQ(found.from.h, 0);
    EXPECT_EQ(found.from.v, 0);

    // Told apart now, both keep their ids.
    const std::string kept = id(copy);
    dimensionAt({150, 80}, cell(copy, 0), cell(original, 0));
    EXPECT_EQ(id(copy), kept);
    EXPECT_EQ(id(original), oldId);
    // Both ends on one copy get one new id.
    ArtId second = 0;
    table.change([&](Document& document) { return (second = document.duplicateArt(other, "second")) != 0; });
    const ArtId both = dimensionAt({150, 290}, cell(second, 0), cell(second, 1));
    EXPECT_EQ(table.tag(both, "QUORVEL_FROMCELL"), id(second) + ",0,0,100,300");
    EXPECT_EQ(table.tag(both, "QUORVEL_TOCELL"), id(second) + ",1,0,200,300");
}

TEST_P(Record, TheHundredAndFirstCopyInOneWriteIsGivenUp) {
    const ArtId original = table.drawLines({{0, 0}, {9, 9}}, false);
    setTag(original, kObjectIdTag, "77");
    std::vector<ArtId> copies;
    table.change([&](Document& document) {
        for (int i = 0; i < 105; ++i) copies.push_back(document.duplicateArt(original, ""));
        return true;
    });
    live.stopCount = 21;
    for (int i = 0; i < 105; ++i) live.stops[i / 5].cells[i % 5] = cell(copies[i], 0);
    const ArtId group = write(0, 0);
    EXPECT_EQ(table.tag(group, "QUORVEL_STOPCELL21"), "0,0,0,0,0,0,0,0,0,0,0,0,0");
    EXPECT_EQ(id(copies[100]), "77");
    EXPECT_NE(id(copies[99]), "77");
    read(group);
    EXPECT_EQ(live.stopCount, 21);
    EXPECT_NE(live.stops[19].cells[4].art, nullptr);
    EXPECT_EQ(live.stops[20].cells[0].art, nullptr);
}

// --- finding
// ----------------------------------------------------------------------------------------------------------

TEST_P(Record, FindsTheNearestOfWhatCanBeMeasured) {
    ArtId compound = 0, member = 0;
    const ArtId near = table.drawLines({{100, 100}, {120, 100}}, false);
    const ArtId far = table.drawLines({{300, 100}, {320, 100}, {310, 120}}, false);
    table.change([&](Document& document) {
        compound = document.insertArt(kCompoundPathArt, kPlaceAboveAll, 0);
        member = document.insertArt(kPathArt, kPlaceInsideOnTop, compound);
        const PathSegment anchors[] = {Corner({0, 0}), Corner({1, 1})};
        return document.setSegments(member, 0, anchors) && document.setStyle(member, *document.find(near)->path->style);
    });
    for (ArtId art : {far, compound, member}) setTag(art, kObjectIdTag, "5");
    setTag(near, kObjectIdTag, "005");
    EXPECT_EQ(count(5), 3) << "members of a compound path count, the compound path itself does not";
    EXPECT_EQ(find(5, 1, {0, 0}), member);
    table.change([&](Document& document) { return document.setHidden(compound, true); });
    EXPECT_EQ(count(5), 2) << "hidden with all its members";
    EXPECT_EQ(find(5, 0, {0, 0}), near);
    EXPECT_EQ(find(5, 1, {320, 100}), far);
    // The nearest decides, then its anchors do.
    EXPECT_EQ(find(5, 2, {320, 100}), far);
    EXPECT_EQ(find(5, 2, {0, 0}), 0U);
    EXPECT_EQ(find(5, -1, {0, 0}), 0U);
    EXPECT_EQ(find(6, 0, {0, 0}), 0U);
    EXPECT_EQ(find(5, 0, {2e6F, 0}), 0U);

    table.change([&](Document& document) { return document.setHidden(near, true); });
    EXPECT_EQ(find(5, 0, {0, 0}), far);
    table.change([&](Document& document) { return document.setStyle(far, AIPathStyle{}); });
    EXPECT_EQ(count(5), 0);
    table.change([&](Document& document) { return document.setHidden(near, false) && document.setLocked(near, true); });
    EXPECT_EQ(count(5), 1);
    const doc::LayerId layer = table.document().currentLayer();
    for (const bool lock : {true, false}) {
        const auto use = [&](bool usable) {
            table.change([&](Document& document) {
                return lock ? document.setLayerEditable(layer, usable) : document.setLayerVisible(layer, usable);
            });
        };
        use(false);
        EXPECT_EQ(count(5), 0);
        EXPECT_EQ(find(5, 0, {0, 0}), 0U);
        use(true);
        EXPECT_EQ(count(5), 1);
    }
}

// Both roads against a plain walk over the document, on drawings whose ids are scattered over art of every kind.
class PlainWalk {
  public:
    explicit PlainWalk(const Document& document) : document_(document) {
        for (doc::LayerId id : document.layers()) {
            const doc::Layer& layer = *document.layer(id);
            if (layer.visible && layer.editable) walk(layer.root, false);
        }
    }
    std::vector<ArtId> measurable, dimensions;

    ArtId find(const std::string& id, int index, RealPoint near, int* count) const {
        float best = 999999;
        const Art* winner = nullptr;
        *count = 0;
        for (ArtId candidate : measurable) {
            const std::string* found = document_.tag(candidate, kObjectIdTag);
            if (found == nullptr || *found != id) continue;
            ++*count;
            const RealRect box = document_.bounds(candidate);
            const float distance = std::hypot((box.left + box.right) / 2 - near.h, (box.top + box.bottom) / 2 - near.v);
            if (!(distance < best)) continue;
            best = distance;
            winner = document_.find(candidate);
        }
        if (winner == nullptr) return 0;
        const int anchors = winner->path                           ? static_cast<int>(winner->path->segments.size())
                            : winner->text->type == kPointTextType ? 1
                                                                   : 0;
        return index >= 0 && index < anchors ? winner->id : 0;
    }

  private:
    void walk(ArtId id, bool inDimension) {
        const Art& art = *document_.find(id);
        if (art.kind == kGroupArt || art.kind == kCompoundPathArt) {
            const bool dimension = art.kind == kGroupArt && document_.tag(id, "QUORVEL_TOOLCNF") != nullptr;
            if (dimension && !inDimension) dimensions.push_back(id);
            for (ArtId child = art.firstChild; child != 0; child = document_.find(child)->below)
                walk(child, inDimension || dimension || art.kind == kCompoundPathArt);
        } else if (art.kind == kTextFrameArt) {
            measurable.push_back(id);
        } else if (art.path && !art.hidden && !isInHiddenCompound(art) && !art.path->guide &&
                   art.path->style != nullptr && (art.path->style->fillPaint || art.path->style->strokePaint)) {
            measurable.push_back(id);
        }
    }
    bool isInHiddenCompound(const Art& art) const {
        const Art& parent = *document_.find(art.parent);
        return parent.kind == kCompoundPathArt && parent.hidden;
    }
    const Document& document_;
};

TEST_P(Record, FindsOnRandomDrawingsWhatAPlainWalkFinds) {
    doc::RandomDrawing random(GetParam() ? 11 : 12);
    int found = 0, dimensions = 0;
    for (int round = 0; round < 12; ++round) {
        auto fresh = std::make_unique<Document>(400.0F, 400.0F);
        random.load(*fresh, 3, 60);
        table.host().setDocument(std::move(fresh), "pt");
        Document& document = table.document();
        for (ArtId art : doc::RandomDrawing::arts(document)) {
            Art& loaded = document.loading(art);
            AIPathStyle style;
            style.strokePaint = random.below(5) != 0;
            if (loaded.path) loaded.path->style = std::make_shared<const AIPathStyle>(style);
            if (loaded.path) loaded.path->guide = random.below(10) == 0;
            loaded.hidden = random.below(8) == 0;
        }
        for (int edits = 0; edits < 4; ++edits) {
            const std::vector<ArtId> all = doc::RandomDrawing::arts(document);
            table.change([&](Document& drawing) {
                for (ArtId art : all) {
                    if (random.below(3) == 0) drawing.setTag(art, kObjectIdTag, std::to_string(random.below(5)));
                    if (random.below(12) == 0) drawing.setTag(art, "QUORVEL_TOOLCNF", random.below(2) == 0 ? "" : "0");
                }
                for (int i = 0; i < 10; ++i) random.edit(drawing);
                return true;
            });
            const PlainWalk walk(document);
            table.inside([&] {
                std::vector<ArtId> groups;
                for (AIArtHandle group : CollectDimensionGroups()) groups.push_back(table.artOf(group));
                EXPECT_EQ(groups, walk.dimensions);
                dimensions += static_cast<int>(groups.size());
                for (int i = 0; i < 40; ++i) {
                    const int id = random.below(6), index = random.below(4) - 1;
                    const RealPoint near = random.point();
                    int expected = 0;
                    const ArtId art = walk.find(std::to_string(id), index, near, &expected);
                    EXPECT_EQ(table.artOf(FindArtById(id, index, near)), art) << round << " " << id << " " << index;
                    EXPECT_EQ(CountArtWithId(id), expected) << round << " " << id;
                    found += art != 0 ? 1 : 0;
                }
            });
        }
    }
    EXPECT_GT(found, 200);
    EXPECT_GT(dimensions, 40);
}

}  // namespace
}  // namespace quorvel::tests
