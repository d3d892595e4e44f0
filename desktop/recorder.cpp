// A line waits until the next one begins, because the replies that it asked for come while it runs and must stand
// before it.
#include "desktop/recorder.h"

#include <charconv>

#include "cli/script.h"

namespace quorvel::desktop {

namespace {

using StepKind = platform::DialogStep::Kind;

constexpr std::size_t kMovesKept = 2;

std::string Words(std::uint16_t modifiers) {
    std::string words;
    if ((modifiers & kAltModifier) != 0) words += " alt";
    if ((modifiers & kShiftModifier) != 0) words += " shift";
    return words;
}

template <typename Number>
std::string Printed(Number value) {
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed).ptr;
    return {text, end};
}

std::string StepText(const platform::DialogStep& step) {
    const std::string control = std::to_string(step.control);
    switch (step.kind) {
        case StepKind::setText:
            return control + "=" + cli::quotedWord(step.text);
        case StepKind::selectRow:
            return control + "=row:" + std::to_string(step.row);
        case StepKind::check:
            return control + "=on";
        case StepKind::uncheck:
            return control + "=off";
        case StepKind::press:
            return "press:" + control;
        case StepKind::expectText:
            return control + "?=" + cli::quotedWord(step.text);
    }
    return {};
}

}  // namespace

std::string Shortest(double value) { return Printed(value); }
std::string Shortest(float value) { return Printed(value); }

Recorder::~Recorder() { flush(); }

bool Recorder::open(const std::string& path) {
    out_.open(path, std::ios::binary | std::ios::trunc);
    if (out_) out_ << "# Recorded by quorvel-desktop.\n";
    return out_.is_open() && out_.good();
}

void Recorder::write(const std::string& text) { out_ << text << '\n'; }

void Recorder::writeOpenLine() {
    if (!open_) return;
    for (const std::string& reply : replies_) write(reply);
    replies_.clear();
    if (!open_->empty()) write(*open_);
    open_.reset();
}

void Recorder::writeMoves() {
    for (const std::string& move : moves_) write(move);
    moves_.clear();
}

void Recorder::flush() {
    if (!on()) return;
    writeOpenLine();
    writeMoves();
    out_.flush();
}

void Recorder::line(const std::string& text) {
    if (!on()) return;
    writeOpenLine();
    writeMoves();
    open_ = text;
    out_.flush();
}

// The one before the last is kept too: a tool takes no notice of a move to where the mouse has been told to be, so that
// the last alone might be lost on it.
void Recorder::move(const char* verb, RealPoint point, std::uint16_t modifiers) {
    if (!on()) return;
    writeOpenLine();
    const std::string key = verb + Words(modifiers);
    if (key != movesKey_) writeMoves();
    movesKey_ = key;
    if (moves_.size() == kMovesKept) moves_.erase(moves_.begin());
    moves_.push_back(std::string(verb) + ' ' + Shortest(point.h) + ' ' + Shortest(point.v) + Words(modifiers));
}

void Recorder::button(const char* verb, std::uint16_t modifiers) { line(verb + Words(modifiers)); }

void Recorder::zoom(float zoom) { line("zoom " + Shortest(zoom)); }

// --- steps
// ------------------------------------------------------------------------------------------------------------

void Recorder::step(const std::vector<std::string>& lines) {
    if (!on()) return;
    std::size_t steps = 0;
    for (const std::string& text : lines) {
        line(text);
        if (!text.starts_with('#')) ++steps;
    }
    if (!done_.empty()) done_.back() = steps;
}

void Recorder::stepMade() {
    if (!on()) return;
    done_.push_back(1);
    undone_.clear();
}

void Recorder::forgetSteps() {
    done_.clear();
    undone_.clear();
}

void Recorder::undo() {
    if (!on() || done_.empty()) return;
    const std::size_t count = done_.back();
    done_.pop_back();
    undone_.push_back(count);
    for (std::size_t i = 0; i < count; ++i) line("undo");
}

void Recorder::redo() {
    if (!on() || undone_.empty()) return;
    const std::size_t count = undone_.back();
    undone_.pop_back();
    done_.push_back(count);
    for (std::size_t i = 0; i < count; ++i) line("redo");
}

// --- replies
// ----------------------------------------------------------------------------------------------------------

void Recorder::dialogAnswered(const platform::DialogReply& reply) {
    if (!on()) return;
    std::string text = "dialog " + std::to_string(reply.dialogId);
    for (const platform::DialogStep& step : reply.steps) text += ' ' + StepText(step);
    replies_.push_back(text);
}

void Recorder::boxAnswered(bool accepted) {
    if (on()) replies_.push_back(accepted ? "answer ok" : "answer cancel");
}

void Recorder::fileChosen(const std::optional<std::string>& path) {
    if (on()) replies_.push_back(path ? "file " + cli::quotedWord(*path) : "file cancel");
}

void Recorder::panelUsed(const platform::DialogStep& step, bool isToggle) {
    if (!on()) return;
    const std::string control = std::to_string(step.control);
    if (step.kind == StepKind::setText)
        line("panel text " + control + ' ' + cli::quotedWord(step.text));
    else if (step.kind == StepKind::press)
        line((isToggle ? "panel toggle " : "panel press ") + control);
    tickMatters_ = true;
}

void Recorder::flyout(int item) {
    line("flyout " + std::to_string(item));
    tickMatters_ = true;
}

void Recorder::tick() {
    if (!on() || !tickMatters_) return;
    tickMatters_ = false;
    line("tick");
}

}  // namespace quorvel::desktop
