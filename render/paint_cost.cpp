// The raster engine keeps, for each row of dots, a sorted list of the dots that edges cross, and looks for the place of
// each from the list's begin: many edges that each run over the whole page take the square of their number.
#include "render/paint_cost.h"

#include <QGradient>
#include <QLineF>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace quorvel::render {

namespace {

constexpr double kOfAPiece = 2'000;                     // of any outline
constexpr double kOfAnElement = 100, kWritten = 1'000;  // of an outline: filled, or written as PDF
constexpr double kStroked = 1'000, kRound = 3'000;      // of an element whose stroke is outlined, with round joins
constexpr double kOfADash = 8'000;
// Of a dot that an edge crosses: each time; for each that is in its row; once. Of one on an upright or level edge.
constexpr double kOfACrossing = 60, kOfASearch = 3.5, kOfADot = 250, kOfAStraightDot = 10;
constexpr double kSolid = 0.12, kBlended = 0.4, kGradient = 3, kRadial = 6;  // of a dot that is filled
constexpr double kOfAStop = 100, kOfAWrittenStop = 3'000;                    // of a gradient
constexpr double kWide = 50;                                                 // dots
constexpr double kOfAPictureDot = 0.7, kOfAMaskDot = 18, kOfAScaledDot = 15, kOfAWrittenDot = 12;
constexpr double kOfAFarEdge = 8'000;  // that leads out of the coordinates of the raster engine
constexpr double kCombined = 3'000, kOfAPair = 2, kOfAnIntersection = 2'000;  // of outlines that are united

// Edges in the device's dots, as far as they can be seen.
struct Edges {
    // The box that they are in, in fields: how many dots are crossed in each.
    static constexpr int kFields = 32;
    std::array<std::array<double, kFields>, kFields> fields{};
    double straight = 0;
    double length = 0;  // of all of them, seen or not
    int count = 0, far = 0;
    QRectF box;
    double rows = 1, columns = 1;  // of the box
};

// As the raster engine has it; what reaches out is cut before it is filled.
constexpr double kFarthest = 32'000;

std::size_t fieldAt(double place) { return static_cast<std::size_t>(std::clamp(place, 0.0, Edges::kFields - 1.0)); }

// One edge. Behind the right side of the box nothing is kept, and before the left one a dot for each row.
void addEdge(QPointF from, QPointF to, double pixel, Edges* edges) {
    const QRectF& box = edges->box;
    if (std::max(from.y(), to.y()) < box.top() || std::min(from.y(), to.y()) > box.bottom()) return;
    if (const QPointF whole = to - from; whole.y() != 0) {
        const QPointF begin = from;
        const auto at = [&](double y) { return begin + whole * std::clamp((y - begin.y()) / whole.y(), 0.0, 1.0); };
        from = at(whole.y() > 0 ? box.top() : box.bottom());
        to = at(whole.y() > 0 ? box.bottom() : box.top());
    }
    if (std::min(from.x(), to.x()) > box.right()) return;
    for (QPointF* end : {&from, &to}) end->setX(std::clamp(end->x(), box.left(), box.right()));
    const QPointF way = to - from;
    const double dots = way.manhattanLength() / pixel;
    if (way.x() == 0 || way.y() == 0) {
        edges->straight += dots;
        return;
    }
    const double across = Edges::kFields / box.width(), down = Edges::kFields / box.height();
    const int steps = 1 + static_cast<int>(std::max(std::abs(way.x()) * across, std::abs(way.y()) * down));
    for (int i = 0; i < steps; ++i) {
        const QPointF place = from + way * ((i + 0.5) / steps) - box.topLeft();
        edges->fields[fieldAt(place.y() * down)][fieldAt(place.x() * across)] += dots / steps;
    }
}

Edges edgesOf(const QPainterPath& outline, const PaintScale& scale) {
    Edges edges;
    edges.count = outline.elementCount();
    if (edges.count == 0) return edges;
    const QRectF whole = outline.controlPointRect();
    edges.box =
        QRectF(QPointF(std::max(whole.left(), scale.sight.left()), std::max(whole.top(), scale.sight.top())),
               QPointF(std::min(whole.right(), scale.sight.right()), std::min(whole.bottom(), scale.sight.bottom())));
    const bool isSeen = edges.box.width() >= 0 && edges.box.height() >= 0;
    edges.columns = std::max(1.0, edges.box.width() / scale.pixel);
    edges.rows = std::max(1.0, edges.box.height() / scale.pixel);
    const bool isFar = std::max(whole.width(), whole.height()) / scale.pixel > kFarthest;
    QPointF from = outline.elementAt(0);
    for (int i = 1; i < edges.count; ++i) {
        const QPointF to = outline.elementAt(i);
        const double length = (to - from).manhattanLength() / scale.pixel;
        edges.length += length;
        edges.far += isFar && length > kFarthest ? 1 : 0;
        if (isSeen) addEdge(from, to, scale.pixel, &edges);
        from = to;
    }
    return edges;
}

// sides: how many lines run along each edge; ends: dots more, anywhere in the box.
double rowsCost(const Edges& edges, double sides, double ends) {
    const double ofAField = std::max(1.0, edges.columns * edges.rows / (Edges::kFields * Edges::kFields));
    const double rowsOfAField = std::max(1.0, edges.rows / Edges::kFields);
    const double endsOfARow = std::min(ends / edges.rows, edges.columns);
    double cost = edges.far * kOfAFarEdge + sides * edges.straight * kOfAStraightDot, all = 0;
    for (const auto& row : edges.fields) {
        double crossed = 0, there = 0;
        for (const double dots : row) {
            crossed += sides * dots;
            there += std::min(sides * dots, ofAField);
        }
        cost += crossed * (kOfACrossing + kOfASearch * (there / rowsOfAField + endsOfARow)) + there * kOfADot;
        all += there;
    }
    return cost + ends * (kOfACrossing + kOfADot + kOfASearch * (endsOfARow + all / edges.rows));
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
    return kOfAPiece + edges.count * kOfAnElement + rowsCost(edges, 1, 0);
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
    const double widest = std::hypot(scale.sight.width(), scale.sight.height()) / scale.pixel;
    edges.columns = std::min(edges.columns + 2 * width, scale.sight.width() / scale.pixel);
    edges.rows = std::min(edges.rows + 2 * width, scale.sight.height() / scale.pixel);
    const bool isPlain = pieces <= 5;              // a line or a rectangle
    const double round = width > kWide ? 6 : 2.5;  // a join is a circle
    cost += rowsCost(edges, 2, isPlain ? 0 : pieces * 2 * std::min(width, widest) * (isRound ? round : 1));
    return cost + brushCost(pen.brush(), std::min(dotsOf(box, scale), edges.length * (width + 1)), scale);
}

// Random edges cross each other about as often as the square of their length has room in their box.
double combineCost(const QPainterPath& one, const QPainterPath& other) {
    const double elements = double(one.elementCount()) + other.elementCount();
    if (one.isEmpty() || other.isEmpty()) return kOfAPiece + elements * kOfAnElement;
    const QRectF box = one.controlPointRect() | other.controlPointRect();
    const PaintScale scale{true, 1, box};
    const double length = edgesOf(one, scale).length + edgesOf(other, scale).length;
    const double crossings =
        std::min(length * length / (4 * std::max(1e-9, box.width() * box.height())), elements * elements / 2);
    return kOfAPiece + elements * kCombined + elements * elements * kOfAPair + crossings * kOfAnIntersection;
}

double pictureCost(double dots, bool hasMask, double laidOn, bool isVector) {
    const double laid = isVector ? dots * kOfAWrittenDot : laidOn > dots ? laidOn * kOfAScaledDot : 0;
    return kOfAPiece + dots * (kOfAPictureDot + (hasMask ? kOfAMaskDot : 0)) + laid;
}

}  // namespace quorvel::render
