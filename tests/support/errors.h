// Errors in the messages of failed expectations.
#pragma once

#include <ostream>

#include "app/sentences.h"

namespace quorvel {

inline std::ostream& operator<<(std::ostream& out, const Error& error) {
    return out << app::sentence(error, app::Language::english);
}

}  // namespace quorvel
