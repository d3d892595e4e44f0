// Why the cursor lands where it lands: what each search of a tool's chain finds at a point.
#pragma once

#include <string>

#include "cli/dump.h"
#include "cli/session.h"

namespace quorvel::cli {

struct SnapQuestion {
    RealPoint at;
    double zoom = 1;
    std::string tool;  // title in the language in force; empty: the first tool
};

// Throws InputError when no tool bears the title.
Json snapJson(Session& session, const SnapQuestion& question);
std::string snapText(const Json& report);

}  // namespace quorvel::cli
