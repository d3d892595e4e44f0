// Filters: what an element with a filter shows is painted as a picture, and librsvg computes the filtered one from it.
// So the filtered art is always what the drawing holds now.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QRectF>
#include <QTransform>
#include <list>
#include <string>
#include <utility>

#include "interchange/svg/source.h"
#include "render/paint_budget.h"
#include "svg/css/computed_style.h"
#include "svg/tree/filters.h"

namespace quorvel::render {

// What the filter may paint of art in this box, with all that the art itself covers; all in user space.
QRectF filteredBox(const svg::Filter& filter, const QRectF& box, const QRectF& drawn);

class FilterPainter {
  public:
    explicit FilterPainter(PaintBudget* budget) : budget_(*budget) {}

    // How many dots a picture may have for this filter.
    static double mostDots(const svg::Filter& filter);
    // Puts the filtered picture in place of the picture of the art. box: of the art, in user space, which toPicture
    // takes to the picture's dots. False, with the picture as it was, when that would be too much work or cannot be
    // done.
    [[nodiscard]] bool apply(const svg::Filter& filter, const svg::ComputedStyle& style, const svg::File& file,
                             const QRectF& box, const QTransform& toPicture, QImage* picture);

  private:
    PaintBudget& budget_;
    // The last filtered pictures by what they were made of, the latest first.
    std::list<std::pair<QByteArray, QImage>> known_;
    double knownDots_ = 0;
};

}  // namespace quorvel::render
