// Outlines drawn into anchors and handles. Arcs follow the SVG implementation notes (centre from end points, radii
// grown when too small).
#include <algorithm>
#include <cmath>
#include <numbers>

#include "svg/values/path_anchors.h"
#include "svg/values/path_data.h"

namespace quorvel::svg {
namespace {

// A quarter turn of rounded coordinates may come out a trifle more than a quarter.
constexpr double kQuarterSlack = 1e-5;

}  // namespace

void PathShape::clear() {
    segments.clear();
    pieces.clear();
}

RealPoint PathBuilder::at(double x, double y) {
    const RealPoint point = map_.point(x, y);
    if (!(std::abs(point.h) <= kLargestCoordinate) || !(std::abs(point.v) <= kLargestCoordinate)) inRange_ = false;
    return point;
}

void PathBuilder::moveTo(double x, double y) {
    x_ = startX_ = x;
    y_ = startY_ = y;
    started_ = true;
    open_ = false;
    open();
}

void PathBuilder::open() {
    if (open_) return;
    open_ = true;
    shape_->pieces.push_back({static_cast<std::uint32_t>(shape_->segments.size()), 1, false});
    const RealPoint p = at(startX_, startY_);
    shape_->segments.push_back({p, p, p, 0});
}

void PathBuilder::lineTo(double x, double y) {
    open();
    const RealPoint p = at(x, y);
    shape_->segments.push_back({p, p, p, 0});
    ++shape_->pieces.back().count;
    x_ = x;
    y_ = y;
}

void PathBuilder::curveTo(double x1, double y1, double x2, double y2, double x, double y) {
    open();
    shape_->segments.back().out = at(x1, y1);
    const RealPoint p = at(x, y);
    shape_->segments.push_back({p, at(x2, y2), p, 0});
    ++shape_->pieces.back().count;
    x_ = x;
    y_ = y;
}

void PathBuilder::arcTo(double rx, double ry, double degrees, bool large, bool sweep, double x, double y) {
    if (x == x_ && y == y_) return;
    rx = std::abs(rx);
    ry = std::abs(ry);
    if (!(rx > 0) || !(ry > 0)) return lineTo(x, y);
    const double phi = std::fmod(degrees, 360) * std::numbers::pi / 180;
    const double cosPhi = std::cos(phi);
    const double sinPhi = std::sin(phi);
    const double halfX = (x_ - x) / 2;
    const double halfY = (y_ - y) / 2;
    const double px = (cosPhi * halfX + sinPhi * halfY) / rx;  // on the unit circle's scale
    const double py = (cosPhi * halfY - sinPhi * halfX) / ry;
    const double reach = px * px + py * py;
    double cx = 0;
    double cy = 0;
    if (reach > 1) {
        rx *= std::sqrt(reach);
        ry *= std::sqrt(reach);
    } else {
        const double height = std::sqrt(std::max(0.0, 1 / reach - 1)) * (large == sweep ? -1 : 1);
        cx = height * py;
        cy = -height * px;
    }
    const double grown = reach > 1 ? std::sqrt(reach) : 1;
    const double from = std::atan2(py / grown - cy, px / grown - cx);
    double turn = std::atan2(-py / grown - cy, -px / grown - cx) - from;
    if (sweep && turn < 0) turn += 2 * std::numbers::pi;
    if (!sweep && turn > 0) turn -= 2 * std::numbers::pi;
    const double centreX = (x_ + x) / 2 + cosPhi * rx * cx - sinPhi * ry * cy;
    const double centreY = (y_ + y) / 2 + sinPhi * rx * cx + cosPhi * ry * cy;
    if (!std::isfinite(from) || !std::isfinite(turn) || !std::isfinite(centreX) || !std::isfinite(centreY)) {
        inRange_ = false;
        return;
    }

    const int count = std::max(1, static_cast<int>(std::ceil(std::abs(turn) / (std::numbers::pi / 2) - kQuarterSlack)));
    const double step = turn / count;
    const double handle = 4.0 / 3.0 * std::tan(step / 4);
    const auto place = [&](double u, double v, double* toX, double* toY) {
        *toX = centreX + cosPhi * rx * u - sinPhi * ry * v;
        *toY = centreY + sinPhi * rx * u + cosPhi * ry * v;
    };
    for (int i = 1; i <= count; ++i) {
        const double a = from + step * (i - 1);
        const double b = i == count ? from + turn : from + step * i;
        double x1, y1, x2, y2, endX, endY;
        place(std::cos(a) - handle * std::sin(a), std::sin(a) + handle * std::cos(a), &x1, &y1);
        place(std::cos(b) + handle * std::sin(b), std::sin(b) - handle * std::cos(b), &x2, &y2);
        place(std::cos(b), std::sin(b), &endX, &endY);
        if (i == count) {
            endX = x;
            endY = y;
        }
        curveTo(x1, y1, x2, y2, endX, endY);
    }
}

void PathBuilder::close() {
    if (!open_) return;
    PathShape::Piece& piece = shape_->pieces.back();
    piece.closed = true;
    PathSegment& first = shape_->segments[piece.first];
    const PathSegment& last = shape_->segments.back();
    if (piece.count > 1 && meet(first.p, last.p)) {
        // The handle keeps its place beside the anchor that stays. A retracted one stays retracted.
        first.in = samePoint(last.in, last.p) ? first.p : last.in;
        shape_->segments.pop_back();
        --piece.count;
    }
    open_ = false;
    x_ = startX_;
    y_ = startY_;
}

bool PathBuilder::finish() {
    for (PathSegment& segment : shape_->segments) segment.corner = cornerByHandles(segment);
    return inRange_;
}

bool cornerByHandles(const PathSegment& s) {
    constexpr double kSameLine = 5e-3;  // radians; floats of short handles are coarse
    const double inH = double(s.in.h) - s.p.h, inV = double(s.in.v) - s.p.v;
    const double outH = double(s.out.h) - s.p.h, outV = double(s.out.v) - s.p.v;
    const double lengths = std::sqrt((inH * inH + inV * inV) * (outH * outH + outV * outV));
    if (!(lengths > 0)) return true;
    return !(inH * outH + inV * outV < 0 && std::abs(inH * outV - inV * outH) <= kSameLine * lengths);
}

void drawRect(double x, double y, double width, double height, double rx, double ry, PathBuilder* builder) {
    rx = std::min(rx, width / 2);
    ry = std::min(ry, height / 2);
    if (!(rx > 0) || !(ry > 0)) {
        builder->moveTo(x, y);
        builder->lineTo(x + width, y);
        builder->lineTo(x + width, y + height);
        builder->lineTo(x, y + height);
        builder->close();
        return;
    }
    // Sides that the radii use up leave no anchor of their own.
    const bool wide = width > 2 * rx;
    const bool high = height > 2 * ry;
    builder->moveTo(x + rx, y);
    if (wide) builder->lineTo(x + width - rx, y);
    builder->arcTo(rx, ry, 0, false, true, x + width, y + ry);
    if (high) builder->lineTo(x + width, y + height - ry);
    builder->arcTo(rx, ry, 0, false, true, x + width - rx, y + height);
    if (wide) builder->lineTo(x + rx, y + height);
    builder->arcTo(rx, ry, 0, false, true, x, y + height - ry);
    if (high) builder->lineTo(x, y + ry);
    builder->arcTo(rx, ry, 0, false, true, x + rx, y);
    builder->close();
}

void drawEllipse(double cx, double cy, double rx, double ry, PathBuilder* builder) {
    const double ratio = 4.0 / 3.0 * std::tan(std::numbers::pi / 8);
    const double hx = rx * ratio;
    const double hy = ry * ratio;
    builder->moveTo(cx + rx, cy);
    builder->curveTo(cx + rx, cy + hy, cx + hx, cy + ry, cx, cy + ry);
    builder->curveTo(cx - hx, cy + ry, cx - rx, cy + hy, cx - rx, cy);
    builder->curveTo(cx - rx, cy - hy, cx - hx, cy - ry, cx, cy - ry);
    builder->curveTo(cx + hx, cy - ry, cx + rx, cy - hy, cx + rx, cy);
    builder->close();
}

}  // namespace quorvel::svg
