// The drawing as a picture that is kept between paintings. A change draws what it touches; a new view shows at once
// what stood there before, moved and scaled, while the sharp picture is drawn in slices from the event loop, so that
// the window answers however large the drawing is.
#pragma once

#include <QDeadlineTimer>
#include <QImage>
#include <QObject>
#include <QRegion>
#include <QTimer>
#include <QTransform>
#include <functional>
#include <vector>

#include "render/painter.h"

namespace quorvel::desktop {

class CanvasCache : public QObject {
    Q_OBJECT

  public:
    struct View {
        QTransform toPixels;  // document points to the widget's pixels
        QSize size;           // of the widget, in its pixels
        double ratio = 1;     // the screen's pixels for each of the widget's
        bool operator==(const View& other) const = default;
    };
    // Draws what is below the drawing: pasteboard and page. part: in pixels of the widget.
    using Ground = std::function<void(QPainter* painter, const View& view, const QRectF& part)>;

    explicit CanvasCache(Ground ground);

    // Null: there is no drawing. The painter must outlive its use.
    void setPainter(render::DocumentPainter* painter);
    // True when the view is another one, so that the picture is begun anew.
    bool setView(const View& view, const render::PaintOptions& options);
    void drawAnew();  // all has changed
    // These pixels of the widget have changed. Small areas are drawn at once, large ones in slices.
    void draw(const QRect& part);
    const QImage& image() const { return shown_; }
    bool isSharp() const { return !drawing_; }
    void finish();  // draws now what is missing
    QImage fromScratch() const;

  signals:
    void sharpened();                      // another picture is there than was painted last
    void progressed(int done, int total);  // equal at the end

  private:
    // Rectangles are in the screen's pixels here: a pixel of the widget may be one and a half of them.
    QImage emptyImage() const;
    QRect whole() const;
    QRectF inWidget(const QRect& part) const;
    std::vector<render::PaintItem> order(const QRect& part) const;
    void drawGround(QImage* image, const QRect& part) const;
    // Gives the index of the first item that is not drawn yet when the time is up.
    std::size_t drawItems(QImage* image, const QRect& part, const std::vector<render::PaintItem>& items,
                          std::size_t first, const QDeadlineTimer& until) const;
    void drawInto(QImage* image, const QRect& part, const std::vector<render::PaintItem>& items) const;
    void standIn(const View& before);
    void begin(const QRect& part);
    void drawSlice(int milliseconds);

    Ground ground_;
    render::DocumentPainter* painter_ = nullptr;
    View view_;
    render::PaintOptions options_;
    QImage shown_;
    // The sharp picture in the making.
    bool drawing_ = false;
    QRect part_;  // what of it is drawn anew
    QImage next_;
    std::vector<render::PaintItem> items_;
    std::size_t done_ = 0;
    QRegion changed_;  // since it was begun
    QTimer clock_;
};

}  // namespace quorvel::desktop
