// The window's own editing: what is selected is moved, turned, copied and deleted. An object is what lies directly in a
// layer; a part of one is taken on demand. Each deed is one step, and one that can be recorded.
#pragma once

#include <QPointF>
#include <QRectF>
#include <memory>
#include <string>
#include <vector>

#include "desktop/desk.h"
#include "host/document.h"

namespace quorvel::desktop {

// The notification after which dimensions follow the art that they measure.
constexpr char kTrackingNotifier[] = "2644-3993-9293-3747-5729-7605";

// Art kept for pasting; it outlives the drawing that it was taken from.
struct ArtCopy {
    host::ArtId id = 0;         // where it came from
    std::uint64_t drawing = 0;  // the drawing's number
    AIArtType kind = kUnknownArt;
    std::unique_ptr<host::PathData> path;
    std::unique_ptr<host::TextData> text;
    std::vector<host::Tag> tags;
    std::vector<ArtCopy> children;  // the lowest first
};

class Editing {
  public:
    explicit Editing(Desk* desk) : desk_(desk) {}

    // Topmost object at the point that can be taken; 0 for none. tolerance in points.
    host::ArtId objectAt(RealPoint point, double tolerance) const;
    // The same, but of groups the member that lies there.
    host::ArtId partAt(RealPoint point, double tolerance) const;
    std::vector<host::ArtId> objectsIn(const QRectF& box) const;  // wholly inside
    std::vector<host::ArtId> selection() const;                   // objects and parts, the top one first
    QRectF selectionBox() const;                                  // document points, y up; null without a selection

    void select(const std::vector<host::ArtId>& objects);  // these and no others
    void selectAll();
    void move(RealPoint by);
    void turn(double degrees, RealPoint pivot);
    void remove();
    void copy();
    void cut();
    void paste();
    bool canPaste() const { return !clipboard_.empty(); }
    void drawingReplaced() { ++drawing_; }

    static RealMatrix turnMatrix(double degrees, RealPoint pivot);

  private:
    template <typename Change>
    void changeSelection(const char* name, Change change, const std::string& verb, const std::string& words);
    ArtCopy copyOf(const host::Art& art) const;
    host::ArtId insert(host::Document& document, const ArtCopy& copy, host::ArtId parent) const;
    std::string freeId(const host::Document& document) const;
    void sendTracking();

    Desk* desk_;
    std::vector<ArtCopy> clipboard_;
    std::uint64_t drawing_ = 0;
};

}  // namespace quorvel::desktop
