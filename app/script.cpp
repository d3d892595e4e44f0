// Cutting scripts into lines and words, and checking each line against the table of verbs before anything runs.
#include "app/script.h"

#include <charconv>
#include <cmath>
#include <map>

namespace quorvel::app {

namespace {

// What may stand behind a verb: how many words, and which of them are numbers from the first on.
struct VerbRow {
    const char* verb;
    int fewest, most;     // most -1: any number
    const char* numbers;  // from the first word on: "n" for a number, "i" for a whole one, "." for another word
};

constexpr VerbRow kVerbs[] = {
    {"new", 2, 2, "nn"},    {"open", 1, 1, ""},     {"save", 1, 1, ""},   {"set", 2, 2, ""},     {"tool", 1, 1, ""},
    {"options", 1, 1, ""},  {"track", 2, 4, "nn"},  {"drag", 2, 4, "nn"}, {"down", 0, 2, ""},    {"up", 0, 2, ""},
    {"answer", 1, 1, ""},   {"dialog", 1, -1, "i"}, {"file", 1, 1, ""},   {"select", 1, -1, ""}, {"move", 3, 3, ".nn"},
    {"turn", 4, 4, ".nnn"}, {"copy", 2, 2, ""},     {"delete", 1, 1, ""}, {"layer", 2, 3, ""},   {"zoom", 1, 1, "n"},
    {"ruler", 1, 1, ""},    {"action", 1, 1, ""},   {"notify", 1, 1, ""}, {"menu", 1, 1, ""},    {"flyout", 1, 1, "i"},
    {"tick", 0, 1, "i"},    {"panel", 2, 3, ".i"},  {"undo", 0, 0, ""},   {"redo", 0, 0, ""},    {"expect", 1, 3, ""},
    {"clip", 1, -1, ""},    {"paste", 2, 2, "nn"},
};

// Words of which one must stand at a place.
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
};

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

// One word from line at position; throws std::invalid_argument.
ScriptWord readWord(std::string_view line, std::size_t* position) {
    ScriptWord word;
    bool quoted = false;
    for (; *position < line.size(); ++*position) {
        const char c = line[*position];
        if (!quoted && (c == ' ' || c == '\t')) break;
        if (c == '"') {
            if (!quoted && word.quotedFrom == ScriptWord::kNotQuoted) word.quotedFrom = word.text.size();
            quoted = !quoted;
        } else if (quoted && c == '\\') {
            if (++*position >= line.size()) throw std::invalid_argument("a backslash stands at the end of the line");
            const char escaped = line[*position];
            if (escaped == 'n')
                word.text += '\n';
            else if (escaped == 'r')
                word.text += '\r';
            else if (escaped == '"' || escaped == '\\')
                word.text += escaped;
            else
                throw std::invalid_argument(std::string("unknown escape \\") + escaped);
        } else {
            word.text += c;
        }
    }
    if (quoted) throw std::invalid_argument("a text is not closed");
    return word;
}

std::vector<ScriptWord> readWords(std::string_view line) {
    std::vector<ScriptWord> words;
    std::size_t position = 0;
    while (true) {
        while (position < line.size() && (line[position] == ' ' || line[position] == '\t')) ++position;
        if (position >= line.size() || line[position] == '#') return words;
        words.push_back(readWord(line, &position));
    }
}

void checkNumbers(const std::vector<ScriptWord>& words, std::string_view numbers, std::size_t from) {
    for (std::size_t i = 0; i < numbers.size() && from + i < words.size(); ++i) {
        if (numbers[i] == 'n') numberIn(words[from + i]);
        if (numbers[i] == 'i') integerIn(words[from + i]);
    }
}

void checkExpect(const ScriptLine& line) {
    for (const ExpectRow& row : kExpects) {
        if (line.words[0].text != row.what) continue;
        if (line.words.size() != row.words + 1)
            throw std::invalid_argument("expect " + line.words[0].text + " takes " + std::to_string(row.words) +
                                        " words");
        checkNumbers(line.words, row.numbers, 1);
        if (line.words[0].text == "menu" && !isOneOf(line.words[2].text, "on off"))
            throw std::invalid_argument("expect menu takes on or off");
    }
}

void checkPanel(const ScriptLine& line) {
    const bool takesText = line.words[0].text == "text";
    if (line.words.size() != (takesText ? 3U : 2U)) throw std::invalid_argument("panel has too few or too many words");
}

void checkLayer(const ScriptLine& line) {
    const bool takesTitle = line.words[1].text == "title";
    if (line.words.size() != (takesTitle ? 3U : 2U)) throw std::invalid_argument("layer has too few or too many words");
}

void checkDialog(const ScriptLine& line) {
    for (std::size_t i = 1; i < line.words.size(); ++i) dialogStepIn(line.words[i]);
}

void checkLine(const ScriptLine& line) {
    const VerbRow* row = nullptr;
    for (const VerbRow& candidate : kVerbs)
        if (line.verb == candidate.verb) row = &candidate;
    if (row == nullptr) throw std::invalid_argument("unknown verb \"" + line.verb + "\"");
    const int count = static_cast<int>(line.words.size());
    if (count < row->fewest || (row->most >= 0 && count > row->most))
        throw std::invalid_argument(line.verb + " has too few or too many words");
    checkNumbers(line.words, row->numbers, 0);
    for (const ChoiceRow& choice : kChoices) {
        if (line.verb != choice.verb || choice.place >= line.words.size()) continue;
        if (!isOneOf(line.words[choice.place].text, choice.choices))
            throw std::invalid_argument(line.verb + " does not take \"" + line.words[choice.place].text + "\"");
    }
    if (line.verb == "expect") checkExpect(line);
    if (line.verb == "panel") checkPanel(line);
    if (line.verb == "layer") checkLayer(line);
    if (line.verb == "dialog") checkDialog(line);
}

}  // namespace

std::string quotedWord(std::string_view text) {
    std::string out = "\"";
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
    return out + "\"";
}

double numberIn(const ScriptWord& word) {
    double value = 0;
    const char* end = word.text.data() + word.text.size();
    const auto result = std::from_chars(word.text.data(), end, value);
    if (result.ec != std::errc{} || result.ptr != end || !std::isfinite(value))
        throw std::invalid_argument("\"" + word.text + "\" is no number");
    return value;
}

std::int32_t integerIn(const ScriptWord& word) {
    const double value = numberIn(word);
    if (!(std::abs(value) <= 2147483647.0) || value != std::trunc(value))
        throw std::invalid_argument("\"" + word.text + "\" is no whole number");
    return static_cast<std::int32_t>(value);
}

platform::DialogStep dialogStepIn(const ScriptWord& word) {
    using Kind = platform::DialogStep::Kind;
    const std::string& text = word.text;
    const auto control = [&](std::string_view digits) {
        return integerIn({std::string(digits), ScriptWord::kNotQuoted});
    };
    if (text.starts_with("press:")) return {Kind::press, control(std::string_view(text).substr(6)), {}, 0};
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0)
        throw std::invalid_argument("dialog does not take " + quotedWord(text));
    const bool compares = text[equals - 1] == '?';
    const std::int32_t id = control(std::string_view(text).substr(0, compares ? equals - 1 : equals));
    const std::string value = text.substr(equals + 1);
    if (compares) return {Kind::expectText, id, value, 0};
    if (word.quotedFrom == ScriptWord::kNotQuoted) {
        if (value == "on") return {Kind::check, id, {}, 0};
        if (value == "off") return {Kind::uncheck, id, {}, 0};
        if (value.starts_with("row:")) return {Kind::selectRow, id, {}, control(std::string_view(value).substr(4))};
    }
    return {Kind::setText, id, value, 0};
}

std::vector<ScriptLine> parseScript(std::string_view text, const std::string& name) {
    std::vector<ScriptLine> lines;
    int number = 0;
    if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
    while (!text.empty()) {
        ++number;
        const std::size_t end = text.find('\n');
        std::string_view raw = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
        if (!raw.empty() && raw.back() == '\r') raw.remove_suffix(1);
        try {
            std::vector<ScriptWord> words = readWords(raw);
            if (words.empty()) continue;
            ScriptLine line;
            line.number = number;
            line.verb = words.front().text;
            line.words.assign(words.begin() + 1, words.end());
            checkLine(line);
            lines.push_back(std::move(line));
        } catch (const std::invalid_argument& cause) {
            throw InputError(name + ":" + std::to_string(number) + ": " + cause.what());
        }
    }
    return lines;
}

}  // namespace quorvel::app
