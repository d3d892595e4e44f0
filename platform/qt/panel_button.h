// The two kinds of drop-down list and button that no stock widget is: a list whose rows may be disabled, and a button
// that stays lit and is drawn in the panel's colours.
#pragma once

#include <QAbstractButton>
#include <QComboBox>
#include <functional>

#include "platform/dialog.h"

namespace quorvel::platform {

class PanelButton : public QAbstractButton {
  public:
    PanelButton(QWidget* parent, std::int32_t picture, std::int32_t secondPicture);
    void setLit(bool lit);
    bool lit() const { return lit_; }
    void setTheme(const PanelTheme& theme);
    QSize sizeHint() const override { return {20, 20}; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    std::int32_t picture_, secondPicture_;
    bool lit_ = false;
    PanelTheme theme_;
};

// Rows that are "-" or empty are separators; the others ask whether they are disabled each time the list opens.
class CommandList : public QComboBox {
  public:
    explicit CommandList(QWidget* parent) : QComboBox(parent) {}
    std::function<bool(int row)> rowDisabled;
    void refreshRows();
    void showPopup() override;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
};

}  // namespace quorvel::platform
