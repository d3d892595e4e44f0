// The rulers along the canvas, in the drawing's unit, with the place of the mouse on them.
#pragma once

#include <QWidget>
#include <optional>
#include <span>
#include <string>

#include "desktop/canvas/canvas.h"

namespace quorvel::desktop {

class Ruler : public QWidget {
  public:
    Ruler(Session* session, Canvas* canvas, Qt::Orientation orientation, QWidget* parent = nullptr);
    static constexpr int kWidth = 20;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    double at(double points) const;  // the pixel along the ruler

    Session* session_;
    Canvas* canvas_;
    Qt::Orientation orientation_;
    std::optional<QPointF> mouse_;
};

struct RulerUnit {
    const char* name;  // as the host knows it: "mm"
    double points;
};
// In the order in which they are offered.
std::span<const RulerUnit> rulerUnits();
// Points of one unit; 1 for a name that is none.
double pointsOfUnit(const std::string& unit);

}  // namespace quorvel::desktop
