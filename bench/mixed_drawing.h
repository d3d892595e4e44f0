// Drawings of any number of paths that look alike wherever one looks: a page that grows with the number, the same
// crowding everywhere, straight lines, arcs, curves and texts, alone, in groups and in compound paths. The same seed
// gives the same drawing.
#pragma once

#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "document/document.h"

namespace quorvel::bench {

class MixedDrawing {
  public:
    explicit MixedDrawing(int pathCount, std::uint64_t seed = 1)
        : random_(seed), side_(kPitch * std::sqrt(static_cast<float>(pathCount))) {
        document_ = std::make_unique<doc::Document>(side_, side_);
        constexpr int kLayers = 4;
        for (int i = 0; i < kLayers; ++i) {
            const doc::LayerId layer = document_->loadLayer("Layer " + std::to_string(i + 1));
            fillLayer(document_->layer(layer)->root, pathCount * (i + 1) / kLayers);
        }
        document_->finishLoading();
    }

    std::unique_ptr<doc::Document> take() { return std::move(document_); }
    const std::vector<doc::ArtId>& paths() const { return paths_; }

  private:
    static constexpr float kPitch = 20;  // the page has a square of this side for each path, points

    double unit() { return static_cast<double>(random_() >> 11) * 0x1p-53; }
    float between(double low, double high) { return static_cast<float>(low + (high - low) * unit()); }
    bool oneIn(int count) { return random_() % static_cast<std::uint64_t>(count) == 0; }
    RealPoint anywhere() { return {between(0, side_), between(0, side_)}; }

    // Up to so many paths of the whole drawing.
    void fillLayer(doc::ArtId root, int end) {
        while (static_cast<int>(paths_.size()) < end) {
            if (oneIn(40)) {
                fillGroup(root, end, 0);
            } else if (oneIn(60)) {
                addRing(root, end);
            } else if (oneIn(60)) {
                addText(root);
            } else {
                addPath(root);
            }
        }
    }

    // A part of the drawing whose pieces are together in the tree, though not on the page.
    void fillGroup(doc::ArtId parent, int end, int depth) {
        const doc::ArtId group = document_->loadArt(kGroupArt, parent);
        const int count = 5 + static_cast<int>(random_() % 30);
        for (int i = 0; i < count && static_cast<int>(paths_.size()) < end; ++i) {
            if (depth < 3 && oneIn(12)) {
                fillGroup(group, end, depth + 1);
            } else {
                addPath(group);
            }
        }
    }

    PathSegment corner(RealPoint p) const { return {p, p, p, 1}; }

    doc::ArtId add(doc::ArtId parent, std::vector<PathSegment> segments, bool closed) {
        const doc::ArtId id = document_->loadArt(kPathArt, parent);
        doc::PathData& path = *document_->loading(id).path;
        path.segments = std::move(segments);
        path.closed = closed;
        paths_.push_back(id);
        return id;
    }

    void addPath(doc::ArtId parent) {
        if (oneIn(1000)) return addRule(parent);
        switch (random_() % 5) {
            case 0:
                return addPolyline(parent);
            case 1:
                return addRectangle(parent);
            case 2:
                add(parent, circle(anywhere(), between(3, 25)), true);
                return;
            case 3:
                return addArc(parent);
            default:
                return addCurve(parent);
        }
    }

    // A line of a page-wide construction.
    void addRule(doc::ArtId parent) {
        const float at = between(0, side_);
        if (oneIn(2)) {
            add(parent, {corner({0, at}), corner({side_, at})}, false);
        } else {
            add(parent, {corner({at, 0}), corner({at, side_})}, false);
        }
    }

    void addPolyline(doc::ArtId parent) {
        RealPoint at = anywhere();
        std::vector<PathSegment> segments{corner(at)};
        for (int i = 1 + static_cast<int>(random_() % 6); i > 0; --i) {
            at = {at.h + between(4, 20), at.v + between(-15, 15)};
            segments.push_back(corner(at));
        }
        add(parent, std::move(segments), oneIn(3));
    }

    void addRectangle(doc::ArtId parent) {
        const RealPoint at = anywhere();
        const float width = between(5, 40), height = between(5, 40);
        add(parent,
            {corner(at), corner({at.h + width, at.v}), corner({at.h + width, at.v + height}),
             corner({at.h, at.v + height})},
            true);
    }

    static std::vector<PathSegment> circle(RealPoint centre, float radius) {
        const float k = radius * 0.5522847F;
        const auto [h, v] = centre;
        return {{{h + radius, v}, {h + radius, v - k}, {h + radius, v + k}, 0},
                {{h, v + radius}, {h + k, v + radius}, {h - k, v + radius}, 0},
                {{h - radius, v}, {h - radius, v + k}, {h - radius, v - k}, 0},
                {{h, v - radius}, {h - k, v - radius}, {h + k, v - radius}, 0}};
    }

    // A quarter to three quarters of a circle.
    void addArc(doc::ArtId parent) {
        std::vector<PathSegment> segments = circle(anywhere(), between(8, 40));
        segments.resize(2 + random_() % 3);
        segments.front().in = segments.front().p;
        segments.back().out = segments.back().p;
        add(parent, std::move(segments), false);
    }

    void addCurve(doc::ArtId parent) {
        RealPoint at = anywhere();
        std::vector<PathSegment> segments;
        for (int i = 2 + static_cast<int>(random_() % 4); i > 0; --i) {
            const float h = between(2, 8), v = between(-8, 8);
            segments.push_back({at, {at.h - h, at.v - v}, {at.h + h, at.v + v}, 0});
            at = {at.h + between(10, 25), at.v + between(-15, 15)};
        }
        add(parent, std::move(segments), false);
    }

    // A circle with a hole, as one compound path.
    void addRing(doc::ArtId parent, int end) {
        const doc::ArtId compound = document_->loadArt(kCompoundPathArt, parent);
        const RealPoint centre = anywhere();
        const float radius = between(8, 25);
        add(compound, circle(centre, radius), true);
        if (static_cast<int>(paths_.size()) < end) add(compound, circle(centre, radius / 2), true);
    }

    void addText(doc::ArtId parent) {
        doc::TextData& text = *document_->loading(document_->loadArt(kTextFrameArt, parent)).text;
        const RealPoint at = anywhere();
        text.matrix = {1, 0, 0, 1, at.h, at.v};
        text.text = u"12.5";
        text.runs = {{static_cast<std::int32_t>(text.text.size()), {}}};
    }

    std::mt19937_64 random_;
    float side_;
    std::unique_ptr<doc::Document> document_;
    std::vector<doc::ArtId> paths_;
};

}  // namespace quorvel::bench
