// The suite of layers.
#include <algorithm>

#include "host/host_state.h"

namespace quorvel::host {

namespace {

AIErr countLayers(std::int32_t* count) {
    deref(count) = static_cast<std::int32_t>(theDocument().layers().size());
    return kNoErr;
}

AIErr getNthLayer(std::int32_t index, AILayerHandle* layer) {
    const std::vector<doc::LayerId>& layers = theDocument().layers();
    require(index >= 0 && static_cast<std::size_t>(index) < layers.size());
    deref(layer) = layerHandle(layers[index]);
    return kNoErr;
}

AIErr getCurrentLayer(AILayerHandle* layer) {
    deref(layer) = layerHandle(theDocument().currentLayer());
    return kNoErr;
}

AIErr getLayerByTitle(AIUnicodeStringRef title, AILayerHandle* layer) {
    const std::string wanted = utf8Of(title);
    const doc::Document& document = theDocument();
    const auto hasTitle = [&](doc::LayerId id) { return document.layer(id)->title == wanted; };
    const auto found = std::find_if(document.layers().begin(), document.layers().end(), hasTitle);
    deref(layer) = found == document.layers().end() ? nullptr : layerHandle(*found);
    return kNoErr;
}

AIErr insertLayer(AILayerHandle prep, std::int16_t placement, AILayerHandle* layer) {
    require(layer != nullptr && (placement == kPlaceAboveAll || placement == kPlaceAbove));
    const doc::LayerId above = placement == kPlaceAbove ? layerOf(prep).id : 0;
    const doc::LayerId made = changeDocument([&](doc::Document& document) {
        const doc::LayerId current = document.currentLayer();
        const doc::LayerId inserted =
            document.insertLayer("Layer " + std::to_string(document.layers().size() + 1), above);
        if (current != 0) document.setCurrentLayer(current);  // a new layer is not at once the current one
        return inserted;
    });
    require(made != 0);
    *layer = layerHandle(made);
    return kNoErr;
}

AIErr setLayerTitle(AILayerHandle layer, AIUnicodeStringRef title) {
    const doc::LayerId id = layerOf(layer).id;
    const std::string text = utf8Of(title);
    require(changeDocument([&](doc::Document& document) { return document.setLayerTitle(id, text); }));
    return kNoErr;
}

AIErr getLayerVisible(AILayerHandle layer, AIBoolean* visible) {
    deref(visible) = layerOf(layer).visible;
    return kNoErr;
}

AIErr getLayerEditable(AILayerHandle layer, AIBoolean* editable) {
    deref(editable) = layerOf(layer).editable;
    return kNoErr;
}

}  // namespace

SuiteRecord layerSuite() {
    static const AILayerSuite suite = [] {
        auto s = refusingSuite<AILayerSuite>();
        s.CountLayers = slot<countLayers>;
        s.GetNthLayer = slot<getNthLayer>;
        s.GetCurrentLayer = slot<getCurrentLayer>;
        s.GetLayerByTitle = slot<getLayerByTitle>;
        s.InsertLayer = slot<insertLayer>;
        s.SetLayerTitle = slot<setLayerTitle>;
        s.GetLayerVisible = slot<getLayerVisible>;
        s.GetLayerEditable = slot<getLayerEditable>;
        return s;
    }();
    return recordOf(suite);
}

}  // namespace quorvel::host
