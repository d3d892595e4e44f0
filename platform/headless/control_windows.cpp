// Stands windows up, runs their logic, and plays replies: each step changes the control as the user's hand would and
// then sends the event that goes with it. What a user could not do is a fault and ends the reply.
#include "platform/headless/control_windows.h"

#include <algorithm>
#include <utility>

#include "platform/headless/scripted_user.h"

namespace quorvel::platform {

namespace {

using StepKind = DialogStep::Kind;

// What the user's hand can do to each kind of control.
struct Handling {
    ControlKind kind;
    bool typed, selected, switched, pressed;
};
constexpr Handling kHandling[] = {
    {ControlKind::edit, true, false, false, false},       {ControlKind::list, false, true, false, false},
    {ControlKind::editList, true, true, false, false},    {ControlKind::commandList, false, true, false, false},
    {ControlKind::checkBox, false, false, true, true},    {ControlKind::radio, false, false, true, true},
    {ControlKind::button, false, false, false, true},     {ControlKind::toggle, false, false, false, true},
    {ControlKind::pushButton, false, false, false, true},
};

bool canDo(ControlKind kind, StepKind step) {
    for (const Handling& row : kHandling) {
        if (row.kind != kind) continue;
        switch (step) {
            case StepKind::setText:
                return row.typed;
            case StepKind::selectRow:
                return row.selected;
            case StepKind::check:
                return row.switched;
            case StepKind::uncheck:
                return row.switched && kind != ControlKind::radio;
            case StepKind::press:
                return row.pressed;
            case StepKind::expectText:
                return true;
        }
    }
    return false;
}

// Of a step that the control cannot do.
ErrorCode refusalOf(StepKind step) {
    switch (step) {
        case StepKind::setText:
            return ErrorCode::kControlWithoutText;
        case StepKind::selectRow:
            return ErrorCode::kControlWithoutRows;
        case StepKind::check:
            return ErrorCode::kControlNotOn;
        case StepKind::uncheck:
            return ErrorCode::kControlNotOff;
        default:
            return ErrorCode::kControlNotPressable;
    }
}

void switchOn(WindowState& window, ControlState& control) {
    if (control.kind == ControlKind::radio)
        for (ControlState& other : window.controls)
            if (other.kind == ControlKind::radio) other.checked = false;
    control.checked = true;
}

}  // namespace

ControlState* WindowState::find(std::int32_t control) {
    const auto found = std::find_if(controls.begin(), controls.end(), [&](const auto& c) { return c.id == control; });
    return found == controls.end() ? nullptr : &*found;
}

// --- what a control holds

std::string shownText(const ControlState& control) {
    switch (control.kind) {
        case ControlKind::checkBox:
        case ControlKind::radio:
        case ControlKind::toggle:
            return control.checked ? "on" : "off";
        case ControlKind::list:
        case ControlKind::commandList:
            return control.selected < 0 ? "" : control.rows[static_cast<std::size_t>(control.selected)];
        default:
            return control.text;
    }
}

void selectControlRow(ControlState& control, std::int32_t row) {
    const bool there = row >= 0 && static_cast<std::size_t>(row) < control.rows.size();
    control.selected = there ? row : -1;
    if (control.kind == ControlKind::editList)
        control.text = there ? control.rows[static_cast<std::size_t>(row)] : std::string();
}

void setControlContent(ControlState& control, const std::string& text) {
    if (control.kind == ControlKind::list || control.kind == ControlKind::commandList) return;
    control.text = text;
    if (control.kind != ControlKind::editList) return;
    const auto row = std::find(control.rows.begin(), control.rows.end(), text);
    control.selected = row == control.rows.end() ? -1 : static_cast<std::int32_t>(row - control.rows.begin());
}

void insertControlRow(ControlState& control, std::int32_t row, const std::string& text) {
    const auto count = static_cast<std::int32_t>(control.rows.size());
    const std::int32_t place = row < 0 || row > count ? count : row;
    control.rows.insert(control.rows.begin() + place, text);
    if (control.selected >= place) ++control.selected;
}

void removeControlRow(ControlState& control, std::int32_t row) {
    if (row < 0 || static_cast<std::size_t>(row) >= control.rows.size()) return;
    control.rows.erase(control.rows.begin() + row);
    if (control.selected == row)
        control.selected = -1;
    else if (control.selected > row)
        --control.selected;
}

// --- windows and their logic

ControlWindows::Held ControlWindows::held(WindowRef window) const {
    for (const Held& candidate : windows_)
        if (reinterpret_cast<WindowRef>(candidate.get()) == window) return candidate;
    return nullptr;
}

ControlState* ControlWindows::control(WindowRef window, std::int32_t control) const {
    const Held found = held(window);
    return found ? found->find(control) : nullptr;
}

ControlWindows::Held ControlWindows::stand(const ControlRow* rows, std::int32_t rowCount, Language language,
                                           const WindowLogic& logic, void* context) {
    Held window = std::make_shared<WindowState>();
    window->logic = logic;
    window->context = context;
    for (const ControlRow* row = rows; row != rows + rowCount; ++row) {
        ControlState control;
        control.id = row->id;
        control.kind = row->kind;
        setControlContent(control, language == Language::english ? row->english : row->japanese);
        window->controls.push_back(std::move(control));
    }
    windows_.push_back(window);
    return window;
}

void ControlWindows::remove(const Held& window) {
    window->open = false;
    std::erase(windows_, window);
}

// Whatever the logic does, commands that were posted wait until the outermost call into this window has returned.
template <typename Call>
void ControlWindows::runLogic(const Held& window, Call call) {
    ++window->running;
    call(reinterpret_cast<WindowRef>(window.get()));
    --window->running;
    runPosted(window);
}

void ControlWindows::sendEvent(const Held& window, std::int32_t control) {
    if (!window->open || window->logic.event == nullptr) return;
    runLogic(window, [&](WindowRef ref) { window->logic.event(ref, control, window->context); });
}

void ControlWindows::runPosted(const Held& window) {
    while (window->open && window->running == 0 && !window->posted.empty()) {
        const std::int32_t number = window->posted.front();
        window->posted.pop_front();
        if (window->logic.command == nullptr) continue;
        ++window->running;
        window->logic.command(reinterpret_cast<WindowRef>(window.get()), number, window->context);
        --window->running;
    }
}

void ControlWindows::close(WindowRef window, std::int32_t result) {
    if (const Held found = held(window)) {
        found->open = false;
        found->result = result;
    }
}

void ControlWindows::post(WindowRef window, std::int32_t number) {
    if (const Held found = held(window)) {
        found->posted.push_back(number);
        runPosted(found);
    }
}

// --- dialogs

std::int32_t ControlWindows::runDialog(const DialogTemplate& dialog, const WindowLogic& logic, void* context) {
    user_.say("dialog " + std::to_string(dialog.id) + ' ' + quotedForTranscript(dialog.title));
    if (dialogsOpen_++ == 0) user_.lastFocus = 0;
    const std::optional<DialogReply> reply = user_.replyTo(dialog.id);
    const Held window = stand(dialog.rows, dialog.rowCount, dialog.language, logic, context);
    window->number = std::to_string(dialog.id);
    if (logic.opening != nullptr) runLogic(window, [&](WindowRef ref) { logic.opening(ref, context); });
    if (reply) play(window, reply->steps);
    if (window->open) escape(window);
    remove(window);
    --dialogsOpen_;
    return window->result;
}

void ControlWindows::play(const Held& window, const std::vector<DialogStep>& steps) {
    for (const DialogStep& step : steps) {
        const Status done = window->open
                                ? perform(window, step)
                                : makeError(ErrorCode::kDialogClosed, {window->number, std::to_string(step.control)});
        if (done) continue;
        user_.fault(done.error());
        // A look changes nothing, so that the reply can go on behind one that failed.
        if (!window->open || step.kind != StepKind::expectText) return;
    }
}

Status ControlWindows::perform(const Held& window, const DialogStep& step) {
    const auto refused = [&](ErrorCode code, const std::vector<std::string>& more = {}) {
        Error error = makeError(code, {window->number, std::to_string(step.control)});
        error.arguments.insert(error.arguments.end(), more.begin(), more.end());
        return error;
    };
    ControlState* control = window->find(step.control);
    if (control == nullptr) return refused(ErrorCode::kControlMissing);
    if (step.kind == StepKind::expectText) {
        const std::string found = shownText(*control);
        if (found == step.text) return {};
        return refused(ErrorCode::kControlHolds, {quotedForTranscript(step.text), quotedForTranscript(found)});
    }
    if (!control->shown) return refused(ErrorCode::kControlHidden);
    if (!control->enabled) return refused(ErrorCode::kControlDisabled);
    if (!canDo(control->kind, step.kind)) return refused(refusalOf(step.kind));
    const WindowLogic& logic = window->logic;
    switch (step.kind) {
        case StepKind::setText:
            setControlContent(*control, step.text);
            break;
        case StepKind::selectRow:
            if (step.row < 0 || static_cast<std::size_t>(step.row) >= control->rows.size())
                return refused(ErrorCode::kControlRow, {std::to_string(step.row)});
            if (control->kind == ControlKind::commandList && logic.rowDisabled != nullptr &&
                logic.rowDisabled(reinterpret_cast<WindowRef>(window.get()), step.control, step.row, window->context))
                return {};
            selectControlRow(*control, step.row);
            break;
        case StepKind::check:
            if (control->checked && control->kind == ControlKind::checkBox) return {};
            switchOn(*window, *control);
            break;
        case StepKind::uncheck:
            if (!control->checked) return {};
            control->checked = false;
            break;
        case StepKind::press:
            if (control->kind == ControlKind::radio)
                switchOn(*window, *control);
            else if (control->kind == ControlKind::checkBox)
                control->checked = !control->checked;
            break;
        case StepKind::expectText:
            break;
    }
    sendEvent(window, step.control);
    return {};
}

void ControlWindows::escape(const Held& window) {
    sendEvent(window, kCancelControl);
    if (!window->open) return;
    window->open = false;
    window->result = kCancelControl;
    user_.fault(makeError(ErrorCode::kDialogNotClosed, {window->number}));
}

// --- the panel

void* ControlWindows::createPanelWindow() {
    auto slot = std::make_unique<Held>();
    void* window = slot.get();
    panels_.emplace(window, std::move(slot));
    return window;
}

void ControlWindows::destroyPanelWindow(void* panelWindow) {
    const auto found = panels_.find(panelWindow);
    if (found == panels_.end()) return;
    if (*found->second) remove(*found->second);
    panels_.erase(found);
}

WindowRef ControlWindows::buildPanel(void* panelWindow, const ControlRow* rows, std::int32_t rowCount,
                                     Language language, const WindowLogic& logic, void* context) {
    const auto found = panels_.find(panelWindow);
    if (found == panels_.end()) return nullptr;
    if (*found->second) remove(*found->second);
    const Held window = *found->second = stand(rows, rowCount, language, logic, context);
    if (logic.opening != nullptr) runLogic(window, [&](WindowRef ref) { logic.opening(ref, context); });
    return reinterpret_cast<WindowRef>(window.get());
}

void ControlWindows::destroyPanel(WindowRef window) {
    for (auto& [key, slot] : panels_) {
        if (!*slot || reinterpret_cast<WindowRef>(slot->get()) != window) continue;
        remove(*slot);
        slot->reset();
    }
}

ControlWindows::Held ControlWindows::panel() const {
    for (const auto& [key, slot] : panels_)
        if (*slot) return *slot;
    return nullptr;
}

bool ControlWindows::panelStep(const DialogStep& step) {
    const Held window = panel();
    return window && perform(window, step);
}

const ControlState* ControlWindows::panelControl(std::int32_t control) {
    const Held window = panel();
    return window ? window->find(control) : nullptr;
}

}  // namespace quorvel::platform
