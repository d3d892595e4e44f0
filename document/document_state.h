// The state of a document and those who are told of its changes: the tree of art, the layers, the current layer. The
// journal plays steps back and forth on it.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "document/art_tree.h"

namespace quorvel::doc {

struct LayerSlot {
    Layer layer;
    bool alive = false;
    std::size_t position = 0;  // from the top, while it is alive
    std::uint32_t keptIn = 0;  // the transaction since which the journal holds it
};

struct DocumentState {
    ArtTree tree;
    std::deque<LayerSlot> layers;     // by LayerId - 1
    std::vector<LayerId> layerOrder;  // top first
    LayerId currentLayer = 0;
    std::vector<DocumentObserver*> observers;
    std::uint64_t changeCount = 0;

    LayerSlot* livingLayer(LayerId id);
    const LayerSlot* livingLayer(LayerId id) const;
    LayerSlot& createLayer(const std::string& title);  // with its root; not yet alive
    LayerId layerOf(ArtId id) const;

    // These tell the observers.
    void insert(ArtId art, Place place);  // with all that is below it
    void remove(ArtId art);
    void move(ArtId art, Place place);
    void insertLayer(LayerId layer, std::size_t position);
    void removeLayer(LayerId layer);
    void moveLayer(LayerId layer, std::size_t position);
    void selectLayer(LayerId layer);
    void tellChanged(ArtId art);
    void tellTagChanged(ArtId art, const std::string& name);
    void tellLayersChanged();

    // While a file is read, the lowest first: they are in their order, and are told of, at the end.
    void loadLayer(LayerId layer);
    void finishLoading();

  private:
    template <typename Message>
    void tell(const Message& message);
    void renumberLayers();
};

}  // namespace quorvel::doc
