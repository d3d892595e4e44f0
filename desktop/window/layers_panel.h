// The layers, top first: shown or hidden, locked or open, the current one, new ones, new names and their order.
#pragma once

#include <QTreeWidget>
#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "desktop/session.h"
#include "document/document.h"

namespace quorvel::desktop {

// Tells where a row is dropped, and leaves the moving to the document. F2 edits one column alone.
class LayerList : public QTreeWidget {
  public:
    using QTreeWidget::QTreeWidget;
    std::function<void(int from, int to)> dropped;
    int editedColumn = 0;

  protected:
    using QTreeWidget::edit;
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
    void dropEvent(QDropEvent* event) override;
};

class LayersPanel : public QWidget, private doc::DocumentObserver {
  public:
    explicit LayersPanel(Session* session, QWidget* parent = nullptr);
    ~LayersPanel() override;
    void drawingReplaced();
    void drawingLeaves();
    void refresh();

  private:
    void artInserted(doc::ArtId) override {}
    void artRemoved(doc::ArtId) override {}
    void artChanged(doc::ArtId) override {}
    void tagChanged(doc::ArtId, const std::string&) override {}
    void layersChanged() override;

    void clicked(QTreeWidgetItem* item, int column);
    void renamed(QTreeWidgetItem* item, int column);
    void addLayer();
    void moveLayer(int from, int to);
    bool rowsAreCurrent() const;
    static doc::LayerId layerOf(const QTreeWidgetItem& item);
    // Of the pattern's number and those above it, one that no layer has.
    std::string freeTitle(const QString& pattern, std::size_t number) const;
    // The script's lines for what is done to the layer. What is no step of the drawing must leave none behind.
    std::vector<std::string> linesFor(doc::LayerId id, const std::vector<std::string>& actions,
                                      bool oneStep = true) const;
    template <typename Change>
    void change(const char* english, const char* japanese, const std::vector<std::string>& lines, Change change);

    Session* session_;
    LayerList* list_;
    doc::Document* observed_ = nullptr;
    bool stale_ = false, filling_ = false;
};

}  // namespace quorvel::desktop
