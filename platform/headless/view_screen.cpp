// The window tree has what a real one has to mislead a search: a palette above the document's window, rulers and a
// status line beside the canvas, a hidden window over it.
#include "platform/headless/view_screen.h"

#include <algorithm>
#include <utility>

namespace quorvel::platform {

namespace {

// The document's window is not maximised; title bar, rulers and scroll bars leave the canvas inside it. A canvas below
// the least size would let the point a third into the window miss it.
constexpr int kWindowLeft = 8, kWindowTop = 6, kFrame = 8, kTitleBar = 24, kLeastCanvas = 240, kBar = 12;

TreeWindow* findIn(const TreeWindow& tree, ViewWindowRef window) {
    for (const auto& child : tree.children) {
        if (reinterpret_cast<ViewWindowRef>(child.get()) == window) return child.get();
        if (TreeWindow* found = findIn(*child, window)) return found;
    }
    return nullptr;
}

ViewWindowRef refOf(const std::unique_ptr<TreeWindow>& window) { return reinterpret_cast<ViewWindowRef>(window.get()); }

}  // namespace

ViewScreen::ViewScreen() {
    add(&desktop_, "Tools", {0, 60, 60, 700});
    add(&desktop_, "Layers", {1000, 60, 1200, 400});
}

TreeWindow* ViewScreen::add(TreeWindow* parent, std::string title, PixelRect rect, bool visible) {
    auto window = std::make_unique<TreeWindow>();
    window->title = std::move(title);
    window->rect = rect;
    window->visible = visible;
    window->number = ++lastNumber_;
    window->parent = parent;
    parent->children.push_back(std::move(window));
    return parent->children.back().get();
}

void ViewScreen::openView(const std::string& title, int width, int height) {
    closeView();
    const int canvasWidth = std::max(width, kLeastCanvas), canvasHeight = std::max(height, kLeastCanvas);
    const int left = kWindowLeft + kFrame, top = kWindowTop + kTitleBar;
    const int right = left + canvasWidth, bottom = top + canvasHeight;
    document_ = add(&desktop_, title, {kWindowLeft, kWindowTop, right + kFrame, bottom + kFrame});
    add(document_, "Horizontal ruler", {left, top - kBar, right, top});
    add(document_, "Drag image", {left, top, right - kBar, bottom - kBar}, false);
    canvas_ = add(document_, "Canvas", {left, top, right, bottom});
    add(document_, "Status", {left, bottom, right, bottom + kFrame});
    // Behind the first palette and before the second, as a window that was raised last but one.
    auto& windows = desktop_.children;
    std::rotate(windows.begin() + 1, windows.end() - 1, windows.end());
    repainted();
}

void ViewScreen::closeView() {
    auto& windows = desktop_.children;
    std::erase_if(windows, [this](const auto& window) { return window.get() == document_; });
    document_ = canvas_ = nullptr;
    repainted();
}

void ViewScreen::setTitle(const std::string& title) {
    if (document_ != nullptr) document_->title = title;
}

void ViewScreen::repainted() {
    inverted_.clear();
    ++generation_;
}

const TreeWindow* ViewScreen::find(ViewWindowRef window) const { return findIn(desktop_, window); }

ViewWindowRef ViewScreen::first(ViewWindowRef parent) const {
    const TreeWindow* tree = parent == nullptr ? &desktop_ : find(parent);
    return tree == nullptr || tree->children.empty() ? nullptr : refOf(tree->children.front());
}

ViewWindowRef ViewScreen::next(ViewWindowRef window) const {
    const TreeWindow* found = find(window);
    if (found == nullptr) return nullptr;
    const auto& siblings = found->parent->children;
    const auto place = std::find_if(siblings.begin(), siblings.end(), [&](const auto& w) { return w.get() == found; });
    return place + 1 == siblings.end() ? nullptr : refOf(*(place + 1));
}

SurfaceRef ViewScreen::begin(ViewWindowRef window) {
    auto surface = std::make_unique<PixelSurface>();
    // The screen's own origin when no window is given: pixels are counted from the canvas in either case.
    const TreeWindow* over = window == nullptr ? nullptr : find(window);
    if (over != nullptr) {
        surface->originH = over->rect.left;
        surface->originV = over->rect.top;
    }
    if (canvas_ != nullptr) {
        surface->originH -= canvas_->rect.left;
        surface->originV -= canvas_->rect.top;
    }
    surfaces_.push_back(std::move(surface));
    return reinterpret_cast<SurfaceRef>(surfaces_.back().get());
}

void ViewScreen::end(SurfaceRef surface) {
    std::erase_if(surfaces_, [&](const auto& s) { return reinterpret_cast<SurfaceRef>(s.get()) == surface; });
}

PixelSurface* ViewScreen::surfaceAt(SurfaceRef surface) const {
    for (const auto& candidate : surfaces_)
        if (reinterpret_cast<SurfaceRef>(candidate.get()) == surface) return candidate.get();
    return nullptr;
}

}  // namespace quorvel::platform
