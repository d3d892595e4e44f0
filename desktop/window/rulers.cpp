// Chooses marks that are far enough apart to read and divides them down to a few pixels.
#include "desktop/window/rulers.h"

#include <QPainter>
#include <array>
#include <cmath>

namespace quorvel::desktop {

namespace {

constexpr double kLeastLabelDistance = 56;  // pixels
constexpr double kLeastMarkDistance = 4.5;

// A pixel is a point and H a quarter of a millimetre, as in the values that the host and the tools print.
constexpr RulerUnit kUnits[] = {{"mm", 72 / 25.4}, {"cm", 72 / 2.54}, {"in", 72},      {"pt", 1},
                                {"pc", 12},        {"px", 1},         {"H", 18 / 25.4}};

// The smallest of 1, 2, 5, 10, 20, ... units that leaves room for its label.
double labelStep(double pixelsPerUnit) {
    double step = std::pow(10, std::floor(std::log10(kLeastLabelDistance / pixelsPerUnit)));
    for (const double factor : {1.0, 2.0, 5.0, 10.0})
        if (step * factor * pixelsPerUnit >= kLeastLabelDistance) return step * factor;
    return step * 10;
}

}  // namespace

std::span<const RulerUnit> rulerUnits() { return kUnits; }

double pointsOfUnit(const std::string& unit) {
    for (const RulerUnit& row : kUnits)
        if (unit == row.name) return row.points;
    return 1;
}

Ruler::Ruler(Session* session, Canvas* canvas, Qt::Orientation orientation, QWidget* parent)
    : QWidget(parent), session_(session), canvas_(canvas), orientation_(orientation) {
    if (orientation == Qt::Horizontal)
        setFixedHeight(kWidth);
    else
        setFixedWidth(kWidth);
    QFont small = font();
    small.setPixelSize(9);
    setFont(small);
    connect(canvas, &Canvas::viewChanged, this, [this] { update(); });
    connect(canvas, &Canvas::cursorMoved, this, [this](RealPoint, QPointF pixel) {
        mouse_ = pixel;
        update();
    });
    connect(canvas, &Canvas::cursorLeft, this, [this] {
        mouse_.reset();
        update();
    });
}

double Ruler::at(double points) const {
    const QPointF pixel = canvas_->toPixels().map(QPointF(points, points));
    return orientation_ == Qt::Horizontal ? pixel.x() : pixel.y();
}

void Ruler::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const bool across = orientation_ == Qt::Horizontal;
    painter.fillRect(rect(), palette().color(QPalette::Window));
    QColor line = palette().color(QPalette::WindowText);
    line.setAlpha(70);
    painter.setPen(line);
    if (across)
        painter.drawLine(0, height() - 1, width(), height() - 1);
    else
        painter.drawLine(width() - 1, 0, width() - 1, height());
    if (session_->document() == nullptr) return;

    const double unit = pointsOfUnit(session_->host().rulerUnit());
    const double perUnit = unit * session_->host().view().zoom;
    const double step = labelStep(perUnit);
    int parts = 10;
    for (const int fewer : {10, 5, 2, 1}) {
        parts = fewer;
        if (step / fewer * perUnit >= kLeastMarkDistance) break;
    }
    const QTransform back = canvas_->toPixels().inverted();
    const QPointF first = back.map(QPointF(0, 0)), last = back.map(QPointF(canvas_->width(), canvas_->height()));
    const double low = (across ? first.x() : last.y()) / unit, high = (across ? last.x() : first.y()) / unit;
    const auto from = static_cast<long long>(std::floor(low / step)) * parts;
    const auto to = static_cast<long long>(std::ceil(high / step)) * parts;
    QColor ink = palette().color(QPalette::WindowText);
    for (long long i = from; i <= to; ++i) {
        const double value = static_cast<double>(i) * step / parts;
        const int pixel = static_cast<int>(std::floor(at(value * unit)));
        const bool whole = i % parts == 0;
        const int length = whole ? kWidth : parts == 10 && i % 5 == 0 ? 7 : 4;
        ink.setAlpha(whole ? 150 : 110);
        painter.setPen(ink);
        if (across)
            painter.drawLine(pixel, height() - length, pixel, height() - 1);
        else
            painter.drawLine(width() - length, pixel, width() - 1, pixel);
        if (!whole) continue;
        ink.setAlpha(220);
        painter.setPen(ink);
        const QString label = QString::number(value, 'g', 6);
        if (across) {
            painter.drawText(QPointF(pixel + 3, 9), label);
        } else {
            painter.save();
            painter.translate(9, pixel - 3);
            painter.rotate(-90);
            painter.drawText(QPointF(0, 0), label);
            painter.restore();
        }
    }
    if (!mouse_) return;
    painter.setPen(QPen(palette().color(QPalette::Highlight), 1));
    if (across)
        painter.drawLine(QPointF(mouse_->x(), 0), QPointF(mouse_->x(), height()));
    else
        painter.drawLine(QPointF(0, mouse_->y()), QPointF(width(), mouse_->y()));
}

}  // namespace quorvel::desktop
