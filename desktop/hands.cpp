// What each hand makes of presses, drags and releases.
#include "desktop/hands.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <unordered_set>

#include "cli/script.h"
#include "desktop/icons.h"
#include "desktop/outline.h"
#include "hostapi/messages.h"

namespace quorvel::desktop {

namespace {

constexpr double kClickReach = 3;   // pixels that the mouse may shake in a click
constexpr double kPickReach = 4;    // pixels round the mouse in which art is found
constexpr double kHandleAway = 22;  // pixels above the selection
constexpr double kHandleSize = 5;
constexpr double kTurnSteps = 15;  // degrees, with Shift
constexpr double kZoomClick = 2;

std::uint16_t ModifierWord(Qt::KeyboardModifiers keys) {
    std::uint16_t word = 0;
    if (keys & Qt::AltModifier) word |= kAltModifier;
    if (keys & Qt::ShiftModifier) word |= kShiftModifier;
    return word;
}

bool Shaken(QPointF a, QPointF b) { return std::hypot(a.x() - b.x(), a.y() - b.y()) <= kClickReach; }

void PaintBand(QPainter& painter, const QRectF& band, QColor color) {
    color.setAlpha(40);
    painter.fillRect(band, color);
    color.setAlpha(220);
    painter.setPen(color);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(band);
}

}  // namespace

// --- the plug-in's tool
// -----------------------------------------------------------------------------------------------

PluginHand::PluginHand(Desk* desk, Canvas* canvas) : desk_(desk), canvas_(canvas) {
    QObject::connect(desk, &Desk::cursorChosen, canvas, [this](const QCursor& cursor) {
        cursor_ = cursor;
        if (desk_->host().selectedTool() != nullptr) canvas_->refreshCursor();
    });
}

void PluginHand::take(const host::ToolRecord& tool) {
    desk_->recorder().line("tool " + cli::quotedWord(tool.title));
    desk_->host().selectTool(tool);
    last_.reset();
}

// A tool that is selected anew begins from its first point.
void PluginHand::abandon() {
    if (const host::ToolRecord* tool = desk_->host().selectedTool()) take(*tool);
}

void PluginHand::send(const char* verb, const char* selector, const HandEvent& event) {
    const std::uint16_t modifiers = ModifierWord(event.keys);
    desk_->recorder().move(verb, event.point, modifiers);
    last_ = event.point;
    desk_->host().sendTool(selector, event.point, modifiers);
}

void PluginHand::hover(const HandEvent& event) { send("track", kSelectorTrackCursor, event); }
void PluginHand::drag(const HandEvent& event) { send("drag", kSelectorMouseDrag, event); }

// A press and a release work where the tool has last seen the mouse, so that it must have seen it here.
void PluginHand::press(const HandEvent& event) {
    if (!last_ || last_->h != event.point.h || last_->v != event.point.v) hover(event);
    desk_->recorder().button("down", ModifierWord(event.keys));
    desk_->host().sendTool(kSelectorMouseDown, event.point, ModifierWord(event.keys));
}

void PluginHand::release(const HandEvent& event) {
    if (!last_ || last_->h != event.point.h || last_->v != event.point.v) drag(event);
    desk_->recorder().button("up", ModifierWord(event.keys));
    desk_->host().sendTool(kSelectorMouseUp, event.point, ModifierWord(event.keys));
}

// --- selecting
// --------------------------------------------------------------------------------------------------------

QPointF SelectHand::handle() const {
    const QRectF box = canvas_->toPixels().mapRect(editing_->selectionBox());
    return {box.center().x(), box.top() - kHandleAway};
}

void SelectHand::hover(const HandEvent&) {}

void SelectHand::press(const HandEvent& event) {
    from_ = to_ = event;
    taken_ = 0;
    drawing_ = desk_->document()->number();
    const std::vector<host::ArtId> selected = editing_->selection();
    if (!selected.empty() &&
        std::hypot(event.pixel.x() - handle().x(), event.pixel.y() - handle().y()) <= 2 * kHandleSize) {
        deed_ = Deed::turn;
        return;
    }
    const double reach = kPickReach / desk_->host().view().zoom;
    taken_ = event.keys & Qt::ControlModifier ? editing_->partAt(event.point, reach)
                                              : editing_->objectAt(event.point, reach);
    deed_ = taken_ != 0 ? Deed::click : Deed::band;
    const bool already = std::find(selected.begin(), selected.end(), taken_) != selected.end();
    if (taken_ == 0 || already) return;
    std::vector<host::ArtId> now = event.keys & Qt::ShiftModifier ? selected : std::vector<host::ArtId>();
    now.push_back(taken_);
    editing_->select(now);
    taken_ = 0;  // a click that has selected must not take it out again
}

void SelectHand::drag(const HandEvent& event) {
    to_ = event;
    if (deed_ == Deed::click && !Shaken(from_.pixel, to_.pixel)) deed_ = Deed::move;
    canvas_->update();
}

RealPoint SelectHand::distance() const {
    RealPoint by{to_.point.h - from_.point.h, to_.point.v - from_.point.v};
    if (to_.keys & Qt::ShiftModifier) (std::abs(by.h) >= std::abs(by.v) ? by.v : by.h) = 0;
    return by;
}

double SelectHand::angle() const {
    const QPointF centre = editing_->selectionBox().center();
    const auto bearing = [&](RealPoint point) { return std::atan2(point.v - centre.y(), point.h - centre.x()); };
    const double degrees = (bearing(to_.point) - bearing(from_.point)) * 180 / std::numbers::pi;
    return to_.keys & Qt::ShiftModifier ? std::round(degrees / kTurnSteps) * kTurnSteps : degrees;
}

void SelectHand::release(const HandEvent& event) {
    drag(event);
    finish();
    deed_ = Deed::none;
    canvas_->update();
}

// Keys work while the button is held: what the deed began with may have been deleted, or the drawing exchanged.
void SelectHand::finish() {
    const host::Document* document = desk_->document();
    if (document == nullptr || document->number() != drawing_) return;
    std::vector<host::ArtId> selected = editing_->selection();
    const bool adds = to_.keys & Qt::ShiftModifier;
    switch (deed_) {
        case Deed::none:
            break;
        case Deed::click:
            if (document->find(taken_) == nullptr) break;
            if (adds)
                std::erase(selected, taken_);
            else
                selected = {taken_};
            editing_->select(selected);
            break;
        case Deed::move:
            editing_->move(distance());
            break;
        case Deed::turn:
            editing_->turn(angle(), FromQt(editing_->selectionBox().center()));
            break;
        case Deed::band: {
            if (!adds) selected.clear();
            const QRectF box = QRectF(ToQt(from_.point), ToQt(to_.point)).normalized();
            if (!Shaken(from_.pixel, to_.pixel)) {
                const std::unordered_set<host::ArtId> already(selected.begin(), selected.end());
                for (const host::ArtId id : editing_->objectsIn(box))
                    if (!already.contains(id)) selected.push_back(id);
            }
            editing_->select(selected);
        }
    }
}

void SelectHand::cancel() {
    deed_ = Deed::none;
    canvas_->update();
}

void SelectHand::paint(QPainter& painter) {
    const QColor color = canvas_->palette().color(QPalette::Highlight);
    painter.setRenderHint(QPainter::Antialiasing);
    if (deed_ == Deed::band) return PaintBand(painter, QRectF(from_.pixel, to_.pixel).normalized(), color);
    if (desk_->document() == nullptr || editing_->selection().empty()) return;
    QTransform moved;
    if (deed_ == Deed::move) moved = QTransform::fromTranslate(distance().h, distance().v);
    if (deed_ == Deed::turn) moved = ToQt(Editing::turnMatrix(angle(), FromQt(editing_->selectionBox().center())));
    painter.setPen(QPen(color, 1, Qt::DashLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolygon((moved * canvas_->toPixels()).map(QPolygonF(editing_->selectionBox())));
    if (deed_ == Deed::move || deed_ == Deed::turn) {
        painter.setPen(QPen(color, 1));
        painter.drawPath((moved * canvas_->toPixels()).map(editing_->selectionOutline()));
        return;
    }
    painter.setPen(color);
    const QPointF at = handle();
    painter.drawLine(at, at + QPointF(0, kHandleAway));
    painter.setBrush(canvas_->palette().color(QPalette::Base));
    painter.drawEllipse(at, kHandleSize, kHandleSize);
}

// --- zooming
// ----------------------------------------------------------------------------------------------------------

// A white rim round the black lines is seen on the dark pasteboard too.
QCursor ZoomHand::cursor() const {
    constexpr int kSize = 24;
    const QPixmap black = MagnifierIcon(Qt::black).pixmap(kSize, kSize);
    const QPixmap white = MagnifierIcon(Qt::white).pixmap(kSize, kSize);
    QPixmap shape(black.size());
    shape.setDevicePixelRatio(black.devicePixelRatio());
    shape.fill(Qt::transparent);
    QPainter painter(&shape);
    for (int h = -1; h <= 1; ++h)
        for (int v = -1; v <= 1; ++v) painter.drawPixmap(h, v, white);
    painter.drawPixmap(0, 0, black);
    painter.end();
    return QCursor(shape, 9, 9);
}

void ZoomHand::press(const HandEvent& event) { from_ = to_ = event.pixel; }

void ZoomHand::drag(const HandEvent& event) {
    to_ = event.pixel;
    canvas_->update();
}

void ZoomHand::release(const HandEvent& event) {
    if (!from_) return;
    const QRectF band = QRectF(*from_, event.pixel).normalized();
    const bool click = Shaken(*from_, event.pixel);
    from_.reset();
    if (click)
        canvas_->zoomAt(event.pixel, event.keys & Qt::AltModifier ? 1 / kZoomClick : kZoomClick);
    else
        canvas_->zoomToBox(band);
    canvas_->update();
}

void ZoomHand::paint(QPainter& painter) {
    if (from_) PaintBand(painter, QRectF(*from_, to_).normalized(), canvas_->palette().color(QPalette::Highlight));
}

}  // namespace quorvel::desktop
