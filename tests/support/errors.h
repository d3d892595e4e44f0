// Errors in the messages of failed expectations.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "app/sentences.h"

namespace quorvel {

inline std::ostream& operator<<(std::ostream& out, const Error& error) {
    return out << app::sentence(error, app::Language::english);
}

// All of them in words.
inline std::string said(const std::vector<Error>& errors) {
    std::string text;
    for (const Error& error : errors) text += (text.empty() ? "" : "; ") + app::sentence(error, app::Language::english);
    return text;
}

}  // namespace quorvel
