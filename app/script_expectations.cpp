// What a script's expect lines hold against the effects of the line before them, one function each.
#include <algorithm>
#include <cassert>

#include "app/script_verbs.h"

namespace quorvel::app {

namespace {

const std::string& text(const ScriptLine& line, std::size_t place) { return line.words[place].text; }

VerbResult expectBeep(RunState& run, const ScriptLine&) {
    if (run.effects.beeps == 0) return failure(ErrorCode::kExpectedBeep);
    return {};
}

VerbResult expectNoBeep(RunState& run, const ScriptLine&) {
    if (run.effects.beeps > 0) return failure(ErrorCode::kExpectedNoBeep, {std::to_string(run.effects.beeps)});
    return {};
}

// Among the lines that were told; what is wanted may be followed by what was answered.
VerbResult expectTold(const RunState& run, const ScriptLine& line, std::initializer_list<std::string_view> kinds) {
    const std::string wanted = quotedWord(text(line, 1));
    std::string found;
    for (const std::string& told : run.effects.lines) {
        for (const std::string_view kind : kinds) {
            if (!told.starts_with(kind)) continue;
            found = told.substr(kind.size());
            if (found.starts_with(wanted) && (found.size() == wanted.size() || found[wanted.size()] == ' ')) return {};
        }
    }
    if (found.empty()) return failure(ErrorCode::kExpectedAny, {text(line, 0), wanted});
    return failure(ErrorCode::kExpectedOther, {text(line, 0), wanted, found});
}

VerbResult expectQuestion(RunState& run, const ScriptLine& line) {
    return expectTold(run, line, {"question ", "message "});
}

VerbResult expectAlert(RunState& run, const ScriptLine& line) {
    VerbResult result = expectTold(run, line, {"alert "});
    if (!result) run.effects.alertExpected = true;
    return result;
}

VerbResult expectUndo(RunState& run, const ScriptLine& line) {
    if (run.effects.undoName == text(line, 1)) return {};
    return failure(ErrorCode::kExpectedOther, {"undo", quotedWord(text(line, 1)), quotedWord(run.effects.undoName)});
}

// Nothing when the number is as the line says; otherwise the two as texts.
std::optional<std::pair<std::string, std::string>> difference(const ScriptLine& line, std::int64_t found) {
    const std::int64_t wanted = *integerIn(line.words[1]);
    if (wanted == found) return std::nullopt;
    return std::pair(std::to_string(wanted), std::to_string(found));
}

VerbResult expectCursor(RunState& run, const ScriptLine& line) {
    const auto other = difference(line, run.session.user().lastCursor());
    return other ? failure(ErrorCode::kExpectedOther, {"cursor", other->first, other->second}) : VerbResult();
}

VerbResult expectFocus(RunState& run, const ScriptLine& line) {
    const auto other = difference(line, run.session.user().lastFocus());
    return other ? failure(ErrorCode::kExpectedFocus, {other->first, other->second}) : VerbResult();
}

VerbResult expectPreview(RunState& run, const ScriptLine& line) {
    const auto other = difference(line, static_cast<std::int64_t>(run.session.user().visiblePixels()));
    return other ? failure(ErrorCode::kExpectedPixels, {other->first, other->second}) : VerbResult();
}

VerbResult expectArts(RunState& run, const ScriptLine& line) {
    const doc::Document* document = run.session.document();
    const auto other = difference(line, document == nullptr ? 0 : static_cast<std::int64_t>(document->artCount()));
    return other ? failure(ErrorCode::kExpectedOther, {"arts", other->first, other->second}) : VerbResult();
}

VerbResult expectPanel(RunState& run, const ScriptLine& line) {
    std::string found;
    if (!run.session.user().panelText(*integerIn(line.words[1]), &found))
        return failure(ErrorCode::kExpectedAny, {"panel control", text(line, 1)});
    if (found == text(line, 2)) return {};
    return failure(ErrorCode::kExpectedOther, {"panel " + text(line, 1), quotedWord(text(line, 2)), quotedWord(found)});
}

VerbResult expectMenu(RunState& run, const ScriptLine& line) {
    run.session.host().menuUpdate(text(line, 1));
    const auto& items = run.session.host().menuItems();
    const auto item = std::ranges::find(items, text(line, 1), &host::MenuItemRecord::name);
    if (item == items.end()) return failure(ErrorCode::kExpectedMenuItem, {text(line, 2)});
    const char* found = item->checked ? "on" : "off";
    if (found == text(line, 2)) return {};
    return failure(ErrorCode::kExpectedMenuState, {text(line, 2), found});
}

struct ExpectationRow {
    std::string_view what;
    VerbResult (*function)(RunState& run, const ScriptLine& line);
};
constexpr ExpectationRow kExpectations[] = {
    {"beep", expectBeep}, {"no-beep", expectNoBeep}, {"question", expectQuestion}, {"alert", expectAlert},
    {"undo", expectUndo}, {"cursor", expectCursor},  {"focus", expectFocus},       {"preview", expectPreview},
    {"arts", expectArts}, {"panel", expectPanel},    {"menu", expectMenu},
};

}  // namespace

VerbResult expectEffects(RunState& run, const ScriptLine& line) {
    const auto* row = std::ranges::find(kExpectations, std::string_view(text(line, 0)), &ExpectationRow::what);
    assert(row != std::end(kExpectations));
    return row->function(run, line);
}

}  // namespace quorvel::app
