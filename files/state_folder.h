// The folder for what the program keeps about its own work: $XDG_STATE_HOME/quorvel, else ~/.local/state/quorvel.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/result.h"

namespace quorvel::files {

// A folder below the state folder, made with all above it, for the user alone. Empty when there is no home folder.
Result<std::string> stateFolder(std::string_view below);

// FNV-1a; short names for files about other files are made of it.
std::uint64_t pathHash(std::string_view path);
std::string hexOf(std::uint64_t number);  // 16 digits

}  // namespace quorvel::files
