// Dialogs, message boxes and the panel as real windows.
#pragma once

#include <QWidget>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/backend/dialog_reply.h"
#include "platform/backend/dialogs.h"
#include "platform/qt/control_form.h"

namespace quorvel::platform {

// What the program is told of the user's answers. Each may be left empty.
struct DialogEvents {
    std::function<void()> dialogOpened;                            // before its logic runs
    std::function<void(const DialogReply& reply)> dialogAnswered;  // of the dialog that was opened last
    std::function<void(bool accepted, bool asked)> boxAnswered;    // asked: there was a choice
    std::function<void(const std::optional<std::string>& path)> fileChosen;
    // Before the logic hears of it. A row that is picked comes with its text.
    std::function<void(const DialogStep& step)> panelUsed;
};

class QtDialogs final : public Dialogs {
  public:
    QtDialogs();
    ~QtDialogs() override;

    DialogEvents events;
    QWidget* parent = nullptr;  // of the first dialog; the program's

    // The content of a panel is a widget that the program puts where it likes.
    void* createPanelWindow();
    void destroyPanelWindow(void* window);
    static QWidget* panelWidget(void* window) { return static_cast<QWidget*>(window); }
    ControlForm* panelForm() const;  // null when no panel has content

    // Asks and answers a question of the host (an alert, a yes-no alert) as a message box.
    bool askQuestion(const std::string& text);
    void showAlert(const std::string& text);

    std::int32_t run(const DialogTemplate& dialog, const WindowLogic& logic, void* context) override;
    ControlWindow* buildPanel(void* panelWindow, const WindowContent& content) override;
    void destroyPanel(ControlWindow* window) override;
    bool showMessageBox(const std::string& text, const std::string& title, MessageButtons buttons,
                        MessageIcon icon) override;
    bool askSaveFile(const std::string& filter, const std::string& proposedName, std::string* path) override;
    bool askOpenFile(const std::string& filter, const std::string& proposedName, std::string* path) override;

  private:
    class RunningDialog;

    QWidget* windowInFront() const;  // the dialog shown last, or the window behind all
    bool chosen(const QString& path, std::string* out);

    std::vector<RunningDialog*> dialogs_;
    std::unordered_map<QWidget*, std::unique_ptr<ControlForm>> panels_;
};

}  // namespace quorvel::platform
