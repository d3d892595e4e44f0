// The pixels of a view that are inverted now, and the surface that flips them: a shape drawn twice leaves the set as it
// was.
#pragma once

#include <cstdint>
#include <unordered_set>

#include "platform/backend/surfaces.h"

namespace quorvel::platform {

// Pixels are counted from the view's upper left corner.
class InvertedPixels {
  public:
    // Coordinates that a view can show; the set does not grow with a shape's length beyond it.
    static constexpr std::int64_t kReach = 32768;

    void flip(std::int64_t h, std::int64_t v);
    void clear();  // the view has painted itself anew
    std::size_t count() const { return keys_.size(); }
    std::uint32_t generation() const { return generation_; }  // changes with each clear
    // Calls visit(h, v) for each, in no order.
    template <typename Visit>
    void forEach(Visit visit) const {
        for (const std::uint64_t key : keys_)
            visit(static_cast<std::int64_t>(key >> 32) - kReach, static_cast<std::int64_t>(key & 0xFFFFFFFF) - kReach);
    }

  private:
    std::unordered_set<std::uint64_t> keys_;
    std::uint32_t generation_ = 1;
};

class InvertingPen final : public Surface {
  public:
    // The origin of the surface's own coordinates, seen from the view's corner. The pixels outlive the pen.
    InvertingPen(InvertedPixels* pixels, std::int64_t originH, std::int64_t originV)
        : pixels_(pixels), originH_(originH), originV_(originV) {}

    std::uint32_t generation() const override { return pixels_->generation(); }
    void moveTo(Pixel point) override;
    void lineTo(Pixel point) override;
    void drawArc(PixelRect box, Pixel start, Pixel end) override;

  private:
    InvertedPixels* pixels_;
    std::int64_t originH_, originV_;
    Pixel current_;
    bool dotted_ = false;  // the current point has been inverted already
};

}  // namespace quorvel::platform
