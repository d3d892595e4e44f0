#include "render/gradient_spread.h"

#include <QGradient>
#include <QLineF>
#include <QPolygonF>
#include <QTransform>
#include <algorithm>
#include <cmath>

namespace quorvel::render {

namespace {

constexpr double kMostRepetitions = 1024;

// Where box is along a gradient, in its lengths.
struct Reach {
    double first = 0, last = 0;
};

Reach reachOf(const QLinearGradient& gradient, const QPolygonF& box) {
    const QPointF along = gradient.finalStop() - gradient.start();
    const double square = QPointF::dotProduct(along, along);
    Reach reach{INFINITY, -INFINITY};
    for (const QPointF& corner : box) {
        const double t = QPointF::dotProduct(corner - gradient.start(), along) / square;
        reach = {std::min(reach.first, t), std::max(reach.last, t)};
    }
    return {std::floor(reach.first), std::ceil(reach.last)};
}

// The circle at t has its centre at focal + t * (centre - focal) and the radius t * radius. A point within it at t is
// nearer to the focal point than t * (radius + distance), and all that is nearer than t * (radius - distance) is in it.
// With the focal point on the edge no circle reaches everywhere.
Reach reachOf(const QRadialGradient& gradient, const QPolygonF& box) {
    const double distance = QLineF(gradient.center(), gradient.focalPoint()).length();
    const double narrow = std::max(gradient.radius() - distance, gradient.radius() / 8);
    double farthest = 0;
    for (const QPointF& corner : box) farthest = std::max(farthest, QLineF(corner, gradient.focalPoint()).length());
    return {0, std::ceil(farthest / narrow)};
}

QGradientStops repeated(const QGradient& gradient, Reach reach) {
    QGradientStops once = gradient.stops(), turned = once, all;
    std::reverse(turned.begin(), turned.end());
    for (QGradientStop& stop : turned) stop.first = 1 - stop.first;
    const double count = reach.last - reach.first;
    for (double i = 0; i < count; ++i) {
        const bool isTurned =
            gradient.spread() == QGradient::ReflectSpread && std::fmod(std::abs(reach.first + i), 2) == 1;
        // Two stops at one place would be taken for one.
        constexpr double kApart = 1e-9;
        for (const QGradientStop& stop : isTurned ? turned : once) {
            double at = (i + stop.first) / count;
            if (!all.isEmpty()) at = std::max(at, all.last().first + kApart);
            all.append({std::min(at, 1.0), stop.second});
        }
    }
    return all;
}

template <typename Gradient>
QBrush padded(const Gradient& gradient, Gradient&& whole, Reach reach, const QTransform& map) {
    whole.setStops(repeated(gradient, reach));
    whole.setInterpolationMode(gradient.interpolationMode());
    QBrush brush(whole);
    brush.setTransform(map);
    return brush;
}

// False when the gradient has no length.
bool limit(Reach* reach) {
    reach->last = std::min(reach->last, reach->first + kMostRepetitions);
    return std::isfinite(reach->first) && reach->last - reach->first >= 1;
}

}  // namespace

QBrush spreadOver(const QBrush& brush, const QRectF& box) {
    const QGradient* gradient = brush.gradient();
    bool isInvertible = false;
    const QTransform back = brush.transform().inverted(&isInvertible);
    if (gradient == nullptr || gradient->spread() == QGradient::PadSpread || !isInvertible) return brush;
    const QPolygonF there = back.map(QPolygonF(box));
    if (gradient->type() == QGradient::LinearGradient) {
        const auto& linear = static_cast<const QLinearGradient&>(*gradient);
        Reach reach = reachOf(linear, there);
        if (!limit(&reach)) return brush;
        const QPointF along = linear.finalStop() - linear.start();
        return padded(linear,
                      QLinearGradient(linear.start() + reach.first * along, linear.start() + reach.last * along), reach,
                      brush.transform());
    }
    const auto& radial = static_cast<const QRadialGradient&>(*gradient);
    Reach reach = reachOf(radial, there);
    if (radial.focalRadius() > 0 || !limit(&reach)) return brush;
    const QPointF focal = radial.focalPoint();
    return padded(radial,
                  QRadialGradient(focal + reach.last * (radial.center() - focal), reach.last * radial.radius(), focal),
                  reach, brush.transform());
}

}  // namespace quorvel::render
