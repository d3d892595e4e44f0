// Runs one line after the other, and sees to it that nothing comes up that the script does not speak of.
#include "app/script_runner.h"

#include <utility>

#include "app/script_verbs.h"

namespace quorvel::app {

namespace {

constexpr std::string_view kAlert = "alert ";

bool isExpect(const ScriptLine& line) { return line.verb == "expect"; }

// The plug-in passes over keys of its file that it does not know; in a script they are slips.
VerbResult startPlugin(RunState& run) {
    if (const Status started = run.session.start(); !started) return badInputOf(started);
    for (const ScriptLine& set : std::exchange(run.earlySets, {})) {
        const std::string& key = set.words[0].text;
        if (run.session.host().knowsField(key)) continue;
        return LineFailure{{makeError(ErrorCode::kUnknownSetting, {key})}, false, set.number};
    }
    return {};
}

VerbResult runVerb(RunState& run, const ScriptLine& line) {
    if (isExpect(line)) return expectEffects(run, line);
    const VerbRow& row = verbRow(line.verb);
    if (row.kind == VerbKind::kActs || row.kind == VerbKind::kEdits) {
        if (VerbResult started = startPlugin(run)) return started;
        run.session.takeSteps();
    }
    if (row.kind == VerbKind::kEdits && run.session.document() == nullptr) return failure(ErrorCode::kNoDrawing);
    return row.function(run, line);
}

VerbResult runLine(RunState& run, const ScriptLine& line) {
    if (VerbResult failed = runVerb(run, line)) return failed;
    if (std::vector<Error> faults = run.session.user().takeFaults(); !faults.empty())
        return LineFailure{std::move(faults)};
    return {};
}

void collectEffects(RunState& run, const ScriptLine& line) {
    LineEffects effects;
    effects.lines = run.session.user().takeTranscript();
    for (const std::string& told : effects.lines)
        if (told == "beep") ++effects.beeps;
    for (const std::string& step : run.session.takeSteps()) effects.lines.push_back("undo " + quotedWord(step));
    if (verbRow(line.verb).kind != VerbKind::kReplies) effects.undoName = run.session.host().lastUndoName();
    for (const std::string& warning : warningSentences(run.session.takeWarnings(), run.session.language()))
        effects.lines.push_back("warning " + quotedWord(warning));
    run.effects = std::move(effects);
}

// An alert that nobody expects fails a run, as an unexpected dialog does. Asked when the line's expectations have been
// heard.
VerbResult unexpectedAlert(const RunState& run) {
    for (const std::string& told : run.effects.lines)
        if (told.starts_with(kAlert) && !run.effects.alertExpected)
            return failure(ErrorCode::kUnexpectedAlert, {told.substr(kAlert.size())});
    return {};
}

VerbResult unfinished(const RunState& run) {
    if (VerbResult alert = unexpectedAlert(run)) return alert;
    if (run.session.user().hasRepliesLeft()) return failure(ErrorCode::kReplyLeft);
    return {};
}

}  // namespace

ScriptOutcome runScript(const std::vector<ScriptLine>& lines, const std::string& name, HeadlessSession& session,
                        const std::function<void(const std::string&)>& tell) {
    RunState run{name, session};
    const auto tellEffects = [&](const ScriptLine& line) {
        collectEffects(run, line);
        for (const std::string& told : run.effects.lines) tell(told);
    };
    const auto failed = [&](std::int64_t line, const LineFailure& failure) {
        return ScriptOutcome{ScriptError{name, failure.line != 0 ? failure.line : line, failure.causes},
                             failure.isBadInput};
    };
    std::int64_t acted = 0;  // the line whose effects are expected about
    for (const ScriptLine& line : lines) {
        const bool expects = isExpect(line);
        if (!expects)
            if (const VerbResult alert = unexpectedAlert(run)) return failed(acted, *alert);
        if (const VerbResult failure = runLine(run, line)) {
            if (!expects && !failure->isBadInput) tellEffects(line);
            return failed(line.number, *failure);
        }
        if (expects) continue;
        acted = line.number;
        tellEffects(line);
    }
    if (const VerbResult end = unfinished(run)) return failed(acted, *end);
    return {};
}

}  // namespace quorvel::app
