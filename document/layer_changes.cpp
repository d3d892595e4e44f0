// Changes of the layers: their order, names and states, and which of them is current.
#include "document/document.h"
#include "document/document_impl.h"

namespace quorvel::doc {

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

}  // namespace quorvel::doc
