// The layers, top first: shown or hidden, locked or open, the current one, new ones, new names and their order.
#pragma once

#include <QTreeWidget>
#include <QWidget>
#include <functional>
#include <string>

#include "desktop/desk.h"
#include "host/document.h"

namespace quorvel::desktop {

// Tells where a row is dropped, and leaves the moving to the document.
class LayerList : public QTreeWidget {
  public:
    using QTreeWidget::QTreeWidget;
    std::function<void(int from, int to)> dropped;

  protected:
    void dropEvent(QDropEvent* event) override;
};

class LayersPanel : public QWidget, private host::DocumentObserver {
  public:
    explicit LayersPanel(Desk* desk, QWidget* parent = nullptr);
    ~LayersPanel() override;
    void drawingReplaced();
    void drawingLeaves();
    void refresh();

  private:
    void artInserted(host::ArtId) override {}
    void artRemoved(host::ArtId) override {}
    void artChanged(host::ArtId) override {}
    void tagChanged(host::ArtId, const std::string&) override {}
    void layersChanged() override;

    void clicked(QTreeWidgetItem* item, int column);
    void renamed(QTreeWidgetItem* item, int column);
    void addLayer();
    void moveLayer(int from, int to);
    template <typename Change>
    void change(const std::string& line, Change change);

    Desk* desk_;
    LayerList* list_;
    host::Document* observed_ = nullptr;
    bool stale_ = false, filling_ = false;
};

}  // namespace quorvel::desktop
