// Inverting surfaces over the view's windows, as a backend has them.
#pragma once

#include <cstdint>

#include "platform/backend/view_windows.h"
#include "platform/surface.h"

namespace quorvel::platform {

// Lives from begin to end.
class Surface : public Referenced {
  public:
    virtual std::uint32_t generation() const = 0;
    virtual void moveTo(Pixel point) = 0;
    virtual void lineTo(Pixel point) = 0;
    virtual void drawArc(PixelRect box, Pixel start, Pixel end) = 0;
};

class Surfaces {
  public:
    virtual ~Surfaces() = default;
    virtual Surface* begin(const ViewWindow* window) = 0;  // null: the whole screen
    virtual void end(Surface* surface) = 0;                // which begin has given
};

}  // namespace quorvel::platform
