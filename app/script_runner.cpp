// The verbs of a script, one function each, found through one table; and the expectations that are held against what
// the last line did.
#include "app/script_runner.h"

#include <cmath>
#include <filesystem>
#include <numbers>
#include <optional>
#include <utility>

#include "app/editing.h"
#include "app/sentences.h"
#include "platform/text.h"

namespace quorvel::app {

namespace {

// What is wrong with the line that is running; the run ends with 1.
class ScriptFault : public std::runtime_error {
  public:
    explicit ScriptFault(const std::string& cause, int lineNumber = 0) : std::runtime_error(cause), line(lineNumber) {}
    int line;  // 0: the one that runs
};

// What the last line that was no expect did.
struct LineEffects {
    std::vector<std::string> lines;
    int beeps = 0;
    std::string undoName;
    bool alertExpected = false;
};

// Lines that say only what is to be answered later.
bool isReply(const ScriptLine& line) { return line.verb == "answer" || line.verb == "dialog" || line.verb == "file"; }

class Runner {
  public:
    Runner(const std::string& name, HeadlessSession& session) : name_(name), session_(session) {}

    void run(const ScriptLine& line);
    const LineEffects& happened() const { return happened_; }
    void collect(const ScriptLine& line);  // what it did
    // An alert that nobody expects fails a run, as an unexpected dialog does. Called when the line's expectations have
    // been heard; gives the alert, or "" when all is well.
    std::string unexpectedAlert() const;

  private:
    using Verb = void (Runner::*)(const ScriptLine&);
    struct VerbRow {
        const char* verb;
        Verb function;
        bool needsDrawing;
    };
    static const VerbRow kTable[];

    void newPage(const ScriptLine& line);
    void open(const ScriptLine& line);
    void save(const ScriptLine& line);
    void set(const ScriptLine& line);
    void tool(const ScriptLine& line);
    void options(const ScriptLine& line);
    void toolEvent(const ScriptLine& line);
    void answer(const ScriptLine& line);
    void dialog(const ScriptLine& line);
    void file(const ScriptLine& line);
    void select(const ScriptLine& line);
    void change(const ScriptLine& line);
    void clip(const ScriptLine& line);
    void paste(const ScriptLine& line);
    void layer(const ScriptLine& line);
    void zoom(const ScriptLine& line);
    void ruler(const ScriptLine& line);
    void action(const ScriptLine& line);
    void notify(const ScriptLine& line);
    void menu(const ScriptLine& line);
    void flyout(const ScriptLine& line);
    void tick(const ScriptLine& line);
    void panel(const ScriptLine& line);
    void undo(const ScriptLine& line);
    void redo(const ScriptLine& line);
    void expect(const ScriptLine& line);
    void expectTranscript(const ScriptLine& line, const char* const* prefixes);
    void expectNumber(const ScriptLine& line, const char* what, std::int64_t found, std::size_t place);

    void start();
    const host::ToolRecord& toolNamed(const std::string& title);
    // A path as written; a drawing that is not there is looked for beside the script.
    std::string drawingPath(const std::string& path) const;

    const std::string& name_;
    HeadlessSession& session_;
    LineEffects happened_;
    RealPoint cursor_;
    Clipboard clipboard_;
    std::vector<ScriptLine> earlySets_;  // written to the file that the plug-in reads when it starts
};

const Runner::VerbRow Runner::kTable[] = {
    {"new", &Runner::newPage, false},     {"open", &Runner::open, false},      {"save", &Runner::save, true},
    {"set", &Runner::set, false},         {"tool", &Runner::tool, false},      {"options", &Runner::options, false},
    {"track", &Runner::toolEvent, false}, {"down", &Runner::toolEvent, false}, {"drag", &Runner::toolEvent, false},
    {"up", &Runner::toolEvent, false},    {"answer", &Runner::answer, false},  {"dialog", &Runner::dialog, false},
    {"file", &Runner::file, false},       {"select", &Runner::select, true},   {"move", &Runner::change, true},
    {"turn", &Runner::change, true},      {"copy", &Runner::change, true},     {"delete", &Runner::change, true},
    {"layer", &Runner::layer, true},      {"zoom", &Runner::zoom, true},       {"ruler", &Runner::ruler, true},
    {"action", &Runner::action, false},   {"notify", &Runner::notify, false},  {"menu", &Runner::menu, false},
    {"flyout", &Runner::flyout, false},   {"tick", &Runner::tick, false},      {"panel", &Runner::panel, false},
    {"undo", &Runner::undo, true},        {"redo", &Runner::redo, true},       {"expect", &Runner::expect, false},
    {"clip", &Runner::clip, true},        {"paste", &Runner::paste, true},
};

void Runner::run(const ScriptLine& line) {
    const VerbRow* row = nullptr;
    for (const VerbRow& candidate : kTable)
        if (line.verb == candidate.verb) row = &candidate;
    if (row == nullptr) throw ScriptFault("unknown verb " + line.verb);
    if (!isReply(line) && line.verb != "set" && line.verb != "expect") {
        start();
        session_.takeSteps();
    }
    if (row->needsDrawing && session_.document() == nullptr) throw ScriptFault("no drawing is open");
    (this->*row->function)(line);
    if (const std::string fault = session_.user().takeFault(); !fault.empty()) throw ScriptFault(fault);
}

// The plug-in passes over keys of its file that it does not know; in a script they are slips.
void Runner::start() {
    session_.start();
    for (const ScriptLine& set : std::exchange(earlySets_, {}))
        if (const std::string& key = set.words[0].text; !session_.host().knowsField(key))
            throw ScriptFault("unknown setting " + key, set.number);
}

void Runner::collect(const ScriptLine& line) {
    happened_ = {};
    happened_.lines = session_.user().takeTranscript();
    for (const std::string& told : happened_.lines)
        if (told == "beep") ++happened_.beeps;
    for (const std::string& step : session_.takeSteps()) happened_.lines.push_back("undo " + quotedWord(step));
    if (!isReply(line)) happened_.undoName = session_.host().lastUndoName();
    for (const std::string& warning : warningSentences(session_.takeWarnings(), Language::english))
        happened_.lines.push_back("warning " + quotedWord(warning));
}

std::string Runner::unexpectedAlert() const {
    for (const std::string& told : happened_.lines)
        if (told.starts_with("alert ") && !happened_.alertExpected) return told;
    return {};
}

// --- drawing and settings
// ---------------------------------------------------------------------------------------------

void Runner::newPage(const ScriptLine& line) {
    const double width = numberIn(line.words[0]), height = numberIn(line.words[1]);
    if (!(width > 0 && height > 0 && width <= 1e6 && height <= 1e6)) throw ScriptFault("a page has a size above 0");
    session_.newDrawing(static_cast<float>(width), static_cast<float>(height));
}

std::string Runner::drawingPath(const std::string& path) const {
    namespace fs = std::filesystem;
    std::error_code error;
    if (fs::path(path).is_absolute() || fs::exists(path, error)) return path;
    const fs::path beside = fs::path(name_).parent_path() / path;
    return fs::exists(beside, error) ? beside.string() : path;
}

void Runner::open(const ScriptLine& line) { session_.openDrawing(drawingPath(line.words[0].text)); }

void Runner::save(const ScriptLine& line) { session_.saveDrawing(line.words[0].text); }

void Runner::set(const ScriptLine& line) {
    const std::string& key = line.words[0].text;
    const std::string& value = line.words[1].text;
    if (!session_.started()) {
        earlySets_.push_back(line);
        return session_.writeSetting(key, value);
    }
    if (!session_.host().setField(key, platform::FromUtf8(value, platform::kCodePageJapanese)))
        throw ScriptFault("unknown setting " + key);
}

// --- tool messages
// ----------------------------------------------------------------------------------------------------

const host::ToolRecord& Runner::toolNamed(const std::string& title) {
    const host::ToolRecord* tool = session_.host().toolByTitle(title);
    if (tool == nullptr) throw ScriptFault("no tool is titled " + quotedWord(title));
    return *tool;
}

void Runner::tool(const ScriptLine& line) { session_.host().selectTool(toolNamed(line.words[0].text)); }

void Runner::options(const ScriptLine& line) { session_.host().editOptions(toolNamed(line.words[0].text)); }

void Runner::toolEvent(const ScriptLine& line) {
    if (session_.host().selectedTool() == nullptr) throw ScriptFault("no tool is selected");
    const bool moves = line.verb == "track" || line.verb == "drag";
    if (moves) cursor_ = {static_cast<float>(numberIn(line.words[0])), static_cast<float>(numberIn(line.words[1]))};
    std::uint16_t modifiers = 0;
    for (std::size_t i = moves ? 2 : 0; i < line.words.size(); ++i)
        modifiers |= line.words[i].text == "alt" ? kAltModifier : kShiftModifier;
    const char* selector = line.verb == "track"  ? kSelectorTrackCursor
                           : line.verb == "drag" ? kSelectorMouseDrag
                           : line.verb == "down" ? kSelectorMouseDown
                                                 : kSelectorMouseUp;
    session_.host().sendTool(selector, cursor_, modifiers);
}

// --- replies
// ----------------------------------------------------------------------------------------------------------

void Runner::answer(const ScriptLine& line) {
    const std::string& word = line.words[0].text;
    session_.user().queueAnswer(word == "yes" || word == "ok");
}

void Runner::dialog(const ScriptLine& line) {
    platform::DialogReply reply;
    reply.dialogId = integerIn(line.words[0]);
    for (std::size_t i = 1; i < line.words.size(); ++i) reply.steps.push_back(dialogStepIn(line.words[i]));
    session_.user().queueDialog(std::move(reply));
}

void Runner::file(const ScriptLine& line) {
    if (line.words[0].text == "cancel" && line.words[0].quotedFrom == ScriptWord::kNotQuoted)
        session_.user().queueFileRefusal();
    else
        session_.user().queueFile(line.words[0].text);
}

// --- the host's own editing
// -------------------------------------------------------------------------------------------

void Runner::select(const ScriptLine& line) {
    std::vector<std::string> ids;
    for (const ScriptWord& word : line.words) ids.push_back(word.text);
    if (const std::string cause = selectArt(session_.host(), ids); !cause.empty()) throw ScriptFault(cause);
}

void Runner::change(const ScriptLine& line) {
    const std::string& id = line.words[0].text;
    std::string cause;
    if (line.verb == "move") {
        cause = moveArt(session_.host(), id, numberIn(line.words[1]), numberIn(line.words[2]));
    } else if (line.verb == "turn") {
        const RealPoint pivot{static_cast<float>(numberIn(line.words[2])), static_cast<float>(numberIn(line.words[3]))};
        cause = turnArt(session_.host(), id, numberIn(line.words[1]), pivot);
    } else if (line.verb == "copy") {
        cause = copyArt(session_.host(), id, line.words[1].text);
    } else {
        cause = deleteArt(session_.host(), id);
    }
    if (!cause.empty()) throw ScriptFault(cause);
}

void Runner::clip(const ScriptLine& line) {
    std::vector<std::string> ids;
    for (const ScriptWord& word : line.words) ids.push_back(word.text);
    if (const std::string cause = takeArt(session_.host(), ids, &clipboard_); !cause.empty()) throw ScriptFault(cause);
}

void Runner::paste(const ScriptLine& line) {
    const std::string cause = pasteArt(session_.host(), clipboard_, numberIn(line.words[0]), numberIn(line.words[1]));
    if (!cause.empty()) throw ScriptFault(cause);
}

void Runner::layer(const ScriptLine& line) {
    const std::string &title = line.words[0].text, &what = line.words[1].text;
    const std::string cause = what == "title" ? renameLayer(session_.host(), title, line.words[2].text)
                                              : changeLayer(session_.host(), title, what);
    if (!cause.empty()) throw ScriptFault(cause);
}

void Runner::zoom(const ScriptLine& line) {
    const double zoom = numberIn(line.words[0]);
    if (!(zoom > 0 && zoom <= 1e6)) throw ScriptFault("a zoom is above 0");
    session_.host().setZoom(static_cast<float>(zoom));
}

void Runner::ruler(const ScriptLine& line) { session_.host().setRulerUnit(line.words[0].text); }

void Runner::undo(const ScriptLine&) {
    if (!session_.host().undo()) throw ScriptFault("there is nothing to undo");
}

void Runner::redo(const ScriptLine&) {
    if (!session_.host().redo()) throw ScriptFault("there is nothing to redo");
}

// --- menus, panel, timer
// ----------------------------------------------------------------------------------------------

void Runner::action(const ScriptLine& line) {
    for (const host::ActionRecord& record : session_.host().actions()) {
        if (record.event != line.words[0].text) continue;
        session_.host().playAction(record.event);
        return;
    }
    throw ScriptFault("no action is named " + quotedWord(line.words[0].text));
}

void Runner::notify(const ScriptLine& line) { session_.host().notify(line.words[0].text); }

void Runner::menu(const ScriptLine& line) {
    for (const host::MenuItemRecord& item : session_.host().menuItems()) {
        if (item.name != line.words[0].text) continue;
        session_.host().menuGo(item.name);
        return;
    }
    throw ScriptFault("no menu item is named " + quotedWord(line.words[0].text));
}

void Runner::flyout(const ScriptLine& line) {
    if (!session_.host().chooseFlyout(integerIn(line.words[0])))
        throw ScriptFault("the panel's flyout has no item " + line.words[0].text);
}

void Runner::tick(const ScriptLine& line) {
    const std::int32_t count = line.words.empty() ? 1 : integerIn(line.words[0]);
    for (std::int32_t i = 0; i < count; ++i) session_.host().tick();
}

void Runner::panel(const ScriptLine& line) {
    const std::int32_t control = integerIn(line.words[1]);
    const bool done = line.words[0].text == "text" ? session_.user().panelType(control, line.words[2].text)
                                                   : session_.user().panelPress(control);
    if (!done) throw ScriptFault("the panel has no control " + std::to_string(control));
}

// --- expectations
// -----------------------------------------------------------------------------------------------------

void Runner::expectTranscript(const ScriptLine& line, const char* const* prefixes) {
    const std::string wanted = quotedWord(line.words[1].text);
    std::string found;
    for (const std::string& happened : happened_.lines) {
        for (const char* const* prefix = prefixes; *prefix != nullptr; ++prefix) {
            if (happened.rfind(*prefix, 0) != 0) continue;
            const std::string rest = happened.substr(std::string(*prefix).size());
            if (rest.rfind(wanted, 0) == 0 && (rest.size() == wanted.size() || rest[wanted.size()] == ' ')) return;
            found = rest;
        }
    }
    throw ScriptFault("expected " + line.words[0].text + " " + wanted + ", found " + (found.empty() ? "none" : found));
}

void Runner::expectNumber(const ScriptLine& line, const char* what, std::int64_t found, std::size_t place) {
    const std::int64_t wanted = integerIn(line.words[place]);
    if (wanted != found)
        throw ScriptFault(std::string("expected ") + what + " " + std::to_string(wanted) + ", found " +
                          std::to_string(found));
}

void Runner::expect(const ScriptLine& line) {
    static constexpr const char* kQuestions[] = {"question ", "message ", nullptr};
    static constexpr const char* kAlerts[] = {"alert ", nullptr};
    const std::string& what = line.words[0].text;
    const auto require = [&](bool held, const std::string& wanted, const std::string& found) {
        if (!held) throw ScriptFault("expected " + wanted + ", found " + found);
    };
    if (what == "beep") {
        require(happened_.beeps > 0, "a beep", "none");
    } else if (what == "no-beep") {
        require(happened_.beeps == 0, "no beep", std::to_string(happened_.beeps));
    } else if (what == "question") {
        expectTranscript(line, kQuestions);
    } else if (what == "alert") {
        expectTranscript(line, kAlerts);
        happened_.alertExpected = true;
    } else if (what == "undo") {
        require(happened_.undoName == line.words[1].text, "undo " + quotedWord(line.words[1].text),
                quotedWord(happened_.undoName));
    } else if (what == "cursor") {
        expectNumber(line, "cursor", session_.user().lastCursor(), 1);
    } else if (what == "focus") {
        expectNumber(line, "focus on control", session_.user().lastFocus(), 1);
    } else if (what == "preview") {
        expectNumber(line, "visible preview pixels", static_cast<std::int64_t>(session_.user().visiblePixels()), 1);
    } else if (what == "arts") {
        const doc::Document* document = session_.document();
        expectNumber(line, "arts", document == nullptr ? 0 : static_cast<std::int64_t>(document->artCount()), 1);
    } else if (what == "panel") {
        std::string found;
        require(session_.user().panelText(integerIn(line.words[1]), &found), "panel control " + line.words[1].text,
                "none");
        require(found == line.words[2].text, "panel " + line.words[1].text + " " + quotedWord(line.words[2].text),
                quotedWord(found));
    } else if (what == "menu") {
        session_.host().menuUpdate(line.words[1].text);
        std::string found = "no such item";
        for (const host::MenuItemRecord& item : session_.host().menuItems())
            if (item.name == line.words[1].text) found = item.checked ? "on" : "off";
        require(found == line.words[2].text, "menu item " + line.words[2].text, found);
    }
}

}  // namespace

ScriptOutcome runScript(const std::vector<ScriptLine>& lines, const std::string& name, HeadlessSession& session,
                        const std::function<void(const std::string&)>& tell) {
    Runner runner(name, session);
    const auto tellAll = [&] {
        for (const std::string& line : runner.happened().lines) tell(line);
    };
    int doing = 0;  // the line whose doings are expected about
    const auto failed = [&](int number, const std::string& cause) {
        return ScriptOutcome{false, name + ":" + std::to_string(number) + ": " + cause};
    };
    for (const ScriptLine& line : lines) {
        const bool expects = line.verb == "expect";
        if (const std::string alert = runner.unexpectedAlert(); !expects && !alert.empty())
            return failed(doing, "unexpected " + alert);
        try {
            runner.run(line);
        } catch (const ScriptFault& fault) {
            if (!expects) {
                runner.collect(line);
                tellAll();
            }
            return failed(fault.line != 0 ? fault.line : line.number, fault.what());
        } catch (const InputError& error) {
            throw InputError(name + ":" + std::to_string(line.number) + ": " + error.what());
        }
        if (expects) continue;
        doing = line.number;
        runner.collect(line);
        tellAll();
    }
    if (const std::string alert = runner.unexpectedAlert(); !alert.empty()) return failed(doing, "unexpected " + alert);
    if (session.user().repliesLeft()) return failed(doing, "the end is reached and a reply has not been asked for");
    return {};
}

}  // namespace quorvel::app
