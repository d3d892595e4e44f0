// The layers, top first: shown or hidden, locked or open, the current one, new ones and new names.
#pragma once

#include <QTreeWidget>
#include <QWidget>
#include <string>

#include "desktop/desk.h"
#include "host/document.h"

namespace quorvel::desktop {

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
    template <typename Change>
    void change(const std::string& line, Change change);

    Desk* desk_;
    QTreeWidget* list_;
    host::Document* observed_ = nullptr;
    bool stale_ = false, filling_ = false;
};

}  // namespace quorvel::desktop
