// Drawings as PDF and PNG with no window on the screen: `quorvel-desktop`, the program that paints, is run for each.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace quorvel::cli {

struct ExportOptions {
    std::vector<std::string> files;
    std::string output;          // for one drawing, ending in .pdf or .png
    std::string outputFolder;    // for any number
    std::string format = "pdf";  // of what goes into the folder: "pdf" or "png"
    double dotsPerInch = 0;      // of PNG; 0: the painter's own choice
};

void addExportOptions(CLI::App& command, ExportOptions* options);
// A drawing that fails is told in a line, and the others follow; the exit status says that one did. Throws InputError
// when the painting program is not there.
int exportDrawings(const ExportOptions& options);

}  // namespace quorvel::cli
