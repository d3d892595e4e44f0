// The window that shows the document, as the operating system's window tree tells it. Pixels; h to the right, v down. A
// null window, and one that is gone, is accepted and ignored.
#pragma once

#include <cstdint>

namespace quorvel::platform {

using ViewWindowRef = class ViewWindow*;

struct Pixel {
    std::int32_t h = 0, v = 0;
};

struct PixelRect {
    std::int32_t left = 0, top = 0, right = 0, bottom = 0;
};

// The topmost top-level window; with a parent, the first of its children in z order. Null for none.
ViewWindowRef GetTopWindow(ViewWindowRef parent);
// The next sibling in z order, null behind the last.
ViewWindowRef GetNextWindow(ViewWindowRef window);
// Zero-terminated, cut to size - 1 bytes; returns the length.
std::int32_t GetWindowTitle(ViewWindowRef window, char* title, std::int32_t size);
// In screen coordinates.
PixelRect GetWindowRect(ViewWindowRef window);
bool IsWindowVisible(ViewWindowRef window);
Pixel ClientToScreen(ViewWindowRef window, Pixel point);
Pixel ScreenToClient(ViewWindowRef window, Pixel point);
// A number by which a trace names the window.
std::int32_t GetWindowNumber(ViewWindowRef window);

}  // namespace quorvel::platform
