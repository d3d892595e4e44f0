// Scripts: text files that drive the host as a user does, one message a line. A script is read whole before any of it
// runs, so that a slip in its last line leaves nothing half done.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/sentences.h"
#include "base/result.h"
#include "platform/headless/headless.h"

namespace quorvel::app {

// A word of a script line, with its quotes and escapes resolved.
struct ScriptWord {
    static constexpr std::size_t kNotQuoted = static_cast<std::size_t>(-1);
    std::string text;
    std::size_t quotedFrom = kNotQuoted;  // where in text the quoted part begins
};

struct ScriptLine {
    int number = 0;  // from 1
    std::string verb;
    std::vector<ScriptWord> words;  // behind the verb
};

// What is wrong with a line of a script. The causes have places of their own, such as a line of the drawing that the
// script opens.
struct ScriptError {
    std::string script;  // its path as it was given
    std::int64_t line = 0;
    std::vector<Error> causes;
};
// "SCRIPT:LINE: CAUSE; CAUSE"
std::string sentence(const ScriptError& error, Language language);

// An error for an unknown verb, an open quote or words that the verb does not take; its line is the script's.
Result<std::vector<ScriptLine>> parseScript(std::string_view text);
// The same, of a script that has a name.
ScriptError inScript(const std::string& script, Error error);
// A text as a script writes it, on one line: in quotation marks, and what goes between them.
std::string quotedWord(std::string_view text);
std::string escapedText(std::string_view text);

// One finite decimal number.
Result<double> numberIn(const ScriptWord& word);
Result<std::int32_t> integerIn(const ScriptWord& word);
// A word of a dialog line behind the dialog's number.
Result<platform::DialogStep> dialogStepIn(const ScriptWord& word);

}  // namespace quorvel::app
