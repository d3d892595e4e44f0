// The index as an observer: changes only note which art to look at again, and the next question does the looking, so
// that a run of changes to one art costs one.
#include "document/art_index.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "document/bounds.h"

namespace quorvel::doc {

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

bool isIndexed(const Art& art) { return art.kind == kPathArt || art.kind == kTextFrameArt; }

bool isPointText(const Art& art) { return art.text && art.text->type == kPointTextType; }

RealPoint anchorOf(const TextData& text) { return {text.matrix.tx, text.matrix.ty}; }

RealRect boxOf(const Document& document, const Art& art) {
    if (!isPointText(art)) return document.controlBounds(art.id);
    const RealPoint anchor = anchorOf(*art.text);
    return {anchor.h, anchor.v, anchor.h, anchor.v};
}

bool sameBox(const RealRect& a, const RealRect& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

// The ends of what may lie within tolerance of the coordinate, with a bit to spare for each rounding on the way.
float lowEnd(float coordinate, float tolerance) {
    return std::nextafter(std::nextafter(coordinate, -kInfinity) - std::nextafter(tolerance, kInfinity), -kInfinity);
}

float highEnd(float coordinate, float tolerance) {
    return std::nextafter(std::nextafter(coordinate, kInfinity) + std::nextafter(tolerance, kInfinity), kInfinity);
}

// Both computed in floats and inclusive, as the host's rectangle operations are.
bool holds(const Art& art, const RealRect& box, RealPoint point, float tolerance) {
    if (isPointText(art)) {
        const RealPoint anchor = anchorOf(*art.text);
        // The asker may compare with a tolerance in double, of which this is the nearest float.
        const double within = std::nextafter(tolerance, kInfinity);
        return std::fabs(double(anchor.h) - double(point.h)) <= within &&
               std::fabs(double(anchor.v) - double(point.v)) <= within;
    }
    return point.h >= box.left - tolerance && point.h <= box.right + tolerance && point.v >= box.bottom - tolerance &&
           point.v <= box.top + tolerance;
}

bool bears(const Art& art, std::string_view name) {
    return std::any_of(art.tags.begin(), art.tags.end(), [name](const Tag& tag) { return tag.name == name; });
}

template <typename T>
T& at(std::vector<T>& list, std::size_t place) {
    if (list.size() <= place) list.resize(std::max(place + 1, list.size() * 2));
    return list[place];
}

}  // namespace

ArtIndex::ArtIndex(Document& document) : document_(document) { document_.addObserver(this); }

ArtIndex::~ArtIndex() { document_.removeObserver(this); }

// --- noting --------------------------------------------------------------------------------------------------------

void ArtIndex::ChangeList::note(ArtId id) {
    if (isNoted_.size() <= id) isNoted_.resize(std::max<std::size_t>(id + 1, isNoted_.size() * 2));
    if (isNoted_[id]) return;
    isNoted_[id] = true;
    arts_.push_back(id);
}

template <typename Refresh>
void ArtIndex::ChangeList::settle(Refresh refresh) {
    for (ArtId id : arts_) {
        isNoted_[id] = false;
        refresh(id);
    }
    arts_.clear();
}

template <typename Visit>
void ArtIndex::visitSubtree(ArtId top, Visit visit) const {
    const Art* art = document_.find(top);
    while (art != nullptr) {
        visit(*art);
        ArtId next = art->firstChild;
        while (next == 0 && art->id != top) {
            next = art->below;
            if (next == 0) art = document_.find(art->parent);
        }
        art = next != 0 ? document_.find(next) : nullptr;
    }
}

void ArtIndex::noteSubtree(ArtId top) {
    if (!boxesFilled_ && tagged_.empty()) return;
    visitSubtree(top, [this](const Art& art) {
        if (boxesFilled_) changedBoxes_.note(art.id);
        if (!art.tags.empty()) changedTags_.note(art.id);
    });
}

void ArtIndex::artInserted(ArtId art) { noteSubtree(art); }

void ArtIndex::artRemoved(ArtId art) { noteSubtree(art); }

void ArtIndex::artChanged(ArtId art) {
    if (boxesFilled_) changedBoxes_.note(art);
}

void ArtIndex::tagChanged(ArtId art, const std::string& name) {
    if (tagged_.contains(name)) changedTags_.note(art);
}

void ArtIndex::layersChanged() {}

// --- keeping up ----------------------------------------------------------------------------------------------------

void ArtIndex::catchUpBoxes() {
    if (!boxesFilled_) fillBoxes();
    changedBoxes_.settle([this](ArtId id) { refreshBox(id); });
}

void ArtIndex::catchUpTags() {
    changedTags_.settle([this](ArtId id) { refreshTags(id); });
}

void ArtIndex::fillBoxes() {
    boxesFilled_ = true;
    for (LayerId layer : document_.layers()) {
        std::vector<BoxTree::Item> items;
        visitSubtree(document_.layer(layer)->root, [&](const Art& art) {
            if (!isIndexed(art)) return;
            const RealRect box = boxOf(document_, art);
            if (isEmpty(box)) return;
            at(layerIndexed_, art.id) = layer;
            items.push_back({box, art.id});
        });
        treeOf(layer).load(std::move(items));
    }
}

BoxTree& ArtIndex::treeOf(LayerId layer) {
    std::unique_ptr<BoxTree>& tree = at(trees_, layer);
    if (!tree) tree = std::make_unique<BoxTree>(leafOf_);
    return *tree;
}

void ArtIndex::refreshBox(ArtId id) {
    const Art* art = document_.find(id);
    LayerId& before = at(layerIndexed_, id);
    const RealRect box = art != nullptr && isIndexed(*art) ? boxOf(document_, *art) : emptyRect();
    const LayerId now = isEmpty(box) ? 0 : document_.layerOf(id);
    if (before == now && (now == 0 || sameBox(treeOf(now).box(id), box))) return;
    if (before != 0) treeOf(before).remove(id);
    if (now != 0) treeOf(now).insert({box, id});
    before = now;
}

void ArtIndex::refreshTags(ArtId id) {
    for (auto& [name, index] : tagged_) index.put(id, document_.tag(id, name));
}

const TagIndex& ArtIndex::tagIndex(std::string_view name) {
    if (const auto known = tagged_.find(name); known != tagged_.end()) return known->second;
    TagIndex& index = tagged_[std::string(name)];
    for (LayerId layer : document_.layers()) {
        visitSubtree(document_.layer(layer)->root,
                     [&](const Art& art) { index.put(art.id, document_.tag(art.id, name)); });
    }
    return index;
}

// --- questions -----------------------------------------------------------------------------------------------------

bool ArtIndex::reachable(const Art& art, std::string_view excludeUnder) const {
    for (ArtId parent = art.parent; parent != 0;) {
        const Art& above = *document_.find(parent);
        if (above.kind != kGroupArt && above.kind != kCompoundPathArt) return false;
        if (!excludeUnder.empty() && bears(above, excludeUnder)) return false;
        parent = above.parent;
    }
    return true;
}

void ArtIndex::findAtPoint(LayerId layer, RealPoint point, float tolerance, std::string_view excludeUnder,
                           std::vector<ArtId>* out) {
    out->clear();
    if (document_.layer(layer) == nullptr) return;
    catchUpBoxes();
    candidates_.clear();
    treeOf(layer).find({lowEnd(point.h, tolerance), highEnd(point.v, tolerance), highEnd(point.h, tolerance),
                        lowEnd(point.v, tolerance)},
                       &candidates_);
    for (const BoxTree::Item& candidate : candidates_) {
        const Art& art = *document_.find(candidate.name);
        if (holds(art, candidate.box, point, tolerance) && reachable(art, excludeUnder)) out->push_back(art.id);
    }
    document_.sortInWalkOrder(out);
}

void ArtIndex::findByTag(std::string_view name, std::optional<std::string_view> value, std::vector<ArtId>* out) {
    out->clear();
    catchUpTags();
    const TagIndex& index = tagIndex(name);
    if (value) {
        index.find(*value, out);
        std::erase_if(*out, [&](ArtId art) {
            const std::string* borne = document_.tag(art, name);
            return borne == nullptr || tagKey(*borne) != tagKey(*value);
        });
    } else {
        index.all(out);
    }
    document_.sortInWalkOrder(out);
}

}  // namespace quorvel::doc
