// The controls of one window as real widgets: made from rows, laid out as the rows say, driven by the plug-in's logic.
// Dialogs and the information panel are forms of the same kind.
#pragma once

#include <QObject>
#include <QWidget>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/dialog.h"
#include "platform/headless/headless.h"

namespace quorvel::platform {

// What is told of the user's hand, in the words of a scripted reply.
using StepListener = std::function<void(const DialogStep&)>;

class ControlForm : public QObject {
  public:
    struct Content {
        const ControlRow* rows = nullptr;
        std::int32_t rowCount = 0;
        Language language = Language::japanese;
        WindowLogic logic;
        void* context = nullptr;
        double scale = 1;  // pixels for each dialog unit
    };
    // Makes the rows the children of the page.
    ControlForm(QWidget* page, const Content& content, StepListener listener);
    ~ControlForm() override;

    WindowRef ref() { return reinterpret_cast<WindowRef>(this); }
    QWidget* page() const { return page_; }
    void open();                           // runs the logic's opening
    void sendEvent(std::int32_t control);  // as if the user had pressed it
    void postCommand(std::int32_t number);
    // Told to the logic no more.
    void close() { open_ = false; }
    bool isOpen() const { return open_; }

    std::string text(std::int32_t control) const;
    void setText(std::int32_t control, const std::string& text);
    std::vector<std::string> rows(std::int32_t control) const;
    void insertRow(std::int32_t control, std::int32_t row, const std::string& text);
    void removeRow(std::int32_t control, std::int32_t row);
    std::int32_t selectedRow(std::int32_t control) const;
    void selectRow(std::int32_t control, std::int32_t row);
    bool checked(std::int32_t control) const;
    void setChecked(std::int32_t control, bool checked);
    void setEnabled(std::int32_t control, bool enabled);
    void setShown(std::int32_t control, bool shown);
    void focusSelectingAll(std::int32_t control);
    void setFont(std::int32_t control, const std::string& systemName, float points);
    void setTheme(const PanelTheme& theme);

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
    Content content_;
    StepListener listener_;
    std::vector<Control> controls_;
    bool open_ = true, second_ = false;
};

// The drawn font of a static text by its PostScript name; "system" is the program's own.
QFont fontBySystemName(const std::string& systemName, float points);

}  // namespace quorvel::platform
