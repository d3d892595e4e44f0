// Cutting scripts into lines and words, and checking each line against the table of verbs before anything runs.
#include "app/script.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <utility>

namespace quorvel::app {

namespace {

// What may follow a verb: how many words, and which of them are numbers from the first on.
struct VerbRow {
    std::string_view verb;
    int fewest, most;     // most -1: any number
    const char* numbers;  // from the first word on: "n" for a number, "i" for a whole one, "." for another word
};

constexpr VerbRow kVerbs[] = {
    {"new", 2, 2, "nn"},   {"open", 1, 1, ""},    {"save", 1, 1, ""},     {"set", 2, 2, ""},
    {"tool", 1, 1, ""},    {"options", 1, 1, ""}, {"track", 2, 4, "nn"},  {"drag", 2, 4, "nn"},
    {"down", 0, 2, ""},    {"up", 0, 2, ""},      {"answer", 1, 1, ""},   {"dialog", 1, -1, "i"},
    {"file", 1, 1, ""},    {"select", 1, -1, ""}, {"move", 3, 3, ".nn"},  {"turn", 4, 4, ".nnn"},
    {"copy", 2, 2, ""},    {"delete", 1, 1, ""},  {"layer", 2, 3, ""},    {"zoom", 1, 1, "n"},
    {"ruler", 1, 1, ""},   {"action", 1, 1, ""},  {"notify", 1, 1, ""},   {"menu", 1, 1, ""},
    {"flyout", 1, 1, "i"}, {"tick", 0, 1, "i"},   {"panel", 2, 3, ".i"},  {"undo", 0, 0, ""},
    {"redo", 0, 0, ""},    {"expect", 1, 3, ""},  {"clip", 1, -1, ""},    {"paste", 2, 2, "nn"},
    {"press", 2, 4, "nn"}, {"click", 2, 4, "nn"}, {"pull", 4, 6, "nnnn"}, {"follow", 0, 0, ""},
};

// Words of which one must be at a place.
struct ChoiceRow {
    const char* verb;
    std::size_t place;
    const char* choices;  // parted by blanks
};

constexpr ChoiceRow kChoices[] = {
    {"answer", 0, "yes no ok cancel"},
    {"layer", 1, "new current hide show lock unlock up down title"},
    {"panel", 0, "toggle text press"},
    {"ruler", 0, "mm cm in pt pc px H"},
    {"expect", 0, "beep no-beep question alert undo cursor panel focus menu preview arts"},
    {"track", 2, "alt shift"},
    {"track", 3, "alt shift"},
    {"drag", 2, "alt shift"},
    {"drag", 3, "alt shift"},
    {"down", 0, "alt shift"},
    {"down", 1, "alt shift"},
    {"up", 0, "alt shift"},
    {"up", 1, "alt shift"},
    {"press", 2, "alt shift"},
    {"press", 3, "alt shift"},
    {"click", 2, "alt shift"},
    {"click", 3, "alt shift"},
    {"pull", 4, "alt shift"},
    {"pull", 5, "alt shift"},
};

// Numbers of which one must be in a range: what is done so often, or kept so large.
struct RangeRow {
    const char* verb;
    std::size_t place;
    double least, most;
};
constexpr RangeRow kRanges[] = {{"tick", 0, 0, 100'000}};
constexpr double kLargestNumber = 3e38;  // of coordinates, which are floats

struct ExpectRow {
    const char* what;
    std::size_t words;  // behind what
    const char* numbers;
};

constexpr ExpectRow kExpects[] = {
    {"beep", 0, ""}, {"no-beep", 0, ""},  {"question", 1, ""}, {"alert", 1, ""},
    {"undo", 1, ""}, {"cursor", 1, "i"},  {"panel", 2, "i"},   {"focus", 1, "i"},
    {"menu", 2, ""}, {"preview", 1, "i"}, {"arts", 1, "i"},
};

bool isOneOf(const std::string& word, std::string_view choices) {
    while (!choices.empty()) {
        const std::size_t blank = choices.find(' ');
        if (choices.substr(0, blank) == word) return true;
        choices = blank == std::string_view::npos ? std::string_view{} : choices.substr(blank + 1);
    }
    return false;
}

// One word from line at position.
Result<ScriptWord> readWord(std::string_view line, std::size_t* position) {
    ScriptWord word;
    bool quoted = false;
    for (; *position < line.size(); ++*position) {
        const char c = line[*position];
        if (!quoted && (c == ' ' || c == '\t')) break;
        if (c == '"') {
            if (!quoted && word.quotedFrom == ScriptWord::kNotQuoted) word.quotedFrom = word.text.size();
            quoted = !quoted;
        } else if (quoted && c == '\\') {
            if (++*position >= line.size()) return makeError(ErrorCode::kTrailingBackslash);
            const char escaped = line[*position];
            if (escaped == 'n')
                word.text += '\n';
            else if (escaped == 'r')
                word.text += '\r';
            else if (escaped == '"' || escaped == '\\')
                word.text += escaped;
            else
                return makeError(ErrorCode::kUnknownEscape, {std::string(1, escaped)});
        } else {
            word.text += c;
        }
    }
    if (quoted) return makeError(ErrorCode::kOpenText);
    return word;
}

Result<std::vector<ScriptWord>> readWords(std::string_view line) {
    std::vector<ScriptWord> words;
    std::size_t position = 0;
    while (true) {
        while (position < line.size() && (line[position] == ' ' || line[position] == '\t')) ++position;
        if (position >= line.size() || line[position] == '#') return words;
        Result<ScriptWord> word = readWord(line, &position);
        if (!word) return word.error();
        words.push_back(std::move(*word));
    }
}

Status checkRange(const ScriptWord& word, double number, double least, double most) {
    if (number >= least && number <= most) return {};
    const auto text = [](double bound) {
        char digits[32];
        std::snprintf(digits, sizeof digits, "%g", bound);
        return std::string(digits);
    };
    return makeError(ErrorCode::kNotInRange, {word.text, text(least), text(most)});
}

Status checkNumbers(const std::vector<ScriptWord>& words, std::string_view numbers, std::size_t from) {
    for (std::size_t i = 0; i < numbers.size() && from + i < words.size(); ++i) {
        const ScriptWord& word = words[from + i];
        if (numbers[i] == 'n') {
            const auto number = numberIn(word);
            if (!number) return number.error();
            if (const Status held = checkRange(word, *number, -kLargestNumber, kLargestNumber); !held) return held;
        }
        if (numbers[i] == 'i')
            if (const auto number = integerIn(word); !number) return number.error();
    }
    return {};
}

Status checkExpect(const ScriptLine& line) {
    for (const ExpectRow& row : kExpects) {
        if (line.words[0].text != row.what) continue;
        if (line.words.size() != row.words + 1)
            return makeError(ErrorCode::kExpectWordCount, {line.words[0].text, std::to_string(row.words)});
        if (const Status numbers = checkNumbers(line.words, row.numbers, 1); !numbers) return numbers;
        if (line.words[0].text == "menu" && !isOneOf(line.words[2].text, "on off"))
            return makeError(ErrorCode::kExpectOnOrOff);
    }
    return {};
}

Status checkWordCount(const ScriptLine& line, std::size_t wanted) {
    if (line.words.size() != wanted) return makeError(ErrorCode::kWordCount, {line.verb});
    return {};
}

Status checkDialog(const ScriptLine& line) {
    for (std::size_t i = 1; i < line.words.size(); ++i)
        if (const auto step = dialogStepIn(line.words[i]); !step) return step.error();
    return {};
}

Status checkChoices(const ScriptLine& line) {
    for (const ChoiceRow& choice : kChoices) {
        if (line.verb != choice.verb || choice.place >= line.words.size()) continue;
        const std::string& word = line.words[choice.place].text;
        if (!isOneOf(word, choice.choices)) return makeError(ErrorCode::kUnknownWord, {line.verb, word});
    }
    return {};
}

Status checkRanges(const ScriptLine& line) {
    for (const RangeRow& row : kRanges) {
        if (line.verb != row.verb || row.place >= line.words.size()) continue;
        const ScriptWord& word = line.words[row.place];
        if (const Status held = checkRange(word, *numberIn(word), row.least, row.most); !held) return held;
    }
    return {};
}

Status checkLine(const ScriptLine& line) {
    const auto* row = std::ranges::find(kVerbs, std::string_view(line.verb), &VerbRow::verb);
    if (row == std::end(kVerbs)) return makeError(ErrorCode::kUnknownVerb, {line.verb});
    const int count = static_cast<int>(line.words.size());
    if (count < row->fewest || (row->most >= 0 && count > row->most))
        return makeError(ErrorCode::kWordCount, {line.verb});
    if (const Status numbers = checkNumbers(line.words, row->numbers, 0); !numbers) return numbers;
    if (const Status choices = checkChoices(line); !choices) return choices;
    if (const Status ranges = checkRanges(line); !ranges) return ranges;
    if (line.verb == "expect") return checkExpect(line);
    if (line.verb == "panel") return checkWordCount(line, line.words[0].text == "text" ? 3 : 2);
    if (line.verb == "layer") return checkWordCount(line, line.words[1].text == "title" ? 3 : 2);
    if (line.verb == "dialog") return checkDialog(line);
    return {};
}

Result<ScriptLine> readLine(std::string_view text, int number) {
    Result<std::vector<ScriptWord>> words = readWords(text);
    if (!words) return words.error();
    ScriptLine line;
    line.number = number;
    if (words->empty()) return line;
    line.verb = words->front().text;
    line.words.assign(words->begin() + 1, words->end());
    if (const Status checked = checkLine(line); !checked) return checked.error();
    return line;
}

}  // namespace

std::string sentence(const ScriptError& error, Language language) {
    std::string text = error.script + ":" + std::to_string(error.line) + ": ";
    for (std::size_t i = 0; i < error.causes.size(); ++i)
        text += (i == 0 ? "" : "; ") + sentence(error.causes[i], language);
    return text;
}

ScriptError inScript(const std::string& script, Error error) {
    const std::int64_t line = std::exchange(error.line, 0);
    return {script, line, {std::move(error)}};
}

std::string escapedText(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '"' || c == '\\')
            (out += '\\') += c;
        else if (c == '\n')
            out += "\\n";
        else if (c == '\r')
            out += "\\r";
        else
            out += c;
    }
    return out;
}

std::string quotedWord(std::string_view text) { return "\"" + escapedText(text) + "\""; }

Result<double> numberIn(const ScriptWord& word) {
    double value = 0;
    const char* end = word.text.data() + word.text.size();
    const auto result = std::from_chars(word.text.data(), end, value);
    if (result.ec != std::errc{} || result.ptr != end || !std::isfinite(value))
        return makeError(ErrorCode::kNotANumber, {word.text});
    return value;
}

Result<std::int32_t> integerIn(const ScriptWord& word) {
    const Result<double> value = numberIn(word);
    if (!value) return value.error();
    if (!(std::abs(*value) <= 2147483647.0) || *value != std::trunc(*value))
        return makeError(ErrorCode::kNotAWholeNumber, {word.text});
    return static_cast<std::int32_t>(*value);
}

Result<platform::DialogStep> dialogStepIn(const ScriptWord& word) {
    using Kind = platform::DialogStep::Kind;
    const std::string& text = word.text;
    const auto numberFrom = [&](std::size_t first, std::size_t count = std::string::npos) {
        return integerIn({text.substr(first, count), ScriptWord::kNotQuoted});
    };
    const auto step = [](Kind kind, const Result<std::int32_t>& control,
                         const std::string& value = {}) -> Result<platform::DialogStep> {
        if (!control) return control.error();
        return platform::DialogStep{kind, *control, value, 0};
    };
    if (text.starts_with("press:")) return step(Kind::press, numberFrom(6));
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0)
        return makeError(ErrorCode::kUnknownWord, {"dialog", escapedText(text)});
    const bool compares = text[equals - 1] == '?';
    const Result<std::int32_t> control = numberFrom(0, compares ? equals - 1 : equals);
    const std::string value = text.substr(equals + 1);
    if (compares) return step(Kind::expectText, control, value);
    if (word.quotedFrom == ScriptWord::kNotQuoted) {
        if (value == "on") return step(Kind::check, control);
        if (value == "off") return step(Kind::uncheck, control);
        if (value.starts_with("row:")) {
            const Result<std::int32_t> row = numberFrom(equals + 5);
            Result<platform::DialogStep> made = step(Kind::selectRow, control);
            if (made && !row) return row.error();
            if (made) made->row = *row;
            return made;
        }
    }
    return step(Kind::setText, control, value);
}

Result<std::vector<ScriptLine>> parseScript(std::string_view text) {
    std::vector<ScriptLine> lines;
    int number = 0;
    if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
    while (!text.empty()) {
        ++number;
        const std::size_t end = text.find('\n');
        std::string_view raw = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
        if (!raw.empty() && raw.back() == '\r') raw.remove_suffix(1);
        Result<ScriptLine> line = readLine(raw, number);
        if (!line) {
            Error error = line.error();
            error.line = number;
            return error;
        }
        if (!line->verb.empty()) lines.push_back(std::move(*line));
    }
    return lines;
}

}  // namespace quorvel::app
