// Art of kinds that are kept and never entered: images, and elements that Qt's own reader may be able to draw.
#pragma once

#include <QPainter>
#include <QPolygonF>
#include <cstdint>
#include <memory>
#include <unordered_map>

#include "document/document.h"
#include "interchange/svg/source.h"
#include "render/paint_cost.h"
#include "render/paint_resources.h"

namespace quorvel::render {

class ForeignArtCache {
  public:
    // Both outlive the cache.
    ForeignArtCache(const doc::Document& document, PaintResources* resources);
    ~ForeignArtCache();

    // The painter's coordinates are document points, y up.
    void draw(const doc::Art& art, QPainter* painter);
    // Nanoseconds that drawing it takes, from above.
    double cost(const doc::Art& art, const PaintScale& scale);
    // What the art covers, in document points: an image's frame. Empty where that is not known.
    QPolygonF frameOf(const doc::Art& art);
    // The same, or for what is no image a box round what Qt can draw of it. Empty for what it cannot.
    QPolygonF shownFrameOf(const doc::Art& art);
    // Images that were waited for are asked for again.
    void forgetWaiting();

  private:
    struct Foreign;
    const Foreign& foreign(const doc::Art& art);
    std::unique_ptr<Foreign> read(std::int32_t element);
    std::unique_ptr<Foreign> leftOut(const std::string& name, std::unique_ptr<Foreign> foreign);
    void readImage(std::int32_t element, Foreign* image);
    void drawImage(const Foreign& known, QPainter* painter);

    const interchange::SvgSource* source_;
    PaintResources& resources_;
    std::unordered_map<std::int32_t, std::unique_ptr<Foreign>> known_;  // by element
    bool isFull_ = false;                                               // no more excerpts
};

}  // namespace quorvel::render
