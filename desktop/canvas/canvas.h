// The view of the drawing: shows it on its page and pasteboard, zooms at the mouse, pans, and sends the mouse to the
// current tool. The picture is cached; only what has changed is drawn again.
#pragma once

#include <QImage>
#include <QTransform>
#include <QWidget>
#include <memory>
#include <unordered_map>
#include <vector>

#include "desktop/canvas/canvas_cache.h"
#include "desktop/canvas/canvas_tool.h"
#include "desktop/session.h"
#include "document/document.h"
#include "render/painter.h"

namespace quorvel::desktop {

class Canvas : public QWidget, private doc::DocumentObserver {
    Q_OBJECT

  public:
    explicit Canvas(Session* session, QWidget* parent = nullptr);
    ~Canvas() override;

    void setTool(CanvasTool* tool);
    CanvasTool* tool() const { return tool_; }
    void refreshCursor() { showCursor(); }
    // Another drawing is open, or none. decoder outlives the drawing.
    void drawingReplaced(const QString& name, const render::ImageAccess& access, render::ImageDecoder* decoder);
    // Other images may be shown now.
    void setImageAccess(const render::ImageAccess& access);
    // Images that were waited for are there.
    void imagesDecoded();
    // What could not be shown of what has been painted.
    std::vector<Error> warnings() const;
    // Before the drawing that is open goes away.
    void drawingLeaves();

    void zoomAt(QPointF pixel, double factor);
    void setZoom(double zoom);
    void zoomToBox(QRectF pixels);
    void fit();
    // By whole pixels of the screen, so that the picture stays sharp; gives how far, in the canvas's pixels.
    QPointF scrollBy(QPointF pixels);
    void setGuidesShown(bool shown);
    void setMarked(std::vector<doc::ArtId> arts);  // each in a coloured frame
    bool guidesShown() const { return options_.guides; }

    RealPoint toArtwork(QPointF pixel) const;
    QPointF toPixel(RealPoint point) const;
    QTransform toPixels() const;  // document points to the canvas's pixels

    // The picture as the screen shows it once it is sharp, and the same drawn from scratch.
    QImage shown();
    QImage fresh();
    bool isSharp() const { return picture_.isSharp(); }

    QSize sizeHint() const override { return {900, 700}; }

  signals:
    void cursorMoved(quorvel::RealPoint point, QPointF pixel);
    void cursorLeft();
    void viewChanged();
    void pictureProgressed(int done, int total);  // equal when it is sharp

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void artInserted(doc::ArtId art) override;
    void artRemoved(doc::ArtId art) override;
    void artChanged(doc::ArtId art) override;
    void tagChanged(doc::ArtId art, const std::string& name) override;
    void layersChanged() override;

    void drawAllAnew();
    void note(doc::ArtId top);
    void noteSubtree(const doc::Art& top);
    void rememberBoxes(doc::ArtId top);
    void rememberBoxes();
    QRect damageInPixels();
    void refresh();  // the kept picture is up to date afterwards, or on its way
    void drawGround(QPainter* painter, const CanvasCache::View& view, const QRectF& part) const;
    void invertPreview(QImage* image) const;
    void paintMarks(QPainter& painter) const;
    ToolEvent toolEvent(const QMouseEvent& event) const;
    void endLostPress(const QMouseEvent& event);
    void showCursor();
    bool panning() const { return panButton_ != Qt::NoButton; }

    Session* session_;
    CanvasTool* tool_ = nullptr;
    std::vector<doc::ArtId> marked_;
    render::ImageDecoder* decoder_ = nullptr;
    std::unique_ptr<render::DocumentPainter> painter_;
    doc::Document* observed_ = nullptr;
    render::PaintOptions options_;
    QString name_;
    CanvasCache picture_;
    bool allStale_ = true;
    std::vector<doc::ArtId> stale_;
    std::unordered_map<doc::ArtId, QRectF> boxes_;  // in document points, as last drawn
    Qt::MouseButton panButton_ = Qt::NoButton;
    bool spaceHeld_ = false, drawing_ = false;
    QPointF panFrom_;
};

}  // namespace quorvel::desktop
