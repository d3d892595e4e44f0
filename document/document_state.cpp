// Changes that keep tree, layers and observers in step.
#include "document/document_state.h"

#include <algorithm>

namespace quorvel::doc {

template <typename Message>
void DocumentState::tell(const Message& message) {
    ++changeCount;
    for (DocumentObserver* observer : observers) message(*observer);
}

LayerSlot* DocumentState::livingLayer(LayerId id) {
    return id >= 1 && id <= layers.size() && layers[id - 1].alive ? &layers[id - 1] : nullptr;
}

const LayerSlot* DocumentState::livingLayer(LayerId id) const {
    return const_cast<DocumentState*>(this)->livingLayer(id);
}

LayerSlot& DocumentState::createLayer(const std::string& title) {
    LayerSlot& made = layers.emplace_back();
    made.layer.id = LayerId(layers.size());
    made.layer.title = title;
    Slot& root = tree.create(kGroupArt);
    root.art.layer = made.layer.id;
    made.layer.root = root.art.id;
    return made;
}

LayerId DocumentState::layerOf(ArtId id) const { return tree.slot(tree.rootOf(id)).art.layer; }

void DocumentState::insert(ArtId art, Place place) {
    tree.link(art, place);
    tree.raise(art);
    tell([art](DocumentObserver& observer) { observer.artInserted(art); });
}

void DocumentState::remove(ArtId art) {
    tree.unlink(art);
    tell([art](DocumentObserver& observer) { observer.artRemoved(art); });
    tree.bury(art);
}

void DocumentState::move(ArtId art, Place place) {
    tree.unlink(art);
    tell([art](DocumentObserver& observer) { observer.artRemoved(art); });
    tree.link(art, place);
    tell([art](DocumentObserver& observer) { observer.artInserted(art); });
}

void DocumentState::renumberLayers() {
    for (std::size_t i = 0; i < layerOrder.size(); ++i) layers[layerOrder[i] - 1].position = i;
}

void DocumentState::insertLayer(LayerId id, std::size_t position) {
    LayerSlot& layer = layers[id - 1];
    layerOrder.insert(layerOrder.begin() + std::ptrdiff_t(position), id);
    layer.alive = true;
    renumberLayers();
    if (currentLayer == 0) currentLayer = id;
    tree.raise(layer.layer.root);
    tell([&layer](DocumentObserver& observer) {
        observer.artInserted(layer.layer.root);
        observer.layersChanged();
    });
}

void DocumentState::loadLayer(LayerId id) {
    layerOrder.push_back(id);
    layers[id - 1].alive = true;
    if (currentLayer == 0) currentLayer = id;
    tree.raise(layers[id - 1].layer.root);
}

void DocumentState::finishLoading() {
    std::ranges::reverse(layerOrder);
    renumberLayers();
    tellLayersChanged();
}

void DocumentState::removeLayer(LayerId id) {
    LayerSlot& layer = layers[id - 1];
    tell([&layer](DocumentObserver& observer) { observer.artRemoved(layer.layer.root); });
    tree.bury(layer.layer.root);
    layerOrder.erase(layerOrder.begin() + std::ptrdiff_t(layer.position));
    layer.alive = false;
    renumberLayers();
    if (currentLayer == id) currentLayer = layerOrder.empty() ? 0 : layerOrder.front();
    tellLayersChanged();
}

void DocumentState::moveLayer(LayerId id, std::size_t position) {
    layerOrder.erase(layerOrder.begin() + std::ptrdiff_t(layers[id - 1].position));
    layerOrder.insert(layerOrder.begin() + std::ptrdiff_t(position), id);
    renumberLayers();
    tellLayersChanged();
}

void DocumentState::selectLayer(LayerId layer) {
    currentLayer = layer;
    tellLayersChanged();
}

void DocumentState::tellChanged(ArtId art) {
    tell([art](DocumentObserver& observer) { observer.artChanged(art); });
}

void DocumentState::tellTagChanged(ArtId art, const std::string& name) {
    tell([art, &name](DocumentObserver& observer) { observer.tagChanged(art, name); });
}

void DocumentState::tellLayersChanged() {
    tell([](DocumentObserver& observer) { observer.layersChanged(); });
}

}  // namespace quorvel::doc
