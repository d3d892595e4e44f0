// The table of commands and their options.
#include "cli/commands.h"

namespace quorvel::cli {

namespace {

constexpr OptionCheck oneOf(const char* choices) { return {OptionCheck::kOneOf, choices}; }
constexpr OptionCheck kAboveZero{OptionCheck::kAboveZero, "NUMBER"};
constexpr OptionCheck kDotsPerInch{OptionCheck::kInRange, "FLOAT in [1 - 10000]", 1, 10000};

constexpr OptionRow required(const char* names, const char* what, OptionRow::Target target) {
    return {names, what, target, true};
}

// &Options::profile is a member of the base for the language.
template <class Value>
constexpr OptionRow::Target ofSession(Value app::SessionOptions::*member) {
    return static_cast<Value Options::*>(member);
}

constexpr OptionRow kShared[] = {
    {"--profile", "folder used as the documents folder (settings, presets)", ofSession(&app::SessionOptions::profile)},
    {"--language", "language of tools and dialogs", ofSession(&app::SessionOptions::language), false,
     oneOf("{ja,en,ko}")},
    {"--seed", "start of the random numbers, for object ids that repeat", ofSession(&app::SessionOptions::seed)},
};

constexpr OptionRow kDrawing = required("FILE", "the drawing; - is the standard input", &Options::file);
constexpr OptionRow kDrawings = required("FILE", "the drawings; - is the standard input", &Options::files);
constexpr OptionRow kJson = {"--json", "as JSON", &Options::isJson};
constexpr OptionRow kOutput = {"-o,--output", "where the drawing goes; - is the standard output", &Options::output};
constexpr OptionRow kOutputFolder = {"--out-dir", "the folder where all drawings go, by their names",
                                     &Options::outputFolder};
constexpr OptionRow kForce = {"--force", "replace files that are read-only too",
                              ofSession(&app::SessionOptions::replacesReadOnly)};
constexpr OptionRow kNoBackup = {"--no-backup", "keep no copy of the version that was there",
                                 ofSession(&app::SessionOptions::skipsBackups)};

constexpr OptionRow kRun[] = {required("FILE", "the script; - is the standard input", &Options::file), kForce,
                              kNoBackup};
constexpr OptionRow kDump[] = {kDrawing};
constexpr OptionRow kList[] = {kDrawing, kJson};
constexpr OptionRow kInfo[] = {kDrawings, kJson};
constexpr OptionRow kSnap[] = {
    kDrawing,
    required("--at", "the point, X,Y in document points", &Options::at),
    {"--zoom", "pixels per point", &Options::zoom, false, kAboveZero},
    {"--tool", "the tool's title", &Options::tool},
    kJson,
};
constexpr OptionRow kRecalc[] = {
    kDrawing,
    kOutput,
    {"--ids", "only these, by SVG id, parted by commas", &Options::ids, false, {}, ','},
    {"--all", "also those that are true already", &Options::isForAll},
    {"--dry-run", "only say what would change, and why", &Options::isDryRun},
    kForce,
    kNoBackup,
};
constexpr OptionRow kCheck[] = {
    kDrawings,
    kJson,
    {"--strict", "any difference counts, however small", &Options::isStrict},
};
constexpr OptionRow kFrame[] = {
    kDrawings,
    required("--parts", "the parts list, CSV in code page 932 or UTF-8", &Options::parts),
    {"--set", "a setting on top of the list's, KEY=TEXT, such as flZwkTitle=Bracket", &Options::sets},
    {"--replace", "put \"?\" in the place of characters that code page 932 lacks", &Options::replacesCharacters},
    {"--mode", "the table stands on the title block or hangs from the top", &Options::mode, false,
     oneOf("{bottom,top}")},
    required("--at", "the frame, LEFT,BOTTOM,RIGHT,TOP in document points", &Options::at),
    kOutput,
    kOutputFolder,
    kForce,
    kNoBackup,
};
constexpr OptionRow kExport[] = {
    kDrawings,
    {"-o,--output", "where the drawing goes, OUT.pdf or OUT.png; - is the standard output", &Options::output},
    kOutputFolder,
    {"--format", "what goes into the folder or the standard output", &Options::format, false, oneOf("{pdf,png}")},
    {"--allow-files", "a folder whose images drawings may show, beside those in their own", &Options::imageFolders},
    {"--dpi", "dots per inch of PNG; 192 without it", &Options::dotsPerInch, false, kDotsPerInch},
    kForce,
};

constexpr CommandRow kCommands[] = {
    {"run", "replay a script", "examples/bracket.script --language en", kRun, runScriptFile},
    {"dump", "the whole art tree as JSON, in document points", "examples/bracket.svg", kDump, dumpDrawing},
    {"list", "the dimensions and frames with their texts, points and links", "out/bracket.svg --json", kList,
     listDrawing},
    {"info", "page, user unit and scale, what is in the drawing, and what is not understood", "examples/bracket.svg",
     kInfo, informAbout},
    {"snap", "what each snap search finds at a point, and which one wins", "examples/bracket.svg --at 120,300", kSnap,
     snapAt},
    {"recalc", "rebuild the dimensions that no longer say what they measure", "out/bracket.svg -o out/true.svg",
     kRecalc, recalculateDrawing},
    {"check", "name the dimensions that no longer say what they measure", "out/bracket.svg", kCheck, checkDrawings},
    {"frame", "draw a drawing frame with title block and parts table",
     "examples/bracket.svg --parts examples/bracket.csv --at 40,40,800,555 -o out/sheet.svg", kFrame, drawFrames},
    {"export", "drawings as PDF or PNG, as the window shows them", "examples/bracket.svg -o out/bracket.pdf", kExport,
     exportDrawings},
};

}  // namespace

std::span<const CommandRow> commandTable() { return kCommands; }

std::span<const OptionRow> sharedOptions() { return kShared; }

}  // namespace quorvel::cli
