// What the controls of one window hold, the calls of its logic, and the user's steps: each changes the control as a
// user would and then sends the event that goes with it.
#include <algorithm>
#include <utility>

#include "platform/headless/control_windows.h"

namespace quorvel::platform {

namespace {

using StepKind = DialogStep::Kind;

// What a user can do to each kind of control.
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
    const auto row = std::find_if(std::begin(kHandling), std::end(kHandling),
                                  [kind](const Handling& handling) { return handling.kind == kind; });
    if (row == std::end(kHandling)) return false;
    switch (step) {
        case StepKind::setText:
            return row->typed;
        case StepKind::selectRow:
            return row->selected;
        case StepKind::check:
            return row->switched;
        case StepKind::uncheck:
            return row->switched && kind != ControlKind::radio;
        case StepKind::press:
            return row->pressed;
        case StepKind::expectText:
            return true;
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

bool isPlainList(ControlKind kind) { return kind == ControlKind::list || kind == ControlKind::commandList; }

// What a user reads off the control: "on" or "off" of what is switched, the selected row of a list, else the text.
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

// Out of range selects nothing. A list with a text of its own takes the row's text over.
void selectControlRow(ControlState& control, std::int32_t row) {
    const bool there = row >= 0 && static_cast<std::size_t>(row) < control.rows.size();
    control.selected = there ? row : -1;
    if (control.kind == ControlKind::editList)
        control.text = there ? control.rows[static_cast<std::size_t>(row)] : std::string();
}

void setControlContent(ControlState& control, const std::string& text) {
    if (isPlainList(control.kind)) return;
    control.text = text;
    if (control.kind != ControlKind::editList) return;
    const auto row = std::find(control.rows.begin(), control.rows.end(), text);
    control.selected = row == control.rows.end() ? -1 : static_cast<std::int32_t>(row - control.rows.begin());
}

}  // namespace

UnseenWindow::UnseenWindow(std::string number, const WindowContent& content, ScriptedUser& user)
    : number_(std::move(number)), logic_(content.logic), context_(content.context), user_(user) {
    for (const ControlRow& row : content.rows) {
        ControlState control;
        control.id = row.id;
        control.kind = row.kind;
        setControlContent(control, content.language == Language::english ? row.english : row.japanese);
        controls_.push_back(std::move(control));
    }
}

// --- what the logic asks and sets

const ControlState* UnseenWindow::find(std::int32_t control) const {
    const auto found = std::find_if(controls_.begin(), controls_.end(), [&](const auto& c) { return c.id == control; });
    return found == controls_.end() ? nullptr : &*found;
}

ControlState* UnseenWindow::find(std::int32_t control) {
    return const_cast<ControlState*>(std::as_const(*this).find(control));
}

std::string UnseenWindow::text(std::int32_t control) const {
    const ControlState* found = find(control);
    if (found == nullptr) return {};
    return isPlainList(found->kind) ? shownText(*found) : found->text;
}

void UnseenWindow::setText(std::int32_t control, const std::string& text) {
    if (ControlState* found = find(control)) setControlContent(*found, text);
}

std::vector<std::string> UnseenWindow::rows(std::int32_t control) const {
    const ControlState* found = find(control);
    return found == nullptr ? std::vector<std::string>() : found->rows;
}

void UnseenWindow::insertRow(std::int32_t control, std::int32_t row, const std::string& text) {
    ControlState* found = find(control);
    if (found == nullptr) return;
    const auto count = static_cast<std::int32_t>(found->rows.size());
    const std::int32_t place = row < 0 || row > count ? count : row;
    found->rows.insert(found->rows.begin() + place, text);
    if (found->selected >= place) ++found->selected;
}

void UnseenWindow::removeRow(std::int32_t control, std::int32_t row) {
    ControlState* found = find(control);
    if (found == nullptr || row < 0 || static_cast<std::size_t>(row) >= found->rows.size()) return;
    found->rows.erase(found->rows.begin() + row);
    if (found->selected == row)
        found->selected = -1;
    else if (found->selected > row)
        --found->selected;
}

std::int32_t UnseenWindow::selectedRow(std::int32_t control) const {
    const ControlState* found = find(control);
    return found == nullptr ? -1 : found->selected;
}

void UnseenWindow::selectRow(std::int32_t control, std::int32_t row) {
    if (ControlState* found = find(control)) selectControlRow(*found, row);
}

bool UnseenWindow::isChecked(std::int32_t control) const {
    const ControlState* found = find(control);
    return found != nullptr && found->checked;
}

void UnseenWindow::setChecked(std::int32_t control, bool checked) {
    if (ControlState* found = find(control)) found->checked = checked;
}

void UnseenWindow::setEnabled(std::int32_t control, bool enabled) {
    if (ControlState* found = find(control)) found->enabled = enabled;
}

void UnseenWindow::setShown(std::int32_t control, bool shown) {
    if (ControlState* found = find(control)) found->shown = shown;
}

void UnseenWindow::focusSelectingAll(std::int32_t control) {
    if (find(control) == nullptr) return;
    user_.lastFocus = control;
    user_.say("focus " + std::to_string(control));
}

void UnseenWindow::setFont(std::int32_t control, const std::string& systemName, float points) {
    if (ControlState* found = find(control)) {
        found->font = systemName;
        found->fontSize = points;
    }
}

void UnseenWindow::close(std::int32_t result) {
    open_ = false;
    result_ = result;
}

// --- calls of the logic

// Whatever the logic does, commands that were posted wait until the outermost call into this window has returned.
template <typename Call>
void UnseenWindow::runLogic(Call call) {
    const std::shared_ptr<UnseenWindow> held = shared_from_this();
    ++running_;
    call();
    --running_;
    runPosted();
}

void UnseenWindow::open() {
    if (logic_.opening != nullptr) runLogic([this] { logic_.opening(this, context_); });
}

void UnseenWindow::remove() {
    open_ = false;
    retire();
}

void UnseenWindow::sendEvent(std::int32_t control) {
    if (open_ && logic_.event != nullptr) runLogic([&] { logic_.event(this, control, context_); });
}

void UnseenWindow::postCommand(std::int32_t number) {
    const std::shared_ptr<UnseenWindow> held = shared_from_this();
    posted_.push_back(number);
    runPosted();
}

void UnseenWindow::runPosted() {
    while (open_ && running_ == 0 && !posted_.empty()) {
        const std::int32_t number = posted_.front();
        posted_.pop_front();
        if (logic_.command == nullptr) continue;
        ++running_;
        logic_.command(this, number, context_);
        --running_;
    }
}

// --- the user

void UnseenWindow::play(const std::vector<DialogStep>& steps) {
    for (const DialogStep& step : steps) {
        const Status done = open_ ? perform(step) : refused(ErrorCode::kDialogClosed, step.control);
        if (done) continue;
        user_.fault(done.error());
        // A look changes nothing, so that the reply can go on behind one that failed.
        if (!open_ || step.kind != StepKind::expectText) return;
    }
}

void UnseenWindow::switchOn(ControlState& control) {
    if (control.kind == ControlKind::radio)
        for (ControlState& other : controls_)
            if (other.kind == ControlKind::radio) other.checked = false;
    control.checked = true;
}

// False for a row that is disabled.
bool UnseenWindow::pickRow(ControlState& control, std::int32_t row) {
    if (control.kind == ControlKind::commandList && logic_.rowDisabled != nullptr &&
        logic_.rowDisabled(this, control.id, row, context_))
        return false;
    selectControlRow(control, row);
    return true;
}

Error UnseenWindow::refused(ErrorCode code, std::int32_t control, const std::vector<std::string>& more) const {
    Error error = makeError(code, {number_, std::to_string(control)});
    error.arguments.insert(error.arguments.end(), more.begin(), more.end());
    return error;
}

Status UnseenWindow::allowed(const ControlState& control, const DialogStep& step) const {
    if (!control.shown) return refused(ErrorCode::kControlHidden, control.id);
    if (!control.enabled) return refused(ErrorCode::kControlDisabled, control.id);
    if (!canDo(control.kind, step.kind)) return refused(refusalOf(step.kind), control.id);
    const bool lacksRow = step.row < 0 || static_cast<std::size_t>(step.row) >= control.rows.size();
    if (step.kind == StepKind::selectRow && lacksRow)
        return refused(ErrorCode::kControlRow, control.id, {std::to_string(step.row)});
    return {};
}

// True when the step is one that the logic hears of.
bool UnseenWindow::change(ControlState& control, const DialogStep& step) {
    switch (step.kind) {
        case StepKind::setText:
            setControlContent(control, step.text);
            return true;
        case StepKind::selectRow:
            return pickRow(control, step.row);
        case StepKind::check:
            if (control.checked && control.kind == ControlKind::checkBox) return false;
            switchOn(control);
            return true;
        case StepKind::uncheck:
            return std::exchange(control.checked, false);
        case StepKind::press:
            if (control.kind == ControlKind::radio) switchOn(control);
            if (control.kind == ControlKind::checkBox) control.checked = !control.checked;
            return true;
        case StepKind::expectText:
            return false;
    }
    return false;
}

Status UnseenWindow::perform(const DialogStep& step) {
    ControlState* control = find(step.control);
    if (control == nullptr) return refused(ErrorCode::kControlMissing, step.control);
    if (step.kind == StepKind::expectText) {
        const std::string found = shownText(*control);
        if (found == step.text) return {};
        return refused(ErrorCode::kControlHolds, step.control,
                       {quotedForTranscript(step.text), quotedForTranscript(found)});
    }
    if (const Status possible = allowed(*control, step); !possible) return possible;
    if (change(*control, step)) sendEvent(step.control);
    return {};
}

void UnseenWindow::escape() {
    sendEvent(kCancelControl);
    if (!open_) return;
    close(kCancelControl);
    user_.fault(makeError(ErrorCode::kDialogNotClosed, {number_}));
}

}  // namespace quorvel::platform
