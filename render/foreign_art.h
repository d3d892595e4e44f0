// Art of kinds that are kept and never entered: images, and elements that Qt's own reader may be able to draw.
#pragma once

#include <QPainter>
#include <QPolygonF>
#include <QString>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "base/error.h"
#include "document/document.h"
#include "interchange/svg/source.h"

namespace quorvel::render {

class ForeignArtCache {
  public:
    // folder: where pictures that the drawing links to are looked for. The document outlives the cache.
    ForeignArtCache(const doc::Document& document, QString folder);
    ~ForeignArtCache();

    // The painter's coordinates are document points, y up.
    void draw(const doc::Art& art, QPainter* painter);
    // What the art covers, in document points: an image's frame. Empty where that is not known.
    QPolygonF frameOf(const doc::Art& art);
    // The same, or for what is no image a box round what Qt can draw of it. Empty for what it cannot.
    QPolygonF shownFrameOf(const doc::Art& art);
    // Images that could not be shown, since the cache was made.
    const std::vector<Error>& warnings() const { return warnings_; }

  private:
    struct Foreign;
    const Foreign& foreign(const doc::Art& art);
    std::unique_ptr<Foreign> read(std::int32_t element);
    void readImage(std::int32_t element, Foreign* image);

    const interchange::SvgSource* source_;
    QString folder_;
    std::unordered_map<std::int32_t, std::unique_ptr<Foreign>> known_;  // by element
    std::vector<Error> warnings_;
};

}  // namespace quorvel::render
