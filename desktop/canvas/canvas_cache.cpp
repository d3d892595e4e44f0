#include "desktop/canvas/canvas_cache.h"

#include <QPainter>
#include <cmath>

namespace quorvel::desktop {

namespace {

// Milliseconds: a picture that is drawn within the first is never seen unsharp; the others leave room for the mouse.
// What scrolling uncovers is drawn at once, the lowest art first, as far as the time allows.
constexpr int kFirstSlice = 12, kSlice = 8, kUncovered = 25;
// A change is drawn at once where no more than so much is to be painted, or it covers so small a share of the picture.
constexpr std::size_t kFewItems = 1500;
constexpr double kSmallShare = 1.0 / 16;
// Of a pixel. The view's centre is a float, so that a picture moved by whole pixels is seldom quite where it should be.
constexpr double kUnseen = 0.05;

bool isWhole(double value) { return std::abs(value - std::round(value)) < kUnseen; }

double areaOf(const QRect& rect) { return double(rect.width()) * rect.height(); }

}  // namespace

CanvasCache::CanvasCache(Ground ground) : ground_(std::move(ground)) {
    clock_.setInterval(0);
    connect(&clock_, &QTimer::timeout, this, [this] {
        drawSlice(kSlice);
        if (!drawing_) emit sharpened();
    });
}

void CanvasCache::setPainter(render::DocumentPainter* painter) {
    painter_ = painter;
    drawing_ = false;
    clock_.stop();
    shown_ = QImage();
}

QImage CanvasCache::emptyImage() const {
    QImage image(view_.size * view_.ratio, QImage::Format_RGB32);
    image.setDevicePixelRatio(view_.ratio);
    return image;
}

QRect CanvasCache::whole() const { return QRect(QPoint(), view_.size * view_.ratio); }

QRectF CanvasCache::inWidget(const QRect& part) const {
    return QRectF(QPointF(part.topLeft()) / view_.ratio, QSizeF(part.size()) / view_.ratio);
}

std::vector<render::PaintItem> CanvasCache::order(const QRect& part) const {
    if (painter_ == nullptr) return {};
    return painter_->order(view_.toPixels, inWidget(part), options_);
}

void CanvasCache::drawGround(QImage* image, const QRect& part) const {
    QPainter painter(image);
    painter.setClipRect(inWidget(part));
    ground_(&painter, view_, inWidget(part));
}

std::size_t CanvasCache::drawItems(QImage* image, const QRect& part, const std::vector<render::PaintItem>& items,
                                   std::size_t first, const QDeadlineTimer& until) const {
    if (painter_ == nullptr || first >= items.size()) return items.size();
    QPainter painter(image);
    return painter_->paintItems(&painter, view_.toPixels, inWidget(part), options_, items, first, until);
}

void CanvasCache::drawInto(QImage* image, const QRect& part, const std::vector<render::PaintItem>& items) const {
    drawGround(image, part);
    drawItems(image, part, items, 0, QDeadlineTimer(QDeadlineTimer::Forever));
}

QImage CanvasCache::fromScratch() const {
    QImage image = emptyImage();
    drawInto(&image, whole(), order(whole()));
    return image;
}

bool CanvasCache::setView(const View& view, const render::PaintOptions& options) {
    options_ = options;
    if (view == view_ && !shown_.isNull()) return false;
    const View before = view_;
    view_ = view;
    standIn(before);
    begin(whole());
    return true;
}

// Shows the old picture, moved and scaled to the new view. After a plain scroll the uncovered strips are drawn sharp.
void CanvasCache::standIn(const View& before) {
    QImage old = shown_;
    shown_ = emptyImage();
    drawGround(&shown_, whole());
    if (old.isNull() || !before.toPixels.isInvertible() || painter_ == nullptr) return;
    QTransform moved = QTransform::fromScale(1 / before.ratio, 1 / before.ratio) * before.toPixels.inverted() *
                       view_.toPixels * QTransform::fromScale(view_.ratio, view_.ratio);
    const bool shifted = std::abs(moved.m11() - 1) < 1e-9 && std::abs(moved.m22() - 1) < 1e-9;
    if (shifted) {
        const auto settle = [](double value) { return isWhole(value) ? std::round(value) : value; };
        moved = QTransform::fromTranslate(settle(moved.dx()), settle(moved.dy()));
    }
    old.setDevicePixelRatio(1);
    shown_.setDevicePixelRatio(1);
    {
        QPainter painter(&shown_);
        painter.setTransform(moved);
        painter.drawImage(QPoint(), old);
    }
    shown_.setDevicePixelRatio(view_.ratio);
    if (!shifted) return;
    const QRectF place = moved.mapRect(QRectF(old.rect()));
    const QPoint first(static_cast<int>(std::ceil(place.left())), static_cast<int>(std::ceil(place.top())));
    const QPoint end(static_cast<int>(std::floor(place.right())), static_cast<int>(std::floor(place.bottom())));
    const QRegion covered(QRect(first, end - QPoint(1, 1)));
    const QDeadlineTimer until(kUncovered);
    for (const QRect& strip : QRegion(whole()) - covered) {
        drawGround(&shown_, strip);
        drawItems(&shown_, strip, order(strip), 0, until);
    }
}

void CanvasCache::drawAnew() {
    if (!shown_.isNull()) begin(whole());
}

void CanvasCache::begin(const QRect& part) {
    drawing_ = true;
    part_ = part;
    next_ = part == whole() ? emptyImage() : shown_;
    done_ = 0;
    changed_ = {};
    drawGround(&next_, part);
    items_ = order(part);
    drawSlice(kFirstSlice);
    if (drawing_) clock_.start();
}

void CanvasCache::drawSlice(int milliseconds) {
    if (!drawing_) return;
    const QDeadlineTimer until =
        milliseconds < 0 ? QDeadlineTimer(QDeadlineTimer::Forever) : QDeadlineTimer(milliseconds);
    done_ = drawItems(&next_, part_, items_, done_, until);
    const bool ended = done_ >= items_.size();
    if (ended) {
        clock_.stop();
        drawing_ = false;
        shown_ = std::move(next_);
        next_ = QImage();
        for (const QRect& part : changed_) drawInto(&shown_, part, order(part));
    }
    emit progressed(static_cast<int>(done_), static_cast<int>(items_.size()));
}

void CanvasCache::draw(const QRect& part) {
    if (shown_.isNull() || part.isEmpty()) return;
    const QRect dots = QRectF(QPointF(part.topLeft()) * view_.ratio, QSizeF(part.size()) * view_.ratio).toAlignedRect();
    // Whole rows: QPainter adds gradients up from where a row's span starts, so that the last bit of a colour depends
    // on where it is cut off.
    const QRect rows = QRect(0, dots.top(), whole().width(), dots.height()) & whole();
    const std::vector<render::PaintItem> items = order(rows);
    const bool few = items.size() <= kFewItems;
    if (few)
        drawInto(&shown_, rows, items);
    else if (areaOf(dots) < areaOf(whole()) * kSmallShare)
        drawInto(&shown_, dots & whole(), items);  // nobody waits for its last bits
    if (!few)
        begin(drawing_ ? rows.united(part_) : rows);
    else if (drawing_)
        changed_ += rows;
}

void CanvasCache::finish() { drawSlice(-1); }

}  // namespace quorvel::desktop
