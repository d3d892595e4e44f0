#include "interchange/svg/save_plan.h"

#include <algorithm>

#include "interchange/svg/art_hash.h"
#include "interchange/svg/own_attributes.h"
#include "svg/markup/element_spans.h"

namespace quorvel::interchange {

using svg::Role;

SavePlan::SavePlan(const doc::Document& document, const SaveBase& base)
    : document_(document), base_(base), source_(base.source()) {
    listChildren();
    planLayers();
    checkArt();
}

void SavePlan::listChildren() {
    const auto count = source_.tree.size();
    const auto forEachChild = [&](auto visit) {
        for (std::size_t i = 1; i < count; ++i) {
            const svg::Element& child = source_.tree.elements[i];
            if (!child.isInstance) visit(static_cast<std::size_t>(child.parent), static_cast<std::int32_t>(i));
        }
    };
    childStart_.assign(count + 1, 0);
    forEachChild([&](std::size_t parent, std::int32_t) { ++childStart_[parent + 1]; });
    for (std::size_t i = 0; i < count; ++i) childStart_[i + 1] += childStart_[i];
    childList_.resize(childStart_[count]);
    std::vector<std::size_t> next(childStart_.begin(), childStart_.end() - 1);
    forEachChild([&](std::size_t parent, std::int32_t child) { childList_[next[parent]++] = child; });
    isDirty_.assign(count, false);
    isPresent_.assign(count, false);
}

std::span<const std::int32_t> SavePlan::childrenOf(std::int32_t number) const {
    const auto at = static_cast<std::size_t>(number);
    return std::span(childList_).subspan(childStart_[at], childStart_[at + 1] - childStart_[at]);
}

std::vector<SaveItem> SavePlan::itemsOf(const doc::Art& parent) const {
    std::vector<SaveItem> items;
    for (doc::ArtId id = parent.lastChild; id != 0;) {
        const doc::Art* child = document_.find(id);
        items.push_back({child, nullptr, base_.elementOf(*child)});
        id = child->above;
    }
    return items;
}

// Art in no layer element stays so while its layer's state can be left unsaid.
void SavePlan::planLayers() {
    const std::vector<doc::LayerId>& layers = document_.layers();
    std::vector<const doc::Layer*> loose;
    bool hasLayerElements = false, behindLoose = false;
    for (auto id = layers.rbegin(); id != layers.rend(); ++id) {
        const doc::Layer* layer = document_.layer(*id);
        const doc::Art* root = document_.find(layer->root);
        const std::int32_t element = base_.elementOf(*layer);
        const bool sayable = layer->visible && layer->editable && (root->firstChild != 0 || layers.size() == 1);
        // Two such layers next to each other would be read as one.
        if (element == 0 && sayable && !behindLoose) {
            behindLoose = true;
            loose.push_back(layer);
            const std::vector<SaveItem> items = itemsOf(*root);
            rootItems_.insert(rootItems_.end(), items.begin(), items.end());
        } else {
            hasLayerElements = true;
            behindLoose = false;
            if (element == 0) wrapped_.push_back(layer);
            rootItems_.push_back({root, layer, element > 0 ? element : -1});
        }
    }
    planTitles(loose, hasLayerElements);
    planCurrentLayer();
}

// The titles of loose layers are said only where a reader would give them others.
void SavePlan::planTitles(const std::vector<const doc::Layer*>& loose, bool hasLayerElements) {
    const svg::StartTag root = startTag(0);
    const std::vector<std::string> said =
        decodeList(root.attribute(source_.names().own + own_attribute::kLayerTitles).value_or(""));
    bool asSaid = true;
    bool asGiven = true;
    std::vector<std::string> titles;
    for (std::size_t i = 0; i < loose.size(); ++i) {
        std::string given = "Layer 1";
        if (hasLayerElements) given = i == 0 ? "<root>" : "<root> " + std::to_string(i + 1);
        titles.push_back(loose[i]->title);
        asGiven &= loose[i]->title == given;
        asSaid &= loose[i]->title == (i < said.size() ? said[i] : given);
    }
    if (!asSaid) looseTitles_ = asGiven ? "" : encodeList(titles);
}

void SavePlan::planCurrentLayer() {
    const doc::LayerId current = document_.currentLayer();
    const doc::Layer* layer = document_.layer(current);
    if (!layer) return;
    // What a reader would find: the named layer while it is where it was, else the topmost.
    const doc::Layer* named = document_.layer(source_.currentLayer);
    const doc::LayerId given = named && !isWrapped(named) ? named->id : document_.layers().front();
    if (given == current) return;
    const std::int32_t own = isWrapped(layer) ? -1 : base_.elementOf(*layer);
    if (own >= 0) currentId_ = startTag(own).attribute("id").value_or("");
    if (currentId_.empty()) {
        int number = 1;
        do {
            currentId_ = "quorvel-layer-" + std::to_string(number++);
        } while (document_.isNameTaken(currentId_));
        needsId_ = layer;
    }
}

void SavePlan::checkArt() {
    bool changed = !sameItems(rootItems_, 0);
    for (const SaveItem& item : rootItems_) changed |= check(item);
    isDirty_[0] = changed;
}

bool SavePlan::isWrapped(const doc::Layer* layer) const { return std::ranges::find(wrapped_, layer) != wrapped_.end(); }

bool SavePlan::rootNeedsId() const {
    return needsId_ != nullptr && base_.elementOf(*needsId_) == 0 && !isWrapped(needsId_);
}

svg::StartTag SavePlan::startTag(std::int32_t number) const {
    return svg::StartTag(svg::startTagText(*source_.text, source_.element(number).nameOffset), &source_.entities());
}

bool SavePlan::sameItems(std::span<const SaveItem> items, std::int32_t number) const {
    return std::ranges::equal(items, childrenOf(number), {}, &SaveItem::element);
}

bool SavePlan::check(const SaveItem& item) {
    if (item.element < 0) {
        for (const SaveItem& child : itemsOf(*item.art)) check(child);
        return true;
    }
    const Role role = source_.element(item.element).role;
    const doc::Art& art = *item.art;
    isPresent_[static_cast<std::size_t>(item.element)] = true;
    bool changed = item.layer ? item.layer->revision != 0 || item.layer == needsId_ : art.revision != 0;
    if (svg::isGroup(role)) {
        const std::vector<SaveItem> items = itemsOf(art);
        changed |= !sameItems(items, item.element);
        for (const SaveItem& child : items) changed |= check(child);
    } else if (role == Role::kUse) {
        changed |= contentHash(document_, art) != source_.record(item.element).content;
    } else if (art.kind == kCompoundPathArt) {
        changed |= membersChanged(art, source_.record(item.element));
    }
    changed = changed || (base_.writtenOut(art) && looksOther(document_, source_, art, nullptr, item.element));
    isDirty_[static_cast<std::size_t>(item.element)] = changed;
    return changed;
}

bool SavePlan::membersChanged(const doc::Art& art, const SvgRecord& record) const {
    if (outlineHash(document_, art) != record.content) return true;
    return std::ranges::any_of(itemsOf(art), [](const SaveItem& item) { return item.art->revision != 0; });
}

}  // namespace quorvel::interchange
