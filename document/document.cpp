// The document's own reading, its tree of art, its steps and its loading. Every changing function goes the same way:
// refuse, let the journal keep what is there, change, tell the observers.
#include "document/document.h"

#include <algorithm>
#include <utility>

#include "document/bounds.h"
#include "document/document_impl.h"

namespace quorvel::doc {

namespace {

// Of new paths until they are given one: a black line of one point.
const StylePtr& plainStyle() {
    static const StylePtr style = [] {
        AIPathStyle plain;
        plain.strokePaint = 1;
        plain.stroke.gray = 1;
        plain.strokeWidth = 1;
        plain.miterLimit = 4;
        return std::make_shared<const AIPathStyle>(plain);
    }();
    return style;
}

bool canHold(AIArtType parent, AIArtType child) {
    return parent == kGroupArt || (parent == kCompoundPathArt && child == kPathArt);
}

}  // namespace

std::uint64_t Document::Impl::lastNumber = 0;

Document::Document(float width, float height) : impl_(std::make_unique<Impl>()) {
    impl_->lastStyle = plainStyle();
    impl_->width = width;
    impl_->height = height;
}

Document::~Document() = default;

// --- reading -------------------------------------------------------------------------------------------------------

std::uint64_t Document::number() const { return impl_->number; }
float Document::width() const { return impl_->width; }
float Document::height() const { return impl_->height; }
const std::vector<LayerId>& Document::layers() const { return impl_->drawing.layerOrder; }
LayerId Document::currentLayer() const { return impl_->drawing.currentLayer; }
std::size_t Document::artCount() const { return impl_->drawing.tree.count(); }
std::uint64_t Document::changeCount() const { return impl_->drawing.changeCount; }
bool Document::modified() const { return impl_->journal.modified(); }
void Document::markSaved() { impl_->journal.markSaved(); }
DocumentSource* Document::source() const { return impl_->source.get(); }
void Document::setSource(std::unique_ptr<DocumentSource> source) {
    impl_->source = std::move(source);
    impl_->reservedNames.reset();
}

const Layer* Document::layer(LayerId id) const {
    const LayerSlot* found = impl_->drawing.livingLayer(id);
    return found != nullptr ? &found->layer : nullptr;
}

const Art* Document::find(ArtId id) const {
    const Slot* found = impl_->drawing.tree.living(id);
    return found != nullptr ? &found->art : nullptr;
}

LayerId Document::layerOf(ArtId id) const { return find(id) != nullptr ? impl_->drawing.layerOf(id) : 0; }

ArtId Document::findByName(std::string_view name) const { return impl_->drawing.tree.findByName(name); }

const std::string* Document::tag(ArtId id, std::string_view name) const {
    const Art* art = find(id);
    if (art == nullptr) return nullptr;
    for (const Tag& tag : art->tags) {
        if (tag.name == name) return &tag.value;
    }
    return nullptr;
}

RealRect Document::bounds(ArtId id) const {
    return find(id) != nullptr ? impl_->drawing.tree.withBounds(id).bounds : emptyRect();
}

RealRect Document::controlBounds(ArtId id) const {
    return find(id) != nullptr ? impl_->drawing.tree.withBounds(id).controlBounds : emptyRect();
}

bool Document::precedes(ArtId a, ArtId b) const {
    if (find(a) == nullptr || find(b) == nullptr) return false;
    const DocumentState& drawing = impl_->drawing;
    const LayerId layerA = drawing.layerOf(a), layerB = drawing.layerOf(b);
    if (layerA == layerB) return drawing.tree.precedes(a, b);
    return drawing.livingLayer(layerA)->position < drawing.livingLayer(layerB)->position;
}

// Each art's way down from the layers is looked up once, so that the sorting itself stays within two arrays.
void Document::sortInWalkOrder(std::vector<ArtId>* arts) const {
    if (arts->size() < 2) return;
    struct Way {
        std::size_t first, end;
        ArtId art;
    };
    const DocumentState& drawing = impl_->drawing;
    std::vector<std::uint64_t> steps;
    std::vector<Way> ways;
    ways.reserve(arts->size());
    for (ArtId art : *arts) {
        const std::size_t first = steps.size();
        ArtId id = art;
        for (; drawing.tree.slot(id).art.parent != 0; id = drawing.tree.slot(id).art.parent)
            steps.push_back(drawing.tree.slot(id).order);
        steps.push_back(drawing.livingLayer(drawing.tree.slot(id).art.layer)->position);
        std::reverse(steps.begin() + std::ptrdiff_t(first), steps.end());
        ways.push_back({first, steps.size(), art});
    }
    std::sort(ways.begin(), ways.end(), [&steps](const Way& a, const Way& b) {
        const std::uint64_t* all = steps.data();
        return std::lexicographical_compare(all + a.first, all + a.end, all + b.first, all + b.end);
    });
    std::transform(ways.begin(), ways.end(), arts->begin(), [](const Way& way) { return way.art; });
}

// --- the tree ------------------------------------------------------------------------------------------------------

std::optional<Place> Document::Impl::placeFor(AIArtType kind, AIPaintOrder placement, ArtId prep) const {
    if (placement == kPlaceAboveAll) {
        const LayerSlot* layer = drawing.livingLayer(drawing.currentLayer);
        if (layer == nullptr) return std::nullopt;
        prep = layer->layer.root;
        placement = kPlaceInsideOnTop;
    }
    const Slot* beside = drawing.tree.living(prep);
    if (beside == nullptr) return std::nullopt;
    std::optional<Place> place;
    switch (placement) {
        case kPlaceAbove:
            place = {beside->art.parent, prep};
            break;
        case kPlaceBelow:
            place = {beside->art.parent, beside->art.below};
            break;
        case kPlaceInsideOnTop:
            place = {prep, beside->art.firstChild};
            break;
        case kPlaceInsideOnBottom:
            place = {prep, 0};
            break;
        case kPlaceAboveAll:
            break;
    }
    if (!place || place->parent == 0 || !canHold(drawing.tree.slot(place->parent).art.kind, kind)) return std::nullopt;
    return place;
}

// The art is made and whole, but in no place yet.
void Document::Impl::insertNew(ArtId art, Place place) {
    for (ArtId id = art; id != 0; id = drawing.tree.next(id, art)) drawing.tree.slot(id).art.revision = ++lastRevision;
    drawing.insert(art, place);
    journal.add({.kind = TreeChange::kInsert, .art = art, .to = place});
}

ArtId Document::insertArt(AIArtType kind, AIPaintOrder placement, ArtId prep) {
    if (kind != kGroupArt && kind != kPathArt && kind != kCompoundPathArt && kind != kTextFrameArt) return 0;
    const std::optional<Place> place = impl_->placeFor(kind, placement, prep);
    if (!place) return 0;
    Art& art = impl_->drawing.tree.create(kind).art;
    if (art.path) art.path->style = plainStyle();
    if (art.text) art.text->runs.emplace_back();
    impl_->insertNew(art.id, *place);
    return art.id;
}

bool Document::removeArt(ArtId id) {
    const Art* art = find(id);
    if (art == nullptr || art->parent == 0) return false;
    const Place from = impl_->drawing.tree.placeOf(id);
    impl_->drawing.remove(id);
    impl_->journal.add({.kind = TreeChange::kRemove, .art = id, .from = from});
    if (!inTransaction()) impl_->drawing.tree.release(id);
    return true;
}

bool Document::moveArt(ArtId id, AIPaintOrder placement, ArtId prep) {
    const Art* art = find(id);
    if (art == nullptr || art->parent == 0 || id == prep) return false;
    DocumentState& drawing = impl_->drawing;
    std::optional<Place> to = impl_->placeFor(art->kind, placement, prep);
    if (!to || drawing.tree.isWithin(to->parent, id)) return false;
    if (to->below == id) to->below = art->below;
    const Place from = drawing.tree.placeOf(id);
    if (*to == from) return true;
    impl_->journal.keep(drawing.tree.slot(id), kMarkAspect);
    drawing.move(id, *to);
    impl_->journal.add({.kind = TreeChange::kMove, .art = id, .from = from, .to = *to});
    impl_->done(drawing.tree.slot(id), kMarkAspect);
    return true;
}

// --- steps ---------------------------------------------------------------------------------------------------------

void Document::begin() {
    impl_->refusedRange = false;
    impl_->journal.begin();
}
bool Document::hasRefusedRange() const { return impl_->refusedRange; }
bool Document::commit(const std::string& undoName, const std::string& redoName) {
    return impl_->journal.commit(undoName, redoName);
}
void Document::rollback() {
    impl_->refusedRange = false;
    impl_->journal.rollback();
}
bool Document::joinLastSteps() { return impl_->journal.joinLast(); }
bool Document::inTransaction() const { return impl_->journal.open(); }
bool Document::undo() { return impl_->journal.undo(); }
bool Document::redo() { return impl_->journal.redo(); }
const std::string* Document::undoName() const { return impl_->journal.undoName(); }
const std::string* Document::redoName() const { return impl_->journal.redoName(); }

void Document::addObserver(DocumentObserver* observer) { impl_->drawing.observers.push_back(observer); }
void Document::removeObserver(DocumentObserver* observer) { std::erase(impl_->drawing.observers, observer); }

// --- loading -------------------------------------------------------------------------------------------------------

ArtId Document::loadArt(AIArtType kind, ArtId parent) {
    ArtTree& tree = impl_->drawing.tree;
    const ArtId id = tree.create(kind).art.id;
    tree.link(id, {parent, tree.slot(parent).art.firstChild});
    tree.raise(id);
    return id;
}

LayerId Document::loadLayer(const std::string& title) {
    const LayerId id = impl_->drawing.createLayer(title).layer.id;
    impl_->drawing.loadLayer(id);
    return id;
}

Art& Document::loading(ArtId id) { return impl_->drawing.tree.slot(id).art; }
Layer& Document::loadingLayer(LayerId id) { return impl_->drawing.layers[id - 1].layer; }

void Document::finishLoading() {
    DocumentState& drawing = impl_->drawing;
    for (LayerId layer : drawing.layerOrder) {
        const ArtId root = drawing.livingLayer(layer)->layer.root;
        for (ArtId id = root; id != 0; id = drawing.tree.next(id, root)) {
            Art& art = drawing.tree.slot(id).art;
            if (art.path && !art.path->style) art.path->style = plainStyle();
            if (art.text && art.text->runs.empty()) art.text->runs.emplace_back();
        }
    }
    drawing.tree.indexNames();
    drawing.finishLoading();
}

}  // namespace quorvel::doc
