#include "app/script_verbs.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <initializer_list>
#include <optional>

#include "files/new_folder.h"
#include "platform/text.h"

namespace quorvel::app {

namespace {

// The parser has let only numbers pass where a verb takes one.
double number(const ScriptLine& line, std::size_t place) { return *numberIn(line.words[place]); }
std::int32_t integer(const ScriptLine& line, std::size_t place) { return *integerIn(line.words[place]); }
const std::string& text(const ScriptLine& line, std::size_t place) { return line.words[place].text; }

RealPoint point(const ScriptLine& line, std::size_t place) {
    return {static_cast<float>(number(line, place)), static_cast<float>(number(line, place + 1))};
}

std::vector<std::string> texts(const ScriptLine& line) {
    std::vector<std::string> all;
    for (const ScriptWord& word : line.words) all.push_back(word.text);
    return all;
}

// --- drawing and settings ------------------------------------------------------------------------------------------

VerbResult newPage(RunState& run, const ScriptLine& line) {
    const double width = number(line, 0), height = number(line, 1);
    if (!(width > 0 && height > 0 && width <= 1e6 && height <= 1e6)) return failure(ErrorCode::kBadPageSize);
    run.session.newDrawing(static_cast<float>(width), static_cast<float>(height));
    return {};
}

// A path as written; a drawing that is not there is looked for beside the script.
std::string drawingPath(const std::string& script, const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code error;
    if (fs::path(path).is_absolute() || fs::exists(path, error)) return path;
    const fs::path beside = fs::path(script).parent_path() / path;
    return fs::exists(beside, error) ? beside.string() : path;
}

VerbResult open(RunState& run, const ScriptLine& line) {
    return badInputOf(run.session.openDrawing(drawingPath(run.script, text(line, 0))));
}

VerbResult save(RunState& run, const ScriptLine& line) {
    const std::string& path = text(line, 0);
    const std::string folder = std::filesystem::path(path).parent_path().string();
    // One that cannot be made shows when the file is written.
    if (const Result<bool> made = files::makeFolder(folder); made && *made)
        run.session.warn(makeError(ErrorCode::kFolderMade, {folder}));
    return badInputOf(run.session.saveDrawing(path));
}

VerbResult setField(RunState& run, const std::string& key, const std::string& value) {
    if (!run.session.started()) return badInputOf(run.session.writeSetting(key, value));
    if (!run.session.host().setField(key, platform::FromUtf8(value, platform::kCodePageJapanese)))
        return failure(ErrorCode::kUnknownSetting, {key});
    return {};
}

// "1/50", "1 : 50" or "0.02"; nothing when it is no ratio above 0.
std::optional<double> ratioIn(const std::string& text) {
    const auto numberOf = [](std::string_view part) -> double {
        constexpr std::string_view kBlanks = " \t";
        const std::size_t first = part.find_first_not_of(kBlanks);
        if (first == std::string_view::npos) return 0;
        part = part.substr(first, part.find_last_not_of(kBlanks) - first + 1);
        const auto value = numberIn({std::string(part)});
        return value ? *value : 0;
    };
    const std::size_t sign = text.find_first_of("/:");
    const double paper = numberOf(std::string_view(text).substr(0, sign));
    const double real = sign == std::string::npos ? 1 : numberOf(std::string_view(text).substr(sign + 1));
    const auto ratio = static_cast<float>(paper / real);
    if (!(paper > 0) || !(real > 0) || !(ratio > 0) || !std::isfinite(ratio)) return std::nullopt;
    return paper / real;
}

// A scale is two settings, its number and its text. A ratio sets both, whichever is named, as the settings dialog does.
VerbResult set(RunState& run, const ScriptLine& line) {
    struct Scale {
        std::string_view number, text;
    };
    static constexpr Scale kScales[] = {{"flScale", "flScaleText"}, {"flArLenScale", "flArLenScaleText"}};
    const std::string &key = text(line, 0), &value = text(line, 1);
    if (!run.session.started()) run.earlySets.push_back(line);
    const auto* scale =
        std::ranges::find_if(kScales, [&](const Scale& one) { return one.number == key || one.text == key; });
    const bool isPlainNumber = scale != std::end(kScales) && scale->number == key && numberIn(line.words[1]);
    if (scale == std::end(kScales) || isPlainNumber || value.empty()) return setField(run, key, value);
    const std::optional<double> ratio = ratioIn(value);
    if (!ratio) return failure(ErrorCode::kNotOneOf, {value, "{A/B,A:B,NUMBER}"});
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.9g", *ratio);
    if (VerbResult failed = setField(run, std::string(scale->number), digits)) return failed;
    std::string typed = value;
    std::ranges::replace(typed, ':', '/');  // which is what the plug-in reads
    return setField(run, std::string(scale->text), typed);
}

VerbResult zoom(RunState& run, const ScriptLine& line) {
    const double zoom = number(line, 0);
    if (!(zoom > 0 && zoom <= 1e6)) return failure(ErrorCode::kBadZoom);
    run.session.host().setZoom(static_cast<float>(zoom));
    return {};
}

VerbResult ruler(RunState& run, const ScriptLine& line) {
    run.session.host().setRulerUnit(text(line, 0));
    return {};
}

// --- tool messages -------------------------------------------------------------------------------------------------

template <typename Send>
VerbResult sendToTool(RunState& run, const ScriptLine& line, Send send) {
    const host::ToolRecord* tool = run.session.host().toolByTitle(text(line, 0));
    if (tool == nullptr) return failure(ErrorCode::kNoTool, {escapedText(text(line, 0))});
    send(*tool);
    return {};
}

VerbResult selectTool(RunState& run, const ScriptLine& line) {
    return sendToTool(run, line, [&](const host::ToolRecord& tool) { run.session.host().selectTool(tool); });
}

VerbResult editOptions(RunState& run, const ScriptLine& line) {
    return sendToTool(run, line, [&](const host::ToolRecord& tool) { run.session.host().editOptions(tool); });
}

struct MouseMessage {
    const char* selector;
    std::size_t place;  // of its point's first word; kWhereItIs to leave the cursor there
};
constexpr std::size_t kWhereItIs = SIZE_MAX;

VerbResult sendMouse(RunState& run, const ScriptLine& line, std::size_t modifiersFrom,
                     std::initializer_list<MouseMessage> messages) {
    if (run.session.host().selectedTool() == nullptr) return failure(ErrorCode::kNoToolSelected);
    std::uint16_t modifiers = 0;
    for (std::size_t i = modifiersFrom; i < line.words.size(); ++i)
        modifiers |= text(line, i) == "alt" ? kAltModifier : kShiftModifier;
    for (const MouseMessage& message : messages) {
        if (message.place != kWhereItIs) run.cursor = point(line, message.place);
        run.session.host().sendTool(message.selector, run.cursor, modifiers);
    }
    return {};
}

constexpr MouseMessage kTrack{kSelectorTrackCursor, 0}, kDown{kSelectorMouseDown, kWhereItIs},
    kDrag{kSelectorMouseDrag, 0}, kDragOn{kSelectorMouseDrag, 2}, kUp{kSelectorMouseUp, kWhereItIs};

VerbResult track(RunState& run, const ScriptLine& line) { return sendMouse(run, line, 2, {kTrack}); }
VerbResult drag(RunState& run, const ScriptLine& line) { return sendMouse(run, line, 2, {kDrag}); }
VerbResult down(RunState& run, const ScriptLine& line) { return sendMouse(run, line, 0, {kDown}); }
VerbResult up(RunState& run, const ScriptLine& line) { return sendMouse(run, line, 0, {kUp}); }
VerbResult press(RunState& run, const ScriptLine& line) { return sendMouse(run, line, 2, {kTrack, kDown}); }
VerbResult click(RunState& run, const ScriptLine& line) { return sendMouse(run, line, 2, {kTrack, kDown, kUp}); }
VerbResult pull(RunState& run, const ScriptLine& line) {
    return sendMouse(run, line, 4, {kTrack, kDown, kDragOn, kUp});
}

// --- replies -------------------------------------------------------------------------------------------------------

VerbResult answer(RunState& run, const ScriptLine& line) {
    run.session.user().queueAnswer(text(line, 0) == "yes" || text(line, 0) == "ok");
    return {};
}

VerbResult dialog(RunState& run, const ScriptLine& line) {
    platform::DialogReply reply;
    reply.dialogId = integer(line, 0);
    for (std::size_t i = 1; i < line.words.size(); ++i) reply.steps.push_back(*dialogStepIn(line.words[i]));
    run.session.user().queueDialog(std::move(reply));
    return {};
}

VerbResult file(RunState& run, const ScriptLine& line) {
    if (text(line, 0) == "cancel" && line.words[0].quotedFrom == ScriptWord::kNotQuoted)
        run.session.user().queueFileRefusal();
    else
        run.session.user().queueFile(text(line, 0));
    return {};
}

// --- the host's own editing ----------------------------------------------------------------------------------------

VerbResult select(RunState& run, const ScriptLine& line) {
    return failureOf(selectArt(run.session.host(), texts(line)));
}

VerbResult move(RunState& run, const ScriptLine& line) {
    return failureOf(moveArt(run.session.host(), text(line, 0), number(line, 1), number(line, 2)));
}

VerbResult turn(RunState& run, const ScriptLine& line) {
    return failureOf(turnArt(run.session.host(), text(line, 0), number(line, 1), point(line, 2)));
}

VerbResult copy(RunState& run, const ScriptLine& line) {
    return failureOf(copyArt(run.session.host(), text(line, 0), text(line, 1)));
}

VerbResult erase(RunState& run, const ScriptLine& line) {
    return failureOf(deleteArt(run.session.host(), text(line, 0)));
}

VerbResult clip(RunState& run, const ScriptLine& line) {
    return failureOf(takeArt(run.session.host(), texts(line), &run.clipboard));
}

VerbResult paste(RunState& run, const ScriptLine& line) {
    return failureOf(pasteArt(run.session.host(), run.clipboard, number(line, 0), number(line, 1)));
}

VerbResult layer(RunState& run, const ScriptLine& line) {
    const std::string &title = text(line, 0), &what = text(line, 1);
    return failureOf(what == "title" ? renameLayer(run.session.host(), title, text(line, 2))
                                     : changeLayer(run.session.host(), title, what));
}

VerbResult undo(RunState& run, const ScriptLine&) {
    if (!run.session.host().undo()) return failure(ErrorCode::kNothingToUndo);
    return {};
}

VerbResult redo(RunState& run, const ScriptLine&) {
    if (!run.session.host().redo()) return failure(ErrorCode::kNothingToRedo);
    return {};
}

// --- menus, panel, timer -------------------------------------------------------------------------------------------

VerbResult action(RunState& run, const ScriptLine& line) {
    const auto& actions = run.session.host().actions();
    const auto record = std::ranges::find(actions, text(line, 0), &host::ActionRecord::event);
    if (record == actions.end()) return failure(ErrorCode::kNoAction, {escapedText(text(line, 0))});
    run.session.host().playAction(record->event);
    return {};
}

VerbResult notify(RunState& run, const ScriptLine& line) {
    run.session.host().notify(text(line, 0));
    return {};
}

VerbResult follow(RunState& run, const ScriptLine&) {
    run.session.host().followSelection();
    return {};
}

VerbResult menu(RunState& run, const ScriptLine& line) {
    const auto& items = run.session.host().menuItems();
    const auto item = std::ranges::find(items, text(line, 0), &host::MenuItemRecord::name);
    if (item == items.end()) return failure(ErrorCode::kNoMenuItem, {escapedText(text(line, 0))});
    run.session.host().menuGo(item->name);
    return {};
}

VerbResult flyout(RunState& run, const ScriptLine& line) {
    if (!run.session.host().chooseFlyout(integer(line, 0))) return failure(ErrorCode::kNoFlyoutItem, {text(line, 0)});
    return {};
}

VerbResult tick(RunState& run, const ScriptLine& line) {
    const std::int32_t count = line.words.empty() ? 1 : integer(line, 0);
    for (std::int32_t i = 0; i < count; ++i) run.session.host().tick();
    return {};
}

VerbResult panel(RunState& run, const ScriptLine& line) {
    const std::int32_t control = integer(line, 1);
    const bool done = text(line, 0) == "text" ? run.session.user().panelType(control, text(line, 2))
                                              : run.session.user().panelPress(control);
    if (!done) return failure(ErrorCode::kNoPanelControl, {std::to_string(control)});
    return {};
}

using enum VerbKind;
constexpr VerbRow kTable[] = {
    {"new", newPage, kActs},      {"open", open, kActs},           {"save", save, kEdits},
    {"set", set, kSets},          {"zoom", zoom, kEdits},          {"ruler", ruler, kEdits},
    {"tool", selectTool, kActs},  {"options", editOptions, kActs}, {"track", track, kActs},
    {"drag", drag, kActs},        {"down", down, kActs},           {"up", up, kActs},
    {"answer", answer, kReplies}, {"dialog", dialog, kReplies},    {"file", file, kReplies},
    {"select", select, kEdits},   {"move", move, kEdits},          {"turn", turn, kEdits},
    {"copy", copy, kEdits},       {"delete", erase, kEdits},       {"clip", clip, kEdits},
    {"paste", paste, kEdits},     {"layer", layer, kEdits},        {"undo", undo, kEdits},
    {"redo", redo, kEdits},       {"action", action, kActs},       {"notify", notify, kActs},
    {"menu", menu, kActs},        {"flyout", flyout, kActs},       {"tick", tick, kActs},
    {"panel", panel, kActs},      {"press", press, kActs},         {"click", click, kActs},
    {"pull", pull, kActs},        {"follow", follow, kActs},
};

}  // namespace

VerbResult failure(ErrorCode code, std::vector<std::string> arguments) {
    return LineFailure{{makeError(code, std::move(arguments))}};
}

VerbResult failureOf(const Status& status) {
    if (status) return {};
    return LineFailure{{status.error()}};
}

VerbResult badInputOf(const Status& status) {
    if (status) return {};
    return LineFailure{{status.error()}, true};
}

const VerbRow& verbRow(std::string_view verb) {
    const auto* row = std::ranges::find(kTable, verb, &VerbRow::verb);
    assert(row != std::end(kTable));
    return *row;
}

}  // namespace quorvel::app
