// Links, the order of siblings, the names of elements, and the cache of bounds.
#include "document/art_tree.h"

#include <algorithm>
#include <cassert>
#include <functional>
#include <utility>

#include "document/bounds.h"

namespace quorvel::doc {

namespace {

// Room left between siblings that come at either end, as all do in a file: for 2^31 on each side of the first.
constexpr std::uint64_t kFirstOrder = std::uint64_t{1} << 63;
constexpr std::uint64_t kOrderStep = std::uint64_t{1} << 32;
// A stretch of labels is spread anew when at least this much room comes between its arts.
constexpr std::uint64_t kRoom = 4;
// How much fuller each next smaller stretch may be; between 1 and 2. See Bender et al., "Two simplified algorithms for
// maintaining order in a list" (2002).
constexpr double kCrowding = 1.3;

}  // namespace

ArtTree::ArtTree() {
    create(kUnknownArt);  // 0 names no art
}

Slot& ArtTree::create(AIArtType kind) {
    const ArtId id = end_++;
    if (chunks_.size() <= id / kChunk) chunks_.push_back(std::make_unique<Slot[]>(kChunk));
    Slot& made = slot(id);
    made.art.id = id;
    made.art.kind = kind;
    made.art.alive = false;
    if (kind == kPathArt) made.art.path = std::make_unique<PathData>();
    if (kind == kTextFrameArt) made.art.text = std::make_unique<TextData>();
    return made;
}

// --- places --------------------------------------------------------------------------------------------------------

void ArtTree::link(ArtId id, Place place) {
    Art& art = slot(id).art;
    Art& parent = slot(place.parent).art;
    const ArtId above = place.below != 0 ? slot(place.below).art.above : parent.lastChild;
    slot(id).order = orderBetween(above, place.below);
    art.parent = place.parent;
    art.above = above;
    art.below = place.below;
    (above != 0 ? slot(above).art.below : parent.firstChild) = id;
    (place.below != 0 ? slot(place.below).art.above : parent.lastChild) = id;
    invalidateBounds(place.parent);
}

void ArtTree::unlink(ArtId id) {
    const Art& art = slot(id).art;
    Art& parent = slot(art.parent).art;
    (art.above != 0 ? slot(art.above).art.below : parent.firstChild) = art.below;
    (art.below != 0 ? slot(art.below).art.above : parent.lastChild) = art.above;
    invalidateBounds(art.parent);
}

std::uint64_t ArtTree::orderBetween(ArtId above, ArtId below) {
    if (above == 0 && below == 0) return kFirstOrder;
    if (above == 0 && slot(below).order > kOrderStep) return slot(below).order - kOrderStep;
    if (below == 0 && slot(above).order < ~kOrderStep) return slot(above).order + kOrderStep;
    auto low = [&] { return above != 0 ? slot(above).order : 0; };
    auto high = [&] { return below != 0 ? slot(below).order : ~std::uint64_t{0}; };
    if (high() - low() < 2) makeRoom(above != 0 ? above : below);
    return low() + (high() - low()) / 2;
}

// Spreads the labels of the smallest aligned stretch round the art that is not crowded, so that an insertion costs a
// few labels on the average, wherever it is.
void ArtTree::makeRoom(ArtId id) {
    ArtId first = id, last = id;
    std::uint64_t count = 1;
    double mayHold = 1;
    for (int bits = 1; bits < 64; ++bits) {
        mayHold *= 2 / kCrowding;
        const std::uint64_t size = std::uint64_t{1} << bits;
        const std::uint64_t low = slot(id).order & ~(size - 1), high = low + (size - 1);
        for (ArtId a = slot(first).art.above; a != 0 && slot(a).order >= low; a = slot(a).art.above, ++count) first = a;
        for (ArtId a = slot(last).art.below; a != 0 && slot(a).order <= high; a = slot(a).art.below, ++count) last = a;
        if (double(count) > mayHold || size / count < kRoom) continue;
        const std::uint64_t step = size / count;
        std::uint64_t order = low + step / 2;
        for (ArtId a = first;; a = slot(a).art.below, order += step) {
            slot(a).order = order;
            if (a == last) return;
        }
    }
    assert(false && "labels of 64 bits are enough for art of 32");
}

ArtId ArtTree::next(ArtId id, ArtId top) const {
    if (const ArtId child = slot(id).art.firstChild; child != 0) return child;
    while (id != top) {
        if (const ArtId below = slot(id).art.below; below != 0) return below;
        id = slot(id).art.parent;
    }
    return 0;
}

ArtId ArtTree::rootOf(ArtId id) const {
    while (slot(id).art.parent != 0) id = slot(id).art.parent;
    return id;
}

bool ArtTree::isWithin(ArtId id, ArtId ancestor) const {
    while (id != 0 && id != ancestor) id = slot(id).art.parent;
    return id != 0;
}

bool ArtTree::precedes(ArtId a, ArtId b) const {
    auto depthOf = [this](ArtId id) {
        int depth = 0;
        while ((id = slot(id).art.parent) != 0) ++depth;
        return depth;
    };
    const int depthA = depthOf(a), depthB = depthOf(b);
    for (int i = depthB; i < depthA; ++i) a = slot(a).art.parent;
    for (int i = depthA; i < depthB; ++i) b = slot(b).art.parent;
    if (a == b) return depthA < depthB;
    while (slot(a).art.parent != slot(b).art.parent) {
        a = slot(a).art.parent;
        b = slot(b).art.parent;
    }
    return slot(a).order < slot(b).order;
}

// --- life ----------------------------------------------------------------------------------------------------------

void ArtTree::raise(ArtId top) {
    for (ArtId id = top; id != 0; id = next(id, top)) {
        Art& art = slot(id).art;
        art.alive = true;
        if (art.parent != 0) ++count_;
        addName(id);
    }
}

void ArtTree::bury(ArtId top) {
    for (ArtId id = top; id != 0; id = next(id, top)) {
        Art& art = slot(id).art;
        removeName(id);
        art.alive = false;
        if (art.parent != 0) --count_;
    }
}

void ArtTree::release(ArtId top) {
    for (ArtId id = top; id != 0; id = next(id, top)) {
        Art& art = slot(id).art;
        assert(!art.alive);
        art.path.reset();
        art.text.reset();
        std::vector<Tag>().swap(art.tags);
        std::string().swap(art.name);
    }
}

// --- SVG ids -------------------------------------------------------------------------------------------------------

// Where the SVG id is, or the free place where it would be.
std::size_t ArtTree::namePlace(std::string_view name) const {
    const std::size_t mask = names_.size() - 1;
    std::size_t place = std::hash<std::string_view>()(name) & mask;
    while (names_[place] != 0 && slot(names_[place]).art.name != name) place = (place + 1) & mask;
    return place;
}

void ArtTree::growNames() {
    std::vector<ArtId> old(std::max<std::size_t>(16, names_.size() * 2));
    old.swap(names_);
    for (ArtId id : old) {
        if (id != 0) names_[namePlace(slot(id).art.name)] = id;
    }
}

void ArtTree::addName(ArtId id) {
    Slot& added = slot(id);
    if (added.art.name.empty()) return;
    if ((nameCount_ + 1) * 2 > names_.size()) growNames();
    const std::size_t place = namePlace(added.art.name);
    const ArtId oldest = names_[place];
    if (oldest == 0) {
        added.sameNameBefore = added.sameNameAfter = id;
        names_[place] = id;
        ++nameCount_;
        return;
    }
    // A damaged file may give one id to all its elements; as they come in rising order, each is placed at once.
    ArtId before = slot(oldest).sameNameBefore;
    if (id > oldest) {
        while (before > id) before = slot(before).sameNameBefore;
    } else {
        names_[place] = id;
    }
    const ArtId after = slot(before).sameNameAfter;
    added.sameNameBefore = before;
    added.sameNameAfter = after;
    slot(before).sameNameAfter = id;
    slot(after).sameNameBefore = id;
}

void ArtTree::removeName(ArtId id) {
    Slot& removed = slot(id);
    if (removed.sameNameAfter == 0) return;
    const std::size_t place = namePlace(removed.art.name);
    const ArtId before = std::exchange(removed.sameNameBefore, 0), after = std::exchange(removed.sameNameAfter, 0);
    if (after == id) {
        closeGap(place);
        --nameCount_;
        return;
    }
    slot(before).sameNameAfter = after;
    slot(after).sameNameBefore = before;
    if (names_[place] == id) names_[place] = after;
}

// Moves up what follows the place, so that no search ends too early.
void ArtTree::closeGap(std::size_t place) {
    const std::size_t mask = names_.size() - 1;
    for (std::size_t at = (place + 1) & mask; names_[at] != 0; at = (at + 1) & mask) {
        const std::size_t home = std::hash<std::string_view>()(slot(names_[at]).art.name) & mask;
        if (((at - home) & mask) < ((at - place) & mask)) continue;
        names_[place] = names_[at];
        place = at;
    }
    names_[place] = 0;
}

void ArtTree::setName(Slot& changed, std::string name) {
    const bool alive = changed.art.alive;
    if (alive) removeName(changed.art.id);
    changed.art.name = std::move(name);
    if (alive) addName(changed.art.id);
}

ArtId ArtTree::findByName(std::string_view name) const {
    return names_.empty() || name.empty() ? 0 : names_[namePlace(name)];
}

void ArtTree::indexNames() {
    names_.clear();
    nameCount_ = 0;
    for (ArtId id = 1; id < end_; ++id) {
        slot(id).sameNameBefore = slot(id).sameNameAfter = 0;
        if (slot(id).art.alive) addName(id);
    }
}

// --- bounds --------------------------------------------------------------------------------------------------------

void ArtTree::invalidateBounds(ArtId id) {
    for (; id != 0 && slot(id).boundsKnown; id = slot(id).art.parent) slot(id).boundsKnown = false;
}

void ArtTree::computeBounds(Slot& computed) const {
    const Art& art = computed.art;
    RealRect tight = emptyRect(), control = emptyRect();
    if (art.path) {
        tight = pathBounds(art.path->segments, art.path->closed);
        control = pathControlBounds(art.path->segments);
    } else if (art.text) {
        tight = control = textBounds(*art.text);
    } else {
        for (ArtId child = art.firstChild; child != 0; child = slot(child).art.below) {
            tight = uniteRects(tight, slot(child).bounds);
            control = uniteRects(control, slot(child).controlBounds);
        }
    }
    computed.bounds = tight;
    computed.controlBounds = control;
    computed.boundsKnown = true;
}

// From the lowest unknown art upwards, without recursion: a hostile tree may be deep.
const Slot& ArtTree::withBounds(ArtId top) const {
    auto deepestUnknown = [this](ArtId id) {
        while (!slot(id).boundsKnown && slot(id).art.firstChild != 0) id = slot(id).art.firstChild;
        return id;
    };
    for (ArtId id = deepestUnknown(top);;) {
        auto& reached = const_cast<Slot&>(slot(id));  // the bounds are a cache
        if (!reached.boundsKnown) computeBounds(reached);
        if (id == top) return reached;
        id = reached.art.below != 0 ? deepestUnknown(reached.art.below) : reached.art.parent;
    }
}

}  // namespace quorvel::doc
