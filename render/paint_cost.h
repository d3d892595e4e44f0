// How long painting takes, estimated from above before it is done: nanoseconds of one core of a machine of 2020.
#pragma once

#include <QBrush>
#include <QPainterPath>
#include <QPen>
#include <QRectF>

namespace quorvel::render {

// Where it is painted.
struct PaintScale {
    bool isVector = false;  // PDF: outlines are written, not filled
    double pixel = 1;       // of the device, in the outline's units
    QRectF sight;           // what is seen, in the outline's units
};

double fillCost(const QPainterPath& outline, const QBrush& brush, const PaintScale& scale);
double strokeCost(const QPainterPath& outline, const QPen& pen, const PaintScale& scale);
// Of keeping what is painted next within the outline.
double clipCost(const QPainterPath& outline, const PaintScale& scale);
// Of a union or an intersection of the outlines.
double combineCost(const QPainterPath& one, const QPainterPath& other);
// Of a picture of so many dots, from being made to being laid on so many others.
double pictureCost(double dots, bool hasMask, double laidOn, bool isVector);

}  // namespace quorvel::render
