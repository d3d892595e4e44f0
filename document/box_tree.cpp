// Packing, searching and mending of the tree of boxes. Nodes that removals thin out stay thin until they are empty:
// drawings seldom shrink, and searching thin nodes is cheap.
#include "document/box_tree.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <limits>
#include <utility>

#include "document/bounds.h"

namespace quorvel::doc {

namespace {

// Packed nodes keep some room, so that the first insertions do not split them all.
constexpr std::size_t kPacked = 12;
// A split leaves at least this many on each side.
constexpr int kLeastSplit = 6;
// Splits at least halve what is below a node, so that names of 32 bits bound the depth.
constexpr std::size_t kDeepest = 32;

// Half the perimeter: unlike the area it tells boxes of straight lines apart.
double margin(const RealRect& box) {
    return (double(box.right) - double(box.left)) + (double(box.top) - double(box.bottom));
}

// Kept finite, so that also boxes without end can be sorted.
double middle(float low, float high) {
    constexpr double kFar = std::numeric_limits<float>::max();
    return std::clamp(double(low), -kFar, kFar) + std::clamp(double(high), -kFar, kFar);
}

double centreH(const RealRect& box) { return middle(box.left, box.right); }
double centreV(const RealRect& box) { return middle(box.bottom, box.top); }

// Each class is eight times as large as the one before; the first ends at 1/8 point on the longer side.
int sizeClass(const RealRect& box, int classes) {
    const double side = std::max(double(box.right) - double(box.left), double(box.top) - double(box.bottom));
    if (!(side >= 0.125)) return 0;
    return std::isfinite(side) ? std::min((std::ilogb(side) + 3) / 3 + 1, classes - 1) : classes - 1;
}

bool sameBox(const RealRect& a, const RealRect& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

}  // namespace

BoxTree::Node::Node() {
    for (int place = 0; place < kFanout; ++place) clear(place);
}

RealRect BoxTree::Node::box(int place) const { return {left[place], top[place], right[place], bottom[place]}; }

void BoxTree::Node::put(int place, const RealRect& box, std::uint32_t newChild) {
    left[place] = box.left;
    bottom[place] = box.bottom;
    right[place] = box.right;
    top[place] = box.top;
    child[place] = newChild;
}

void BoxTree::Node::clear(int place) {
    // Not a number meets no range, not even an infinite one.
    constexpr float kNowhere = std::numeric_limits<float>::quiet_NaN();
    put(place, {kNowhere, kNowhere, kNowhere, kNowhere}, kNone);
}

int BoxTree::Node::placeOf(std::uint32_t wanted) const {
    const auto* found = std::find(child, child + count, wanted);
    assert(found != child + count);
    return int(found - child);
}

RealRect BoxTree::Node::whole() const {
    RealRect all = emptyRect();
    for (int place = 0; place < count; ++place) all = uniteRects(all, box(place));
    return all;
}

std::uint32_t BoxTree::newNode(bool leaf) {
    std::uint32_t node;
    if (free_.empty()) {
        node = std::uint32_t(nodes_.size());
        nodes_.emplace_back();
    } else {
        node = free_.back();
        free_.pop_back();
        nodes_[node] = Node();
    }
    nodes_[node].leaf = leaf;
    return node;
}

// Tells the child where it is now.
void BoxTree::adopt(std::uint32_t node, std::uint32_t child) {
    if (!nodes_[node].leaf) {
        nodes_[child].parent = node;
        return;
    }
    if (leafOf_.size() <= child) leafOf_.resize(std::max<std::size_t>(child + 1, leafOf_.size() * 2), kNone);
    leafOf_[child] = node;
}

void BoxTree::load(std::vector<Item> items) {
    nodes_.reserve(items.size() / kPacked * 9 / 8 + 2);
    std::array<std::vector<Item>, kSizes> bySize;
    for (const Item& item : items) bySize[std::size_t(sizeClass(item.box, kSizes))].push_back(item);
    for (std::size_t size = 0; size < kSizes; ++size) {
        assert(roots_[size] == kNone);
        if (bySize[size].empty()) continue;
        std::vector<Item> level = pack(std::move(bySize[size]), true);
        while (level.size() > 1) level = pack(std::move(level), false);
        roots_[size] = level.front().name;
    }
}

// One level: columns of equal numbers from left to right, each cut into nodes from bottom to top.
std::vector<BoxTree::Item> BoxTree::pack(std::vector<Item> items, bool leaf) {
    const std::size_t nodeCount = (items.size() + kPacked - 1) / kPacked;
    const auto columns = std::size_t(std::ceil(std::sqrt(double(nodeCount))));
    const std::size_t inColumn = (nodeCount + columns - 1) / columns * kPacked;
    auto leftFirst = [](const Item& a, const Item& b) { return centreH(a.box) < centreH(b.box); };
    auto lowFirst = [](const Item& a, const Item& b) { return centreV(a.box) < centreV(b.box); };

    std::sort(items.begin(), items.end(), leftFirst);
    std::vector<Item> above;
    above.reserve(nodeCount + columns);
    for (std::size_t first = 0; first < items.size(); first += inColumn) {
        const std::size_t end = std::min(first + inColumn, items.size());
        std::sort(items.begin() + std::ptrdiff_t(first), items.begin() + std::ptrdiff_t(end), lowFirst);
        for (std::size_t i = first; i < end; i += kPacked) {
            const std::uint32_t node = newNode(leaf);
            for (std::size_t k = i; k < std::min(i + kPacked, end); ++k) {
                nodes_[node].put(nodes_[node].count++, items[k].box, items[k].name);
                adopt(node, items[k].name);
            }
            above.push_back({nodes_[node].whole(), node});
        }
    }
    return above;
}

void BoxTree::insert(const Item& item) {
    std::uint32_t& root = roots_[std::size_t(sizeClass(item.box, kSizes))];
    if (root == kNone) root = newNode(true);
    add(chooseLeaf(root, item.box), item.box, item.name);
}

// Down where the box widens least what is there.
std::uint32_t BoxTree::chooseLeaf(std::uint32_t at, const RealRect& box) const {
    while (!nodes_[at].leaf) {
        const Node& node = nodes_[at];
        double leastGrowth = 0, leastMargin = 0;
        std::uint32_t best = kNone;
        for (int place = 0; place < node.count; ++place) {
            const double size = margin(node.box(place));
            const double growth = margin(uniteRects(node.box(place), box)) - size;
            if (best != kNone && !(growth < leastGrowth || (growth == leastGrowth && size < leastMargin))) continue;
            leastGrowth = growth;
            leastMargin = size;
            best = node.child[place];
        }
        at = best;
    }
    return at;
}

void BoxTree::add(std::uint32_t node, const RealRect& box, std::uint32_t child) {
    if (nodes_[node].count == kFanout) {
        split(node, box, child);
        return;
    }
    nodes_[node].put(nodes_[node].count++, box, child);
    adopt(node, child);
    fitUpwards(node);
}

// Deals out the boxes of a full node and the new one to it and a new neighbour: along the axis and at the place where
// the two come out smallest.
void BoxTree::split(std::uint32_t node, const RealRect& box, std::uint32_t child) {
    constexpr int kAll = kFanout + 1;
    std::array<Item, kAll> items;
    for (int place = 0; place < kFanout; ++place) items[place] = {nodes_[node].box(place), nodes_[node].child[place]};
    items[kFanout] = {box, child};

    double least = std::numeric_limits<double>::infinity();
    int cut = kAll / 2;
    std::array<Item, kAll> dealt = items;
    for (double (*centre)(const RealRect&) : {centreH, centreV}) {
        std::sort(items.begin(), items.end(),
                  [centre](const Item& a, const Item& b) { return centre(a.box) < centre(b.box); });
        std::array<RealRect, kAll + 1> behind;
        behind[kAll] = emptyRect();
        for (int i = kAll - 1; i >= 0; --i) behind[i] = uniteRects(behind[i + 1], items[i].box);
        RealRect before = emptyRect();
        bool best = false;
        for (int i = 0; i <= kAll - kLeastSplit; ++i) {
            const double cost = i < kLeastSplit ? least : margin(before) + margin(behind[i]);
            if (cost < least) {
                least = cost;
                cut = i;
                best = true;
            }
            before = uniteRects(before, items[i].box);
        }
        if (best) dealt = items;
    }

    const std::uint32_t neighbour = newNode(nodes_[node].leaf);
    for (int place = 0; place < kFanout; ++place) nodes_[node].clear(place);
    nodes_[node].count = 0;
    for (int i = 0; i < kAll; ++i) {
        const std::uint32_t to = i < cut ? node : neighbour;
        nodes_[to].put(nodes_[to].count++, dealt[i].box, dealt[i].name);
        adopt(to, dealt[i].name);
    }
    if (nodes_[node].parent == kNone) {
        const std::uint32_t root = newNode(false);
        rootEntry(node) = root;
        nodes_[root].put(nodes_[root].count++, nodes_[node].whole(), node);
        adopt(root, node);
    }
    fitUpwards(node);
    add(nodes_[node].parent, nodes_[neighbour].whole(), neighbour);
}

void BoxTree::fitUpwards(std::uint32_t node) {
    for (std::uint32_t parent = nodes_[node].parent; parent != kNone; parent = nodes_[node].parent) {
        const int place = nodes_[parent].placeOf(node);
        const RealRect whole = nodes_[node].whole();
        if (sameBox(whole, nodes_[parent].box(place))) return;
        nodes_[parent].put(place, whole, node);
        node = parent;
    }
}

void BoxTree::remove(Name name) {
    const std::uint32_t leaf = leafOf_[name];
    leafOf_[name] = kNone;
    const int place = nodes_[leaf].placeOf(name);
    std::uint32_t& root = roots_[std::size_t(sizeClass(nodes_[leaf].box(place), kSizes))];
    takeOut(leaf, place);
    while (root != kNone && !nodes_[root].leaf && nodes_[root].count == 1) {
        free_.push_back(root);
        root = nodes_[root].child[0];
        nodes_[root].parent = kNone;
    }
}

void BoxTree::takeOut(std::uint32_t node, int place) {
    Node& n = nodes_[node];
    const int last = --n.count;
    if (place != last) n.put(place, n.box(last), n.child[last]);
    n.clear(last);
    if (n.count > 0) {
        fitUpwards(node);
        return;
    }
    free_.push_back(node);
    if (n.parent == kNone) {
        rootEntry(node) = kNone;
    } else {
        takeOut(n.parent, nodes_[n.parent].placeOf(node));
    }
}

std::uint32_t& BoxTree::rootEntry(std::uint32_t root) {
    auto* entry = std::find(roots_.begin(), roots_.end(), root);
    assert(entry != roots_.end());
    return *entry;
}

RealRect BoxTree::box(Name name) const {
    const Node& leaf = nodes_[leafOf_[name]];
    return leaf.box(leaf.placeOf(name));
}

void BoxTree::find(const RealRect& range, std::vector<Item>* items) const {
    std::array<std::uint32_t, kDeepest * kFanout + kSizes> open;
    std::size_t count = 0;
    for (std::uint32_t root : roots_) {
        if (root != kNone) open[count++] = root;
    }
    while (count > 0) {
        const Node& node = nodes_[open[--count]];
        bool meets[kFanout];
        for (int place = 0; place < kFanout; ++place) {
            meets[place] = bool((node.left[place] <= range.right) & (node.right[place] >= range.left) &
                                (node.bottom[place] <= range.top) & (node.top[place] >= range.bottom));
        }
        for (int place = 0; place < node.count; ++place) {
            if (!meets[place]) continue;
            if (node.leaf) {
                items->push_back({node.box(place), node.child[place]});
            } else {
                open[count++] = node.child[place];
            }
        }
    }
}

}  // namespace quorvel::doc
