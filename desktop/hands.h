// The three hands: the plug-in's tool, the window's select tool and its zoom tool.
#pragma once

#include <QObject>
#include <optional>
#include <string>

#include "desktop/canvas.h"
#include "desktop/desk.h"
#include "desktop/editing.h"
#include "desktop/hand.h"

namespace quorvel::desktop {

// Sends the mouse to the plug-in's tool that is selected.
class PluginHand : public Hand {
  public:
    PluginHand(Desk* desk, Canvas* canvas);
    void take(const host::ToolRecord& tool);  // selects it
    void hover(const HandEvent& event) override;
    void press(const HandEvent& event) override;
    void drag(const HandEvent& event) override;
    void release(const HandEvent& event) override;
    void abandon() override;  // what the tool has begun
    QCursor cursor() const override { return cursor_; }

  private:
    void send(const char* verb, const char* selector, const HandEvent& event);

    Desk* desk_;
    Canvas* canvas_;
    QCursor cursor_ = Qt::CrossCursor;
    std::optional<RealPoint> last_;  // where the tool knows the mouse to be
};

class SelectHand : public Hand {
  public:
    SelectHand(Desk* desk, Canvas* canvas, Editing* editing) : desk_(desk), canvas_(canvas), editing_(editing) {}
    void hover(const HandEvent& event) override;
    void press(const HandEvent& event) override;
    void drag(const HandEvent& event) override;
    void release(const HandEvent& event) override;
    void cancel() override;
    QCursor cursor() const override { return Qt::ArrowCursor; }
    void paint(QPainter& painter) override;

  private:
    enum class Deed { none, click, move, turn, band };
    QPointF handle() const;  // that turns the selection, in pixels
    double angle() const;    // by which it has been turned
    RealPoint distance() const;
    void finish();

    Desk* desk_;
    Canvas* canvas_;
    Editing* editing_;
    Deed deed_ = Deed::none;
    HandEvent from_, to_;
    host::ArtId taken_ = 0;
    std::uint64_t drawing_ = 0;  // in which the deed has begun
};

class ZoomHand : public Hand {
  public:
    explicit ZoomHand(Canvas* canvas) : canvas_(canvas) {}
    void hover(const HandEvent&) override {}
    void press(const HandEvent& event) override;
    void drag(const HandEvent& event) override;
    void release(const HandEvent& event) override;
    void cancel() override { from_.reset(); }
    QCursor cursor() const override;
    void paint(QPainter& painter) override;

  private:
    Canvas* canvas_;
    std::optional<QPointF> from_;
    QPointF to_;
};

}  // namespace quorvel::desktop
