#include "render/paint_budget.h"

#include <algorithm>

namespace quorvel::render {

namespace {

constexpr double kForEachMegabyte = 5e9;  // nanoseconds, and for what has less
constexpr double kOfARefusal = 5e4;       // so that a loop of refusals ends too
constexpr double kSmall = 1e6;            // nanoseconds of a piece
constexpr double kMostDots = 1.2e8;       // of pictures at one time: 480 MB

}  // namespace

void PaintBudget::begin(std::size_t bytes) { left_ = kForEachMegabyte * std::max(1.0, double(bytes) / (1 << 20)); }

bool PaintBudget::take(double nanoseconds) {
    const bool isThere = nanoseconds <= (nanoseconds < kSmall ? left_ : left_ - kReserve);  // false for no number
    left_ = isThere ? left_ - nanoseconds : std::min(left_, std::max(left_ - kOfARefusal, kReserve));
    return isThere;
}

bool PaintBudget::hold(double dots) {
    if (!(held_ + dots <= kMostDots)) return false;
    held_ += dots;
    return true;
}

void PaintBudget::nameLeftOut(const std::string& what) {
    if (std::find(names_.begin(), names_.end(), what) == names_.end()) names_.push_back(what);
}

std::optional<Error> PaintBudget::warning() const {
    if (pieces_ == 0) return std::nullopt;
    std::string names;
    for (std::size_t i = 0; i < std::min(names_.size(), kMostNames); ++i) names += (i == 0 ? "" : ", ") + names_[i];
    if (names_.size() > kMostNames) names += " ...";
    return makeError(ErrorCode::kPaintingLeftOut, {std::to_string(pieces_), names});
}

}  // namespace quorvel::render
