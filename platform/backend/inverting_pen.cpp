// Which pixels a line or an arc inverts. The same shape always gives the same pixels, also where it reaches far out of
// the view, since drawing it a second time must take it off; pixels outside the kept square are left out one by
// one, never by bending the shape.
#include "platform/backend/inverting_pen.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>
#include <vector>

namespace quorvel::platform {

namespace {

constexpr std::int64_t kReach = InvertedPixels::kReach;

// Products of coordinate differences: 34 bits each, their doubled product does not fit 64.
__extension__ typedef __int128 Wide;

bool inReach(std::int64_t value) { return value >= -kReach && value <= kReach; }

// One line walked along its longer axis: a pixel for each step, the nearest one across.
struct LineWalk {
    std::int64_t start, startAcross;
    std::int64_t steps, across;  // lengths of the two axes
    int sign, signAcross;

    std::int64_t left;  // steps at the start that are not drawn

    // The steps whose pixels lie within reach along the longer axis.
    std::int64_t firstStep() const { return std::max(left, sign > 0 ? -kReach - start : start - kReach); }
    std::int64_t endStep() const { return std::min(steps, (sign > 0 ? kReach - start : start + kReach) + 1); }
};

template <typename Visit>
void walkLine(const LineWalk& line, Visit visit) {
    const std::int64_t first = line.firstStep(), end = line.endStep();
    if (first >= end) return;
    // Offset across at step i: (2 i across + steps) / (2 steps), rounded down, carried on by its remainder.
    const Wide divisor = Wide{2} * line.steps, numerator = Wide{2} * first * line.across + line.steps;
    auto offset = static_cast<std::int64_t>(numerator / divisor);
    Wide rest = numerator % divisor;
    for (std::int64_t i = first; i < end; ++i) {
        visit(line.start + line.sign * i, line.startAcross + line.signAcross * offset);
        rest += Wide{2} * line.across;
        if (rest >= divisor) {
            rest -= divisor;
            ++offset;
        }
    }
}

// A direction as whole numbers, so that the pixels of two arcs that share an end never overlap or part.
struct Direction {
    std::int64_t h, v;
};

Direction directionTo(std::int64_t h2, std::int64_t v2) {
    return h2 == 0 && v2 == 0 ? Direction{1, 0} : Direction{h2, v2};
}

// Above 0 when b lies less than half a turn counter-clockwise on the screen from a (v runs down).
int turn(Direction a, Direction b) {
    const Wide cross = Wide{a.v} * b.h - Wide{a.h} * b.v;
    return cross > 0 ? 1 : cross < 0 ? -1 : 0;
}

bool sameWay(Direction a, Direction b) { return turn(a, b) == 0 && Wide{a.h} * b.h + Wide{a.v} * b.v > 0; }

// Is p met before end on the way counter-clockwise from start, start counted and end not?
bool metBetween(Direction start, Direction end, Direction p) {
    if (sameWay(start, end) || sameWay(start, p)) return true;
    const bool pInFirstHalf = turn(start, p) > 0, endInFirstHalf = turn(start, end) > 0;
    if (pInFirstHalf != endInFirstHalf) return pInFirstHalf;
    return turn(p, end) > 0;
}

using PixelPlace = std::pair<std::int64_t, std::int64_t>;

std::int64_t nearest(double value) { return static_cast<std::int64_t>(std::floor(value + 0.5)); }

// The ellipse's outline as far as it is within reach. Where it runs flat each column has one pixel above and one
// below, where it runs steep each row one left and one right: no holes, no doubled steps.
std::vector<PixelPlace> ellipseOutline(double centreH, double centreV, double a, double b) {
    std::vector<PixelPlace> outline;
    const auto keep = [&](std::int64_t h, std::int64_t v) {
        if (inReach(h) && inReach(v)) outline.emplace_back(h, v);
    };
    const auto first = [](double low) { return std::max(-kReach, static_cast<std::int64_t>(std::ceil(low))); };
    const auto last = [](double high) { return std::min(kReach, static_cast<std::int64_t>(std::floor(high))); };
    const auto otherAxis = [](double x, double along, double across) {
        if (!(along > 0.0)) return across;
        return across * std::sqrt(std::max(0.0, 1.0 - (x / along) * (x / along)));
    };
    for (std::int64_t h = first(centreH - a); h <= last(centreH + a); ++h) {
        const double x = static_cast<double>(h) - centreH, y = otherAxis(x, a, b);
        if (std::abs(x) * b * b > y * a * a || (a == 0.0 && b > 0.0)) continue;
        keep(h, nearest(centreV - y));
        keep(h, nearest(centreV + y));
    }
    for (std::int64_t v = first(centreV - b); v <= last(centreV + b); ++v) {
        const double y = static_cast<double>(v) - centreV, x = otherAxis(y, b, a);
        if (a > 0.0 && x * b * b <= std::abs(y) * a * a) continue;
        keep(nearest(centreH - x), v);
        keep(nearest(centreH + x), v);
    }
    std::sort(outline.begin(), outline.end());
    outline.erase(std::unique(outline.begin(), outline.end()), outline.end());
    return outline;
}

}  // namespace

void InvertedPixels::flip(std::int64_t h, std::int64_t v) {
    if (!inReach(h) || !inReach(v)) return;
    const std::uint64_t key = static_cast<std::uint64_t>(h + kReach) << 32 | static_cast<std::uint64_t>(v + kReach);
    if (!keys_.insert(key).second) keys_.erase(key);
}

void InvertedPixels::clear() {
    keys_.clear();
    ++generation_;
}

void InvertingPen::moveTo(Pixel point) {
    current_ = point;
    dotted_ = false;
}

void InvertingPen::lineTo(Pixel point) {
    const std::int64_t h = originH_ + current_.h, v = originV_ + current_.v;
    const std::int64_t dh = std::int64_t{point.h} - current_.h, dv = std::int64_t{point.v} - current_.v;
    const int signH = dh < 0 ? -1 : 1, signV = dv < 0 ? -1 : 1;
    const std::int64_t lengthH = std::abs(dh), lengthV = std::abs(dv), left = dotted_ ? 1 : 0;
    if (lengthH == 0 && lengthV == 0) {
        if (!dotted_) pixels_->flip(h, v);
    } else if (lengthH >= lengthV) {
        walkLine({h, v, lengthH, lengthV, signH, signV, left},
                 [&](std::int64_t ph, std::int64_t pv) { pixels_->flip(ph, pv); });
    } else {
        walkLine({v, h, lengthV, lengthH, signV, signH, left},
                 [&](std::int64_t pv, std::int64_t ph) { pixels_->flip(ph, pv); });
    }
    dotted_ = lengthH == 0 && lengthV == 0;
    current_ = point;
}

void InvertingPen::drawArc(PixelRect box, Pixel start, Pixel end) {
    // Twice the centre: the centre is at whole or half pixels.
    const std::int64_t h2 = std::int64_t{box.left} + box.right, v2 = std::int64_t{box.top} + box.bottom;
    const Direction from = directionTo(std::int64_t{2} * start.h - h2, std::int64_t{2} * start.v - v2);
    const Direction to = directionTo(std::int64_t{2} * end.h - h2, std::int64_t{2} * end.v - v2);
    const double a = static_cast<double>(std::abs(std::int64_t{box.right} - box.left)) / 2.0;
    const double b = static_cast<double>(std::abs(std::int64_t{box.bottom} - box.top)) / 2.0;
    const std::int64_t centreH2 = h2 + 2 * originH_, centreV2 = v2 + 2 * originV_;
    for (const auto& [h, v] :
         ellipseOutline(static_cast<double>(centreH2) / 2.0, static_cast<double>(centreV2) / 2.0, a, b))
        if (metBetween(from, to, directionTo(2 * h - centreH2, 2 * v - centreV2))) pixels_->flip(h, v);
}

}  // namespace quorvel::platform
