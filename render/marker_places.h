// Where markers are on an outline, and how they are turned there.
#pragma once

#include <QPointF>
#include <QTransform>
#include <vector>

#include "document/document.h"

namespace quorvel::render {

struct MarkerPlace {
    int kind = 0;  // 0 the first anchor, 1 those between, 2 the last
    QPointF at;
    double angle = 0;  // degrees, from x to y: of the outline there
};
// Of an outline's pieces in their order, in the coordinates in which map gives the places.
std::vector<MarkerPlace> markerPlaces(const std::vector<const doc::PathData*>& pieces, const QTransform& map);

}  // namespace quorvel::render
