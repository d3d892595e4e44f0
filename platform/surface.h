// The inverting surface over the view's window: what is drawn twice is gone. A null surface, and one that has ended, is
// accepted and ignored.
#pragma once

#include <cstdint>

#include "platform/window.h"

namespace quorvel::platform {

using SurfaceRef = class Surface*;

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
