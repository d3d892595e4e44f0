// What each tool does on presses, drags and releases.
#include "desktop/canvas/canvas_tools.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <unordered_set>

#include "app/script.h"
#include "desktop/window/icons.h"
#include "hostapi/messages.h"
#include "render/outline.h"

namespace quorvel::desktop {

namespace {

constexpr double kClickReach = 3;   // pixels that the mouse may shake in a click
constexpr double kPickReach = 4;    // pixels round the mouse in which art is found
constexpr double kHandleAway = 22;  // pixels above the selection
constexpr double kHandleSize = 5;
constexpr double kTurnSteps = 15;  // degrees, with Shift
constexpr double kZoomClick = 2;

std::uint16_t modifierWord(Qt::KeyboardModifiers keys) {
    std::uint16_t word = 0;
    if (keys & Qt::AltModifier) word |= kAltModifier;
    if (keys & Qt::ShiftModifier) word |= kShiftModifier;
    return word;
}

bool shaken(QPointF a, QPointF b) { return std::hypot(a.x() - b.x(), a.y() - b.y()) <= kClickReach; }

void paintBand(QPainter& painter, const QRectF& band, QColor color) {
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

PluginTool::PluginTool(Session* session, Canvas* canvas) : session_(session), canvas_(canvas) {
    QObject::connect(session, &Session::cursorChosen, canvas, [this](const QCursor& cursor) {
        cursor_ = cursor;
        if (session_->host().selectedTool() != nullptr) canvas_->refreshCursor();
    });
}

void PluginTool::take(const host::ToolRecord& tool) {
    session_->recorder().line("tool " + app::quotedWord(tool.title));
    session_->host().selectTool(tool);
    last_.reset();
}

// A tool that is selected anew begins from its first point.
void PluginTool::abandon() {
    if (const host::ToolRecord* tool = session_->host().selectedTool()) take(*tool);
}

void PluginTool::send(const char* verb, const char* selector, const ToolEvent& event) {
    const std::uint16_t modifiers = modifierWord(event.keys);
    session_->recorder().move(verb, event.point, modifiers);
    last_ = event.point;
    session_->host().sendTool(selector, event.point, modifiers);
}

void PluginTool::hover(const ToolEvent& event) { send("track", kSelectorTrackCursor, event); }
void PluginTool::drag(const ToolEvent& event) { send("drag", kSelectorMouseDrag, event); }

// A press and a release work where the tool has last seen the mouse, so that it must have seen it here.
void PluginTool::press(const ToolEvent& event) {
    if (!last_ || last_->h != event.point.h || last_->v != event.point.v) hover(event);
    session_->recorder().button("down", modifierWord(event.keys));
    session_->host().sendTool(kSelectorMouseDown, event.point, modifierWord(event.keys));
}

void PluginTool::release(const ToolEvent& event) {
    if (!last_ || last_->h != event.point.h || last_->v != event.point.v) drag(event);
    session_->recorder().button("up", modifierWord(event.keys));
    session_->host().sendTool(kSelectorMouseUp, event.point, modifierWord(event.keys));
}

// --- selecting
// --------------------------------------------------------------------------------------------------------

QPointF SelectTool::handle() const {
    const QRectF box = canvas_->toPixels().mapRect(editing_->selectionBox());
    return {box.center().x(), box.top() - kHandleAway};
}

void SelectTool::hover(const ToolEvent&) {}

void SelectTool::press(const ToolEvent& event) {
    from_ = to_ = event;
    taken_ = 0;
    drawing_ = session_->document()->number();
    const std::vector<doc::ArtId> selected = editing_->selection();
    if (!selected.empty() &&
        std::hypot(event.pixel.x() - handle().x(), event.pixel.y() - handle().y()) <= 2 * kHandleSize) {
        gesture_ = Gesture::turn;
        return;
    }
    const double reach = kPickReach / session_->host().view().zoom;
    taken_ = event.keys & Qt::ControlModifier ? editing_->partAt(event.point, reach)
                                              : editing_->objectAt(event.point, reach);
    gesture_ = taken_ != 0 ? Gesture::click : Gesture::band;
    const bool already = std::find(selected.begin(), selected.end(), taken_) != selected.end();
    if (taken_ == 0 || already) return;
    std::vector<doc::ArtId> now = event.keys & Qt::ShiftModifier ? selected : std::vector<doc::ArtId>();
    now.push_back(taken_);
    editing_->select(now);
    taken_ = 0;  // a click that has selected must not take it out again
}

void SelectTool::drag(const ToolEvent& event) {
    to_ = event;
    if (gesture_ == Gesture::click && !shaken(from_.pixel, to_.pixel)) gesture_ = Gesture::move;
    canvas_->update();
}

RealPoint SelectTool::distance() const {
    RealPoint by{to_.point.h - from_.point.h, to_.point.v - from_.point.v};
    if (to_.keys & Qt::ShiftModifier) (std::abs(by.h) >= std::abs(by.v) ? by.v : by.h) = 0;
    return by;
}

double SelectTool::angle() const {
    const QPointF centre = editing_->selectionBox().center();
    const auto bearing = [&](RealPoint point) { return std::atan2(point.v - centre.y(), point.h - centre.x()); };
    const double degrees = (bearing(to_.point) - bearing(from_.point)) * 180 / std::numbers::pi;
    return to_.keys & Qt::ShiftModifier ? std::round(degrees / kTurnSteps) * kTurnSteps : degrees;
}

void SelectTool::release(const ToolEvent& event) {
    drag(event);
    finish();
    gesture_ = Gesture::none;
    canvas_->update();
}

// Keys work while the button is held: the art that the gesture began on may have been deleted, or the drawing replaced.
void SelectTool::finish() {
    const doc::Document* document = session_->document();
    if (document == nullptr || document->number() != drawing_) return;
    std::vector<doc::ArtId> selected = editing_->selection();
    const bool adds = to_.keys & Qt::ShiftModifier;
    switch (gesture_) {
        case Gesture::none:
            break;
        case Gesture::click:
            if (document->find(taken_) == nullptr) break;
            if (adds)
                std::erase(selected, taken_);
            else
                selected = {taken_};
            editing_->select(selected);
            break;
        case Gesture::move:
            editing_->move(distance());
            break;
        case Gesture::turn:
            editing_->turn(angle(), render::fromQt(editing_->selectionBox().center()));
            break;
        case Gesture::band: {
            if (!adds) selected.clear();
            const QRectF box = QRectF(render::toQt(from_.point), render::toQt(to_.point)).normalized();
            if (!shaken(from_.pixel, to_.pixel)) {
                const std::unordered_set<doc::ArtId> already(selected.begin(), selected.end());
                for (const doc::ArtId id : editing_->objectsIn(box))
                    if (!already.contains(id)) selected.push_back(id);
            }
            editing_->select(selected);
        }
    }
}

void SelectTool::cancel() {
    gesture_ = Gesture::none;
    canvas_->update();
}

void SelectTool::paint(QPainter& painter) {
    const QColor color = canvas_->palette().color(QPalette::Highlight);
    painter.setRenderHint(QPainter::Antialiasing);
    if (gesture_ == Gesture::band) return paintBand(painter, QRectF(from_.pixel, to_.pixel).normalized(), color);
    if (session_->document() == nullptr || editing_->selection().empty()) return;
    QTransform moved;
    if (gesture_ == Gesture::move) moved = QTransform::fromTranslate(distance().h, distance().v);
    if (gesture_ == Gesture::turn)
        moved = render::toQt(Editing::turnMatrix(angle(), render::fromQt(editing_->selectionBox().center())));
    painter.setPen(QPen(color, 1, Qt::DashLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolygon((moved * canvas_->toPixels()).map(QPolygonF(editing_->selectionBox())));
    if (gesture_ == Gesture::move || gesture_ == Gesture::turn) {
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
QCursor ZoomTool::cursor() const {
    constexpr int kSize = 24;
    const QPixmap black = magnifierIcon(Qt::black).pixmap(kSize, kSize);
    const QPixmap white = magnifierIcon(Qt::white).pixmap(kSize, kSize);
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

void ZoomTool::press(const ToolEvent& event) { from_ = to_ = event.pixel; }

void ZoomTool::drag(const ToolEvent& event) {
    to_ = event.pixel;
    canvas_->update();
}

void ZoomTool::release(const ToolEvent& event) {
    if (!from_) return;
    const QRectF band = QRectF(*from_, event.pixel).normalized();
    const bool click = shaken(*from_, event.pixel);
    from_.reset();
    if (click)
        canvas_->zoomAt(event.pixel, event.keys & Qt::AltModifier ? 1 / kZoomClick : kZoomClick);
    else
        canvas_->zoomToBox(band);
    canvas_->update();
}

void ZoomTool::paint(QPainter& painter) {
    if (from_) paintBand(painter, QRectF(*from_, to_).normalized(), canvas_->palette().color(QPalette::Highlight));
}

}  // namespace quorvel::desktop
