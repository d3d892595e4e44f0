// Draws a drawing: the same on the canvas, on paper, in PDF and in PNG.
#pragma once

#include <QDeadlineTimer>
#include <QPainter>
#include <QString>
#include <QTransform>
#include <memory>
#include <vector>

#include "desktop/source_looks.h"
#include "host/document.h"

namespace quorvel::desktop {

struct PaintOptions {
    bool guides = false;    // they are for the screen alone
    bool selected = false;  // the selection is marked
    QColor mark = QColor(0x2f, 0x6f, 0xe4);
};

// What a piece of art may cover, in document points: its bounds grown by its stroke, or by what glyphs leave their
// boxes. Null for art that shows nothing.
QRectF DrawnBox(const host::Document& document, const host::Art& art);

// A piece of the painting: art that is painted as one, or the mark of its selection.
struct PaintItem {
    host::ArtId art = 0;
    bool mark = false;
};

class DocumentPainter {
  public:
    // folder: where pictures that the drawing links to are looked for.
    DocumentPainter(const host::Document& document, QString folder);
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

  private:
    void paintArt(const host::Art& art);
    void paintContent(const host::Art& art);
    // Paints the art on a picture of its own, which is laid down as a whole.
    void paintApart(const host::Art& art, const Looks& looks);
    void paintPath(const host::Art& art);
    void paintText(const host::Art& art);
    void paintMark(const host::Art& art);
    void look(const QTransform& toDevice, const QRectF& clip, const PaintOptions& options);
    void addItems(const host::Art& art, std::vector<PaintItem>* items);
    void addMarks(const host::Art& art, std::vector<PaintItem>* items) const;
    bool outOfSight(const host::Art& art) const;
    QBrush brushOf(const AIColor& color, const host::Art& art, double opacity);
    QPen penOf(const AIPathStyle& style, const QBrush& ink) const;

    const host::Document& document_;
    SourceLooks looks_;
    QPainter* painter_ = nullptr;
    PaintOptions options_;
    QTransform toDevice_;
    QRectF sight_;      // in document points
    double pixel_ = 1;  // points
};

}  // namespace quorvel::desktop
