// The backend's face: hands each call to the scripted user, the unseen screen or the unseen windows behind it. Sound,
// cursors and memory are small enough to be kept here.
#include "platform/headless/headless.h"

#include <cstdlib>
#include <set>
#include <unordered_set>

#include "platform/headless/control_windows.h"
#include "platform/headless/folders.h"
#include "platform/headless/scripted_user.h"
#include "platform/headless/view_screen.h"

namespace quorvel::platform {

namespace {

// The cursors that the plug-in's resources hold.
constexpr std::int32_t kFirstCursor = 16101, kCursorCount = 10;
constexpr std::uint32_t kNotEnoughMemory = 8;
constexpr std::int32_t kNoCursor = 0;

// Only its address counts: each element stands for one cursor.
char cursorPlaces[kCursorCount];

}  // namespace

struct HeadlessBackend::Impl {
    ScriptedUser user;
    ViewScreen screen;
    ControlWindows windows{user};
    std::string documents;
    std::int32_t cursor = kNoCursor;
    int beeps = 0;
    std::unordered_set<void*> blocks;
    std::int64_t allocations = 0;
    std::set<std::int64_t> failing;  // counted from the first allocation
    std::uint32_t error = 0;
};

HeadlessBackend::HeadlessBackend() : impl_(std::make_unique<Impl>()) {}

HeadlessBackend::~HeadlessBackend() {
    for (void* block : impl_->blocks) std::free(block);
}

// --- what the script sets up and asks

void HeadlessBackend::setDocumentsFolder(const std::string& path) { impl_->documents = withoutEndSeparator(path); }

void HeadlessBackend::queueAnswer(bool yes) { impl_->user.answers.push_back(yes); }

void HeadlessBackend::queueDialog(DialogReply reply) { impl_->user.dialogs.push_back(std::move(reply)); }

void HeadlessBackend::queueFile(std::string path) { impl_->user.files.emplace_back(std::move(path)); }

void HeadlessBackend::queueFileRefusal() { impl_->user.files.emplace_back(std::nullopt); }

void HeadlessBackend::failAllocation(int nth) { impl_->failing.insert(impl_->allocations + nth); }

void HeadlessBackend::openView(const std::string& title, int width, int height) {
    impl_->screen.openView(title, width, height);
}

void HeadlessBackend::closeView() { impl_->screen.closeView(); }

void HeadlessBackend::setViewTitle(const std::string& title) { impl_->screen.setTitle(title); }

void HeadlessBackend::viewRepainted() { impl_->screen.repainted(); }

std::vector<std::string> HeadlessBackend::takeTranscript() { return impl_->user.takeTranscript(); }

std::vector<Error> HeadlessBackend::takeFaults() { return impl_->user.takeFaults(); }

std::int32_t HeadlessBackend::lastCursor() const { return impl_->cursor; }

std::int32_t HeadlessBackend::lastFocus() const { return impl_->user.lastFocus; }

std::size_t HeadlessBackend::visiblePixels() const { return impl_->screen.visiblePixels(); }

bool HeadlessBackend::repliesLeft() const {
    const ScriptedUser& user = impl_->user;
    return !user.answers.empty() || !user.dialogs.empty() || !user.files.empty();
}

int HeadlessBackend::beeps() const { return impl_->beeps; }

bool HeadlessBackend::askQuestion(const std::string& text) { return impl_->user.answer("question", text, "yes", "no"); }

// Nothing is asked, so that no reply is taken from the questions.
void HeadlessBackend::showAlert(const std::string& text) { impl_->user.say("alert " + quotedForTranscript(text)); }

// --- the panel's user

void* HeadlessBackend::createPanelWindow() { return impl_->windows.createPanelWindow(); }

void HeadlessBackend::destroyPanelWindow(void* window) { impl_->windows.destroyPanelWindow(window); }

bool HeadlessBackend::panelPress(std::int32_t control) {
    return impl_->windows.panelStep({DialogStep::Kind::press, control, {}, 0});
}

bool HeadlessBackend::panelType(std::int32_t control, const std::string& text) {
    return impl_->windows.panelStep({DialogStep::Kind::setText, control, text, 0});
}

bool HeadlessBackend::panelText(std::int32_t control, std::string* text) {
    const ControlState* found = impl_->windows.panelControl(control);
    if (found != nullptr) *text = found->text;
    return found != nullptr;
}

bool HeadlessBackend::panelToggled(std::int32_t control, bool* on) {
    const ControlState* found = impl_->windows.panelControl(control);
    if (found != nullptr) *on = found->checked;
    return found != nullptr;
}

// --- the view's window and surface

ViewWindowRef HeadlessBackend::topWindow(ViewWindowRef parent) { return impl_->screen.first(parent); }

ViewWindowRef HeadlessBackend::nextWindow(ViewWindowRef window) { return impl_->screen.next(window); }

std::string HeadlessBackend::windowTitle(ViewWindowRef window) {
    const TreeWindow* found = impl_->screen.find(window);
    return found == nullptr ? "" : found->title;
}

PixelRect HeadlessBackend::windowRect(ViewWindowRef window) {
    const TreeWindow* found = impl_->screen.find(window);
    return found == nullptr ? PixelRect{} : found->rect;
}

bool HeadlessBackend::windowVisible(ViewWindowRef window) {
    const TreeWindow* found = impl_->screen.find(window);
    return found != nullptr && found->visible;
}

Pixel HeadlessBackend::clientToScreen(ViewWindowRef window, Pixel point) {
    const PixelRect rect = windowRect(window);
    return {point.h + rect.left, point.v + rect.top};
}

Pixel HeadlessBackend::screenToClient(ViewWindowRef window, Pixel point) {
    const PixelRect rect = windowRect(window);
    return {point.h - rect.left, point.v - rect.top};
}

std::int32_t HeadlessBackend::windowNumber(ViewWindowRef window) {
    const TreeWindow* found = impl_->screen.find(window);
    return found == nullptr ? 0 : found->number;
}

SurfaceRef HeadlessBackend::beginSurface(ViewWindowRef window) { return impl_->screen.begin(window); }

void HeadlessBackend::endSurface(SurfaceRef surface) { impl_->screen.end(surface); }

std::uint32_t HeadlessBackend::surfaceGeneration(SurfaceRef) { return impl_->screen.generation(); }

void HeadlessBackend::moveTo(SurfaceRef surface, Pixel point) { impl_->screen.moveTo(surface, point); }

void HeadlessBackend::lineTo(SurfaceRef surface, Pixel point) { impl_->screen.lineTo(surface, point); }

void HeadlessBackend::drawArc(SurfaceRef surface, PixelRect box, Pixel start, Pixel end) {
    impl_->screen.arc(surface, box, start, end);
}

// --- windows with controls

std::int32_t HeadlessBackend::runDialog(const DialogTemplate& dialog, const WindowLogic& logic, void* context) {
    return impl_->windows.runDialog(dialog, logic, context);
}

void HeadlessBackend::closeWindow(WindowRef window, std::int32_t result) { impl_->windows.close(window, result); }

WindowRef HeadlessBackend::buildPanel(void* panelWindow, const ControlRow* rows, std::int32_t rowCount,
                                      Language language, const WindowLogic& logic, void* context) {
    return impl_->windows.buildPanel(panelWindow, rows, rowCount, language, logic, context);
}

void HeadlessBackend::destroyPanel(WindowRef window) { impl_->windows.destroyPanel(window); }

// Colours and fonts cannot be seen here and change nothing that a script can ask for.
void HeadlessBackend::setPanelTheme(WindowRef, const PanelTheme&) {}

void HeadlessBackend::setControlFont(WindowRef, std::int32_t, const std::string&, float) {}

std::string HeadlessBackend::controlText(WindowRef window, std::int32_t control) {
    const ControlState* found = impl_->windows.control(window, control);
    if (found == nullptr) return {};
    const bool list = found->kind == ControlKind::list || found->kind == ControlKind::commandList;
    return list ? shownText(*found) : found->text;
}

void HeadlessBackend::setControlText(WindowRef window, std::int32_t control, const std::string& text) {
    if (ControlState* found = impl_->windows.control(window, control)) setControlContent(*found, text);
}

std::vector<std::string> HeadlessBackend::rows(WindowRef window, std::int32_t control) {
    const ControlState* found = impl_->windows.control(window, control);
    return found == nullptr ? std::vector<std::string>() : found->rows;
}

void HeadlessBackend::insertRow(WindowRef window, std::int32_t control, std::int32_t row, const std::string& text) {
    if (ControlState* found = impl_->windows.control(window, control)) insertControlRow(*found, row, text);
}

void HeadlessBackend::removeRow(WindowRef window, std::int32_t control, std::int32_t row) {
    if (ControlState* found = impl_->windows.control(window, control)) removeControlRow(*found, row);
}

std::int32_t HeadlessBackend::selectedRow(WindowRef window, std::int32_t control) {
    const ControlState* found = impl_->windows.control(window, control);
    return found == nullptr ? -1 : found->selected;
}

void HeadlessBackend::selectRow(WindowRef window, std::int32_t control, std::int32_t row) {
    if (ControlState* found = impl_->windows.control(window, control)) selectControlRow(*found, row);
}

bool HeadlessBackend::checked(WindowRef window, std::int32_t control) {
    const ControlState* found = impl_->windows.control(window, control);
    return found != nullptr && found->checked;
}

void HeadlessBackend::setChecked(WindowRef window, std::int32_t control, bool checked) {
    if (ControlState* found = impl_->windows.control(window, control)) found->checked = checked;
}

void HeadlessBackend::enableControl(WindowRef window, std::int32_t control, bool enabled) {
    if (ControlState* found = impl_->windows.control(window, control)) found->enabled = enabled;
}

void HeadlessBackend::showControl(WindowRef window, std::int32_t control, bool shown) {
    if (ControlState* found = impl_->windows.control(window, control)) found->shown = shown;
}

void HeadlessBackend::focusSelectingAll(WindowRef window, std::int32_t control) {
    if (impl_->windows.control(window, control) == nullptr) return;
    impl_->user.lastFocus = control;
    impl_->user.say("focus " + std::to_string(control));
}

void HeadlessBackend::postCommand(WindowRef window, std::int32_t number) { impl_->windows.post(window, number); }

bool HeadlessBackend::showMessageBox(const std::string& text, const std::string&, MessageButtons buttons, MessageIcon) {
    const bool asks = buttons == MessageButtons::okCancel;
    return impl_->user.answer(asks ? "question" : "message", text, "ok", asks ? "cancel" : "ok");
}

bool HeadlessBackend::askSaveFile(const std::string&, const std::string&, std::string* path) {
    return impl_->user.chooseFile(path);
}

bool HeadlessBackend::askOpenFile(const std::string&, const std::string&, std::string* path) {
    return impl_->user.chooseFile(path);
}

// --- sound, cursors, memory, folders

void HeadlessBackend::beep(std::uint32_t) {
    ++impl_->beeps;
    impl_->user.say("beep");
}

CursorRef HeadlessBackend::loadCursor(void*, std::int32_t id) {
    if (id < kFirstCursor || id >= kFirstCursor + kCursorCount) return nullptr;
    return reinterpret_cast<CursorRef>(&cursorPlaces[id - kFirstCursor]);
}

void HeadlessBackend::setCursor(CursorRef cursor) {
    const auto id = static_cast<std::int32_t>(kFirstCursor + (reinterpret_cast<char*>(cursor) - cursorPlaces));
    if (id != impl_->cursor) impl_->user.say("cursor " + std::to_string(id));
    impl_->cursor = id;
}

void* HeadlessBackend::allocateZeroed(std::size_t size) {
    const bool refused = impl_->failing.erase(++impl_->allocations) != 0;
    void* block = refused ? nullptr : std::calloc(1, size == 0 ? 1 : size);
    impl_->error = block == nullptr ? kNotEnoughMemory : 0;
    if (block != nullptr) impl_->blocks.insert(block);
    return block;
}

void HeadlessBackend::freeZeroed(void* block) {
    if (impl_->blocks.erase(block) != 0)
        std::free(block);
    else
        impl_->user.fault(makeError(ErrorCode::kBlockFreed));
}

std::uint32_t HeadlessBackend::lastError() { return impl_->error; }

std::string HeadlessBackend::documentsFolder() {
    return impl_->documents.empty() ? userDocumentsFolder() : impl_->documents;
}

std::string HeadlessBackend::errorLogPath() {
    // A run with a folder of its own leaves nothing in the user's.
    const std::string folder = impl_->documents.empty() ? userStateFolder() : impl_->documents;
    return CreateFolder(folder) ? JoinPath(folder, "ERROR MSG.TXT") : "";
}

}  // namespace quorvel::platform
