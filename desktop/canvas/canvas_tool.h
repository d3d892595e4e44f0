// What the mouse does on the canvas. One tool is current at a time: the plug-in's or one of the window's own.
#pragma once

#include <QCursor>
#include <QPainter>
#include <QPointF>

#include "hostapi/types.h"

namespace quorvel::desktop {

struct ToolEvent {
    QPointF pixel;    // of the canvas
    RealPoint point;  // of the document
    Qt::KeyboardModifiers keys;
};

class CanvasTool {
  public:
    virtual ~CanvasTool() = default;
    virtual void hover(const ToolEvent& event) = 0;
    virtual void press(const ToolEvent& event) = 0;
    virtual void drag(const ToolEvent& event) = 0;
    virtual void release(const ToolEvent& event) = 0;
    virtual void cancel() {}              // another tool becomes current
    virtual void abandon() { cancel(); }  // the Escape key
    virtual QCursor cursor() const = 0;
    // Over the drawing, in the canvas's pixels.
    virtual void paint(QPainter&) {}
};

}  // namespace quorvel::desktop
