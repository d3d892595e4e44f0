// What art covers, in document points, y up.
#pragma once

#include <QRectF>
#include <QTransform>
#include <unordered_map>

#include "document/document.h"
#include "render/appearance.h"
#include "render/foreign_art.h"
#include "render/sub_drawing.h"

namespace quorvel::render {

// How long a unit of the marker is in the art's user space.
double markerUnit(const svg::Marker& marker, const AIPathStyle& style, const QTransform& userSpace);

class ArtBoxes {
  public:
    // All outlive the boxes.
    ArtBoxes(const doc::Document& document, AppearanceReader* looks, SubDrawingCache* drawings,
             ForeignArtCache* foreign);

    // Without strokes: what clips, masks and patterns are measured by. Null when there is none.
    QRectF plain(const doc::Art& art);
    // With strokes and markers, or what glyphs leave their boxes by; groups cover what is in them, and may have covered
    // more before. Null for art that shows nothing.
    QRectF drawn(const doc::Art& art);
    // Images have got other sizes.
    void forget() { groups_.clear(); }
    // The same for art that has changed; the groups round it grow to hold it.
    QRectF renewed(const doc::Art& art);

  private:
    QRectF unfiltered(const doc::Art& art);
    double markerReach(const doc::Art& art, const AIPathStyle& style);

    const doc::Document& document_;
    AppearanceReader& looks_;
    SubDrawingCache& drawings_;
    ForeignArtCache& foreign_;
    std::unordered_map<doc::ArtId, QRectF> groups_;
};

}  // namespace quorvel::render
