// The raster engine keeps, for each row of dots, a sorted list of the dots that an edge crosses, and looks for the
// place of each dot from the list's begin: an outline of many edges that each run over the whole page takes the square
// of their number.
#include "render/paint_cost.h"

#include <QGradient>
#include <QLineF>
#include <algorithm>
#include <cmath>

namespace quorvel::render {

namespace {

constexpr double kOfAPiece = 2'000;                   // of any outline
constexpr double kOfAnElement = 100, kWritten = 800;  // of an outline: filled, or written as PDF
constexpr double kStroked = 1'000, kRound = 3'000;    // of an element whose stroke is outlined, with round joins
constexpr double kOfADash = 4'000;
constexpr double kOfADot = 50, kOfASearch = 4.5;  // of an edge's dots; for each that is in the row before it
constexpr double kSolid = 0.12, kBlended = 0.4, kGradient = 3, kRadial = 6;  // of a dot that is filled
constexpr double kOfAStop = 100, kOfAWrittenStop = 2'000;                    // of a gradient
constexpr double kOfAPictureDot = 1.2, kOfAMaskDot = 18, kOfAScaledDot = 15;
constexpr double kOfAFarEdge = 8'000;  // that leads out of the coordinates of the raster engine
constexpr double kCombined = 3'000, kOfAPair = 2, kOfACrossing = 2'000;  // of outlines that are united

// Edges in the device's dots, as far as they can be seen.
struct Edges {
    double across = 0, down = 0;
    double length = 0;  // of all of them
    int count = 0, far = 0;
    double rows = 1, columns = 1;  // that they are in
};

// As the raster engine has it; what reaches out is cut before it is filled.
constexpr double kFarthest = 32'000;

Edges edgesOf(const QPainterPath& outline, const PaintScale& scale) {
    Edges edges;
    edges.count = outline.elementCount();
    if (edges.count == 0) return edges;
    const QRectF& sight = scale.sight;
    const QRectF box = outline.controlPointRect();
    const auto seen = [&](double from, double to, double least, double most) {
        return std::max(0.0, std::min(std::max(from, to), most) - std::max(std::min(from, to), least)) / scale.pixel;
    };
    edges.columns = std::max(1.0, seen(box.left(), box.right(), sight.left(), sight.right()));
    edges.rows = std::max(1.0, seen(box.top(), box.bottom(), sight.top(), sight.bottom()));
    const bool isFar = std::max(box.width(), box.height()) / scale.pixel > kFarthest;
    QPointF from = outline.elementAt(0);
    for (int i = 1; i < edges.count; ++i) {
        const QPointF to = outline.elementAt(i);
        const QPointF way = (to - from) / scale.pixel;
        edges.length += std::abs(way.x()) + std::abs(way.y());
        edges.far += isFar && way.manhattanLength() > kFarthest ? 1 : 0;
        // Behind the right edge of what is seen nothing is kept, and before the left one a dot a row.
        if (std::min(from.x(), to.x()) <= sight.right()) {
            edges.down += seen(from.y(), to.y(), sight.top(), sight.bottom());
            if (std::max(from.y(), to.y()) >= sight.top() && std::min(from.y(), to.y()) <= sight.bottom())
                edges.across += seen(from.x(), to.x(), sight.left(), sight.right());
        }
        from = to;
    }
    return edges;
}

double rowsCost(double dots, const Edges& edges) {
    return dots * (kOfADot + kOfASearch * std::min(dots / edges.rows, edges.columns)) + edges.far * kOfAFarEdge;
}

double dotsOf(const QRectF& box, const PaintScale& scale) {
    const QRectF seen = box & scale.sight;
    return seen.width() / scale.pixel * (seen.height() / scale.pixel);
}

// In PDF each repetition of a gradient is written, as far as it can be seen.
double repetitionsOf(const QBrush& brush, const PaintScale& scale) {
    const QGradient& gradient = *brush.gradient();
    if (gradient.spread() == QGradient::PadSpread) return 1;
    const double stretch = std::sqrt(std::abs(brush.transform().determinant()));
    const double length = gradient.type() == QGradient::RadialGradient
                              ? static_cast<const QRadialGradient&>(gradient).radius()
                              : QLineF(static_cast<const QLinearGradient&>(gradient).start(),
                                       static_cast<const QLinearGradient&>(gradient).finalStop())
                                    .length();
    return 1 + std::hypot(scale.sight.width(), scale.sight.height()) / (length * stretch);
}

double brushCost(const QBrush& brush, double dots, const PaintScale& scale) {
    const QGradient* gradient = brush.gradient();
    double ofADot = brush.isOpaque() ? kSolid : kBlended, fixed = 0;
    if (gradient != nullptr) {
        fixed = double(gradient->stops().size()) *
                (scale.isVector ? kOfAWrittenStop * repetitionsOf(brush, scale) : kOfAStop);
        ofADot = gradient->type() == QGradient::RadialGradient ? kRadial : kGradient;
    }
    return fixed + (scale.isVector ? 0 : dots * ofADot);
}

double outlineCost(const QPainterPath& outline, const PaintScale& scale) {
    const Edges edges = edgesOf(outline, scale);
    return kOfAPiece + edges.count * kOfAnElement + rowsCost(edges.across + edges.down, edges);
}

}  // namespace

double fillCost(const QPainterPath& outline, const QBrush& brush, const PaintScale& scale) {
    const double brushed = brushCost(brush, dotsOf(outline.controlPointRect(), scale), scale);
    if (scale.isVector) return kOfAPiece + outline.elementCount() * kWritten + brushed;
    return outlineCost(outline, scale) + brushed;
}

double clipCost(const QPainterPath& outline, const PaintScale& scale) {
    if (scale.isVector) return kOfAPiece + outline.elementCount() * kWritten;
    return 2 * outlineCost(outline, scale);  // once more when it is laid over what is painted
}

double strokeCost(const QPainterPath& outline, const QPen& pen, const PaintScale& scale) {
    const double reach = pen.widthF() * std::max(1.0, pen.miterLimit());
    const QRectF box = outline.controlPointRect().adjusted(-reach, -reach, reach, reach);
    if (scale.isVector) return kOfAPiece + outline.elementCount() * kWritten + brushCost(pen.brush(), 0, scale);
    Edges edges = edgesOf(outline, scale);
    const double width = pen.widthF() / scale.pixel;
    const bool isRound = pen.joinStyle() == Qt::RoundJoin || pen.capStyle() == Qt::RoundCap;
    double pieces = edges.count;
    double cost = kOfAPiece + pieces * (isRound ? kRound : kStroked);
    if (pen.style() == Qt::CustomDashLine) {
        double period = 0;
        for (const qreal dash : pen.dashPattern()) period += dash * width;
        const double dashes = edges.length / period * double(pen.dashPattern().size()) / 2;
        cost += dashes * kOfADash;
        pieces += dashes;
    }
    const double ends =
        pieces * 2 * std::min(width, std::hypot(scale.sight.width(), scale.sight.height()) / scale.pixel);
    edges.columns = std::min(edges.columns + 2 * width, scale.sight.width() / scale.pixel);
    edges.rows = std::min(edges.rows + 2 * width, scale.sight.height() / scale.pixel);
    cost += rowsCost(2 * (edges.across + edges.down + ends) * (isRound ? 1.5 : 1), edges);
    return cost + brushCost(pen.brush(), std::min(dotsOf(box, scale), edges.length * (width + 1)), scale);
}

// Random edges cross each other about as often as the square of their length has room in their box.
double combineCost(const QPainterPath& one, const QPainterPath& other) {
    const double elements = double(one.elementCount()) + other.elementCount();
    if (one.isEmpty() || other.isEmpty()) return kOfAPiece + elements * kOfAnElement;
    const QRectF box = one.controlPointRect() | other.controlPointRect();
    const PaintScale scale{false, 1, box};
    const Edges first = edgesOf(one, scale), second = edgesOf(other, scale);
    const double length = first.length + second.length;
    const double crossings =
        std::min(length * length / (4 * std::max(1e-9, box.width() * box.height())), elements * elements / 2);
    return kOfAPiece + elements * kCombined + elements * elements * kOfAPair + crossings * kOfACrossing;
}

double pictureCost(double dots, bool hasMask, double laidOn) {
    return kOfAPiece + dots * (kOfAPictureDot + (hasMask ? kOfAMaskDot : 0)) +
           (laidOn > dots ? laidOn * kOfAScaledDot : 0);
}

}  // namespace quorvel::render
