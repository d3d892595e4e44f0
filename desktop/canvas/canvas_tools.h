// The three tools: the plug-in's tool, the window's select tool and its zoom tool.
#pragma once

#include <QObject>
#include <optional>
#include <string>

#include "desktop/canvas/canvas.h"
#include "desktop/canvas/canvas_tool.h"
#include "desktop/canvas/selection_editing.h"
#include "desktop/session.h"

namespace quorvel::desktop {

// Sends the mouse to the plug-in's tool that is selected.
class PluginTool : public CanvasTool {
  public:
    PluginTool(Session* session, Canvas* canvas);
    void take(const host::ToolRecord& tool);  // selects it
    void hover(const ToolEvent& event) override;
    void press(const ToolEvent& event) override;
    void drag(const ToolEvent& event) override;
    void release(const ToolEvent& event) override;
    void abandon() override;  // what the tool has begun
    QCursor cursor() const override { return cursor_; }

  private:
    void send(const char* verb, const char* selector, const ToolEvent& event);

    Session* session_;
    Canvas* canvas_;
    QCursor cursor_ = Qt::CrossCursor;
    std::optional<RealPoint> last_;  // where the tool knows the mouse to be
};

class SelectTool : public CanvasTool {
  public:
    SelectTool(Session* session, Canvas* canvas, Editing* editing)
        : session_(session), canvas_(canvas), editing_(editing) {}
    void hover(const ToolEvent& event) override;
    void press(const ToolEvent& event) override;
    void drag(const ToolEvent& event) override;
    void release(const ToolEvent& event) override;
    void cancel() override;
    QCursor cursor() const override { return Qt::ArrowCursor; }
    void paint(QPainter& painter) override;

  private:
    enum class Gesture { none, click, move, turn, band };
    QPointF handle() const;  // that turns the selection, in pixels
    double angle() const;    // by which it has been turned
    RealPoint distance() const;
    void finish();

    Session* session_;
    Canvas* canvas_;
    Editing* editing_;
    Gesture gesture_ = Gesture::none;
    ToolEvent from_, to_;
    doc::ArtId taken_ = 0;
    std::uint64_t drawing_ = 0;  // in which the gesture began
};

class ZoomTool : public CanvasTool {
  public:
    explicit ZoomTool(Canvas* canvas) : canvas_(canvas) {}
    void hover(const ToolEvent&) override {}
    void press(const ToolEvent& event) override;
    void drag(const ToolEvent& event) override;
    void release(const ToolEvent& event) override;
    void cancel() override { from_.reset(); }
    QCursor cursor() const override;
    void paint(QPainter& painter) override;

  private:
    Canvas* canvas_;
    std::optional<QPointF> from_;
    QPointF to_;
};

}  // namespace quorvel::desktop
