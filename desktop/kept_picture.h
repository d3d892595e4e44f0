// The drawing as a picture that is kept between paintings. A change draws what it touches; a new view shows at once
// what stood there before, moved and scaled, while the sharp picture is drawn in slices from the event loop, so that
// the window answers however large the drawing is.
#pragma once

#include <QImage>
#include <QObject>
#include <QRegion>
#include <QTimer>
#include <QTransform>
#include <functional>
#include <vector>

#include "desktop/painter.h"

namespace quorvel::desktop {

class KeptPicture : public QObject {
    Q_OBJECT

  public:
    struct View {
        QTransform toPixels;  // document points to the widget's pixels
        QSize size;           // of the widget, in its pixels
        double ratio = 1;     // the screen's pixels for each of the widget's
        bool operator==(const View& other) const = default;
    };
    // Draws what lies below the drawing: pasteboard and page.
    using Ground = std::function<void(QPainter* painter, const View& view, const QRect& part)>;

    explicit KeptPicture(Ground ground);

    // Null: there is no drawing. The painter must outlive its use.
    void setPainter(DocumentPainter* painter);
    // True when the view is another one, so that the picture is begun anew.
    bool setView(const View& view, const PaintOptions& options);
    void drawAnew();               // all has changed
    void draw(const QRect& part);  // what lies in these pixels has changed
    const QImage& image() const { return shown_; }
    bool isSharp() const { return !drawing_; }
    void finish();  // draws now what is missing
    QImage fromScratch() const;

  signals:
    void sharpened();                      // another picture is there than was painted last
    void progressed(int done, int total);  // equal at the end

  private:
    QImage emptyImage() const;
    void drawInto(QImage* image, const QRect& part) const;
    void standIn(const View& before);
    void begin();
    void drawSlice(int milliseconds);

    Ground ground_;
    DocumentPainter* painter_ = nullptr;
    View view_;
    PaintOptions options_;
    QImage shown_;
    // The sharp picture in the making.
    bool drawing_ = false;
    QImage next_;
    std::vector<PaintItem> items_;
    std::size_t done_ = 0;
    QRegion changed_;  // since it was begun
    QTimer clock_;
};

}  // namespace quorvel::desktop
