// Texts that are rows of words and numbers with blanks between them.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace quorvel {

// Nine digits give a 32-bit float back.
constexpr int kFloatDigits = 9, kPlaceDigits = 12;

inline void AppendWord(std::string* text, std::string_view word) {
    if (!text->empty()) *text += ' ';
    *text += word;
}

inline void AppendNumber(std::string* text, double number, int digits) {
    char printed[40];
    std::snprintf(printed, sizeof printed, "%.*g", digits, number);
    AppendWord(text, printed);
}

// Reads a text from its beginning; an empty word is its end.
class Words {
  public:
    explicit Words(std::string_view text) : text_(text) {}
    std::string Next() {
        const std::size_t begin = std::min(text_.find_first_not_of(' '), text_.size());
        const std::size_t end = std::min(text_.find(' ', begin), text_.size());
        std::string word(text_.substr(begin, end - begin));
        text_.remove_prefix(end);
        return word;
    }
    // What is left, behind one blank.
    std::string Rest() const { return std::string(text_.substr(std::min<std::size_t>(1, text_.size()))); }
    // Takes the next word when it is a finite number.
    bool Number(double* value) {
        const std::string_view before = text_;
        const std::string word = Next();
        char* end = nullptr;
        const double found = std::strtod(word.c_str(), &end);
        if (!word.empty() && *end == 0 && std::isfinite(found)) {
            *value = found;
            return true;
        }
        text_ = before;
        return false;
    }

  private:
    std::string_view text_;
};

}  // namespace quorvel
