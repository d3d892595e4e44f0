// Pieces of the file that are drawn again and again on other art: markers on the anchors of outlines, tiles of
// patterns. Each is read as a drawing of its own and drawn by a painter of its own.
#pragma once

#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <QTransform>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "document/document.h"
#include "render/definitions.h"

namespace quorvel::render {

class DocumentPainter;

// Content is the space in which the piece is written, user units, y down.
class SubDrawing {
  public:
    // depth: of parts within parts.
    SubDrawing(const std::string& file, const QString& folder, int depth);
    ~SubDrawing();
    bool read() const { return document_ != nullptr; }  // false when its content is no sound drawing
    QRectF box() const;                                 // what it may cover, content; null: nothing
    // toWorld takes content to the painter's coordinates, of which only sight is needed.
    void paint(QPainter* painter, const QTransform& toWorld, const QRectF& sight) const;

  private:
    std::unique_ptr<doc::Document> document_;
    std::unique_ptr<DocumentPainter> painter_;
    QTransform toContent_;  // from the document's points
};

struct Marker {
    enum class Turn : std::uint8_t { kFixed, kAlong, kAlongReversedAtStart };
    Turn turn = Turn::kFixed;
    double angle = 0;      // degrees, of kFixed
    bool byStroke = true;  // a unit of it is the width of the stroke
    QTransform content;    // into the marker's units, with its reference point at their origin
    QRectF window;         // what is shown of it, in its units; null: all
    double reach = 0;      // the farthest it may be seen from the anchor, in its units
    std::unique_ptr<SubDrawing> part;
};

struct MarkerPlace {
    int kind = 0;  // 0 the first anchor, 1 those between, 2 the last
    QPointF at;
    double angle = 0;  // degrees, from x to y: of the outline there
};
// Of an outline's pieces in their order, in the coordinates in which map gives the places.
std::vector<MarkerPlace> markerPlaces(const std::vector<const doc::PathData*>& pieces, const QTransform& map);

struct Pattern {
    bool boxUnits = true, boxContent = false;
    QRectF tile;  // in user units, or shares of the box
    QTransform map;
    QTransform window;  // from a viewBox into a tile of the size above, at the origin
    bool hasWindow = false;
    std::unique_ptr<SubDrawing> part;
};

class SubDrawingCache {
  public:
    SubDrawingCache(Definitions* definitions, QString folder, int depth);
    ~SubDrawingCache();

    // Null when the file has no such marker. The colours are those of the art, which the marker may take up.
    const Marker* marker(const QString& id, const QColor& fill, const QColor& stroke);
    const Pattern* pattern(const QString& id);

  private:
    std::unique_ptr<Marker> readMarker(const pugi::xml_node& node, std::string file, const QColor& fill,
                                       const QColor& stroke);
    std::unique_ptr<Pattern> readPattern(const pugi::xml_node& node);

    Definitions& definitions_;
    QString folder_;
    int depth_;
    std::unordered_map<std::string, std::string> markerFiles_;
    std::unordered_map<std::string, std::unique_ptr<Marker>> markers_;    // null: there is none
    std::unordered_map<std::string, std::unique_ptr<Pattern>> patterns_;  // null: there is none
};

// Fills the outline with the pattern's tiles. Both are in the painter's coordinates but for the pattern, whose user
// space user leads there. box: of the art, in user space.
void fillWithPattern(const Pattern& pattern, const QPainterPath& outline, const QTransform& user, const QRectF& box,
                     const QRectF& sight, QPainter* painter);

}  // namespace quorvel::render
