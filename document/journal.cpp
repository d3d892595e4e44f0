// Keeping what a change is about to overwrite, and exchanging it with what is current.
#include "document/journal.h"

#include <cassert>
#include <unordered_set>
#include <utility>

namespace quorvel::doc {

namespace {

std::unique_ptr<PathData> shapeOf(const PathData* path) {
    if (path == nullptr) return nullptr;
    auto kept = std::make_unique<PathData>();
    kept->segments = path->segments;
    kept->closed = path->closed;
    kept->guide = path->guide;
    kept->style = path->style;
    return kept;
}

const std::string* valueOf(const std::vector<Tag>& tags, const std::string& name) {
    for (const Tag& tag : tags) {
        if (tag.name == name) return &tag.value;
    }
    return nullptr;
}

// Names of tags that one has and the other has not, or has with another value.
std::vector<std::string> differingTags(const std::vector<Tag>& a, const std::vector<Tag>& b) {
    std::vector<std::string> names;
    for (const Tag& tag : a) {
        const std::string* other = valueOf(b, tag.name);
        if (other == nullptr || *other != tag.value) names.push_back(tag.name);
    }
    for (const Tag& tag : b) {
        if (valueOf(a, tag.name) == nullptr) names.push_back(tag.name);
    }
    return names;
}

// Appends what is kept of arts, or of layers, that are not among those kept already.
template <typename Kept, typename Name>
void addUntouched(std::vector<Kept>* to, std::vector<Kept>* from, Name Kept::*name) {
    std::unordered_set<Name> touched;
    for (const Kept& kept : *to) touched.insert(kept.*name);
    for (Kept& kept : *from)
        if (!touched.contains(kept.*name)) to->push_back(std::move(kept));
}

}  // namespace

// --- transactions --------------------------------------------------------------------------------------------------

void Journal::startStep() {
    step_ = {};
    ++transaction_;
    currentLayerBefore_ = drawing_.currentLayer;
}

void Journal::begin() {
    assert(!open_);
    open_ = true;
    startStep();
}

bool Journal::commit(const std::string& undoName, const std::string& redoName) {
    open_ = false;
    if (!step_.changesDocument()) return false;
    dropUndone();
    if (currentLayerBefore_ != drawing_.currentLayer) step_.currentLayer = currentLayerBefore_;
    step_.undoName = undoName;
    step_.redoName = redoName;
    step_.before = state_;
    step_.after = state_ = ++lastState_;
    done_.push_back(std::move(step_));
    return true;
}

void Journal::rollback() {
    if (!open_) return;
    Step undone = std::move(step_);
    if (currentLayerBefore_ != drawing_.currentLayer) undone.currentLayer = currentLayerBefore_;
    play(undone, false);
    release(undone, TreeChange::kInsert);
    startStep();
}

// Content is kept as it was before the first of them; the second keeps only what the first has not touched.
bool Journal::joinLast() {
    if (open_ || done_.size() < 2) return false;
    Step last = std::move(done_.back());
    done_.pop_back();
    Step& step = done_.back();
    step.tree.insert(step.tree.end(), last.tree.begin(), last.tree.end());
    addUntouched(&step.selections, &last.selections, &KeptSelection::art);
    addUntouched(&step.marks, &last.marks, &KeptMarks::art);
    addUntouched(&step.shapes, &last.shapes, &KeptShape::art);
    addUntouched(&step.names, &last.names, &KeptNames::art);
    addUntouched(&step.layers, &last.layers, &Layer::id);
    if (step.currentLayer == 0) step.currentLayer = last.currentLayer;
    step.after = last.after;
    return true;
}

bool Journal::undo() {
    if (open_ || done_.empty()) return false;
    Step step = std::move(done_.back());
    done_.pop_back();
    play(step, false);
    state_ = step.before;
    undone_.push_back(std::move(step));
    return true;
}

bool Journal::redo() {
    if (open_ || undone_.empty()) return false;
    Step step = std::move(undone_.back());
    undone_.pop_back();
    play(step, true);
    state_ = step.after;
    done_.push_back(std::move(step));
    return true;
}

bool Journal::modified() const { return state_ != saved_ || (open_ && step_.changesDocument()); }

// Frees dead art of a step that is never played again.
void Journal::release(const Step& step, TreeChange::Kind kind) {
    for (const TreeChange& change : step.tree) {
        if (change.kind == kind && drawing_.tree.living(change.art) == nullptr) drawing_.tree.release(change.art);
    }
}

// Only what these steps had made is theirs alone: what they had removed may since have been removed again by a step
// that stays.
void Journal::dropUndone() {
    for (const Step& step : undone_) release(step, TreeChange::kInsert);
    undone_.clear();
}

void Journal::changeUnkept() {
    dropUndone();
    for (const Step& step : done_) release(step, TreeChange::kRemove);
    done_.clear();
    state_ = ++lastState_;
}

// --- keeping -------------------------------------------------------------------------------------------------------

bool Journal::keptAlready(const Slot& slot, unsigned aspect) const {
    return slot.keptIn == transaction_ && (slot.kept & aspect) != 0;
}

void Journal::keep(Slot& slot, unsigned aspects) {
    const Art& art = slot.art;
    if (!open_) {
        if (aspects != kSelectionAspect) changeUnkept();
        return;
    }
    // Another number of segments needs another selection.
    if ((aspects & kShapeAspect) != 0 && art.path && !art.path->segmentSelection.empty()) aspects |= kSelectionAspect;
    if (slot.keptIn != transaction_) {
        slot.keptIn = transaction_;
        slot.kept = 0;
    }
    const unsigned fresh = aspects & ~unsigned{slot.kept};
    slot.kept = std::uint8_t(slot.kept | aspects);
    if ((fresh & kSelectionAspect) != 0) {
        step_.selections.push_back({art.id, art.selected, {}});
        if (art.path) step_.selections.back().segments = art.path->segmentSelection;
    }
    if ((fresh & kMarkAspect) != 0) step_.marks.push_back({art.id, art.hidden, art.locked, art.revision});
    if ((fresh & kShapeAspect) != 0) {
        step_.shapes.push_back({art.id, shapeOf(art.path.get()),
                                art.text ? std::make_unique<TextData>(*art.text) : nullptr, art.foreignMatrix});
    }
    if ((fresh & kNameAspect) != 0) step_.names.push_back({art.id, art.name, art.tags});
}

void Journal::keepLayer(LayerSlot& layer) {
    if (!open_) {
        changeUnkept();
        return;
    }
    if (layer.keptIn == transaction_) return;
    layer.keptIn = transaction_;
    step_.layers.push_back(layer.layer);
}

void Journal::add(const TreeChange& change) {
    if (!open_) {
        changeUnkept();
        return;
    }
    step_.tree.push_back(change);
    // What a transaction has made goes as a whole when it is undone.
    if (change.kind == TreeChange::kInsert) {
        for (ArtId id = change.art; id != 0; id = drawing_.tree.next(id, change.art)) {
            drawing_.tree.slot(id).keptIn = transaction_;
            drawing_.tree.slot(id).kept = kAllAspects;
        }
    }
    if (change.kind == TreeChange::kInsertLayer) drawing_.layers[change.layer - 1].keptIn = transaction_;
}

// --- playing -------------------------------------------------------------------------------------------------------

void Journal::revert(const TreeChange& change) {
    switch (change.kind) {
        case TreeChange::kInsert:
            drawing_.remove(change.art);
            break;
        case TreeChange::kRemove:
            drawing_.insert(change.art, change.from);
            break;
        case TreeChange::kMove:
            drawing_.move(change.art, change.from);
            break;
        case TreeChange::kInsertLayer:
            drawing_.removeLayer(change.layer);
            break;
        case TreeChange::kMoveLayer:
            drawing_.moveLayer(change.layer, change.fromPosition);
            break;
    }
}

void Journal::apply(const TreeChange& change) {
    switch (change.kind) {
        case TreeChange::kInsert:
            drawing_.insert(change.art, change.to);
            break;
        case TreeChange::kRemove:
            drawing_.remove(change.art);
            break;
        case TreeChange::kMove:
            drawing_.move(change.art, change.to);
            break;
        case TreeChange::kInsertLayer:
            drawing_.insertLayer(change.layer, change.position);
            break;
        case TreeChange::kMoveLayer:
            drawing_.moveLayer(change.layer, change.position);
            break;
    }
}

void Journal::play(Step& step, bool forward) {
    const LayerId currentLayer = drawing_.currentLayer;
    if (forward) {
        for (const TreeChange& change : step.tree) apply(change);
    } else {
        for (std::size_t i = step.tree.size(); i-- > 0;) revert(step.tree[i]);
    }
    exchangeContent(step);
    for (Layer& kept : step.layers) std::swap(drawing_.layers[kept.id - 1].layer, kept);
    if (step.currentLayer != 0) {
        const LayerId other = std::exchange(step.currentLayer, currentLayer);
        if (drawing_.livingLayer(other) != nullptr) drawing_.currentLayer = other;
    }
    if (!step.layers.empty() || step.currentLayer != 0) drawing_.tellLayersChanged();
}

// Applies what is kept and keeps what was. Art that is dead on this side of the step is exchanged too: what it
// was comes to light when an earlier step revives it.
void Journal::exchangeContent(Step& step) {
    for (KeptShape& kept : step.shapes) exchangeShape(kept);
    for (KeptSelection& kept : step.selections) {
        Art& art = drawing_.tree.slot(kept.art).art;
        std::swap(art.selected, kept.selected);
        if (art.path) art.path->segmentSelection.swap(kept.segments);
    }
    for (const KeptShape& kept : step.shapes) {
        // A selection that was made between the steps may be of another length.
        PathData* path = drawing_.tree.slot(kept.art).art.path.get();
        if (path != nullptr && !path->segmentSelection.empty()) path->segmentSelection.resize(path->segments.size());
    }
    for (KeptMarks& kept : step.marks) {
        Art& art = drawing_.tree.slot(kept.art).art;
        std::swap(art.hidden, kept.hidden);
        std::swap(art.locked, kept.locked);
        std::swap(art.revision, kept.revision);
    }
    for (KeptNames& kept : step.names) exchangeNames(kept);
    // Every change of what is written has kept the marks.
    for (const KeptMarks& kept : step.marks) tellIfLiving(kept.art);
    for (const KeptSelection& kept : step.selections) tellIfLiving(kept.art);
}

void Journal::tellIfLiving(ArtId art) {
    if (drawing_.tree.living(art) != nullptr) drawing_.tellChanged(art);
}

void Journal::exchangeShape(KeptShape& kept) {
    Art& art = drawing_.tree.slot(kept.art).art;
    if (art.path && kept.path) {
        art.path->segments.swap(kept.path->segments);
        std::swap(art.path->closed, kept.path->closed);
        std::swap(art.path->guide, kept.path->guide);
        art.path->style.swap(kept.path->style);
    }
    art.text.swap(kept.text);
    std::swap(art.foreignMatrix, kept.foreignMatrix);
    drawing_.tree.invalidateBounds(kept.art);
}

void Journal::exchangeNames(KeptNames& kept) {
    Slot& slot = drawing_.tree.slot(kept.art);
    std::string name = slot.art.name;
    if (name != kept.name) drawing_.tree.setName(slot, std::exchange(kept.name, std::move(name)));
    slot.art.tags.swap(kept.tags);
    if (!slot.art.alive) return;
    for (const std::string& name : differingTags(slot.art.tags, kept.tags)) {
        drawing_.tellTagChanged(kept.art, name);
    }
}

}  // namespace quorvel::doc
