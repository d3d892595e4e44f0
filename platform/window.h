// The window that shows the document, as the operating system's window tree tells it, and the inverting surface over
// it: what is drawn twice is gone. Pixels; h to the right, v down. A null window or surface is accepted and ignored.
#pragma once

#include <cstdint>

namespace quorvel::platform {

using ViewWindowRef = struct ViewWindow*;
using SurfaceRef = struct Surface*;

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

// An inverting surface over the window's client area, for the span of one message; a null window gives one over
// the whole screen.
SurfaceRef BeginSurface(ViewWindowRef window);
void EndSurface(SurfaceRef surface);
// Changes whenever the window has painted itself anew (zoom, scroll, a new tool): what was inverted before is gone
// then, and must not be inverted again.
std::uint32_t SurfaceGeneration(SurfaceRef surface);
void MoveTo(SurfaceRef surface, Pixel point);
// Inverts the pixels from the current point up to this one, this one left out. A line to the current point itself is a
// dot: it inverts that one pixel, which what goes on from there leaves alone.
void LineTo(SurfaceRef surface, Pixel point);
// Inverts the part of the ellipse in the box that runs counter-clockwise on the screen from the direction of start to
// the direction of end, both seen from the centre; equal directions give the whole ellipse.
void DrawArc(SurfaceRef surface, PixelRect box, Pixel start, Pixel end);

}  // namespace quorvel::platform
