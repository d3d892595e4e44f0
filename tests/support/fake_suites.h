// A host of a few lines for tests of the plug-in's functions: it records the art that they make, answers what a test
// has laid down (fonts, ruler, zoom, layers) and gives them a global record with default settings. One at a time;
// taking it down leaves the suite pointers as they were before.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "plugin/shell/globals.h"

namespace quorvel::tests {

struct FakeArt {
    std::int16_t kind = kUnknownArt;
    int parent = -1;  // index into FakeHost::arts
    bool disposed = false;
    // Of a path.
    AIPathStyle style;
    bool closed = false;
    std::vector<PathSegment> segments;
    // Of a text.
    std::u16string text;
    int fontIndex = -1;
    float fontSize = 0;
    std::int32_t justification = -1;
    std::vector<RealMatrix> transforms;  // in the order in which they came
};

struct FakeLayer {
    std::string title;  // bytes of the system code page, as the plug-in gave them
    bool visible = true, editable = true;
    int root = -1;  // index of its root group
};

struct FakeFont {
    std::string name;
    float width = 0.5F;      // of every character
    float wideWidth = 1.0F;  // of characters of more than one byte
};

class FakeHost {
  public:
    FakeHost();
    ~FakeHost();
    FakeHost(const FakeHost&) = delete;
    FakeHost& operator=(const FakeHost&) = delete;

    PluginGlobals& globals() { return *globals_; }
    PrefsRecord& prefs() { return globals_->prefs; }
    // A new group without a layer, for primitives that want one.
    AIArtHandle newGroup();
    // What the group holds, bottom to top.
    std::vector<FakeArt> piecesOf(AIArtHandle group) const;
    int addLayer(const std::string& title);  // on top; its index in layers
    static AILayerHandle layerHandle(int index);

    std::vector<FakeArt> arts;
    std::vector<FakeLayer> layers;  // in the order of making, not of stacking
    int currentLayer = 0;
    std::vector<FakeFont> fonts = {{"Standard"}};
    std::string rulerText = "0 mm";
    float zoom = 1.0F;
    bool refusesArt = false;  // NewArt and NewPointText fail

  private:
    std::unique_ptr<PluginGlobals> globals_;
    std::vector<ChainBuffer*> chains_;
};

}  // namespace quorvel::tests
