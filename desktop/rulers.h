// The rulers along the canvas, in the drawing's unit, with the place of the mouse on them.
#pragma once

#include <QWidget>
#include <optional>
#include <span>
#include <string>

#include "desktop/canvas.h"

namespace quorvel::desktop {

class Ruler : public QWidget {
  public:
    Ruler(Desk* desk, Canvas* canvas, Qt::Orientation orientation, QWidget* parent = nullptr);
    static constexpr int kWidth = 20;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    double at(double points) const;  // the pixel along the ruler

    Desk* desk_;
    Canvas* canvas_;
    Qt::Orientation orientation_;
    std::optional<QPointF> mouse_;
};

struct RulerUnit {
    const char* name;  // as the host knows it: "mm"
    double points;
};
// In the order in which they are offered.
std::span<const RulerUnit> RulerUnits();
// Points of one unit; 1 for a name that is none.
double PointsOfUnit(const std::string& unit);

}  // namespace quorvel::desktop
