// Draws a drawing: the same on the canvas, on paper, in PDF and in PNG.
#pragma once

#include <QDeadlineTimer>
#include <QPainter>
#include <QTransform>
#include <memory>
#include <vector>

#include "document/document.h"
#include "render/appearance.h"
#include "render/art_boxes.h"
#include "render/art_painter.h"
#include "render/clip_mask_cache.h"
#include "render/filter_painter.h"
#include "render/foreign_art.h"
#include "render/sub_drawing.h"

namespace quorvel::render {

// A piece of the painting: art that is painted as one, or the mark of its selection.
struct PaintItem {
    doc::ArtId art = 0;
    bool mark = false;
    doc::ArtId clippedBy = 0;  // the nearest group around it that cuts it, 0 for none
};

class DocumentPainter {
  public:
    // Decodes images in this process.
    DocumentPainter(const doc::Document& document, const ImageAccess& access);
    // around: of a drawing that is a definition's, such as a marker.
    DocumentPainter(const doc::Document& document, std::shared_ptr<PaintResources> resources,
                    const DefinitionsAround& around);
    ~DocumentPainter();

    // toDevice takes document points, y up, to the painter's pixels. Only what meets clip, in those pixels, is drawn.
    void paint(QPainter* painter, const QTransform& toDevice, const QRectF& clip, const PaintOptions& options);

    // The same in steps: what there is to paint, the lowest first, and the painting of items[first] and those behind it
    // until the time is up. Gives the index of the first that is not painted yet. Art that has gone in between is
    // passed over.
    std::vector<PaintItem> order(const QTransform& toDevice, const QRectF& clip, const PaintOptions& options);
    std::size_t paintItems(QPainter* painter, const QTransform& toDevice, const QRectF& clip,
                           const PaintOptions& options, const std::vector<PaintItem>& items, std::size_t first,
                           const QDeadlineTimer& until);

    // What a piece of art may cover, in document points, and the same for art that has changed.
    QRectF drawnBox(const doc::Art& art) { return boxes_.drawn(art); }
    QRectF renewedBox(const doc::Art& art) { return boxes_.renewed(art); }
    // What could not be shown of what has been painted.
    std::vector<Error> warnings() const;
    // Images that were waited for are asked for again when they are painted. False when there are none.
    bool forgetWaitingImages();
    // True for art that looks different throughout when any of its members changes.
    bool dependsOnMembers(const doc::Art& art);

  private:
    void beginBudget();
    void paintArt(const doc::Art& art);
    void paintUnclipped(const doc::Art& art, const Appearance& look);
    void paintContent(const doc::Art& art);
    // Paints the art on a picture of its own, which is laid down as a whole.
    void paintApart(const doc::Art& art, const Appearance& look);
    // Where in the device's dots the art is painted as a picture.
    QRect placeApart(const doc::Art& art, const Appearance& look, const QTransform& toDevice);
    void filterPicture(const doc::Art& art, const svg::Filter& filter, const QTransform& toPicture, QPainter* apart,
                       QImage* picture);
    void maskPicture(const doc::Art& art, const Appearance& look, const QTransform& toPicture, QPainter* picture);
    // False, with the art noted as left out, when it cannot be cut.
    [[nodiscard]] bool clipTo(const doc::Art& art, const Appearance& look);
    [[nodiscard]] bool clipToGroups(doc::ArtId nearest);
    // Paints on a picture of its own, which is laid down as a whole: blending takes in the drawing, not the paper.
    void paintIsolated(QPainter* painter, const QTransform& toDevice, const QRectF& clip, const PaintOptions& options,
                       const std::vector<PaintItem>& items);
    bool isApart(const Appearance& look) const;
    void beginPaint(const QTransform& toDevice, const QRectF& clip, const PaintOptions& options);
    void addItems(const doc::Art& art, doc::ArtId clippedBy, std::vector<PaintItem>* items);
    void addMarks(const doc::Art& art, std::vector<PaintItem>* items);
    bool isOutOfSight(const doc::Art& art);

    const doc::Document& document_;
    bool isIsolated_ = false;  // it paints on a picture of its own now
    bool isOutermost_;         // its painting begins the budget
    std::shared_ptr<PaintResources> resources_;
    AppearanceReader looks_;
    SubDrawingCache drawings_;
    ClipMaskCache clips_;
    ForeignArtCache foreign_;
    FilterPainter filters_;
    ArtBoxes boxes_;
    PaintState state_;
    ArtPainter artPainter_;
};

}  // namespace quorvel::render
