// A screen that nobody sees: the window tree round a document's view, and the pixels of the view that are inverted now.
// Drawing flips pixels, so that a shape drawn twice leaves the set as it was.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "platform/window.h"

namespace quorvel::platform {

// One window of the tree. The whole of it is client area, whose origin is the rectangle's upper left corner.
struct TreeWindow {
    std::string title;
    PixelRect rect;  // on the screen
    bool visible = true;
    std::int32_t number = 0;
    TreeWindow* parent = nullptr;
    std::vector<std::unique_ptr<TreeWindow>> children;  // in z order
};

// A surface over one window, between BeginSurface and EndSurface.
struct PixelSurface {
    std::int64_t originH = 0, originV = 0;  // of its window, seen from the canvas
    Pixel current;
    bool dotted = false;  // the current point stands inverted already
};

class ViewScreen {
  public:
    ViewScreen();

    void openView(const std::string& title, int width, int height);
    void closeView();
    void setTitle(const std::string& title);
    void repainted();
    std::size_t visiblePixels() const { return inverted_.size(); }
    // Calls visit(h, v) for each pixel that is inverted now, counted from the canvas, in no order.
    template <typename Visit>
    void forEachInverted(Visit visit) const {
        for (const std::uint64_t key : inverted_)
            visit(static_cast<std::int64_t>(key >> 32) - kReach, static_cast<std::int64_t>(key & 0xFFFFFFFF) - kReach);
    }
    // Coordinates that a view can show; the set of inverted pixels does not grow with a shape's length beyond it.
    static constexpr std::int64_t kReach = 32768;
    std::uint32_t generation() const { return generation_; }

    // Null for a window that does not stand any more.
    const TreeWindow* find(ViewWindowRef window) const;
    ViewWindowRef first(ViewWindowRef parent) const;
    ViewWindowRef next(ViewWindowRef window) const;

    SurfaceRef begin(ViewWindowRef window);
    void end(SurfaceRef surface);
    void moveTo(SurfaceRef surface, Pixel point);
    void lineTo(SurfaceRef surface, Pixel point);
    void arc(SurfaceRef surface, PixelRect box, Pixel start, Pixel end);

  private:
    PixelSurface* surfaceAt(SurfaceRef surface) const;
    void invert(std::int64_t h, std::int64_t v);

    TreeWindow desktop_;
    TreeWindow* document_ = nullptr;  // the document's top-level window
    TreeWindow* canvas_ = nullptr;
    std::int32_t lastNumber_ = 0;
    std::uint32_t generation_ = 1;
    std::unordered_set<std::uint64_t> inverted_;
    std::vector<std::unique_ptr<PixelSurface>> surfaces_;

    TreeWindow* add(TreeWindow* parent, std::string title, PixelRect rect, bool visible = true);
};

}  // namespace quorvel::platform
