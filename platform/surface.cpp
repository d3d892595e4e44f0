// The functions of the inverting surface, handed to the backend that is installed.
#include "platform/surface.h"

#include "platform/backend/backend.h"

namespace quorvel::platform {

SurfaceRef BeginSurface(ViewWindowRef window) {
    return installedBackend() != nullptr ? installedBackend()->surfaces().begin(living(window)) : nullptr;
}

void EndSurface(SurfaceRef surface) {
    if (installedBackend() != nullptr && living(surface) != nullptr) installedBackend()->surfaces().end(surface);
}

std::uint32_t SurfaceGeneration(SurfaceRef surface) {
    const Surface* found = living(surface);
    return found != nullptr ? found->generation() : 0;
}

void MoveTo(SurfaceRef surface, Pixel point) {
    if (Surface* found = living(surface)) found->moveTo(point);
}

void LineTo(SurfaceRef surface, Pixel point) {
    if (Surface* found = living(surface)) found->lineTo(point);
}

void DrawArc(SurfaceRef surface, PixelRect box, Pixel start, Pixel end) {
    if (Surface* found = living(surface)) found->drawArc(box, start, end);
}

}  // namespace quorvel::platform
