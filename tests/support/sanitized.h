// What tests allow for where the sanitizers run, which take several times the time and memory.
#pragma once

#include <algorithm>

namespace quorvel::tests {

constexpr bool kSanitized = QUORVEL_SANITIZED;
// Rounds of a random test.
constexpr int rounds(int count) { return kSanitized ? std::max(count / 10, 1) : count; }

}  // namespace quorvel::tests
