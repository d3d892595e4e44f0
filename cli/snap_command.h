// Why the cursor lands where it lands: what each search of a tool's chain finds at a point.
#pragma once

#include <string>

#include "app/headless_session.h"

namespace quorvel::cli {

struct SnapQuestion {
    RealPoint at;
    double zoom = 1;
    std::string tool;  // its title in the profile's language; empty: the first tool
};

// One line a search, or indented JSON. Throws InputError when no tool bears the title.
std::string snapReport(app::HeadlessSession& session, const SnapQuestion& question, bool asJson);

}  // namespace quorvel::cli
