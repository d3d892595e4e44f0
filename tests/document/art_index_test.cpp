// The index gives what a walk over the whole drawing gives, whatever has been done to the drawing in between.
#include "document/art_index.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "document/bounds.h"
#include "tests/support/random_drawing.h"
#include "tests/support/sanitized.h"

namespace quorvel::doc {
namespace {

bool holds(const Document& document, const Art& art, RealPoint p, float tolerance) {
    if (art.text && art.text->type == kPointTextType) {
        return std::fabs(art.text->matrix.tx - p.h) <= tolerance && std::fabs(art.text->matrix.ty - p.v) <= tolerance;
    }
    const RealRect box = art.path ? pathControlBounds(art.path->segments) : document.controlBounds(art.id);
    return p.h >= box.left - tolerance && p.h <= box.right + tolerance && p.v >= box.bottom - tolerance &&
           p.v <= box.top + tolerance;
}

void walkToPoint(const Document& document, ArtId id, RealPoint point, float tolerance, const std::string& exclude,
                 std::vector<ArtId>* out) {
    const Art& art = *document.find(id);
    if ((art.kind == kPathArt || art.kind == kTextFrameArt) && holds(document, art, point, tolerance)) {
        out->push_back(id);
    }
    if (art.kind != kGroupArt && art.kind != kCompoundPathArt) return;
    if (!exclude.empty() && document.tag(id, exclude) != nullptr) return;
    for (ArtId child = art.firstChild; child != 0; child = document.find(child)->below) {
        walkToPoint(document, child, point, tolerance, exclude, out);
    }
}

std::vector<ArtId> walkToTag(const Document& document, const std::string& name, const std::string* value) {
    std::vector<ArtId> found;
    std::function<void(ArtId)> visit = [&](ArtId id) {
        const std::string* has = document.tag(id, name);
        if (has != nullptr && (value == nullptr || *has == *value)) found.push_back(id);
        for (ArtId child = document.find(id)->firstChild; child != 0; child = document.find(child)->below) visit(child);
    };
    for (LayerId layer : document.layers()) visit(document.layer(layer)->root);
    return found;
}

void expectSame(const Document& document, ArtIndex& index, RandomDrawing& random) {
    std::vector<ArtId> found, walked;
    for (int i = 0; i < 6; ++i) {
        const RealPoint point = random.point();
        const float tolerance = float(random.below(80)) / 4;
        const std::string exclude = random.below(2) == 0 ? "" : random.word();
        for (LayerId layer : document.layers()) {
            walked.clear();
            walkToPoint(document, document.layer(layer)->root, point, tolerance, exclude, &walked);
            index.findAtPoint(layer, point, tolerance, exclude, &found);
            ASSERT_EQ(found, walked);
        }
        const std::string name = random.word(), value = random.word();
        index.findByTag(name, value, &found);
        ASSERT_EQ(found, walkToTag(document, name, &value));
        index.findByTag(name, std::nullopt, &found);
        ASSERT_EQ(found, walkToTag(document, name, nullptr));
    }
}

TEST(ArtIndex, EqualsAWalkUnderRandomEdits) {
    for (int seed = 0; seed < tests::rounds(25); ++seed) {
        SCOPED_TRACE(seed);
        RandomDrawing random(static_cast<unsigned>(seed));
        Document document(400, 400);
        ArtIndex index(document);
        random.load(document, 3, seed % 5 == 0 ? 300 : 40);
        for (int round = 0; round < 60; ++round) {
            ASSERT_NO_FATAL_FAILURE(expectSame(document, index, random));
            switch (random.below(6)) {
                case 0:
                    document.undo();
                    break;
                case 1:
                    document.redo();
                    break;
                default:
                    document.begin();
                    for (int i = random.below(20); i > 0; --i) random.edit(document);
                    if (random.below(5) == 0) document.rollback();
                    document.commit("", "");
            }
        }
    }
}

TEST(ArtIndex, TakesInBoundsAsTheHostComputesThem) {
    Document document(100, 100);
    const LayerId layer = document.loadLayer("one");
    const ArtId path = document.loadArt(kPathArt, document.layer(layer)->root);
    document.loading(path).path->segments = {{{0.1f, 0.1f}, {0.1f, 0.1f}, {0.1f, 0.1f}, 1}};
    document.finishLoading();
    ArtIndex index(document);
    std::vector<ArtId> found;
    // 0.1f - 0.7f and its like are rounded; the last float that is inside must be found and the next not.
    for (float tolerance : {0.7f, 1e-3f, 2.0f, 1e6f, 0.0f}) {
        const float low = 0.1f - tolerance, high = 0.1f + tolerance;
        for (float inside : {low, high}) {
            index.findAtPoint(layer, {inside, 0.1f}, tolerance, "", &found);
            EXPECT_EQ(found.size(), 1u) << inside;
        }
        for (float outside : {std::nextafter(low, -1e9f), std::nextafter(high, 1e9f)}) {
            index.findAtPoint(layer, {0.1f, outside}, tolerance, "", &found);
            EXPECT_EQ(found.size(), 0u) << outside;
        }
    }
    const float nan = std::nanf("");
    index.findAtPoint(layer, {nan, 0}, 1e9f, "", &found);
    EXPECT_TRUE(found.empty());
    index.findAtPoint(layer + 1, {0, 0}, 1e9f, "", &found);
    EXPECT_TRUE(found.empty());
}

std::vector<std::uint32_t> namesIn(const BoxTree& tree, const RealRect& range) {
    std::vector<BoxTree::Item> items;
    tree.find(range, &items);
    std::vector<std::uint32_t> names;
    for (const BoxTree::Item& item : items) names.push_back(item.name);
    std::sort(names.begin(), names.end());
    return names;
}

// Insertions and removals in the tens of thousands, so that the tree of boxes grows, splits and shrinks many levels.
TEST(BoxTree, EqualsAScan) {
    RandomDrawing random(11);
    std::vector<std::uint32_t> leafOf;
    BoxTree tree(leafOf);
    std::vector<RealRect> boxes(6000);
    std::vector<bool> in(boxes.size());
    auto makeBox = [&] {
        const RealPoint low = random.point();
        const float width = random.below(50) == 0 ? 400.0f : float(random.below(8)), height = float(random.below(8));
        return RealRect{low.h, low.v + height, low.h + width, low.v};
    };
    std::vector<BoxTree::Item> items;
    for (std::uint32_t name = 0; name < 2000; ++name) {
        boxes[name] = makeBox();
        in[name] = true;
        items.push_back({boxes[name], name});
    }
    tree.load(items);
    for (int round = 0; round < 30000; ++round) {
        const auto name = std::uint32_t(random.below(int(boxes.size())));
        const bool fills = (round / 5000) % 2 == 0;
        if (in[name] && (!fills || random.below(4) == 0)) {
            tree.remove(name);
            in[name] = false;
        } else if (!in[name] && (fills || random.below(4) == 0)) {
            boxes[name] = makeBox();
            tree.insert({boxes[name], name});
            in[name] = true;
        }
        if (round % 50 != 0) continue;
        const RealRect range = makeBox();
        std::vector<std::uint32_t> scanned, found = namesIn(tree, range);
        for (std::uint32_t n = 0; n < boxes.size(); ++n) {
            const RealRect& b = boxes[n];
            if (in[n] && b.left <= range.right && b.right >= range.left && b.bottom <= range.top &&
                b.top >= range.bottom)
                scanned.push_back(n);
        }
        ASSERT_EQ(found, scanned);
    }
    for (std::uint32_t name = 0; name < boxes.size(); ++name) {
        if (in[name]) tree.remove(name);
    }
    EXPECT_TRUE(namesIn(tree, {-1e9f, 1e9f, 1e9f, -1e9f}).empty());
    tree.insert({boxes[0], 0});
    EXPECT_EQ(namesIn(tree, boxes[0]), std::vector<std::uint32_t>{0});
}

}  // namespace
}  // namespace quorvel::doc
