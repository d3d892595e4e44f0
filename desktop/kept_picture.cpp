#include "desktop/kept_picture.h"

#include <QDeadlineTimer>
#include <cmath>

namespace quorvel::desktop {

namespace {

// Milliseconds: a picture that is drawn within the first is never seen unsharp; the others leave room for the mouse.
constexpr int kFirstSlice = 12, kSlice = 8;

QRect WholeOf(const KeptPicture::View& view) { return QRect(QPoint(), view.size); }

bool IsWhole(double value) { return std::abs(value - std::round(value)) < 1e-6; }

}  // namespace

KeptPicture::KeptPicture(Ground ground) : ground_(std::move(ground)) {
    clock_.setInterval(0);
    connect(&clock_, &QTimer::timeout, this, [this] {
        drawSlice(kSlice);
        if (!drawing_) emit sharpened();
    });
}

void KeptPicture::setPainter(DocumentPainter* painter) {
    painter_ = painter;
    drawing_ = false;
    clock_.stop();
    shown_ = QImage();
}

QImage KeptPicture::emptyImage() const {
    QImage image(view_.size * view_.ratio, QImage::Format_RGB32);
    image.setDevicePixelRatio(view_.ratio);
    return image;
}

void KeptPicture::drawInto(QImage* image, const QRect& part) const {
    QPainter painter(image);
    painter.setClipRect(part);
    ground_(&painter, view_, part);
    if (painter_ != nullptr) painter_->paint(&painter, view_.toPixels, part, options_);
}

QImage KeptPicture::fromScratch() const {
    QImage image = emptyImage();
    drawInto(&image, WholeOf(view_));
    return image;
}

bool KeptPicture::setView(const View& view, const PaintOptions& options) {
    options_ = options;
    if (view == view_ && !shown_.isNull()) return false;
    const View before = view_;
    view_ = view;
    standIn(before);
    begin();
    return true;
}

// What was seen, where it lies now. A picture that has only moved is drawn sharp where it has uncovered something.
void KeptPicture::standIn(const View& before) {
    const QImage old = shown_;
    shown_ = emptyImage();
    QPainter painter(&shown_);
    ground_(&painter, view_, WholeOf(view_));
    if (old.isNull() || !before.toPixels.isInvertible() || painter_ == nullptr) return;
    const QTransform moved = before.toPixels.inverted() * view_.toPixels;
    painter.setTransform(moved);
    painter.drawImage(QPoint(), old);
    painter.end();
    const bool shifted = moved.type() <= QTransform::TxTranslate && IsWhole(moved.dx()) && IsWhole(moved.dy());
    if (!shifted || before.size != view_.size) return;
    const QRegion covered =
        WholeOf(view_).translated(static_cast<int>(std::lround(moved.dx())), static_cast<int>(std::lround(moved.dy())));
    for (const QRect& strip : QRegion(WholeOf(view_)) - covered) drawInto(&shown_, strip);
}

void KeptPicture::drawAnew() {
    if (!shown_.isNull()) begin();
}

void KeptPicture::begin() {
    drawing_ = true;
    next_ = emptyImage();
    done_ = 0;
    changed_ = {};
    items_.clear();
    {
        QPainter painter(&next_);
        ground_(&painter, view_, WholeOf(view_));
    }
    if (painter_ != nullptr) items_ = painter_->order(view_.toPixels, WholeOf(view_), options_);
    drawSlice(kFirstSlice);
    if (drawing_) clock_.start();
}

void KeptPicture::drawSlice(int milliseconds) {
    if (!drawing_) return;
    if (painter_ != nullptr && done_ < items_.size()) {
        QPainter painter(&next_);
        painter.setClipRect(WholeOf(view_));
        const QDeadlineTimer until =
            milliseconds < 0 ? QDeadlineTimer(QDeadlineTimer::Forever) : QDeadlineTimer(milliseconds);
        done_ = painter_->paintItems(&painter, view_.toPixels, WholeOf(view_), options_, items_, done_, until);
    }
    const bool ended = painter_ == nullptr || done_ >= items_.size();
    if (ended) {
        clock_.stop();
        drawing_ = false;
        shown_ = std::move(next_);
        next_ = QImage();
        for (const QRect& part : changed_) drawInto(&shown_, part);
    }
    emit progressed(static_cast<int>(ended ? items_.size() : done_), static_cast<int>(items_.size()));
}

void KeptPicture::draw(const QRect& part) {
    if (shown_.isNull() || part.isEmpty()) return;
    // Whole rows: QPainter adds gradients up from where a row's span starts, so that the last bit of a colour depends
    // on where it is cut off.
    const QRect rows(0, part.top(), view_.size.width(), part.height());
    drawInto(&shown_, rows);
    if (drawing_) changed_ += rows;
}

void KeptPicture::finish() { drawSlice(-1); }

}  // namespace quorvel::desktop
