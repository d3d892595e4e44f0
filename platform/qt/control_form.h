// The controls of one window as real widgets: made from rows, laid out as the rows say, driven by the plug-in's logic.
// Dialogs and the information panel are forms of the same kind.
#pragma once

#include <QObject>
#include <QWidget>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/backend/dialog_reply.h"
#include "platform/backend/dialogs.h"

namespace quorvel::platform {

// What is told of the user's steps, in the words of a scripted reply.
using StepListener = std::function<void(const DialogStep&)>;

class ControlForm final : public QObject, public ControlWindow {
  public:
    // Makes the rows the children of the page. scale: pixels for each dialog unit.
    ControlForm(QWidget* page, const WindowContent& content, double scale, StepListener listener);
    ~ControlForm() override;

    std::function<void(std::int32_t result)> closed;  // of a dialog; without it the form cannot be closed

    QWidget* page() const { return page_; }
    void open();                           // runs the logic's opening
    void sendEvent(std::int32_t control);  // as if the user had pressed it
    void stop() { open_ = false; }         // nothing is told to the logic any more
    bool isOpen() const { return open_; }

    std::string text(std::int32_t control) const override;
    void setText(std::int32_t control, const std::string& text) override;
    std::vector<std::string> rows(std::int32_t control) const override;
    void insertRow(std::int32_t control, std::int32_t row, const std::string& text) override;
    void removeRow(std::int32_t control, std::int32_t row) override;
    std::int32_t selectedRow(std::int32_t control) const override;
    void selectRow(std::int32_t control, std::int32_t row) override;
    bool isChecked(std::int32_t control) const override;
    void setChecked(std::int32_t control, bool checked) override;
    void setEnabled(std::int32_t control, bool enabled) override;
    void setShown(std::int32_t control, bool shown) override;
    void focusSelectingAll(std::int32_t control) override;
    void setFont(std::int32_t control, const std::string& systemName, float points) override;
    void setTheme(const PanelTheme& theme) override;
    void postCommand(std::int32_t number) override;
    void close(std::int32_t result) override;

    // Null for a number that the form does not have.
    QWidget* widget(std::int32_t control) const;

  private:
    struct Control {
        ControlRow row;
        QWidget* widget = nullptr;
        std::string text;  // as it was set, for controls that show it otherwise
    };

    Control* find(std::int32_t control);
    const Control* find(std::int32_t control) const;
    QWidget* make(const ControlRow& row, const QString& label);
    QWidget* makeList(const ControlRow& row);
    void place(QWidget* widget, const ControlRow& row) const;
    void connectControl(const Control& control);
    void told(const DialogStep& step);

    QWidget* page_;
    WindowContent content_;
    double scale_;
    StepListener listener_;
    std::vector<Control> controls_;
    bool open_ = true, second_ = false;
};

// The drawn font of a static text by its PostScript name; "system" is the program's own.
QFont fontBySystemName(const std::string& systemName, float points);

}  // namespace quorvel::platform
