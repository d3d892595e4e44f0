// A screen that nobody sees: the window tree round a document's view, and the pixels of the view that are inverted now.
// Both backends have one; the Qt backend shows its pixels in the canvas.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/backend/inverting_pen.h"
#include "platform/backend/surfaces.h"
#include "platform/backend/view_windows.h"

namespace quorvel::platform {

class ViewScreen final : public ViewWindows, public Surfaces {
  public:
    ViewScreen();
    ~ViewScreen() override;

    std::function<void()> surfaceEnded;  // told after each surface; may be empty

    // A view's window is there while a document is open; its title is "NAME @ ZOOM".
    void openView(const std::string& title, int width, int height);
    void closeView();
    void setTitle(const std::string& title);
    void repainted() { inverted_.clear(); }
    const InvertedPixels& inverted() const { return inverted_; }

    ViewWindow* topWindow() const override;
    Surface* begin(const ViewWindow* window) override;
    void end(Surface* surface) override;

  private:
    class TreeWindow;

    TreeWindow* add(TreeWindow* parent, std::string title, PixelRect rect, bool visible = true);

    std::unique_ptr<TreeWindow> desktop_;
    TreeWindow* document_ = nullptr;  // the document's top-level window
    TreeWindow* canvas_ = nullptr;
    std::int32_t lastNumber_ = 0;
    InvertedPixels inverted_;
    std::vector<std::unique_ptr<InvertingPen>> pens_;
};

}  // namespace quorvel::platform
