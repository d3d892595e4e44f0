// What is in definitions, drawn again and again on other art: markers on the anchors of outlines, tiles of patterns,
// masks. Each is opened as a drawing of its own and drawn by a painter of its own.
#pragma once

#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <QTransform>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "document/document.h"
#include "render/paint_resources.h"
#include "svg/tree/definitions.h"
#include "svg/tree/file.h"

namespace quorvel::render {

class DocumentPainter;

// Ids of the definitions that a drawing is within, the outermost first.
using DefinitionsAround = std::vector<std::string>;

// The colours of the art that a marker is on, which the marker may take up; transparent for none.
struct ContextPaint {
    QColor fill = Qt::transparent, stroke = Qt::transparent;
};

// Content is the space in which the definition is written, user units, y down.
class SubDrawing {
  public:
    // around: the definitions that it is in, itself the last.
    SubDrawing(const std::shared_ptr<svg::File>& file, const svg::Content& content, const svg::Viewport& viewport,
               std::shared_ptr<PaintResources> resources, const DefinitionsAround& around);
    ~SubDrawing();
    bool isRead() const { return document_ != nullptr; }  // false when its content is no sound drawing
    QRectF box() const;                                   // what it may cover, content; null: nothing
    // toWorld takes content to the painter's coordinates, of which only sight is needed.
    void paint(QPainter* painter, const QTransform& toWorld, const QRectF& sight, const ContextPaint& context) const;

  private:
    std::shared_ptr<PaintResources> resources_;
    std::unique_ptr<doc::Document> document_;
    std::unique_ptr<DocumentPainter> painter_;
    QTransform toContent_;  // from the document's points
    double elements_ = 0;
};

struct MarkerDrawing {
    const svg::Marker* marker = nullptr;
    QTransform content;  // into the marker's units, with its reference point at their origin
    QRectF window;       // what is shown of it, in its units; null: all
    double reach = 0;    // the farthest it may be seen from the anchor, in its units
    std::unique_ptr<SubDrawing> drawing;
};

struct PatternDrawing {
    const svg::Pattern* pattern = nullptr;
    std::unique_ptr<SubDrawing> tile;
};

class SubDrawingCache {
  public:
    // file may be null: then there is nothing.
    SubDrawingCache(std::shared_ptr<svg::File> file, std::shared_ptr<PaintResources> resources,
                    DefinitionsAround around);
    ~SubDrawingCache();

    // Null when the file has none, for one that is within itself, and for drawings too deep in each other.
    const MarkerDrawing* marker(std::string_view id);
    const PatternDrawing* pattern(std::string_view id);
    const SubDrawing* mask(std::string_view id);

  private:
    template <class Value>
    using ById = std::unordered_map<std::string, std::unique_ptr<Value>>;
    bool mayOpen(std::string_view id) const;
    std::unique_ptr<SubDrawing> open(std::string_view id, const svg::Content& content,
                                     const svg::Viewport& viewport) const;
    std::unique_ptr<MarkerDrawing> readMarker(std::string_view id, const svg::Marker& marker) const;
    std::unique_ptr<PatternDrawing> readPattern(std::string_view id, const svg::Pattern& pattern) const;

    std::shared_ptr<svg::File> file_;
    std::shared_ptr<PaintResources> resources_;
    DefinitionsAround around_;
    ById<MarkerDrawing> markers_;    // null: there is none
    ById<PatternDrawing> patterns_;  // null: there is none
    ById<SubDrawing> masks_;         // null: there is none
};

// Fills the outline with the pattern's tiles. Both are in the painter's coordinates but for the pattern, whose user
// space user leads there. box: of the art, in user space. False when the budget did not allow all of it.
[[nodiscard]] bool fillWithPattern(const PatternDrawing& pattern, const QPainterPath& outline, const QTransform& user,
                                   const QRectF& box, const QRectF& sight, const ContextPaint& context,
                                   QPainter* painter, PaintBudget* budget);

}  // namespace quorvel::render
