// Scripts: text files that drive the host as a hand would, one message a line. A script is read whole before any of it
// runs, so that a slip in its last line leaves nothing half done.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/headless/headless.h"

namespace quorvel::app {

// Bad input: one line that names the file, the line and the cause. The program leaves with 2.
class InputError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

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

// Throws InputError "NAME:LINE: cause" for an unknown verb, an open quote or words that the verb does not take.
std::vector<ScriptLine> parseScript(std::string_view text, const std::string& name);
// A text as a script writes it, in quotation marks.
std::string quotedWord(std::string_view text);

// One finite decimal number; throws std::invalid_argument with the cause.
double numberIn(const ScriptWord& word);
std::int32_t integerIn(const ScriptWord& word);
// A word of a dialog line behind the dialog's number; throws std::invalid_argument with the cause.
platform::DialogStep dialogStepIn(const ScriptWord& word);

}  // namespace quorvel::app
