// The tools at the left edge: one slot for each toolset. A press that is held, or a click on the small arrow, opens the
// rest of the set; a double click opens the tool's options.
#pragma once

#include <QToolButton>
#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "desktop/session.h"

namespace quorvel::desktop {

class ToolSlot : public QToolButton {
  public:
    explicit ToolSlot(QWidget* parent) : QToolButton(parent) {}
    std::function<void()> doubleClicked;

  protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

class ToolPalette : public QWidget {
    Q_OBJECT

  public:
    explicit ToolPalette(Session* session, QWidget* parent = nullptr);

    // The slot that shows the tool of this title; null for none. "select" and "zoom" are the window's own.
    ToolSlot* slotOf(const QString& title) const;
    // As if the user had chosen it.
    void choose(const QString& title);
    void refreshIcons();

  signals:
    void pluginToolChosen(const QString& title);
    void selectChosen();
    void zoomChosen();
    void optionsWanted(const QString& title);

  private:
    struct SetSlot {
        ToolSlot* button = nullptr;
        std::vector<std::string> titles;  // of its set
        std::string shown;                // the one that a press takes
    };

    ToolSlot* addButton(const QString& name);
    void addSet(const std::vector<std::string>& titles);
    void show(SetSlot* slot, const std::string& title);
    void light(ToolSlot* button);
    QIcon iconOf(const std::string& title) const;

    Session* session_;
    ToolSlot *select_ = nullptr, *zoom_ = nullptr;
    std::vector<SetSlot> sets_;
};

}  // namespace quorvel::desktop
