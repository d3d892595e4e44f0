// The verbs of a script, one function each, found through one table.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/editing.h"
#include "app/headless_session.h"
#include "app/script.h"

namespace quorvel::app {

// What the last line that was no expect did.
struct LineEffects {
    std::vector<std::string> lines;  // as they are told
    int beeps = 0;
    std::string undoName;
    bool alertExpected = false;
};

// A script that runs.
struct RunState {
    const std::string& script;  // its path; drawings are looked for beside it
    HeadlessSession& session;
    LineEffects effects = {};
    RealPoint cursor = {};
    Clipboard clipboard = {};
    std::vector<ScriptLine> earlySets = {};  // written to the file that the plug-in reads when it starts
};

struct LineFailure {
    std::vector<Error> causes;
    bool isBadInput = false;  // a drawing or the profile cannot be read or written: no fault of the script's
    std::int64_t line = 0;    // 0: the line that runs
};
using VerbResult = std::optional<LineFailure>;  // nothing: it is done

VerbResult failure(ErrorCode code, std::vector<std::string> arguments = {});
VerbResult failureOf(const Status& status);   // nothing of a success
VerbResult badInputOf(const Status& status);  // the same

enum class VerbKind {
    kActs,    // starts the plug-in
    kEdits,   // acts, on a drawing that must be open
    kSets,    // before the plug-in starts it only writes the profile
    kReplies  // says what is to be answered later
};

struct VerbRow {
    std::string_view verb;
    VerbResult (*function)(RunState& run, const ScriptLine& line);
    VerbKind kind;
};
// Of each verb that parseScript lets pass but "expect".
const VerbRow& verbRow(std::string_view verb);

// Holds what the line expects against what the last line did.
VerbResult expectEffects(RunState& run, const ScriptLine& line);

}  // namespace quorvel::app
