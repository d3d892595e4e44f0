// Errors and warnings in words. This is the only place below the window that words them for a user; every code has a
// row with its sentence in each language.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "platform/dialog.h"

namespace quorvel::app {

using platform::Language;

// "FILE: line 3: path "plate": SENTENCE", with as much of the place as the error knows. One line of UTF-8, but for the
// file's name, whose bytes stay as they were given.
std::string sentence(const Error& error, Language language);
// A line for each in alphabetical order, without the file; of a great many kinds the first ones and how many there are
// besides.
std::vector<std::string> warningSentences(const std::vector<Error>& warnings, Language language);

// A row of the table; {1} and {2} are the places of the arguments.
struct SentenceRow {
    ErrorCode code;
    int arguments;
    std::string_view english, japanese;
};
// In the order of the codes, one row each.
std::span<const SentenceRow> sentenceTable();

}  // namespace quorvel::app
