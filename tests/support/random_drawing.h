// Random drawings and random edits of them, for tests that hold a fast road against a plain one.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>
#include <vector>

#include "document/document.h"

namespace quorvel::doc {

inline void expectRect(const RealRect& got, const RealRect& want, const char* what = "") {
    EXPECT_EQ(got.left, want.left) << what;
    EXPECT_EQ(got.top, want.top) << what;
    EXPECT_EQ(got.right, want.right) << what;
    EXPECT_EQ(got.bottom, want.bottom) << what;
}

class RandomDrawing {
  public:
    explicit RandomDrawing(unsigned seed) : random_(seed) {}

    int below(int end) { return int(random_() % std::uint64_t(end)); }
    // Quarters of a point, exact in floats and in their sums.
    float coordinate() { return float(below(1600)) / 4; }
    RealPoint point() { return {coordinate(), coordinate()}; }

    PathSegment segment() {
        if (below(2) == 0) {
            const RealPoint p = point();
            return {p, p, p, 1};
        }
        return {point(), point(), point(), 0};
    }

    std::string word() { return std::string(1, char('a' + below(4))); }

    TextData text() {
        TextData text;
        text.type = AITextFrameType(below(3));
        text.matrix = {1, 0, 0, 1, coordinate(), coordinate()};
        text.text = below(4) == 0 ? u"" : u"12.5";
        text.runs.push_back({std::int32_t(text.text.size()), {}});
        return text;
    }

    // Layers with a tree each, as a file is read.
    void load(Document& document, int layers, int arts) {
        for (int i = 0; i < layers; ++i) {
            std::vector<ArtId> parents{document.layer(document.loadLayer("layer " + std::to_string(i)))->root};
            for (int k = 0; k < arts; ++k) loadOne(document, &parents);
        }
        document.finishLoading();
    }

    // All living art but the roots, in walk order.
    static std::vector<ArtId> arts(const Document& document) {
        std::vector<ArtId> all;
        std::function<void(ArtId)> visit = [&](ArtId id) {
            const Art& art = *document.find(id);
            if (art.parent != 0) all.push_back(id);
            for (ArtId child = art.firstChild; child != 0; child = document.find(child)->below) visit(child);
        };
        for (LayerId layer : document.layers()) visit(document.layer(layer)->root);
        return all;
    }

    // Any change there is, at any art; many are refused, as they are for callers.
    void edit(Document& document) {
        std::vector<ArtId> all = arts(document);
        for (LayerId layer : document.layers()) all.push_back(document.layer(layer)->root);
        const ArtId art = all[std::size_t(below(int(all.size())))], other = all[std::size_t(below(int(all.size())))];
        const LayerId layer = document.layers()[std::size_t(below(int(document.layers().size())))];
        constexpr AIArtType kKinds[] = {kGroupArt, kPathArt, kPathArt, kCompoundPathArt, kTextFrameArt};
        const auto placement = AIPaintOrder(1 + below(5));
        const auto insert = [&] { fill(document, document.insertArt(kKinds[below(5)], placement, art)); };
        const auto move = [&] { document.moveArt(art, placement, other); };
        const std::function<void()> edits[] = {
            insert,
            insert,
            [&] { document.removeArt(art); },
            move,
            move,
            [&] { document.duplicateArt(art, below(2) == 0 ? "" : "copy" + std::to_string(below(1000))); },
            [&] { fill(document, art); },
            [&] { document.setSegmentCount(art, std::size_t(below(5))); },
            [&] { document.setClosed(art, below(2) == 0); },
            [&] { setWidth(document, art, float(below(4))); },
            [&] {
                document.transform(art, {1, 0, 0, 1, coordinate() - 200, coordinate() - 200}, 1);
            },
            [&] {
                document.transform(art, {0, 0.5f, -0.5f, 0, 100, 100}, 0.5f);
            },
            [&] { document.setTag(art, word(), word()); },
            [&] { document.removeTag(art, word()); },
            [&] { document.setHidden(art, below(2) == 0); },
            [&] { document.setName(art, "id" + std::to_string(below(200))); },
            [&] { document.setSelected(art, below(2) == 0); },
            [&] { document.setSegmentSelected(art, std::size_t(below(4)), AISegmentSelection(below(5))); },
            [&] { editLayer(document, layer); }};
        edits[below(int(std::size(edits)))]();
    }

  private:
    void loadOne(Document& document, std::vector<ArtId>* parents) {
        constexpr AIArtType kKinds[] = {kGroupArt,        kPathArt,      kPathArt,   kPathArt,
                                        kCompoundPathArt, kTextFrameArt, kForeignArt};
        const ArtId parent = (*parents)[std::size_t(below(int(parents->size())))];
        const bool member = document.find(parent)->kind == kCompoundPathArt;
        const AIArtType kind = member ? kPathArt : kKinds[below(7)];
        const ArtId id = document.loadArt(kind, parent);
        Art& art = document.loading(id);
        if (kind == kGroupArt || kind == kCompoundPathArt) parents->push_back(id);
        for (int i = below(5); i > 0 && art.path; --i) art.path->segments.push_back(segment());
        if (art.text) *art.text = text();
        if (below(2) == 0) art.name = "id" + std::to_string(below(100));
        if (below(5) == 0) art.tags.push_back({word(), word()});
    }

    void fill(Document& document, ArtId id) {
        const Art* art = document.find(id);
        if (art != nullptr && art->text) document.setText(id, text());
        if (art == nullptr || !art->path) return;
        std::vector<PathSegment> segments(std::size_t(1 + below(3)));
        for (PathSegment& s : segments) s = segment();
        document.setSegments(id, std::size_t(below(int(art->path->segments.size()) + 1)), segments);
    }

    static void setWidth(Document& document, ArtId id, float width) {
        AIPathStyle style;
        style.strokeWidth = width;
        document.setStyle(id, style);
    }

    void editLayer(Document& document, LayerId layer) {
        const std::function<void()> edits[] = {
            [&] { document.insertLayer("new", below(2) == 0 ? 0 : layer); },
            [&] { document.setLayerTitle(layer, word()); }, [&] { document.setLayerVisible(layer, below(2) == 0); },
            [&] { document.setLayerEditable(layer, below(2) == 0); }, [&] { document.setCurrentLayer(layer); }};
        edits[below(int(std::size(edits)))]();
    }

    std::mt19937_64 random_;
};

}  // namespace quorvel::doc
