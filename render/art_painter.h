// Paints single pieces of art: outlines with their markers, texts, and the marks of what is selected.
#pragma once

#include <QBrush>
#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QRectF>
#include <QTransform>
#include <string>

#include "document/document.h"
#include "render/appearance.h"
#include "render/art_boxes.h"
#include "render/foreign_art.h"
#include "render/paint_budget.h"
#include "render/paint_cost.h"
#include "render/sub_drawing.h"

namespace quorvel::render {

struct PaintOptions {
    bool guides = false;    // they are for the screen alone
    bool selected = false;  // the selection is marked
    QColor mark = QColor(0x2f, 0x6f, 0xe4);
    ContextPaint context;  // of the art that this drawing is a marker on
};

// Where and how it is painted now. The painter's coordinates are document points.
struct PaintState {
    PaintBudget* budget = nullptr;
    std::string definition;  // that is being painted; empty: none
    QPainter* painter = nullptr;
    PaintOptions options;
    QTransform world;  // from document points to the painter's device
    QRectF sight;      // in document points
    double pixel = 1;  // points

    // Of the painter's coordinates as they are now.
    PaintScale scale() const;
};

class ArtPainter {
  public:
    // All outlive the painter.
    ArtPainter(const doc::Document& document, AppearanceReader* looks, SubDrawingCache* drawings,
               ForeignArtCache* foreign, ArtBoxes* boxes, const PaintState* state);

    // Counts the work. False, with the art noted as left out, when it must not be done.
    [[nodiscard]] bool take(double nanoseconds, const doc::Art& art);
    void leaveOut(const doc::Art& art);

    void path(const doc::Art& art);
    void text(const doc::Art& art);
    // A line of one pixel along what is selected, and its anchors while there are few enough to tell apart.
    void mark(const doc::Art& art);

  private:
    void textLayout(const TextLayout& layout, const QTransform& toDocument, const doc::Art& art);
    bool dot(const doc::Art& art, const AIPathStyle& style);
    void markers(const doc::Art& art, const AIPathStyle& style, const Appearance& look);
    void marker(const MarkerDrawing& drawing, const QTransform& there, const ContextPaint& context);
    // Fills the outline, which is of the art's shape or of its stroke.
    void fill(const QPainterPath& outline, const AIColor& color, const doc::Art& art, double opacity);
    void stroke(const QPainterPath& outline, QPen pen, const AIColor& color, const doc::Art& art, double opacity);
    void strokeEach(const QPainterPath& outline, const QPen& pen, const doc::Art& art);
    QBrush brushOf(const AIColor& color, const doc::Art& art, double opacity) const;
    QPainter& to() const { return *state_.painter; }

    const doc::Document& document_;
    AppearanceReader& looks_;
    SubDrawingCache& drawings_;
    ForeignArtCache& foreign_;
    ArtBoxes& boxes_;
    const PaintState& state_;
};

}  // namespace quorvel::render
