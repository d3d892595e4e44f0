// The commands of `quorvel COMMAND ...`: what each takes, and the function that does it. Output goes to the standard
// output, a line for each error and warning to the standard error.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "app/plugin_session.h"
#include "base/result.h"

namespace quorvel::cli {

constexpr int kExitOk = 0;
constexpr int kExitFault = 1;  // a script's expectation, a stale dimension
constexpr int kExitBadInput = 2;

// The arguments of the command line. Each command reads what its row names.
struct Options : app::SessionOptions {
    std::string file;                       // of the commands over one file
    std::vector<std::string> files;         // of those over several
    std::string output;                     // for one drawing
    std::string outputFolder;               // for any number; each keeps its name
    std::string at;                         // document points, parted by commas
    std::string tool;                       // its title in the profile's language; empty: the first tool
    std::string parts;                      // a parts list, CSV in the system code page or UTF-8
    std::string mode = "bottom";            // the end of the sheet that the parts table is at: "bottom" or "top"
    std::string format = "pdf";             // of what goes into the folder or a stream: "pdf" or "png"
    std::vector<std::string> ids;           // SVG ids
    std::vector<std::string> imageFolders;  // whose images drawings may show, beside those in their own
    std::vector<std::string> sets;          // KEY=TEXT: settings on top of the parts list's
    double zoom = 1;                        // pixels per point
    double dotsPerInch = 0;                 // of PNG; 0: the painter's own choice
    bool isJson = false, isForAll = false, isStrict = false, isDryRun = false;
    bool replacesCharacters = false;  // that code page 932 lacks
};

// What the text of an option must be.
struct OptionCheck {
    enum Kind { kNone, kOneOf, kAboveZero, kInRange };
    Kind kind = kNone;
    const char* said = "";  // of it in the help; the choices are this, "{a,b}"
    double least = 0, most = 0;
};

struct OptionRow {
    using Target = std::variant<std::string Options::*, std::vector<std::string> Options::*, bool Options::*,
                                double Options::*, std::optional<std::uint64_t> Options::*>;
    const char* names;  // "-o,--output"; "FILE" for arguments without a name
    const char* what;
    Target target;
    bool isRequired = false;
    OptionCheck check = {};
    char delimiter = 0;  // parts the values of one text
};

struct CommandRow {
    const char* name;
    const char* what;
    const char* example;  // behind the name
    std::span<const OptionRow> options;
    // The exit status, or the error that ends the command with kExitBadInput.
    Result<int> (*run)(const Options& options);
};

std::span<const CommandRow> commandTable();
// Of every command.
std::span<const OptionRow> sharedOptions();

// Each in a file of its name, such as run_command.cpp.
Result<int> runScriptFile(const Options& options);
Result<int> dumpDrawing(const Options& options);
Result<int> listDrawing(const Options& options);
Result<int> informAbout(const Options& options);
Result<int> snapAt(const Options& options);
Result<int> recalculateDrawing(const Options& options);
Result<int> checkDrawings(const Options& options);
Result<int> drawFrames(const Options& options);
Result<int> exportDrawings(const Options& options);

}  // namespace quorvel::cli
