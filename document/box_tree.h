// Boxes found by place: what overlaps a range is found at a cost of the logarithm of their number plus what is found,
// and one box comes or goes at a cost of the logarithm. A box as large as the page costs no more than one that is
// small.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "hostapi/types.h"

namespace quorvel::doc {

// R-trees, one for each class of size: a long box among short ones would widen every node on the way to it, and all
// searches that cross it would pay. Boxes have names, each at most once over all trees that share one table of leaves.
class BoxTree {
  public:
    using Name = std::uint32_t;
    struct Item {
        RealRect box;  // no empty one, no NaN
        Name name = 0;
    };

    // leafOf: by name, where the box is; grown as needed. It outlives the tree.
    explicit BoxTree(std::vector<std::uint32_t>& leafOf) : leafOf_(leafOf) { roots_.fill(kNone); }

    // Packs many boxes at once into an empty tree (sort-tile-recursive: Leutenegger, Lopez, Edgington 1997).
    void load(std::vector<Item> items);
    void insert(const Item& item);
    void remove(Name name);
    // The box as it was put in.
    RealRect box(Name name) const;
    // Adds all boxes that overlap or touch the range.
    void find(const RealRect& range, std::vector<Item>* items) const;

  private:
    static constexpr int kFanout = 16;
    static constexpr int kSizes = 12;
    static constexpr std::uint32_t kNone = ~std::uint32_t{0};

    // Sides apart, so that one comparison goes over all boxes of a node at once. Unused places hold boxes that no range
    // meets.
    struct Node {
        float left[kFanout], bottom[kFanout], right[kFanout], top[kFanout];
        std::uint32_t child[kFanout];  // nodes, or names in a leaf
        std::uint32_t parent = kNone;
        std::int32_t count = 0;
        bool leaf = true;

        Node();
        RealRect box(int place) const;
        void put(int place, const RealRect& box, std::uint32_t child);
        void clear(int place);
        int placeOf(std::uint32_t child) const;
        RealRect whole() const;
    };

    std::uint32_t newNode(bool leaf);
    std::vector<Item> pack(std::vector<Item> items, bool leaf);
    std::uint32_t chooseLeaf(std::uint32_t root, const RealRect& box) const;
    void add(std::uint32_t node, const RealRect& box, std::uint32_t child);
    void split(std::uint32_t node, const RealRect& box, std::uint32_t child);
    void adopt(std::uint32_t node, std::uint32_t child);
    void takeOut(std::uint32_t node, int place);
    void fitUpwards(std::uint32_t node);
    std::uint32_t& rootEntry(std::uint32_t root);

    std::vector<Node> nodes_;
    std::vector<std::uint32_t> free_;
    std::array<std::uint32_t, kSizes> roots_;  // from the smallest boxes up
    std::vector<std::uint32_t>& leafOf_;
};

}  // namespace quorvel::doc
