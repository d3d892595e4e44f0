// How much work a painting may be. A drawing of a megabyte can ask for years of it: markers on every anchor, patterns
// within patterns, strokes of a million dashes. What is painted depends on the drawing alone, never on a clock, so that
// the same drawing gives the same picture on every machine.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "base/error.h"

namespace quorvel::render {

class PaintBudget {
  public:
    // A new painting, of a drawing whose text has so many bytes: all may be spent again.
    void begin(std::size_t bytes);

    // Counts work of about so many nanoseconds. False when so much is not left; then it must not be done.
    [[nodiscard]] bool take(double nanoseconds);
    double left() const { return left_; }
    // Nothing is left but what is kept for small pieces, so that a loop over costly ones need not go on.
    bool isSpent() const { return left_ <= kReserve; }
    // The same for the dots of pictures that are there at one time; what was held is given back.
    [[nodiscard]] bool hold(double dots);
    void giveBack(double dots) { held_ -= dots; }

    // A piece of the painting is not done. True while it is worth naming.
    bool leaveOut() { return ++pieces_ <= kNamedPieces && names_.size() <= kMostNames; }
    // what: an element of the drawing, by its name and id, or a definition.
    void nameLeftOut(const std::string& what);
    // Of all paintings until now, one that names what was left out.
    std::optional<Error> warning() const;

  private:
    static constexpr double kReserve = 5e8;
    static constexpr std::size_t kNamedPieces = 1000, kMostNames = 5;
    double left_ = 0, held_ = 0;
    std::size_t pieces_ = 0;
    std::vector<std::string> names_;
};

// Pictures held as long as this lives.
class HeldDots {
  public:
    HeldDots(PaintBudget* budget, double dots) : budget_(budget->hold(dots) ? budget : nullptr), dots_(dots) {}
    ~HeldDots() {
        if (budget_ != nullptr) budget_->giveBack(dots_);
    }
    HeldDots(const HeldDots&) = delete;
    HeldDots& operator=(const HeldDots&) = delete;
    explicit operator bool() const { return budget_ != nullptr; }

  private:
    PaintBudget* budget_;
    double dots_;
};

}  // namespace quorvel::render
