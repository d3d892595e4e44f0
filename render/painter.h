// Draws a drawing: the same on the canvas, on paper, in PDF and in PNG.
#pragma once

#include <QDeadlineTimer>
#include <QPainter>
#include <QString>
#include <QTransform>
#include <memory>
#include <unordered_map>
#include <vector>

#include "document/document.h"
#include "render/appearance.h"
#include "render/sub_drawing.h"

namespace quorvel::render {

struct PaintOptions {
    bool guides = false;    // they are for the screen alone
    bool selected = false;  // the selection is marked
    QColor mark = QColor(0x2f, 0x6f, 0xe4);
};

// A piece of the painting: art that is painted as one, or the mark of its selection.
struct PaintItem {
    doc::ArtId art = 0;
    bool mark = false;
    doc::ArtId clippedBy = 0;  // the nearest group around it that cuts it, 0 for none
};

class DocumentPainter {
  public:
    // folder: where pictures that the drawing links to are looked for. depth: of a drawing that is a part of another
    // one's art, such as a marker.
    DocumentPainter(const doc::Document& document, QString folder, int depth = 0);
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

    // What a piece of art may cover, in document points: its bounds grown by its stroke and markers, or by what glyphs
    // leave their boxes; groups cover what is in them, and may have covered more before. Null for art that shows
    // nothing.
    QRectF drawnBox(const doc::Art& art);
    // The same for art that has changed; the groups round it grow to hold it.
    QRectF renewedBox(const doc::Art& art);
    // True for art that looks different throughout when any of its members changes.
    bool dependsOnMembers(const doc::Art& art);

  private:
    void paintArt(const doc::Art& art);
    void paintContent(const doc::Art& art);
    // Paints the art on a picture of its own, which is laid down as a whole.
    void paintApart(const doc::Art& art, const SvgAppearance& looks);
    void paintPath(const doc::Art& art);
    void paintText(const doc::Art& art);
    void paintMarkers(const doc::Art& art, const AIPathStyle& style, const SvgAppearance& looks);
    void paintMark(const doc::Art& art);
    // Fills the outline, which is of the art's shape or of its stroke.
    void fill(const QPainterPath& outline, const AIColor& color, const doc::Art& art, double opacity);
    void stroke(const QPainterPath& outline, QPen pen, const AIColor& color, const doc::Art& art, double opacity);
    void clipTo(const doc::Art& art, const SvgAppearance& looks);
    void clipToGroups(doc::ArtId nearest);
    void look(const QTransform& toDevice, const QRectF& clip, const PaintOptions& options);
    void addItems(const doc::Art& art, doc::ArtId clippedBy, std::vector<PaintItem>* items);
    void addMarks(const doc::Art& art, std::vector<PaintItem>* items);
    bool outOfSight(const doc::Art& art);
    QRectF plainBox(const doc::Art& art);  // what clips and masks are measured by; null when there is none
    const Marker* markerOf(const doc::Art& art, const AIPathStyle& style, const SvgAppearance& looks, int kind);
    double markerReach(const doc::Art& art, const AIPathStyle& style, const SvgAppearance& looks);
    QBrush brushOf(const AIColor& color, const doc::Art& art, double opacity);
    QPen penOf(const AIPathStyle& style) const;

    const doc::Document& document_;
    AppearanceReader looks_;
    SubDrawingCache parts_;
    std::unordered_map<doc::ArtId, QRectF> groupBoxes_;
    QPainter* painter_ = nullptr;
    PaintOptions options_;
    QTransform world_;  // from document points to the painter's device
    QRectF sight_;      // in document points
    double pixel_ = 1;  // points
};

}  // namespace quorvel::render
