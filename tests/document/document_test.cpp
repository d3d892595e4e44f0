// The document keeps its promises under any edits: undo and redo bring back every number, stale names are refused, the
// order of the walk and the bounds are those of the tree.
#include "document/document.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <sstream>

#include "document/bounds.h"
#include "tests/support/random_drawing.h"
#include "tests/support/sanitized.h"

namespace quorvel::doc {
namespace {

void write(std::ostream& out, const Art& art) {
    out << art.id << ' ' << art.kind << ' ' << art.hidden << art.locked << ' ' << art.revision << ' ' << art.name;
    for (const Tag& tag : art.tags) out << ' ' << tag.name << '=' << tag.value;
    if (art.path) {
        out << " path " << art.path->closed << ' ' << art.path->style->strokeWidth;
        for (const PathSegment& s : art.path->segments)
            out << " (" << s.p.h << ',' << s.p.v << ' ' << s.in.h << ',' << s.in.v << ' ' << s.out.h << ',' << s.out.v
                << ')';
    }
    if (art.text) {
        out << " text " << art.text->text.size() << " of " << art.text->type << " at " << art.text->matrix.tx << ','
            << art.text->matrix.ty << ' ' << art.text->matrix.a << ',' << art.text->matrix.b;
    }
    out << " moved " << art.foreignMatrix.tx << ',' << art.foreignMatrix.ty;
}

// Everything that a file would hold, and the names; without the selection.
std::string dump(const Document& document) {
    std::ostringstream out;
    out.precision(9);
    std::function<void(ArtId, int)> visit = [&](ArtId id, int depth) {
        const Art& art = *document.find(id);
        out << std::string(std::size_t(depth), ' ');
        write(out, art);
        out << '\n';
        for (ArtId child = art.firstChild; child != 0; child = document.find(child)->below) visit(child, depth + 1);
    };
    for (LayerId id : document.layers()) {
        const Layer& layer = *document.layer(id);
        out << id << ' ' << layer.title << ' ' << layer.visible << layer.editable << ' ' << layer.revision << '\n';
        visit(layer.root, 1);
    }
    return out.str();
}

RealRect plainBounds(const Document& document, ArtId id) {
    const Art& art = *document.find(id);
    if (art.path) return pathBounds(art.path->segments, art.path->closed);
    if (art.text) return textBounds(*art.text);
    RealRect box = emptyRect();
    for (ArtId child = art.firstChild; child != 0; child = document.find(child)->below)
        box = uniteRects(box, plainBounds(document, child));
    return box;
}

// Links, order, names, count and bounds agree with a plain walk.
void expectSound(const Document& document) {
    const std::vector<ArtId> walk = RandomDrawing::arts(document);
    ASSERT_EQ(document.artCount(), walk.size());
    for (std::size_t i = 0; i < walk.size(); ++i) {
        const Art& art = *document.find(walk[i]);
        if (i > 0) {
            ASSERT_TRUE(document.precedes(walk[i - 1], walk[i]));
            ASSERT_FALSE(document.precedes(walk[i], walk[i - 1]));
        }
        ASSERT_TRUE(art.below == 0 || document.find(art.below)->above == art.id);
        ASSERT_TRUE(art.firstChild == 0 || document.find(art.firstChild)->parent == art.id);
        ASSERT_TRUE(art.name.empty() || document.find(document.findByName(art.name))->name == art.name);
        if (art.path && !art.path->segmentSelection.empty()) {
            ASSERT_EQ(art.path->segmentSelection.size(), art.path->segments.size());
        }
        expectRect(document.bounds(art.id), plainBounds(document, art.id));
    }
}

TEST(Document, UndoAndRedoBringBackEveryNumber) {
    for (int seed = 0; seed < tests::rounds(40); ++seed) {
        SCOPED_TRACE(seed);
        RandomDrawing random(static_cast<unsigned>(seed));
        Document document(400, 400);
        random.load(document, 3, 25);
        expectSound(document);
        std::vector<std::string> states{dump(document)};
        ASSERT_FALSE(document.modified());
        auto undoTo = [&](std::size_t state) {
            for (std::size_t i = states.size() - 1; i-- > state;) {
                ASSERT_TRUE(document.undo());
                ASSERT_EQ(dump(document), states[i]);
                expectSound(document);
            }
        };
        auto makeSteps = [&] {
            for (int step = 0; step < 15; ++step) {
                document.begin();
                for (int i = random.below(12); i > 0; --i) random.edit(document);
                if (random.below(3) == 0) {
                    document.rollback();
                    ASSERT_EQ(dump(document), states.back());
                    for (int i = random.below(4); i > 0; --i) random.edit(document);
                }
                const std::string now = dump(document);
                if (document.commit("undo", "redo")) states.push_back(now);
                ASSERT_EQ(dump(document), states.back());
                expectSound(document);
            }
        };

        makeSteps();
        undoTo(0);
        EXPECT_FALSE(document.modified());
        EXPECT_FALSE(document.undo());
        EXPECT_EQ(document.undoName(), nullptr);
        for (std::size_t i = 1; i < states.size(); ++i) {
            ASSERT_TRUE(document.redo());
            ASSERT_EQ(dump(document), states[i]);
        }
        EXPECT_FALSE(document.redo());

        // A new step in the middle takes the place of those that were undone.
        undoTo(states.size() / 2);
        states.resize(states.size() / 2 + 1);
        makeSteps();
        EXPECT_FALSE(document.redo());
        undoTo(0);
        EXPECT_FALSE(document.modified());
    }
}

struct Fixture {
    Document document{100, 100};
    ArtId root = 0;
    Fixture() {
        root = document.layer(document.loadLayer("one"))->root;
        document.finishLoading();
    }
};

TEST(Document, StepsAndTheStateThatWasSaved) {
    Fixture f;
    Document& d = f.document;
    d.begin();
    const ArtId path = d.insertArt(kPathArt, kPlaceInsideOnTop, f.root);
    EXPECT_TRUE(d.modified());
    EXPECT_TRUE(d.commit("Undo One", "Redo One"));
    d.markSaved();
    EXPECT_FALSE(d.modified());

    d.begin();
    d.setSelected(path, true);
    EXPECT_FALSE(d.commit("Undo Selection", "Redo Selection"));
    EXPECT_FALSE(d.modified());
    EXPECT_TRUE(d.find(path)->selected);
    EXPECT_EQ(*d.undoName(), "Undo One");

    const std::uint64_t before = d.changeCount();
    ASSERT_TRUE(d.undo());
    EXPECT_NE(d.changeCount(), before);
    EXPECT_TRUE(d.modified());
    EXPECT_EQ(*d.redoName(), "Redo One");
    ASSERT_TRUE(d.redo());
    EXPECT_FALSE(d.modified());

    // Setting what is set already changes nothing.
    d.begin();
    d.setTag(path, "a", "1");
    d.commit("Undo Tag", "Redo Tag");
    d.begin();
    d.setTag(path, "a", "1");
    d.setClosed(path, false);
    d.transform(path, {}, 1);
    EXPECT_FALSE(d.commit("Undo Nothing", "Redo Nothing"));

    // A change that no transaction holds cannot be undone, nor can what it stands on.
    d.setHidden(path, true);
    EXPECT_FALSE(d.undo());
    EXPECT_TRUE(d.modified());
}

TEST(Document, CurrentLayerFollowsTheStepThatMadeItsLayer) {
    Fixture f;
    Document& d = f.document;
    const LayerId first = d.currentLayer();
    d.begin();
    const LayerId made = d.insertLayer("two", 0);
    EXPECT_EQ(d.currentLayer(), first);
    d.setCurrentLayer(made);
    d.commit("", "");
    EXPECT_EQ(d.layers(), (std::vector<LayerId>{made, first}));
    d.undo();
    EXPECT_EQ(d.currentLayer(), first);
    EXPECT_EQ(d.layer(made), nullptr);
    d.redo();
    EXPECT_EQ(d.currentLayer(), made);
    // Chosen by hand between the steps, the layer goes all the same.
    d.setCurrentLayer(first);
    d.setCurrentLayer(made);
    d.begin();
    const LayerId third = d.insertLayer("three", 0);
    d.commit("", "");
    d.setCurrentLayer(third);
    d.undo();
    EXPECT_EQ(d.currentLayer(), made);
}

TEST(Document, LayersChangePlacesAndBack) {
    Fixture f;
    Document& d = f.document;
    const LayerId low = d.currentLayer(), middle = d.insertLayer("middle", 0), top = d.insertLayer("top", 0);
    d.markSaved();
    d.begin();
    EXPECT_TRUE(d.moveLayer(low, 0));
    EXPECT_FALSE(d.moveLayer(low, 3));
    ASSERT_TRUE(d.commit("Layer", "Layer"));
    EXPECT_EQ(d.layers(), (std::vector<LayerId>{low, top, middle}));
    EXPECT_TRUE(d.modified());
    d.undo();
    EXPECT_EQ(d.layers(), (std::vector<LayerId>{top, middle, low}));
    EXPECT_FALSE(d.modified());
    d.redo();
    EXPECT_EQ(d.layers(), (std::vector<LayerId>{low, top, middle}));
}

// What an undone step had removed lives again, and a new step that removes it too needs its content.
TEST(Document, StepsThatAreDroppedTakeNothingFromThoseThatStay) {
    Fixture f;
    Document& d = f.document;
    const ArtId path = d.loadArt(kPathArt, f.root);
    d.loading(path).path->segments.resize(3);
    d.finishLoading();
    for (const char* name : {"first", "second"}) {
        d.begin();
        d.removeArt(path);
        ASSERT_TRUE(d.commit(name, name));
        ASSERT_TRUE(d.undo());
        ASSERT_NE(d.find(path), nullptr);
        ASSERT_NE(d.find(path)->path, nullptr);
        EXPECT_EQ(d.find(path)->path->segments.size(), 3u);
        EXPECT_EQ(*d.redoName(), name);
    }
}

struct Listener : DocumentObserver {
    std::vector<std::string> heard;
    void artInserted(ArtId art) override { heard.push_back("inserted " + std::to_string(art)); }
    void artRemoved(ArtId art) override { heard.push_back("removed " + std::to_string(art)); }
    void artChanged(ArtId art) override { heard.push_back("changed " + std::to_string(art)); }
    void tagChanged(ArtId art, const std::string& name) override {
        heard.push_back("tag " + name + " of " + std::to_string(art));
    }
    void layersChanged() override { heard.push_back("layers"); }
};

TEST(Document, TellsWhatUndoChanges) {
    Fixture f;
    Document& d = f.document;
    d.begin();
    const ArtId path = d.insertArt(kPathArt, kPlaceInsideOnTop, f.root);
    d.setTag(path, "kept", "1");
    d.commit("", "");
    d.begin();
    d.setTag(path, "link", "1");
    d.commit("", "");
    Listener listener;
    d.addObserver(&listener);
    const std::string name = std::to_string(path);
    d.undo();
    EXPECT_EQ(listener.heard, (std::vector<std::string>{"tag link of " + name, "changed " + name}));
    listener.heard.clear();
    d.undo();
    EXPECT_EQ(listener.heard, std::vector<std::string>{"removed " + name});
    d.removeObserver(&listener);
}

TEST(Document, RefusesWhatCannotStand) {
    Fixture f;
    Document& d = f.document;
    d.begin();
    const ArtId group = d.insertArt(kGroupArt, kPlaceInsideOnTop, f.root);
    const ArtId path = d.insertArt(kPathArt, kPlaceInsideOnTop, group);
    const ArtId compound = d.insertArt(kCompoundPathArt, kPlaceAbove, group);
    EXPECT_EQ(d.insertArt(kPathArt, kPlaceInsideOnTop, path), 0u);
    EXPECT_EQ(d.insertArt(kGroupArt, kPlaceInsideOnTop, compound), 0u);
    EXPECT_EQ(d.insertArt(kPathArt, kPlaceAbove, f.root), 0u);
    EXPECT_FALSE(d.moveArt(group, kPlaceInsideOnTop, group));
    EXPECT_FALSE(d.moveArt(group, kPlaceBelow, path));
    EXPECT_FALSE(d.removeArt(f.root));
    EXPECT_TRUE(d.setName(group, "g"));
    EXPECT_FALSE(d.setName(path, "g"));
    EXPECT_EQ(d.duplicateArt(path, "g"), 0u);

    const float nan = std::numeric_limits<float>::quiet_NaN();
    const PathSegment good{{1, 2}, {1, 2}, {1, 2}, 1}, bad{{nan, 2}, {1, 2}, {1, 2}, 1};
    EXPECT_FALSE(d.setSegments(path, 0, {&bad, 1}));
    EXPECT_FALSE(d.setSegments(path, 1, {&good, 1}));
    EXPECT_TRUE(d.setSegments(path, 0, {&good, 1}));
    EXPECT_FALSE(d.transform(group, {nan, 0, 0, 1, 0, 0}, 1));
    EXPECT_FALSE(d.transform(group, {FLT_MAX, 0, 0, FLT_MAX, 0, 0}, 1));
    EXPECT_EQ(d.find(path)->path->segments[0].p.v, 2);

    // A stale name is refused everywhere, with those below it, until an undo brings the art back.
    d.commit("", "");
    d.begin();
    EXPECT_TRUE(d.removeArt(group));
    for (ArtId stale : {group, path, ArtId{0}, ArtId{100000}}) {
        EXPECT_EQ(d.find(stale), nullptr);
        EXPECT_FALSE(d.setSegments(stale, 0, {&good, 1}));
        EXPECT_FALSE(d.transform(stale, {}, 1));
        EXPECT_FALSE(d.setTag(stale, "a", "b"));
        EXPECT_FALSE(d.setSelected(stale, true));
        EXPECT_FALSE(d.removeArt(stale));
        EXPECT_FALSE(d.moveArt(stale, kPlaceInsideOnTop, f.root));
        EXPECT_EQ(d.insertArt(kPathArt, kPlaceAbove, stale), 0u);
        EXPECT_EQ(d.layerOf(stale), 0u);
        EXPECT_FALSE(d.precedes(stale, compound));
        EXPECT_TRUE(isEmpty(d.bounds(stale)));
    }
    EXPECT_EQ(d.findByName("g"), 0u);
    d.commit("", "");
    d.undo();
    EXPECT_EQ(d.findByName("g"), group);
    EXPECT_NE(d.find(path), nullptr);
}

TEST(Document, CopiesAreWholeAndHaveNamesOfTheirOwn) {
    Fixture f;
    Document& d = f.document;
    const ArtId group = d.loadArt(kGroupArt, f.root), lower = d.loadArt(kPathArt, group),
                upper = d.loadArt(kPathArt, group), image = d.loadArt(kForeignArt, group);
    d.loading(group).name = "g";
    d.loading(lower).name = "p";
    d.loading(lower).tags.push_back({"t", "1"});
    d.loading(upper).path->segments = {{{1, 2}, {3, 4}, {5, 6}, 0}};
    d.loading(image).ref = {7};
    d.finishLoading();
    d.begin();
    for (const char* name : {"copy", "copy again"}) ASSERT_NE(d.duplicateArt(group, name), 0u);
    d.commit("", "");

    // Each is put directly above the original, so the later copy comes between.
    const Art& copy = *d.find(d.findByName("copy"));
    EXPECT_EQ(d.find(group)->above, d.findByName("copy again"));
    EXPECT_EQ(copy.below, d.findByName("copy again"));
    EXPECT_NE(d.findByName("p-2"), 0u);
    EXPECT_NE(d.findByName("p-3"), 0u);
    EXPECT_EQ(d.find(d.findByName("p-2"))->parent, copy.id);
    EXPECT_EQ(*d.tag(d.findByName("p-2"), "t"), "1");
    const Art& imageCopy = *d.find(copy.firstChild);
    EXPECT_EQ(imageCopy.kind, kForeignArt);
    EXPECT_EQ(imageCopy.ref, (SourceRef{7, true}));
    EXPECT_EQ(d.find(imageCopy.below)->path->segments[0].out.v, 6);
    EXPECT_EQ(copy.lastChild, d.findByName("p-2"));
}

TEST(Document, TransformsAllBelow) {
    Fixture f;
    Document& d = f.document;
    const ArtId group = d.loadArt(kGroupArt, f.root), path = d.loadArt(kPathArt, group),
                text = d.loadArt(kTextFrameArt, group), image = d.loadArt(kForeignArt, group);
    d.loading(path).path->segments = {{{10, 0}, {9, 1}, {11, -1}, 0}};
    d.loading(text).text->matrix = {2, 0, 0, 2, 5, 6};
    d.finishLoading();
    const float width = d.find(path)->path->style->strokeWidth;
    // A quarter turn to the left and 100 to the right: (h, v) -> (100 - v, h).
    ASSERT_TRUE(d.transform(group, {0, 1, -1, 0, 100, 0}, 3));
    const PathSegment& s = d.find(path)->path->segments[0];
    EXPECT_EQ(s.p.h, 100);
    EXPECT_EQ(s.p.v, 10);
    EXPECT_EQ(s.in.h, 99);
    EXPECT_EQ(s.in.v, 9);
    EXPECT_EQ(d.find(path)->path->style->strokeWidth, 3 * width);
    const RealMatrix& m = d.find(text)->text->matrix;
    EXPECT_EQ(m.a, 0);
    EXPECT_EQ(m.b, 2);
    EXPECT_EQ(m.c, -2);
    EXPECT_EQ(m.d, 0);
    EXPECT_EQ(m.tx, 94);
    EXPECT_EQ(m.ty, 5);
    EXPECT_EQ(d.find(image)->foreignMatrix.tx, 100);
    EXPECT_EQ(d.find(group)->revision, 0u);
    EXPECT_NE(d.find(image)->revision, 0u);
}

TEST(Document, SelectionInParts) {
    Fixture f;
    Document& d = f.document;
    const ArtId path = d.loadArt(kPathArt, f.root);
    d.loading(path).path->segments.resize(3);
    d.finishLoading();
    const Art& art = *d.find(path);
    d.setSegmentSelected(path, 1, kSegmentOutSelected);
    EXPECT_TRUE(art.selected);
    EXPECT_EQ(art.path->segmentSelection, (std::vector<std::uint8_t>{0, 3, 0}));
    d.setSegmentSelected(path, 1, kSegmentNotSelected);
    EXPECT_FALSE(art.selected);
    // A path that is selected whole has all its anchors selected; taking one away leaves the others.
    d.setSelected(path, true);
    d.setSegmentSelected(path, 0, kSegmentNotSelected);
    EXPECT_EQ(art.path->segmentSelection, (std::vector<std::uint8_t>{0, 1, 1}));
    d.begin();
    d.setSegmentCount(path, 2);
    d.commit("", "");
    d.undo();
    EXPECT_EQ(art.path->segmentSelection, (std::vector<std::uint8_t>{0, 1, 1}));
    EXPECT_EQ(art.revision, 0u);
    EXPECT_FALSE(d.setSegmentSelected(path, 3, kSegmentPointSelected));
}

// All insertions at one place use up the labels between two neighbours again and again.
TEST(Document, OrderHoldsWhereverArtIsInserted) {
    Fixture f;
    Document& d = f.document;
    const ArtId top = d.insertArt(kGroupArt, kPlaceInsideOnTop, f.root);
    const ArtId bottom = d.insertArt(kGroupArt, kPlaceInsideOnBottom, f.root);
    for (int i = 0; i < 3000; ++i) {
        d.insertArt(kGroupArt, kPlaceBelow, top);
        d.insertArt(kGroupArt, kPlaceAbove, bottom);
    }
    const std::vector<ArtId> walk = RandomDrawing::arts(d);
    ASSERT_EQ(walk.size(), 6002u);
    for (std::size_t i = 1; i < walk.size(); ++i) ASSERT_TRUE(d.precedes(walk[i - 1], walk[i]));
    EXPECT_TRUE(d.precedes(f.root, top));
}

TEST(Document, OneIdForAllElementsOfADamagedFile) {
    Fixture f;
    Document& d = f.document;
    std::vector<ArtId> arts;
    for (int i = 0; i < 20000; ++i) {
        arts.push_back(d.loadArt(kForeignArt, f.root));
        d.loading(arts.back()).name = "same";
    }
    d.finishLoading();
    EXPECT_EQ(d.findByName("same"), arts[0]);
    d.begin();
    d.removeArt(arts[0]);
    EXPECT_EQ(d.findByName("same"), arts[1]);
    d.rollback();
    EXPECT_EQ(d.findByName("same"), arts[0]);
}

}  // namespace
}  // namespace quorvel::doc
