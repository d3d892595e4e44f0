// Runs dialogs and records the user's steps in them as a reply that a script can play.
#include "platform/qt/qt_dialogs.h"

#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QMessageBox>
#include <QScreen>

namespace quorvel::platform {

namespace {

constexpr char kProgramName[] = "Quorvel";
// Width of an average letter for which the dialogs' rectangles are drawn.
constexpr double kDesignedLetter = 6.0;

double dialogScale(const QFont& font) {
    const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    const double letter = QFontMetricsF(font).horizontalAdvance(letters) / letters.size();
    return std::max(1.0, letter / kDesignedLetter);
}

// Closing by the window's own means, or by the Escape key, counts as pressing Cancel.
class DialogWindow : public QDialog {
  public:
    explicit DialogWindow(QWidget* parent) : QDialog(parent) { setWindowFlag(Qt::WindowStaysOnTopHint); }
    std::function<void()> cancelled;
    void reject() override { cancelled(); }
};

// A run of typing in one control is one step: what was there when the user went on.
void addStep(std::vector<DialogStep>* steps, const DialogStep& step) {
    const bool goesOn = !steps->empty() && steps->back().control == step.control && steps->back().kind == step.kind &&
                        step.kind == DialogStep::Kind::setText;
    if (goesOn)
        steps->back() = step;
    else
        steps->push_back(step);
}

}  // namespace

// Lives as long as the dialog runs.
class QtDialogs::RunningDialog {
  public:
    RunningDialog(QWidget* parent, const DialogTemplate& dialog, const WindowLogic& logic, void* context)
        : window(parent) {
        const double scale = dialogScale(window.font());
        window.setWindowTitle(QString::fromUtf8(dialog.title));
        window.setObjectName(QStringLiteral("dialog%1").arg(dialog.id));
        window.setFixedSize(static_cast<int>(dialog.width * scale), static_cast<int>(dialog.height * scale));
        const WindowContent content{
            {dialog.rows, static_cast<std::size_t>(dialog.rowCount)}, dialog.language, logic, context};
        form = std::make_unique<ControlForm>(&window, content, scale,
                                             [this](const DialogStep& step) { addStep(&steps, step); });
        form->closed = [this](std::int32_t given) {
            result = given;
            window.done(QDialog::Accepted);
        };
        window.cancelled = [this] { cancel(); };
    }

    DialogWindow window;
    std::unique_ptr<ControlForm> form;
    std::int32_t result = 0;
    std::vector<DialogStep> steps;

  private:
    void cancel() {
        addStep(&steps, {DialogStep::Kind::press, kCancelControl, {}, 0});
        form->sendEvent(kCancelControl);
        // A dialog whose logic does not hear of it must not trap the user.
        if (form->isOpen()) {
            form->stop();
            result = kCancelControl;
        }
        window.done(QDialog::Rejected);
    }
};

QtDialogs::QtDialogs() = default;
QtDialogs::~QtDialogs() = default;

QWidget* QtDialogs::windowInFront() const { return dialogs_.empty() ? parent : &dialogs_.back()->window; }

std::int32_t QtDialogs::run(const DialogTemplate& dialog, const WindowLogic& logic, void* context) {
    const QWidget* behind = windowInFront();
    RunningDialog running(windowInFront(), dialog, logic, context);
    dialogs_.push_back(&running);
    if (events.dialogOpened) events.dialogOpened();
    running.form->open();
    if (const QScreen* desktop = behind != nullptr ? behind->screen() : QApplication::primaryScreen())
        running.window.move(desktop->geometry().center() - running.window.rect().center());
    if (running.form->isOpen()) running.window.exec();
    dialogs_.pop_back();
    if (events.dialogAnswered) events.dialogAnswered({dialog.id, running.steps});
    return running.result;
}

// --- the panel

void* QtDialogs::createPanelWindow() {
    auto* page = new QWidget;
    panels_.emplace(page, nullptr);
    return page;
}

void QtDialogs::destroyPanelWindow(void* window) {
    const auto found = panels_.find(panelWidget(window));
    if (found == panels_.end()) return;
    found->second.reset();
    delete found->first;
    panels_.erase(found);
}

ControlWindow* QtDialogs::buildPanel(void* panelWindow, const WindowContent& content) {
    const auto found = panels_.find(panelWidget(panelWindow));
    if (found == panels_.end()) return nullptr;
    found->second =
        std::make_unique<ControlForm>(found->first, content, 1.0, [this, &form = found->second](DialogStep step) {
            const bool picks = step.kind == DialogStep::Kind::selectRow && step.row >= 0;
            if (picks) step.text = form->rows(step.control).at(std::size_t(step.row));
            if (events.panelUsed) events.panelUsed(step);
        });
    found->second->open();
    return found->second.get();
}

void QtDialogs::destroyPanel(ControlWindow* window) {
    for (auto& [page, content] : panels_) {
        if (content == nullptr || content.get() != window) continue;
        qDeleteAll(page->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly));
        content.reset();
    }
}

ControlForm* QtDialogs::panelForm() const {
    for (const auto& [page, content] : panels_)
        if (content != nullptr) return content.get();
    return nullptr;
}

// --- boxes and files

bool QtDialogs::showMessageBox(const std::string& text, const std::string& title, MessageButtons buttons,
                               MessageIcon icon) {
    QMessageBox box(windowInFront());
    box.setWindowTitle(QString::fromStdString(title));
    box.setText(QString::fromStdString(text));
    box.setTextFormat(Qt::PlainText);
    const bool asks = buttons == MessageButtons::okCancel;
    box.setStandardButtons(asks ? QMessageBox::Ok | QMessageBox::Cancel : QMessageBox::Ok);
    box.setIcon(icon == MessageIcon::question      ? QMessageBox::Question
                : icon == MessageIcon::information ? QMessageBox::Information
                                                   : QMessageBox::NoIcon);
    const bool accepted = box.exec() == QMessageBox::Ok;
    if (events.boxAnswered) events.boxAnswered(accepted, asks);
    return accepted;
}

bool QtDialogs::askQuestion(const std::string& text) {
    QMessageBox box(QMessageBox::Question, kProgramName, QString::fromStdString(text),
                    QMessageBox::Yes | QMessageBox::No, windowInFront());
    const bool accepted = box.exec() == QMessageBox::Yes;
    if (events.boxAnswered) events.boxAnswered(accepted, true);
    return accepted;
}

void QtDialogs::showAlert(const std::string& text) {
    QMessageBox(QMessageBox::Warning, kProgramName, QString::fromStdString(text), QMessageBox::Ok, windowInFront())
        .exec();
}

bool QtDialogs::chosen(const QString& path, std::string* out) {
    const bool given = !path.isEmpty();
    if (given) *out = QFile::encodeName(path).toStdString();
    if (events.fileChosen) events.fileChosen(given ? std::optional(*out) : std::nullopt);
    return given;
}

bool QtDialogs::askSaveFile(const std::string& filter, const std::string& proposedName, std::string* path) {
    return chosen(QFileDialog::getSaveFileName(windowInFront(), QString(), QString::fromStdString(proposedName),
                                               QString::fromStdString(filter)),
                  path);
}

bool QtDialogs::askOpenFile(const std::string& filter, const std::string& proposedName, std::string* path) {
    return chosen(QFileDialog::getOpenFileName(windowInFront(), QString(), QString::fromStdString(proposedName),
                                               QString::fromStdString(filter)),
                  path);
}

}  // namespace quorvel::platform
