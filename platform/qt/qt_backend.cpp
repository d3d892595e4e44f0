// The backend's face: the view's window tree and the inverted pixels are the unseen screen's, the windows with controls
// are real.
#include "platform/qt/qt_backend.h"

#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QMessageBox>
#include <QScreen>
#include <cstdlib>

#include "platform/headless/folders.h"
#include "platform/qt/pictures.h"

namespace quorvel::platform {

namespace {

constexpr std::uint32_t kNotEnoughMemory = 8;
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

// A run of typing in one control is one step: what stood there when the user went on.
void addStep(std::vector<DialogStep>* steps, const DialogStep& step) {
    const bool goesOn = !steps->empty() && steps->back().control == step.control && steps->back().kind == step.kind &&
                        step.kind == DialogStep::Kind::setText;
    if (goesOn)
        steps->back() = step;
    else
        steps->push_back(step);
}

}  // namespace

struct QtBackend::RunningDialog {
    DialogWindow window;
    std::unique_ptr<ControlForm> form;
    std::int32_t result = 0;
    std::vector<DialogStep> steps;
    explicit RunningDialog(QWidget* parent) : window(parent) {}
};

QtBackend::QtBackend(std::string documentsFolder) : documents_(withoutEndSeparator(std::move(documentsFolder))) {
    initPictures();
}

QtBackend::~QtBackend() {
    for (void* block : blocks_) std::free(block);
}

// --- the view

void QtBackend::openView(const std::string& title, int width, int height) { screen_.openView(title, width, height); }
void QtBackend::closeView() { screen_.closeView(); }
void QtBackend::setViewTitle(const std::string& title) { screen_.setTitle(title); }
void QtBackend::viewRepainted() { screen_.repainted(); }

ViewWindowRef QtBackend::topWindow(ViewWindowRef parent) { return screen_.first(parent); }
ViewWindowRef QtBackend::nextWindow(ViewWindowRef window) { return screen_.next(window); }

std::string QtBackend::windowTitle(ViewWindowRef window) {
    const TreeWindow* found = screen_.find(window);
    return found == nullptr ? "" : found->title;
}

PixelRect QtBackend::windowRect(ViewWindowRef window) {
    const TreeWindow* found = screen_.find(window);
    return found == nullptr ? PixelRect{} : found->rect;
}

bool QtBackend::windowVisible(ViewWindowRef window) {
    const TreeWindow* found = screen_.find(window);
    return found != nullptr && found->visible;
}

Pixel QtBackend::clientToScreen(ViewWindowRef window, Pixel point) {
    const PixelRect rect = windowRect(window);
    return {point.h + rect.left, point.v + rect.top};
}

Pixel QtBackend::screenToClient(ViewWindowRef window, Pixel point) {
    const PixelRect rect = windowRect(window);
    return {point.h - rect.left, point.v - rect.top};
}

std::int32_t QtBackend::windowNumber(ViewWindowRef window) {
    const TreeWindow* found = screen_.find(window);
    return found == nullptr ? 0 : found->number;
}

SurfaceRef QtBackend::beginSurface(ViewWindowRef window) { return screen_.begin(window); }

void QtBackend::endSurface(SurfaceRef surface) {
    screen_.end(surface);
    if (events.surfaceDrawn) events.surfaceDrawn();
}

std::uint32_t QtBackend::surfaceGeneration(SurfaceRef) { return screen_.generation(); }
void QtBackend::moveTo(SurfaceRef surface, Pixel point) { screen_.moveTo(surface, point); }
void QtBackend::lineTo(SurfaceRef surface, Pixel point) { screen_.lineTo(surface, point); }
void QtBackend::drawArc(SurfaceRef surface, PixelRect box, Pixel start, Pixel end) {
    screen_.arc(surface, box, start, end);
}

// --- dialogs

ControlForm* QtBackend::form(WindowRef window) const {
    auto* asked = reinterpret_cast<ControlForm*>(window);
    return forms_.count(asked) != 0 ? asked : nullptr;
}

QWidget* QtBackend::windowInFront() const { return dialogs_.empty() ? dialogParent : &dialogs_.back()->window; }

std::int32_t QtBackend::runDialog(const DialogTemplate& dialog, const WindowLogic& logic, void* context) {
    QWidget* parent = windowInFront();
    RunningDialog running(parent);
    const double scale = dialogScale(running.window.font());
    running.window.setWindowTitle(QString::fromUtf8(dialog.title));
    running.window.setObjectName(QStringLiteral("dialog%1").arg(dialog.id));
    running.window.setFixedSize(static_cast<int>(dialog.width * scale), static_cast<int>(dialog.height * scale));
    running.form = std::make_unique<ControlForm>(
        &running.window, ControlForm::Content{dialog.rows, dialog.rowCount, dialog.language, logic, context, scale},
        [&running](const DialogStep& step) { addStep(&running.steps, step); });
    running.window.cancelled = [&running] {
        addStep(&running.steps, {DialogStep::Kind::press, kCancelControl, {}, 0});
        running.form->sendEvent(kCancelControl);
        // A dialog whose logic does not hear of it must not trap the user.
        if (running.form->isOpen()) {
            running.form->close();
            running.result = kCancelControl;
        }
        running.window.done(QDialog::Rejected);
    };
    forms_.insert(running.form.get());
    dialogs_.push_back(&running);
    if (events.dialogOpened) events.dialogOpened();
    running.form->open();
    if (const QScreen* desktop = parent != nullptr ? parent->screen() : QApplication::primaryScreen())
        running.window.move(desktop->geometry().center() - running.window.rect().center());
    if (running.form->isOpen()) running.window.exec();
    dialogs_.pop_back();
    forms_.erase(running.form.get());
    if (events.dialogAnswered) events.dialogAnswered({dialog.id, running.steps});
    return running.result;
}

void QtBackend::closeWindow(WindowRef window, std::int32_t result) {
    for (RunningDialog* dialog : dialogs_) {
        if (dialog->form.get() != form(window)) continue;
        dialog->form->close();
        dialog->result = result;
        dialog->window.done(QDialog::Accepted);
    }
}

void QtBackend::postCommand(WindowRef window, std::int32_t number) {
    if (ControlForm* found = form(window)) found->postCommand(number);
}

// --- the panel

void* QtBackend::createPanelWindow() {
    auto* page = new QWidget;
    panels_.emplace(page, nullptr);
    return page;
}

void QtBackend::destroyPanelWindow(void* window) {
    const auto found = panels_.find(panelWidget(window));
    if (found == panels_.end()) return;
    forms_.erase(found->second.get());
    found->second.reset();
    delete found->first;
    panels_.erase(found);
}

WindowRef QtBackend::buildPanel(void* panelWindow, const ControlRow* rows, std::int32_t rowCount, Language language,
                                const WindowLogic& logic, void* context) {
    const auto found = panels_.find(panelWidget(panelWindow));
    if (found == panels_.end()) return nullptr;
    found->second =
        std::make_unique<ControlForm>(found->first, ControlForm::Content{rows, rowCount, language, logic, context, 1},
                                      [this, &form = found->second](DialogStep step) {
                                          const bool picks = step.kind == DialogStep::Kind::selectRow && step.row >= 0;
                                          if (picks) step.text = form->rows(step.control).at(std::size_t(step.row));
                                          if (events.panelUsed) events.panelUsed(step);
                                      });
    forms_.insert(found->second.get());
    found->second->open();
    return found->second->ref();
}

void QtBackend::destroyPanel(WindowRef window) {
    for (auto& [page, content] : panels_) {
        if (content == nullptr || content.get() != form(window)) continue;
        forms_.erase(content.get());
        qDeleteAll(page->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly));
        content.reset();
    }
}

ControlForm* QtBackend::panelForm() const {
    for (const auto& [page, content] : panels_)
        if (content != nullptr) return content.get();
    return nullptr;
}

void QtBackend::setPanelTheme(WindowRef window, const PanelTheme& theme) {
    if (ControlForm* found = form(window)) found->setTheme(theme);
}

// --- controls

std::string QtBackend::controlText(WindowRef window, std::int32_t control) {
    const ControlForm* found = form(window);
    return found == nullptr ? std::string() : found->text(control);
}

void QtBackend::setControlText(WindowRef window, std::int32_t control, const std::string& text) {
    if (ControlForm* found = form(window)) found->setText(control, text);
}

std::vector<std::string> QtBackend::rows(WindowRef window, std::int32_t control) {
    const ControlForm* found = form(window);
    return found == nullptr ? std::vector<std::string>() : found->rows(control);
}

void QtBackend::insertRow(WindowRef window, std::int32_t control, std::int32_t row, const std::string& text) {
    if (ControlForm* found = form(window)) found->insertRow(control, row, text);
}

void QtBackend::removeRow(WindowRef window, std::int32_t control, std::int32_t row) {
    if (ControlForm* found = form(window)) found->removeRow(control, row);
}

std::int32_t QtBackend::selectedRow(WindowRef window, std::int32_t control) {
    const ControlForm* found = form(window);
    return found == nullptr ? -1 : found->selectedRow(control);
}

void QtBackend::selectRow(WindowRef window, std::int32_t control, std::int32_t row) {
    if (ControlForm* found = form(window)) found->selectRow(control, row);
}

bool QtBackend::checked(WindowRef window, std::int32_t control) {
    const ControlForm* found = form(window);
    return found != nullptr && found->checked(control);
}

void QtBackend::setChecked(WindowRef window, std::int32_t control, bool checked) {
    if (ControlForm* found = form(window)) found->setChecked(control, checked);
}

void QtBackend::enableControl(WindowRef window, std::int32_t control, bool enabled) {
    if (ControlForm* found = form(window)) found->setEnabled(control, enabled);
}

void QtBackend::showControl(WindowRef window, std::int32_t control, bool shown) {
    if (ControlForm* found = form(window)) found->setShown(control, shown);
}

void QtBackend::focusSelectingAll(WindowRef window, std::int32_t control) {
    if (ControlForm* found = form(window)) found->focusSelectingAll(control);
}

void QtBackend::setControlFont(WindowRef window, std::int32_t control, const std::string& systemName, float points) {
    if (ControlForm* found = form(window)) found->setFont(control, systemName, points);
}

// --- boxes and files

bool QtBackend::showMessageBox(const std::string& text, const std::string& title, MessageButtons buttons,
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

bool QtBackend::askQuestion(const std::string& text) {
    QMessageBox box(QMessageBox::Question, kProgramName, QString::fromStdString(text),
                    QMessageBox::Yes | QMessageBox::No, windowInFront());
    const bool accepted = box.exec() == QMessageBox::Yes;
    if (events.boxAnswered) events.boxAnswered(accepted, true);
    return accepted;
}

void QtBackend::showAlert(const std::string& text) {
    QMessageBox(QMessageBox::Warning, kProgramName, QString::fromStdString(text), QMessageBox::Ok, windowInFront())
        .exec();
}

bool QtBackend::chosen(const QString& path, std::string* out) {
    const bool given = !path.isEmpty();
    if (given) *out = QFile::encodeName(path).toStdString();
    if (events.fileChosen) events.fileChosen(given ? std::optional(*out) : std::nullopt);
    return given;
}

bool QtBackend::askSaveFile(const std::string& filter, const std::string& proposedName, std::string* path) {
    return chosen(QFileDialog::getSaveFileName(windowInFront(), QString(), QString::fromStdString(proposedName),
                                               QString::fromStdString(filter)),
                  path);
}

bool QtBackend::askOpenFile(const std::string& filter, const std::string& proposedName, std::string* path) {
    return chosen(QFileDialog::getOpenFileName(windowInFront(), QString(), QString::fromStdString(proposedName),
                                               QString::fromStdString(filter)),
                  path);
}

// --- sound, cursors, memory, folders

void QtBackend::beep(std::uint32_t) {
    QApplication::beep();
    if (events.beeped) events.beeped();
}

CursorRef QtBackend::loadCursor(void*, std::int32_t id) {
    if (!pictureExists(id)) return nullptr;
    std::unique_ptr<std::int32_t>& place = cursors_[id];
    if (place == nullptr) place = std::make_unique<std::int32_t>(id);
    return reinterpret_cast<CursorRef>(place.get());
}

void QtBackend::setCursor(CursorRef cursor) {
    const std::int32_t id = *reinterpret_cast<std::int32_t*>(cursor);
    const qreal ratio = dialogParent != nullptr ? dialogParent->devicePixelRatioF() : 1.0;
    if (events.cursorChosen) events.cursorChosen(id, pictureCursor(id, ratio));
}

void* QtBackend::allocateZeroed(std::size_t size) {
    void* block = std::calloc(1, size == 0 ? 1 : size);
    error_ = block == nullptr ? kNotEnoughMemory : 0;
    if (block != nullptr) blocks_.insert(block);
    return block;
}

void QtBackend::freeZeroed(void* block) {
    if (blocks_.erase(block) != 0) std::free(block);
}

std::uint32_t QtBackend::lastError() { return error_; }

std::string QtBackend::documentsFolder() { return documents_.empty() ? userDocumentsFolder() : documents_; }

std::string QtBackend::errorLogPath() {
    const std::string folder = documents_.empty() ? userStateFolder() : documents_;
    return CreateFolder(folder) ? JoinPath(folder, "ERROR MSG.TXT") : "";
}

}  // namespace quorvel::platform
