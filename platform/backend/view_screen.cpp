// The window tree has what a real one has to mislead a search: a palette above the document's window, rulers and a
// status line beside the canvas, a hidden window over it.
#include "platform/backend/view_screen.h"

#include <algorithm>
#include <utility>

namespace quorvel::platform {

namespace {

// The document's window is not maximised; title bar, rulers and scroll bars leave the canvas inside it. A canvas below
// the least size would let the point a third into the window miss it.
constexpr int kWindowLeft = 8, kWindowTop = 6, kFrame = 8, kTitleBar = 24, kLeastCanvas = 240, kBar = 12;

}  // namespace

// One window of the tree. The whole of it is client area.
class ViewScreen::TreeWindow final : public ViewWindow {
  public:
    TreeWindow(TreeWindow* parent, std::string title, PixelRect rect, bool visible, std::int32_t number)
        : name(std::move(title)), place(rect), shown(visible), id(number), parent_(parent) {}

    std::string title() const override { return name; }
    PixelRect rect() const override { return place; }
    Pixel clientOrigin() const override { return {place.left, place.top}; }
    bool isVisible() const override { return shown; }
    std::int32_t number() const override { return id; }
    ViewWindow* firstChild() const override { return children.empty() ? nullptr : children.front().get(); }
    ViewWindow* nextSibling() const override {
        if (parent_ == nullptr) return nullptr;
        const auto& siblings = parent_->children;
        const auto self =
            std::find_if(siblings.begin(), siblings.end(), [this](const auto& one) { return one.get() == this; });
        return self + 1 == siblings.end() ? nullptr : (self + 1)->get();
    }

    std::string name;
    PixelRect place;
    bool shown;
    std::int32_t id;
    std::vector<std::unique_ptr<TreeWindow>> children;  // in z order

  private:
    TreeWindow* parent_;
};

ViewScreen::ViewScreen() : desktop_(std::make_unique<TreeWindow>(nullptr, "", PixelRect{}, true, 0)) {
    add(desktop_.get(), "Tools", {0, 60, 60, 700});
    add(desktop_.get(), "Layers", {1000, 60, 1200, 400});
}

ViewScreen::~ViewScreen() = default;

ViewScreen::TreeWindow* ViewScreen::add(TreeWindow* parent, std::string title, PixelRect rect, bool visible) {
    auto window = std::make_unique<TreeWindow>(parent, std::move(title), rect, visible, ++lastNumber_);
    parent->children.push_back(std::move(window));
    return parent->children.back().get();
}

void ViewScreen::openView(const std::string& title, int width, int height) {
    closeView();
    const int canvasWidth = std::max(width, kLeastCanvas), canvasHeight = std::max(height, kLeastCanvas);
    const int left = kWindowLeft + kFrame, top = kWindowTop + kTitleBar;
    const int right = left + canvasWidth, bottom = top + canvasHeight;
    document_ = add(desktop_.get(), title, {kWindowLeft, kWindowTop, right + kFrame, bottom + kFrame});
    add(document_, "Horizontal ruler", {left, top - kBar, right, top});
    add(document_, "Drag image", {left, top, right - kBar, bottom - kBar}, false);
    canvas_ = add(document_, "Canvas", {left, top, right, bottom});
    add(document_, "Status", {left, bottom, right, bottom + kFrame});
    // Behind the first palette and before the second, as a window that was raised last but one.
    auto& windows = desktop_->children;
    std::rotate(windows.begin() + 1, windows.end() - 1, windows.end());
    repainted();
}

void ViewScreen::closeView() {
    std::erase_if(desktop_->children, [this](const auto& window) { return window.get() == document_; });
    document_ = canvas_ = nullptr;
    repainted();
}

void ViewScreen::setTitle(const std::string& title) {
    if (document_ != nullptr) document_->name = title;
}

ViewWindow* ViewScreen::topWindow() const { return desktop_->firstChild(); }

Surface* ViewScreen::begin(const ViewWindow* window) {
    // The screen's own origin when no window is given: pixels are counted from the canvas in either case.
    const Pixel own = window != nullptr ? window->clientOrigin() : Pixel{};
    const Pixel view = canvas_ != nullptr ? canvas_->clientOrigin() : Pixel{};
    pens_.push_back(
        std::make_unique<InvertingPen>(&inverted_, std::int64_t{own.h} - view.h, std::int64_t{own.v} - view.v));
    return pens_.back().get();
}

void ViewScreen::end(Surface* surface) {
    std::erase_if(pens_, [surface](const auto& pen) { return pen.get() == surface; });
    if (surfaceEnded) surfaceEnded();
}

}  // namespace quorvel::platform
