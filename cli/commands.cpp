// Reads the command line and runs the command.
#include "cli/commands.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <iostream>
#include <set>

#include "app/dimension_list.h"
#include "app/dump.h"
#include "app/headless_session.h"
#include "app/recalculation.h"
#include "app/script.h"
#include "app/script_runner.h"
#include "app/sentences.h"
#include "app/temporary_profile.h"
#include "cli/check_command.h"
#include "cli/export_command.h"
#include "cli/frame_command.h"
#include "cli/json_output.h"
#include "cli/snap_command.h"
#include "interchange/svg/svg.h"
#include "platform/file.h"

namespace quorvel::cli {

namespace {

struct Options {
    app::SessionOptions session;
    std::string file, output, at;
    std::vector<std::string> files, ids;
    bool json = false, all = false;
    SnapQuestion snap;
    FrameOptions frame;
    ExportOptions exported;
};

std::string readFile(const std::string& path) {
    std::string bytes;
    if (!platform::ReadWholeFile(path, &bytes)) throw app::InputError(path + ": cannot be read");
    return bytes;
}

void tellWarnings(const std::string& file, const std::vector<Error>& warnings) {
    for (const std::string& warning : app::warningSentences(warnings, app::Language::english))
        std::cerr << file << ": " << warning << '\n';
}

// For commands that read a drawing and run no plug-in.
class ReadDrawing {
  public:
    explicit ReadDrawing(const std::string& path) : drawing_(interchange::readSvgFile(path)) {
        if (!drawing_) throw app::InputError(app::sentence(drawing_.error(), app::Language::english));
        tellWarnings(path, drawing_->warnings);
    }
    const doc::Document& document() const { return *drawing_->document; }
    const std::string& rulerUnit() const { return drawing_->rulerUnit; }

  private:
    host::Host measuring_;  // texts measure as they do while the plug-in runs
    Result<interchange::SvgDrawing> drawing_;
};

int runScriptFile(const Options& options) {
    const std::vector<app::ScriptLine> lines = app::parseScript(readFile(options.file), options.file);
    app::HeadlessSession session(options.session);
    const app::ScriptOutcome outcome =
        app::runScript(lines, options.file, session, [](const std::string& line) { std::cout << line << std::endl; });
    session.shutdown();
    if (outcome.held) return kExitOk;
    std::cerr << outcome.fault << '\n';
    return kExitFault;
}

int dumpFile(const Options& options) {
    const ReadDrawing drawing(options.file);
    std::cout << app::dumpDocument(drawing.document(), drawing.rulerUnit()) << '\n';
    return kExitOk;
}

int listFile(const Options& options) {
    const ReadDrawing drawing(options.file);
    const std::vector<app::RecordedDimension> dimensions = app::listDimensions(drawing.document());
    if (options.json)
        std::cout << listJson(dimensions) << '\n';
    else
        std::cout << app::listText(dimensions);
    return kExitOk;
}

int snapAt(Options options) {
    app::ScriptWord h, v;
    const std::size_t comma = options.at.find(',');
    try {
        h.text = options.at.substr(0, comma);
        v.text = comma == std::string::npos ? "" : options.at.substr(comma + 1);
        options.snap.at = {static_cast<float>(app::numberIn(h)), static_cast<float>(app::numberIn(v))};
    } catch (const std::invalid_argument& cause) {
        throw app::InputError("--at " + options.at + ": " + cause.what());
    }
    const app::TemporaryProfile profile(options.session);
    app::HeadlessSession session(profile.options());
    session.openDrawing(options.file);
    tellWarnings(options.file, session.takeWarnings());
    session.start();
    std::cout << snapReport(session, options.snap, options.json);
    return kExitOk;
}

int recalculateFile(const Options& options) {
    const app::TemporaryProfile profile(options.session);
    app::HeadlessSession session(profile.options());
    session.openDrawing(options.file);
    tellWarnings(options.file, session.takeWarnings());
    session.start();
    const std::set<std::string> asked(options.ids.begin(), options.ids.end());
    std::set<std::string> unknown = asked;
    std::vector<doc::ArtId> chosen;
    for (const app::DimensionCheck& check : app::checkDimensions(session)) {
        unknown.erase(check.name);
        if ((asked.empty() || asked.contains(check.name)) && (check.stale() || options.all))
            chosen.push_back(check.group);
    }
    if (!unknown.empty()) throw app::InputError(options.file + ": no dimension has the id " + *unknown.begin());
    const int rebuilt = app::rebuildDimensions(session, chosen);
    session.saveDrawing(options.output);
    std::cout << options.output << ": " << rebuilt << " rebuilt\n";
    return kExitOk;
}

void addSessionOptions(CLI::App* command, app::SessionOptions* session) {
    command->add_option("--profile", session->profile,
                        "folder that stands for the documents folder (settings, presets)");
    command->add_option("--language", session->language, "language of tools and dialogs")
        ->check(CLI::IsMember({"ja", "en", "ko"}));
    command->add_option("--seed", session->seed, "start of the random numbers, for object ids that repeat");
}

// A subcommand with the options that all share and an example that works.
CLI::App* addCommand(CLI::App& app, Options* options, const char* name, const char* what, const char* example) {
    CLI::App* command = app.add_subcommand(name, what);
    command->footer(std::string("Example: quorvel ") + name + " " + example);
    addSessionOptions(command, &options->session);
    return command;
}

}  // namespace

int runCommandLine(int argc, char** argv) {
    CLI::App app("Quorvel dimensions vector drawings: SVG in, SVG out, every other byte kept.");
    app.require_subcommand(1);
    app.footer("Example: quorvel run examples/bracket.script");
    Options options;
    const CLI::Validator aboveZero(
        [](std::string& text) -> std::string {
            double value = 0;
            return CLI::detail::lexical_cast(text, value) && value > 0 && value < INFINITY ? "" : "a number above 0";
        },
        "NUMBER");

    CLI::App* run = addCommand(app, &options, "run", "replay a script", "examples/bracket.script --language en");
    run->add_option("FILE", options.file, "the script")->required();
    CLI::App* dump =
        addCommand(app, &options, "dump", "the whole art tree as JSON, in document points", "examples/bracket.svg");
    dump->add_option("FILE", options.file, "the drawing")->required();
    CLI::App* list = addCommand(app, &options, "list", "the dimensions and frames with their texts, points and links",
                                "out/bracket.svg --json");
    list->add_option("FILE", options.file, "the drawing")->required();
    list->add_flag("--json", options.json, "as JSON");
    CLI::App* snap = addCommand(app, &options, "snap", "what each snap search finds at a point, and which one wins",
                                "examples/bracket.svg --at 120,300");
    snap->add_option("FILE", options.file, "the drawing")->required();
    snap->add_option("--at", options.at, "the point, X,Y in document points")->required();
    snap->add_option("--zoom", options.snap.zoom, "pixels per point")->check(aboveZero);
    snap->add_option("--tool", options.snap.tool, "the tool's title");
    snap->add_flag("--json", options.json, "as JSON");
    CLI::App* recalc =
        addCommand(app, &options, "recalc", "rebuild the dimensions that no longer say what they measure",
                   "out/bracket.svg -o out/true.svg");
    recalc->add_option("FILE", options.file, "the drawing")->required();
    recalc->add_option("-o,--output", options.output, "where the drawing goes")->required();
    recalc->add_option("--ids", options.ids, "only these, by SVG id, parted by commas")
        ->delimiter(',')
        ->allow_extra_args(false);
    recalc->add_flag("--all", options.all, "also those that are true already");
    CLI::App* check = addCommand(app, &options, "check", "name the dimensions that no longer say what they measure",
                                 "out/bracket.svg");
    check->add_option("FILE", options.files, "the drawings")->required();
    check->add_flag("--json", options.json, "as JSON");
    CLI::App* frame =
        addCommand(app, &options, "frame", "draw a drawing frame with title block and parts table",
                   "examples/bracket.svg --parts examples/bracket.csv --at 40,40,800,555 -o out/sheet.svg");
    addFrameOptions(*frame, &options.frame);
    CLI::App* exported = addCommand(app, &options, "export", "drawings as PDF or PNG, as the window shows them",
                                    "examples/bracket.svg -o out/bracket.pdf");
    addExportOptions(*exported, &options.exported);

    try {
        app.parse(argc, argv);
        if (run->parsed()) return runScriptFile(options);
        if (dump->parsed()) return dumpFile(options);
        if (list->parsed()) return listFile(options);
        if (snap->parsed()) return snapAt(options);
        if (recalc->parsed()) return recalculateFile(options);
        if (frame->parsed()) return drawFrames(options.frame, options.session);
        if (exported->parsed()) return exportDrawings(options.exported);
        return checkMany(options.files, options.session, options.json);
    } catch (const CLI::Success& help) {
        return app.exit(help);
    } catch (const CLI::ParseError& error) {
        const auto chosen = app.get_subcommands();
        std::cerr << "quorvel " << (chosen.empty() ? "" : chosen.front()->get_name() + ": ") << error.what() << '\n';
        return kExitBadInput;
    } catch (const app::InputError& error) {
        std::cerr << error.what() << '\n';
        return kExitBadInput;
    } catch (const std::exception& error) {
        std::cerr << (options.file.empty() ? "quorvel" : options.file) << ": " << error.what() << '\n';
        return kExitBadInput;
    }
}

}  // namespace quorvel::cli
