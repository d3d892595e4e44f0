// Draws drawing frames from a parts list with no window: the plug-in's own Schedule dialog imports the list, and its
// own tool is dragged over each drawing.
#pragma once

#include <string>
#include <vector>

#include "app/headless_session.h"

namespace CLI {
class App;
}

namespace quorvel::cli {

struct FrameOptions {
    std::vector<std::string> files;
    std::string parts;              // the list, CSV in the system code page
    std::vector<std::string> sets;  // KEY=TEXT: settings on top of the list's
    std::string mode = "bottom";    // "bottom" or "top": where the table stands
    std::string at;                 // LEFT,BOTTOM,RIGHT,TOP in document points
    std::string output;             // for one drawing
    std::string outputFolder;       // for any number; each keeps its name
};

void addFrameOptions(CLI::App& command, FrameOptions* options);
// The settings of the user's profile count, and stay as they are. A drawing that fails is told in a line, and the
// others follow; the exit status says that one did.
int drawFrames(const FrameOptions& options, const app::SessionOptions& session);

}  // namespace quorvel::cli
