// Changes are noted art by art, and the next painting draws what they cover. The preview is inverted over a copy of the
// kept picture, so that nothing of it can stay behind.
#include "desktop/canvas/canvas.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "render/outline.h"

namespace quorvel::desktop {

namespace {

constexpr double kSmallestZoom = 0.01, kLargestZoom = 640;
constexpr double kZoomStep = 1.25;
constexpr int kFitMargin = 28;
constexpr int kMarkReach = 4;  // pixels of a selection's marks beyond the art
const QColor kPaper(0xff, 0xff, 0xff);

// Shades of the pasteboard and of the page's edge and shadow.
struct Ground {
    QColor board, edge, shadow;
};
const Ground kLightGround{QColor(0xd4, 0xd7, 0xdb), QColor(0x8c, 0x92, 0x99), QColor(0, 0, 0, 46)};
const Ground kDarkGround{QColor(0x2b, 0x2e, 0x33), QColor(0x14, 0x15, 0x17), QColor(0, 0, 0, 110)};

}  // namespace

Canvas::Canvas(Session* session, QWidget* parent)
    : QWidget(parent),
      session_(session),
      picture_([this](QPainter* painter, const CanvasCache::View& view, const QRectF& part) {
          drawGround(painter, view, part);
      }) {
    setObjectName(QStringLiteral("canvas"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(240, 240);
    options_.guides = true;
    options_.selected = true;
    connect(&picture_, &CanvasCache::sharpened, this, [this] { update(); });
    // Queued: a bar that appears in the middle of a painting would change the window under it.
    connect(&picture_, &CanvasCache::progressed, this, &Canvas::pictureProgressed, Qt::QueuedConnection);
    connect(session, &Session::surfaceDrawn, this, [this] { update(); });
    connect(session, &Session::viewRepainted, this, [this] {
        update();
        emit viewChanged();
    });
}

Canvas::~Canvas() {
    disconnect();  // nobody watches any more
    drawingLeaves();
}

// --- the drawing
// ------------------------------------------------------------------------------------------------------

void Canvas::drawingLeaves() {
    if (observed_ != nullptr) observed_->removeObserver(this);
    observed_ = nullptr;
    picture_.setPainter(nullptr);
    painter_.reset();
    boxes_.clear();
    stale_.clear();
    drawAllAnew();
}

void Canvas::drawingReplaced(const QString& name, const render::ImageAccess& access, render::ImageDecoder* decoder) {
    drawingLeaves();
    name_ = name;
    observed_ = session_->document();
    if (observed_ == nullptr) return session_->closeView();
    observed_->addObserver(this);
    decoder_ = decoder;
    setImageAccess(access);
    session_->openView(name_, width(), height());
    fit();
}

void Canvas::setImageAccess(const render::ImageAccess& access) {
    if (observed_ == nullptr) return;
    picture_.setPainter(nullptr);
    painter_ = std::make_unique<render::DocumentPainter>(*observed_, render::PaintResources::of(access, decoder_),
                                                         render::DefinitionsAround());
    picture_.setPainter(painter_.get());
    rememberBoxes();
    drawAllAnew();
}

void Canvas::imagesDecoded() {
    if (painter_ == nullptr || !painter_->forgetWaitingImages()) return;
    rememberBoxes();
    drawAllAnew();
}

std::vector<Error> Canvas::warnings() const {
    return painter_ != nullptr ? painter_->warnings() : std::vector<Error>();
}

void Canvas::rememberBoxes() {
    boxes_.clear();
    for (const doc::LayerId layer : observed_->layers()) rememberBoxes(observed_->layer(layer)->root);
}

void Canvas::rememberBoxes(doc::ArtId top) {
    const doc::Art* art = observed_->find(top);
    if (art == nullptr) return;
    if (art->parent != 0) boxes_[top] = painter_->drawnBox(*art);
    render::forEachChildUpwards(*observed_, *art, [this](const doc::Art& child) { rememberBoxes(child.id); });
}

void Canvas::noteSubtree(const doc::Art& top) {
    stale_.push_back(top.id);
    render::forEachChildUpwards(*observed_, top, [this](const doc::Art& child) { noteSubtree(child); });
}

// With what is below it, and what is round it and looks different throughout because of it.
void Canvas::note(doc::ArtId top) {
    const doc::Art* art = observed_->find(top);
    if (art == nullptr) return;
    noteSubtree(*art);
    for (const doc::Art* group = observed_->find(art->parent); group != nullptr; group = observed_->find(group->parent))
        if (group->parent != 0 && painter_->dependsOnMembers(*group)) stale_.push_back(group->id);
    update();
}

void Canvas::artInserted(doc::ArtId art) { note(art); }
void Canvas::artRemoved(doc::ArtId art) { note(art); }
void Canvas::tagChanged(doc::ArtId, const std::string&) {}
void Canvas::layersChanged() { drawAllAnew(); }

// Hiding a group changes what is drawn of all that is in it.
void Canvas::artChanged(doc::ArtId art) { note(art); }

void Canvas::drawAllAnew() {
    allStale_ = true;
    update();
}

QRect Canvas::damageInPixels() {
    const QTransform map = toPixels();
    QRectF damage;
    const auto add = [&](const QRectF& box) {
        if (box.isEmpty()) return;
        damage |= map.mapRect(box).adjusted(-kMarkReach, -kMarkReach, kMarkReach, kMarkReach);
    };
    // Each once: many members name the same group.
    std::sort(stale_.begin(), stale_.end());
    stale_.erase(std::unique(stale_.begin(), stale_.end()), stale_.end());
    for (const doc::ArtId id : stale_) {
        if (const auto before = boxes_.find(id); before != boxes_.end()) {
            add(before->second);
            boxes_.erase(before);
        }
        const doc::Art* art = observed_->find(id);
        if (art != nullptr && art->parent != 0) add(boxes_[id] = painter_->renewedBox(*art));
    }
    stale_.clear();
    return damage.isEmpty() ? QRect() : (damage & QRectF(rect())).toAlignedRect();
}

// --- the picture
// ------------------------------------------------------------------------------------------------------

void Canvas::refresh() {
    options_.mark = palette().color(QPalette::Highlight);
    const bool begun = picture_.setView({toPixels(), size(), devicePixelRatioF()}, options_);
    const QRect damage = observed_ != nullptr ? damageInPixels() : QRect();
    if (allStale_ && !begun)
        picture_.drawAnew();
    else if (!begun)
        picture_.draw(damage);
    allStale_ = false;
}

void Canvas::drawGround(QPainter* painter, const CanvasCache::View& view, const QRectF& part) const {
    const Ground& ground = session_->dark() ? kDarkGround : kLightGround;
    painter->fillRect(part, ground.board);
    if (observed_ == nullptr) return;
    const QRect page = view.toPixels.mapRect(QRectF(0, 0, observed_->width(), observed_->height())).toRect();
    for (int i = 1; i <= 4; ++i) {
        QColor shadow = ground.shadow;
        shadow.setAlpha(shadow.alpha() / (i + 1));
        painter->fillRect(page.translated(i, i), shadow);
    }
    painter->fillRect(page, kPaper);
    painter->setPen(ground.edge);
    painter->drawRect(page.adjusted(-1, -1, 0, 0));
}

// Inverts exactly the pixels of the preview. A pixel of the screen belongs to the view's pixel that contains its
// middle, also where the view's pixels are one and a half of the screen's.
void Canvas::invertPreview(QImage* image) const {
    const double ratio = image->devicePixelRatio();
    const auto edge = [ratio](std::int64_t pixel, int end) {
        return static_cast<int>(std::clamp<double>(std::ceil(static_cast<double>(pixel) * ratio - 0.5), 0, end));
    };
    session_->user().screen().inverted().forEach([&](std::int64_t h, std::int64_t v) {
        const int right = edge(h + 1, image->width()), bottom = edge(v + 1, image->height());
        for (int y = edge(v, image->height()); y < bottom; ++y) {
            auto* line = reinterpret_cast<QRgb*>(image->scanLine(y));
            for (int x = edge(h, image->width()); x < right; ++x) line[x] ^= 0x00FFFFFF;
        }
    });
}

QImage Canvas::shown() {
    refresh();
    picture_.finish();
    QImage image = picture_.image().copy();
    invertPreview(&image);
    return image;
}

QImage Canvas::fresh() {
    refresh();
    return picture_.fromScratch();
}

void Canvas::paintEvent(QPaintEvent* event) {
    refresh();
    QPainter painter(this);
    if (session_->user().screen().inverted().count() == 0) {
        painter.drawImage(QPoint(), picture_.image());
    } else {
        QImage image = picture_.image().copy();
        invertPreview(&image);
        painter.drawImage(QPoint(), image);
    }
    paintMarks(painter);
    if (tool_ != nullptr) tool_->paint(painter);
    event->accept();
}

void Canvas::paintMarks(QPainter& painter) const {
    const doc::Document* document = session_->document();
    if (document == nullptr) return;
    constexpr double kFrame = 3;  // pixels round the art
    painter.setPen(QPen(QColor(0xD0, 0x20, 0x20), 2));
    painter.setBrush(QColor(0xD0, 0x20, 0x20, 40));
    for (const doc::ArtId art : marked_) {
        if (document->find(art) == nullptr) continue;
        const RealRect box = document->bounds(art);
        if (box.left > box.right) continue;
        const QRectF frame(toPixel({box.left, box.top}), toPixel({box.right, box.bottom}));
        painter.drawRect(frame.normalized().adjusted(-kFrame, -kFrame, kFrame, kFrame));
    }
}

void Canvas::setMarked(std::vector<doc::ArtId> arts) {
    marked_ = std::move(arts);
    update();
}

void Canvas::resizeEvent(QResizeEvent*) {
    if (observed_ != nullptr) session_->openView(name_, width(), height());
    update();
    emit viewChanged();
}

void Canvas::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) drawAllAnew();
    QWidget::changeEvent(event);
}

void Canvas::setGuidesShown(bool shown) {
    options_.guides = shown;
    drawAllAnew();
}

// --- the view
// ---------------------------------------------------------------------------------------------------------

QTransform Canvas::toPixels() const {
    const host::View& view = session_->host().view();
    const double zoom = view.zoom;
    return {zoom, 0, 0, -zoom, width() / 2.0 - view.centre.h * zoom, height() / 2.0 + view.centre.v * zoom};
}

RealPoint Canvas::toArtwork(QPointF pixel) const { return render::fromQt(toPixels().inverted().map(pixel)); }
QPointF Canvas::toPixel(RealPoint point) const { return toPixels().map(render::toQt(point)); }

void Canvas::zoomAt(QPointF pixel, double factor) {
    if (observed_ == nullptr) return;
    host::View& view = session_->host().view();
    const double zoom = std::clamp(view.zoom * factor, kSmallestZoom, kLargestZoom);
    const QPointF fixed = toPixels().inverted().map(pixel);
    view.centre = render::fromQt(
        {fixed.x() - (pixel.x() - width() / 2.0) / zoom, fixed.y() + (pixel.y() - height() / 2.0) / zoom});
    session_->recorder().zoom(static_cast<float>(zoom));
    session_->host().setZoom(static_cast<float>(zoom));
}

void Canvas::setZoom(double zoom) { zoomAt(QRectF(rect()).center(), zoom / session_->host().view().zoom); }

void Canvas::zoomToBox(QRectF pixels) {
    if (observed_ == nullptr || pixels.isEmpty()) return;
    const QPointF centre = toPixels().inverted().map(pixels.center());
    const double factor = std::min(width() / pixels.width(), height() / pixels.height());
    session_->host().view().centre = render::fromQt(centre);
    zoomAt(QRectF(rect()).center(), factor);
}

void Canvas::fit() {
    if (observed_ == nullptr) return;
    const double across = (width() - 2.0 * kFitMargin) / observed_->width();
    const double down = (height() - 2.0 * kFitMargin) / observed_->height();
    session_->host().view().centre = {observed_->width() / 2, observed_->height() / 2};
    setZoom(std::max(kSmallestZoom, std::min(across, down)));
}

QPointF Canvas::scrollBy(QPointF pixels) {
    if (observed_ == nullptr) return {};
    const double ratio = devicePixelRatioF();
    const QPointF whole(std::round(pixels.x() * ratio) / ratio, std::round(pixels.y() * ratio) / ratio);
    const host::View& view = session_->host().view();
    if (!whole.isNull())
        session_->host().setCentre(
            render::fromQt({view.centre.h - whole.x() / view.zoom, view.centre.v + whole.y() / view.zoom}));
    return whole;
}

// --- mouse and keys
// ---------------------------------------------------------------------------------------------------

ToolEvent Canvas::toolEvent(const QMouseEvent& event) const {
    return {event.position(), toArtwork(event.position()), event.modifiers()};
}

void Canvas::setTool(CanvasTool* tool) {
    if (tool_ != nullptr) tool_->cancel();
    tool_ = tool;
    drawing_ = false;
    showCursor();
    update();
}

void Canvas::showCursor() {
    if (panning())
        setCursor(Qt::ClosedHandCursor);
    else if (spaceHeld_)
        setCursor(Qt::OpenHandCursor);
    else
        setCursor(tool_ != nullptr ? tool_->cursor() : QCursor());
}

// An alert that opens during a press receives the release: the tool gets its release when the mouse returns without
// the button.
void Canvas::endLostPress(const QMouseEvent& event) {
    if (panning() && !(event.buttons() & panButton_)) {
        panButton_ = Qt::NoButton;
        showCursor();
    }
    const bool pressedAgain = event.type() == QEvent::MouseButtonPress && event.button() == Qt::LeftButton;
    if (!drawing_ || ((event.buttons() & Qt::LeftButton) && !pressedAgain)) return;
    drawing_ = false;
    if (tool_ != nullptr && observed_ != nullptr) tool_->release(toolEvent(event));
}

void Canvas::mousePressEvent(QMouseEvent* event) {
    endLostPress(*event);
    if (panning() || drawing_) return;
    if (event->button() == Qt::MiddleButton || (event->button() == Qt::LeftButton && spaceHeld_)) {
        panButton_ = event->button();
        panFrom_ = event->position();
        showCursor();
    } else if (event->button() == Qt::LeftButton && tool_ != nullptr && observed_ != nullptr) {
        drawing_ = true;
        tool_->press(toolEvent(*event));
    }
}

void Canvas::mouseMoveEvent(QMouseEvent* event) {
    emit cursorMoved(toArtwork(event->position()), event->position());
    endLostPress(*event);
    if (panning()) {
        panFrom_ += scrollBy(event->position() - panFrom_);
    } else if (tool_ != nullptr && observed_ != nullptr) {
        if (drawing_)
            tool_->drag(toolEvent(*event));
        else
            tool_->hover(toolEvent(*event));
    }
}

void Canvas::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == panButton_) {
        panButton_ = Qt::NoButton;
        showCursor();
    } else if (event->button() == Qt::LeftButton && drawing_) {
        drawing_ = false;
        if (tool_ != nullptr && observed_ != nullptr) tool_->release(toolEvent(*event));
    }
}

void Canvas::wheelEvent(QWheelEvent* event) {
    const QPoint turned = event->angleDelta();
    if (event->modifiers() & Qt::ShiftModifier)
        scrollBy({(turned.y() + turned.x()) / 2.0, 0});
    else if (event->modifiers() & Qt::ControlModifier)
        scrollBy(QPointF(turned) / 2.0);
    else if (turned.y() != 0)
        zoomAt(event->position(), std::pow(kZoomStep, turned.y() / 120.0));
    event->accept();
}

void Canvas::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space && !event->isAutoRepeat()) {
        spaceHeld_ = true;
        showCursor();
    } else if (event->key() == Qt::Key_Escape && tool_ != nullptr) {
        tool_->abandon();
        update();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void Canvas::keyReleaseEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Space || event->isAutoRepeat()) return QWidget::keyReleaseEvent(event);
    spaceHeld_ = false;
    showCursor();
}

void Canvas::leaveEvent(QEvent*) { emit cursorLeft(); }

// Keys are let go elsewhere then.
void Canvas::focusOutEvent(QFocusEvent* event) {
    spaceHeld_ = false;
    showCursor();
    QWidget::focusOutEvent(event);
}

}  // namespace quorvel::desktop
