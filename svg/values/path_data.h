// Outlines: SVG path data and the basic shapes become the anchors and handles of paths in document points, and paths
// become path data again that reads back to the same floats.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "svg/values/affine.h"

namespace quorvel::svg {

// Subpaths one after the other in one run of segments; kept between paths, so that reading a file allocates little.
struct PathShape {
    struct Piece {
        std::uint32_t first = 0, count = 0;
        bool closed = false;
    };
    std::vector<PathSegment> segments;
    std::vector<Piece> pieces;
    void clear();
    std::span<const PathSegment> of(const Piece& piece) const { return {segments.data() + piece.first, piece.count}; }
};

// Draws into a shape in user space. Arcs become cubics of at most a quarter turn. A closing that leads back to the
// first anchor makes no second anchor there.
class PathBuilder {
  public:
    PathBuilder(PathShape* shape, const Affine& toDocument) : shape_(shape), map_(toDocument) {}
    void moveTo(double x, double y);
    void lineTo(double x, double y);
    void curveTo(double x1, double y1, double x2, double y2, double x, double y);
    void arcTo(double rx, double ry, double degrees, bool large, bool sweep, double x, double y);
    void close();
    // Sets each segment's corner flag by its handles. False when a coordinate is not finite or absurdly large.
    [[nodiscard]] bool finish();

    double x() const { return x_; }
    double y() const { return y_; }
    double startX() const { return startX_; }
    double startY() const { return startY_; }
    bool started() const { return started_; }

  private:
    RealPoint at(double x, double y);
    void open();

    PathShape* shape_;
    Affine map_;
    double x_ = 0, y_ = 0, startX_ = 0, startY_ = 0;
    bool started_ = false;  // a moveTo was there
    bool open_ = false;     // the last piece takes more
    bool inRange_ = true;
};

// Draw up to the first error, which names its place in the data, and finish the builder.
Status parsePathData(std::string_view data, PathBuilder* builder);
Status parsePoints(std::string_view points, bool closed, PathBuilder* builder);
// Starts at the upper left, with radii behind the upper left corner's arc.
void drawRect(double x, double y, double width, double height, double rx, double ry, PathBuilder* builder);
// Starts at the right and goes down first, as drawn on the page.
void drawEllipse(double cx, double cy, double rx, double ry, PathBuilder* builder);

// What an outline alone says of an anchor: smooth when both handles are out and lie on one line, else a corner.
bool cornerByHandles(const PathSegment& segment);

struct PathPiece {
    std::span<const PathSegment> segments;
    bool closed = false;
};
// Absolute path data in the space that toDocument maps from, with the fewest digits that come back to the same floats.
// The arriving handle of an open path's first anchor and the leaving one of its last have no place in path data.
std::string formatPathData(std::span<const PathPiece> pieces, const Affine& toDocument);

}  // namespace quorvel::svg
