// A line is written before its action runs. The replies that the action asks for must precede the line but are known
// only while it runs, and a move may be the first of many: the end of the file is rewritten until the next action
// begins.
#include "app/recorder.h"

#include <charconv>
#include <utility>

#include "app/script.h"

namespace quorvel::app {

namespace {

using StepKind = platform::DialogStep::Kind;

constexpr std::size_t kMovesKept = 2;

std::string words(std::uint16_t modifiers) {
    std::string words;
    if ((modifiers & kAltModifier) != 0) words += " alt";
    if ((modifiers & kShiftModifier) != 0) words += " shift";
    return words;
}

template <typename Number>
std::string printed(Number value) {
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed).ptr;
    return {text, end};
}

std::string stepText(const platform::DialogStep& step) {
    const std::string control = std::to_string(step.control);
    switch (step.kind) {
        case StepKind::setText:
            return control + "=" + quotedWord(step.text);
        case StepKind::selectRow:
            return control + "=row:" + std::to_string(step.row);
        case StepKind::check:
            return control + "=on";
        case StepKind::uncheck:
            return control + "=off";
        case StepKind::press:
            return "press:" + control;
        case StepKind::expectText:
            return control + "?=" + quotedWord(step.text);
    }
    return {};
}

}  // namespace

std::string shortestText(double value) { return printed(value); }
std::string shortestText(float value) { return printed(value); }

Recorder::~Recorder() {
    if (file_) static_cast<void>(file_->finish());  // nobody is left to tell
}

Status Recorder::open(const std::string& path, std::optional<std::uint64_t> seed) {
    Result<files::GrowingFile> file = files::GrowingFile::create(path);
    if (!file) return std::move(file.error()).inFile(path);
    path_ = path;
    file_ = std::move(*file);
    tail_.lines = {"# Recorded by quorvel-desktop.",
                   seed ? "# Replay it with --seed " + std::to_string(*seed) + ", so that object ids are the same."
                        : "# The random numbers were the system's: object ids differ in each replay."};
    std::optional<Error> failure;
    const auto told = std::exchange(writeFailed, [&failure](const Error& error) { failure = error; });
    write();
    writeFailed = told;
    if (failure) return *failure;
    settle();
    return {};
}

void Recorder::settle() {
    settled_ = end_;
    tail_ = {};
    openDialogs_.clear();
    tickUnsaid_ = false;
}

void Recorder::write() {
    std::string text;
    for (const auto* part : {&tail_.replies, &tail_.lines, &tail_.expectations})
        for (const std::string& line : *part)
            if (!line.empty()) text += line + '\n';
    end_ = settled_ + text.size();
    const Status written = file_->rewriteEnd(settled_, text);
    if (written) return;
    file_.reset();
    if (writeFailed) writeFailed(Error(written.error()).inFile(path_));
}

void Recorder::line(const std::string& text) {
    if (!on()) return;
    settle();
    tail_.lines = {text};
    write();
}

// The one before the last is kept too: a tool takes no notice of a move to where the mouse has been told to be, so that
// the last alone might be lost on it.
void Recorder::move(const char* verb, RealPoint point, std::uint16_t modifiers) {
    if (!on()) return;
    const std::string kind = verb + words(modifiers);
    // What has come of a move belongs to that one.
    if (tail_.moves != kind || !tail_.replies.empty() || !tail_.expectations.empty()) settle();
    tail_.moves = kind;
    tickUnsaid_ = false;
    if (tail_.lines.size() == kMovesKept) tail_.lines.erase(tail_.lines.begin());
    tail_.lines.push_back(std::string(verb) + ' ' + shortestText(point.h) + ' ' + shortestText(point.v) +
                          words(modifiers));
    write();
}

void Recorder::button(const char* verb, std::uint16_t modifiers) { line(verb + words(modifiers)); }

void Recorder::zoom(float zoom) { line("zoom " + shortestText(zoom)); }

// --- steps
// ------------------------------------------------------------------------------------------------------------

void Recorder::plan(const std::vector<std::string>& lines) {
    if (!on()) return;
    settle();
    tail_.lines = lines;
    tail_.planned = true;
    write();
}

void Recorder::step(const std::vector<std::string>& lines) {
    if (!on()) return;
    if (!tail_.planned) settle();
    tail_.lines = lines;
    tail_.planned = false;
    write();
    if (!lines.empty() && !done_.empty()) done_.back() = lines.size();
}

void Recorder::stepMade() {
    if (!on()) return;
    done_.push_back(1);
    undone_.clear();
}

void Recorder::lastStepsJoined() {
    if (done_.size() < 2) return;
    const std::size_t last = done_.back();
    done_.pop_back();
    done_.back() += last;
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

// An alert or a reply in an unsaid tick has come of the tick.
void Recorder::sayTick() {
    if (tickUnsaid_) line("tick");
}

void Recorder::reply(const std::string& text) {
    if (!on()) return;
    sayTick();
    tail_.replies.push_back(text);
    write();
}

void Recorder::dialogOpened() {
    if (!on()) return;
    sayTick();
    openDialogs_.push_back(tail_.replies.size());
    tail_.replies.emplace_back();
}

void Recorder::dialogAnswered(const platform::DialogReply& given) {
    if (!on()) return;
    std::string text = "dialog " + std::to_string(given.dialogId);
    for (const platform::DialogStep& step : given.steps) text += ' ' + stepText(step);
    if (openDialogs_.empty()) return reply(text);
    tail_.replies[openDialogs_.back()] = text;
    openDialogs_.pop_back();
    write();
}

void Recorder::boxAnswered(bool accepted) { reply(accepted ? "answer ok" : "answer cancel"); }

void Recorder::fileChosen(const std::optional<std::string>& path) {
    reply(path ? "file " + quotedWord(*path) : "file cancel");
}

void Recorder::alertShown(const std::string& text) {
    if (!on()) return;
    sayTick();
    tail_.expectations.push_back("expect alert " + quotedWord(text));
    write();
}

void Recorder::panelUsed(const platform::DialogStep& step, bool isToggle) {
    if (!on()) return;
    const std::string control = std::to_string(step.control);
    if (step.kind == StepKind::setText || step.kind == StepKind::selectRow)
        line("panel text " + control + ' ' + quotedWord(step.text));
    else if (step.kind == StepKind::press)
        line((isToggle ? "panel toggle " : "panel press ") + control);
    tickMatters_ = true;
}

void Recorder::flyout(int item) {
    line("flyout " + std::to_string(item));
    tickMatters_ = true;
}

void Recorder::tick() {
    if (!on()) return;
    if (std::exchange(tickMatters_, false))
        line("tick");
    else
        tickUnsaid_ = true;
}

}  // namespace quorvel::app
