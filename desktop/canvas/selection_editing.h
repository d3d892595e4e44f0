// The window's own editing: what is selected is moved, turned, copied and deleted. An object is a direct child
// of a layer; a member of a group is taken on demand. Each gesture is one undo step and can be recorded.
#pragma once

#include <QPainterPath>
#include <QPointF>
#include <QRectF>
#include <optional>
#include <string>
#include <vector>

#include "app/editing.h"
#include "desktop/session.h"
#include "document/document.h"

namespace quorvel::desktop {

// What a step of the window's own is called, in the language of the tools.
host::StepName stepNameOf(const Session& session, const char* english, const char* japanese);

class Editing {
  public:
    explicit Editing(Session* session) : session_(session) {}

    // Topmost object at the point that can be taken; 0 for none. tolerance in points.
    doc::ArtId objectAt(RealPoint point, double tolerance) const;
    // The same, but of groups the member at the point.
    doc::ArtId partAt(RealPoint point, double tolerance) const;
    std::vector<doc::ArtId> objectsIn(const QRectF& box) const;  // wholly inside
    // Objects and parts that can be taken, the top one first. What is selected and has been hidden or locked since is
    // none.
    const std::vector<doc::ArtId>& selection() const;
    QRectF selectionBox() const;  // document points, y up; null without a selection
    // For dragging; empty when it has more points than can be drawn while the mouse moves.
    const QPainterPath& selectionOutline() const;

    void select(const std::vector<doc::ArtId>& objects);  // these and no others
    void selectAll();
    void move(RealPoint by);
    void turn(double degrees, RealPoint pivot);
    void remove();
    void copy();
    void cut();
    void paste();
    bool canPaste() const { return !clipboard_.empty(); }
    void drawingReplaced() { seen_.reset(); }

    static RealMatrix turnMatrix(double degrees, RealPoint pivot);

  private:
    // The selection as it was found last, and what follows from it.
    struct Seen {
        std::uint64_t drawing = 0, change = 0;
        std::vector<doc::ArtId> selection;
        QRectF box;
        std::optional<QPainterPath> outline;
    };

    const Seen* seen() const;
    template <typename Change>
    void changeSelection(const host::StepName& name, Change change, const std::string& verb, const std::string& words);
    void removeAs(const host::StepName& name);
    void sendTracking();

    Session* session_;
    app::Clipboard clipboard_;
    int pastes_ = 0;  // of what is on the clipboard
    mutable std::optional<Seen> seen_;
};

}  // namespace quorvel::desktop
