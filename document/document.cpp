// What each change of the document demands, keeps, does and tells. Every changing function goes the same way: refuse,
// let the journal keep what stands, change, tell.
#include "document/document.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "document/bounds.h"
#include "document/document_impl.h"

namespace quorvel::doc {

namespace {

bool sameColor(const AIColor& a, const AIColor& b) {
    return a.kind == b.kind && a.gray == b.gray && std::equal(a.rgb, a.rgb + 3, b.rgb) &&
           a.gradientAngle == b.gradientAngle && a.gradientHiliteAngle == b.gradientHiliteAngle &&
           a.reference == b.reference;
}

bool sameStyle(const AIPathStyle& a, const AIPathStyle& b) {
    return a.fillPaint == b.fillPaint && a.strokePaint == b.strokePaint && sameColor(a.fill, b.fill) &&
           sameColor(a.stroke, b.stroke) && a.strokeWidth == b.strokeWidth && a.miterLimit == b.miterLimit &&
           a.cap == b.cap && a.join == b.join && a.dashOffset == b.dashOffset && a.dashCount == b.dashCount &&
           std::equal(a.dashes, a.dashes + 6, b.dashes);
}

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

bool isSound(const PathSegment& segment) {
    auto isPoint = [](RealPoint point) { return std::isfinite(point.h) && std::isfinite(point.v); };
    return isPoint(segment.p) && isPoint(segment.in) && isPoint(segment.out);
}

// The count of runs and units agree, and nothing in it is not a number.
bool isSound(const TextData& text) {
    std::int64_t units = 0;
    for (const TextRun& run : text.runs) {
        const CharFeatures& f = run.features;
        if (run.length < 0 || !std::isfinite(f.size) || !std::isfinite(f.horizontalScale)) return false;
        if (!std::isfinite(f.verticalScale) || !std::isfinite(f.baselineShift) || !std::isfinite(f.miterLimit)) {
            return false;
        }
        units += run.length;
    }
    return !text.runs.empty() && units == std::int64_t(text.text.size()) && isFinite(text.matrix) &&
           std::isfinite(text.firstLineIndent) && std::isfinite(text.startIndent);
}

bool isIdentity(const RealMatrix& m) { return m.a == 1 && m.b == 0 && m.c == 0 && m.d == 1 && m.tx == 0 && m.ty == 0; }

bool canHold(AIArtType parent, AIArtType child) {
    return parent == kGroupArt || (parent == kCompoundPathArt && child == kPathArt);
}

std::vector<Tag>::iterator findTag(std::vector<Tag>& tags, std::string_view name) {
    return std::find_if(tags.begin(), tags.end(), [name](const Tag& tag) { return tag.name == name; });
}

}  // namespace

bool CharFeatures::operator==(const CharFeatures& o) const {
    return font == o.font && size == o.size && horizontalScale == o.horizontalScale &&
           verticalScale == o.verticalScale && baselineShift == o.baselineShift && fillOn == o.fillOn &&
           strokeOn == o.strokeOn && sameColor(fill, o.fill) && sameColor(stroke, o.stroke) &&
           miterLimit == o.miterLimit;
}

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
    impl_->otherIds.reset();
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

ArtId Document::findBySvgId(std::string_view svgId) const { return impl_->drawing.tree.findBySvgId(svgId); }

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

// --- content -------------------------------------------------------------------------------------------------------

// Follows each change of one art's content.
void Document::Impl::done(Slot& slot, unsigned aspects) {
    if ((aspects & kShapeAspect) != 0) drawing.tree.invalidateBounds(slot.art.id);
    if ((aspects & kMarkAspect) != 0) slot.art.revision = ++lastRevision;
    drawing.tellChanged(slot.art.id);
}

bool Document::setSegments(ArtId id, std::size_t first, std::span<const PathSegment> segments) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr || !slot->art.path || first > slot->art.path->segments.size()) return false;
    for (const PathSegment& segment : segments) {
        if (!isSound(segment)) return false;
    }
    PathData& path = *slot->art.path;
    const bool grows = first + segments.size() > path.segments.size();
    if (!grows && (segments.empty() || std::memcmp(&path.segments[first], segments.data(), segments.size_bytes()) == 0))
        return true;
    impl_->journal.keep(*slot, kMarkAspect | kShapeAspect);
    if (grows) {
        path.segments.resize(first + segments.size());
        if (!path.segmentSelection.empty()) path.segmentSelection.resize(path.segments.size(), kSegmentNotSelected);
    }
    std::copy(segments.begin(), segments.end(), path.segments.begin() + std::ptrdiff_t(first));
    impl_->done(*slot, kMarkAspect | kShapeAspect);
    return true;
}

bool Document::setSegmentCount(ArtId id, std::size_t count) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr || !slot->art.path) return false;
    PathData& path = *slot->art.path;
    if (path.segments.size() == count) return true;
    impl_->journal.keep(*slot, kMarkAspect | kShapeAspect);
    path.segments.resize(count);
    if (!path.segmentSelection.empty()) path.segmentSelection.resize(count, kSegmentNotSelected);
    impl_->done(*slot, kMarkAspect | kShapeAspect);
    return true;
}

bool Document::setClosed(ArtId id, bool closed) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr || !slot->art.path) return false;
    if (slot->art.path->closed == closed) return true;
    impl_->journal.keep(*slot, kMarkAspect | kShapeAspect);
    slot->art.path->closed = closed;
    impl_->done(*slot, kMarkAspect | kShapeAspect);
    return true;
}

StylePtr Document::Impl::shared(const AIPathStyle& style) {
    if (!sameStyle(*lastStyle, style)) lastStyle = std::make_shared<const AIPathStyle>(style);
    return lastStyle;
}

bool Document::setStyle(ArtId id, const AIPathStyle& style) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr || !slot->art.path) return false;
    StylePtr& current = slot->art.path->style;
    if (current && sameStyle(*current, style)) return true;
    impl_->journal.keep(*slot, kMarkAspect | kShapeAspect);
    current = impl_->shared(style);
    impl_->done(*slot, kMarkAspect | kShapeAspect);
    return true;
}

bool Document::setText(ArtId id, const TextData& text) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr || !slot->art.text || !isSound(text)) return false;
    impl_->journal.keep(*slot, kMarkAspect | kShapeAspect);
    *slot->art.text = text;
    impl_->done(*slot, kMarkAspect | kShapeAspect);
    return true;
}

// What is moved beyond the largest float could not be written.
bool Document::Impl::canTransform(ArtId top, const RealMatrix& matrix) const {
    for (ArtId id = top; id != 0; id = drawing.tree.next(id, top)) {
        const Art& art = drawing.tree.slot(id).art;
        if (art.text && !isFinite(concatMatrix(art.text->matrix, matrix))) return false;
        if (art.kind == kForeignArt && !isFinite(concatMatrix(art.foreignMatrix, matrix))) return false;
        if (!art.path) continue;
        const RealRect box = drawing.tree.withBounds(id).controlBounds;
        if (!isEmpty(box) && !isFinite(transformRect(matrix, box))) return false;
    }
    return true;
}

void Document::Impl::transformShape(Slot& slot, const RealMatrix& matrix, float lineScale) {
    Art& art = slot.art;
    if (art.path) {
        for (PathSegment& segment : art.path->segments) {
            for (RealPoint* point : {&segment.p, &segment.in, &segment.out}) *point = transformPoint(matrix, *point);
        }
        if (lineScale != 1 && art.path->style) {
            AIPathStyle style = *art.path->style;
            style.strokeWidth *= lineScale;
            art.path->style = shared(style);
        }
    }
    if (art.text) art.text->matrix = concatMatrix(art.text->matrix, matrix);
    if (const RealMatrix moved = concatMatrix(art.foreignMatrix, matrix); isFinite(moved)) art.foreignMatrix = moved;
}

bool Document::transform(ArtId id, const RealMatrix& matrix, float lineScale) {
    ArtTree& tree = impl_->drawing.tree;
    if (tree.living(id) == nullptr || !isFinite(matrix) || !std::isfinite(lineScale)) return false;
    if (!impl_->canTransform(id, matrix)) return false;
    if (isIdentity(matrix) && lineScale == 1) return true;
    for (ArtId below = id; below != 0; below = tree.next(below, id)) {
        Slot& slot = tree.slot(below);
        if (!slot.art.path && !slot.art.text && slot.art.kind != kForeignArt) continue;
        impl_->journal.keep(slot, kMarkAspect | kShapeAspect);
        impl_->transformShape(slot, matrix, lineScale);
        impl_->done(slot, kMarkAspect | kShapeAspect);
    }
    return true;
}

bool Document::setTag(ArtId id, std::string_view name, std::string_view value) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr || name.empty()) return false;
    std::vector<Tag>& tags = slot->art.tags;
    const auto found = findTag(tags, name);
    if (found != tags.end() && found->value == value) return true;
    // The caller's text may be the one that is replaced.
    Tag tag{std::string(name), std::string(value)};
    impl_->journal.keep(*slot, kMarkAspect | kNameAspect);
    const std::string changed = tag.name;
    if (found != tags.end()) {
        found->value = std::move(tag.value);
    } else {
        tags.push_back(std::move(tag));
    }
    impl_->done(*slot, kMarkAspect | kNameAspect);
    impl_->drawing.tellTagChanged(id, changed);
    return true;
}

bool Document::removeTag(ArtId id, std::string_view name) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr) return false;
    std::vector<Tag>& tags = slot->art.tags;
    const auto found = findTag(tags, name);
    if (found == tags.end()) return true;
    impl_->journal.keep(*slot, kMarkAspect | kNameAspect);
    const std::string changed = std::move(found->name);
    tags.erase(found);
    impl_->done(*slot, kMarkAspect | kNameAspect);
    impl_->drawing.tellTagChanged(id, changed);
    return true;
}

bool Document::setSelected(ArtId id, bool selected) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr) return false;
    const bool inParts = slot->art.path && !slot->art.path->segmentSelection.empty();
    if (slot->art.selected == selected && !inParts) return true;
    impl_->journal.keep(*slot, kSelectionAspect);
    slot->art.selected = selected;
    if (inParts) slot->art.path->segmentSelection.clear();
    impl_->done(*slot, kSelectionAspect);
    return true;
}

bool Document::setSegmentSelected(ArtId id, std::size_t index, AISegmentSelection state) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr || !slot->art.path || index >= slot->art.path->segments.size()) return false;
    if (state < kSegmentNotSelected || state > kSegmentInAndOutSelected) return false;
    std::vector<std::uint8_t>& parts = slot->art.path->segmentSelection;
    const std::uint8_t whole = slot->art.selected ? kSegmentPointSelected : kSegmentNotSelected;
    if ((parts.empty() ? whole : parts[index]) == state) return true;
    impl_->journal.keep(*slot, kSelectionAspect);
    if (parts.empty()) parts.assign(slot->art.path->segments.size(), whole);
    parts[index] = std::uint8_t(state);
    slot->art.selected = std::any_of(parts.begin(), parts.end(), [](std::uint8_t part) { return part != 0; });
    if (!slot->art.selected) parts.clear();
    impl_->done(*slot, kSelectionAspect);
    return true;
}

bool Document::setHidden(ArtId id, bool hidden) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr) return false;
    if (slot->art.hidden == hidden) return true;
    impl_->journal.keep(*slot, kMarkAspect);
    slot->art.hidden = hidden;
    impl_->done(*slot, kMarkAspect);
    return true;
}

bool Document::setLocked(ArtId id, bool locked) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr) return false;
    if (slot->art.locked == locked) return true;
    impl_->journal.keep(*slot, kMarkAspect);
    slot->art.locked = locked;
    impl_->done(*slot, kMarkAspect);
    return true;
}

bool Document::setSvgId(ArtId id, const std::string& svgId) {
    Slot* slot = impl_->drawing.tree.living(id);
    if (slot == nullptr) return false;
    if (slot->art.svgId == svgId) return true;
    if (svgIdTaken(svgId)) return false;
    impl_->journal.keep(*slot, kMarkAspect | kNameAspect);
    impl_->drawing.tree.setSvgId(*slot, svgId);
    impl_->done(*slot, kMarkAspect | kNameAspect);
    return true;
}

// --- layers --------------------------------------------------------------------------------------------------------

LayerId Document::insertLayer(const std::string& title, LayerId above) {
    DocumentState& drawing = impl_->drawing;
    const LayerSlot* lower = drawing.livingLayer(above);
    if (above != 0 && lower == nullptr) return 0;
    const std::size_t position = lower != nullptr ? lower->position : 0;
    Layer& layer = drawing.createLayer(title).layer;
    layer.revision = ++impl_->lastRevision;
    drawing.tree.slot(layer.root).art.revision = ++impl_->lastRevision;
    drawing.insertLayer(layer.id, position);
    impl_->journal.add({.kind = TreeChange::kInsertLayer, .layer = layer.id, .position = position});
    return layer.id;
}

bool Document::moveLayer(LayerId id, std::size_t position) {
    DocumentState& drawing = impl_->drawing;
    const LayerSlot* layer = drawing.livingLayer(id);
    if (layer == nullptr || position >= drawing.layerOrder.size()) return false;
    const std::size_t from = layer->position;
    if (from == position) return true;
    drawing.moveLayer(id, position);
    impl_->journal.add({.kind = TreeChange::kMoveLayer, .layer = id, .position = position, .fromPosition = from});
    return true;
}

template <typename Value>
bool Document::Impl::changeLayer(LayerId id, Value Layer::*field, const Value& value) {
    LayerSlot* slot = drawing.livingLayer(id);
    if (slot == nullptr) return false;
    if (slot->layer.*field == value) return true;
    journal.keepLayer(*slot);
    slot->layer.*field = value;
    slot->layer.revision = ++lastRevision;
    drawing.tellLayersChanged();
    return true;
}

bool Document::setLayerTitle(LayerId id, const std::string& title) {
    return impl_->changeLayer(id, &Layer::title, title);
}

bool Document::setLayerVisible(LayerId id, bool visible) { return impl_->changeLayer(id, &Layer::visible, visible); }

bool Document::setLayerEditable(LayerId id, bool editable) {
    return impl_->changeLayer(id, &Layer::editable, editable);
}

bool Document::setCurrentLayer(LayerId id) {
    if (impl_->drawing.livingLayer(id) == nullptr) return false;
    if (impl_->drawing.currentLayer != id) impl_->drawing.selectLayer(id);
    return true;
}

// --- steps ---------------------------------------------------------------------------------------------------------

void Document::begin() { impl_->journal.begin(); }
bool Document::commit(const std::string& undoName, const std::string& redoName) {
    return impl_->journal.commit(undoName, redoName);
}
void Document::rollback() { impl_->journal.rollback(); }
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
    drawing.tree.indexSvgIds();
    drawing.finishLoading();
}

}  // namespace quorvel::doc
