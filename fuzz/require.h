// What an oracle of a fuzzer says when it does not hold: the line, and an end that the fuzzer keeps the input of.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace quorvel::fuzz {

inline void require(bool holds, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (holds) return;
    std::fprintf(stderr, "%s:%d: does not hold\n", file, line);
    std::abort();
}

// What was made of the input, with SHOW in the environment.
inline void show(const std::string& made) {
    if (std::getenv("SHOW") != nullptr) std::fprintf(stderr, "%s\n", made.c_str());
}

// Shows where the second text begins to differ from the first.
inline void requireSame(const std::string& wanted, const std::string& found, const char* file = __builtin_FILE(),
                        int line = __builtin_LINE()) {
    if (wanted == found) return;
    std::size_t at = 0;
    while (at < wanted.size() && at < found.size() && wanted[at] == found[at]) ++at;
    const std::size_t from = at < 300 ? 0 : at - 300;
    std::fprintf(stderr, "wanted: %s\n\nfound: %s\n", wanted.substr(from, 400).c_str(),
                 found.substr(from, 400).c_str());
    require(false, file, line);
}

}  // namespace quorvel::fuzz
