#include "cli/export_command.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <sstream>

#include "app/script.h"
#include "cli/commands.h"
#include "cli/output_paths.h"
#include "cli/workers.h"

namespace quorvel::cli {

namespace {

namespace fs = std::filesystem;

constexpr char kPainter[] = "quorvel-desktop";

// Beside this program, or on the search path.
std::string painterProgram() {
    std::error_code absent;
    const fs::path beside = fs::read_symlink("/proc/self/exe", absent).parent_path() / kPainter;
    if (!absent && access(beside.c_str(), X_OK) == 0) return beside.string();
    const char* searched = std::getenv("PATH");
    std::istringstream folders(searched != nullptr ? searched : "");
    for (std::string folder; std::getline(folders, folder, ':');)
        if (const fs::path program = fs::path(folder) / kPainter; access(program.c_str(), X_OK) == 0)
            return program.string();
    throw app::InputError(std::string("export: ") + kPainter +
                          ", which paints, is neither beside quorvel nor on the path");
}

// Puts the painting program in this process's place; comes back only when that cannot be.
WorkerVerdict paint(const std::string& program, const std::string& file, const std::string& output, double dotsPerInch,
                    int words) {
    std::vector<std::string> arguments{program, "--export=" + output};
    if (dotsPerInch > 0) arguments.push_back("--dpi=" + std::to_string(dotsPerInch));
    arguments.insert(arguments.end(), {"--", file});
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    dup2(words, STDERR_FILENO);
    execv(program.c_str(), pointers.data());
    return {kExitBadInput, program + ": cannot be run\n"};
}

}  // namespace

void addExportOptions(CLI::App& command, ExportOptions* options) {
    command.add_option("FILE", options->files, "the drawings")->required();
    command.add_option("-o,--output", options->output, "where the drawing goes, OUT.pdf or OUT.png");
    command.add_option("--out-dir", options->outputFolder, "the folder where all drawings go, by their names");
    command.add_option("--format", options->format, "what goes into the folder")->check(CLI::IsMember({"pdf", "png"}));
    command.add_option("--dpi", options->dotsPerInch, "dots per inch of PNG; 192 without it")
        ->check(CLI::Range(1.0, 10000.0));
}

int exportDrawings(const ExportOptions& options) {
    const std::vector<std::string> outputs =
        outputPaths({"export", options.files, options.output, options.outputFolder, "." + options.format});
    const std::string program = painterProgram();
    const std::vector<WorkerVerdict> verdicts =
        runWorkers(options.files, " drawings exported", [&](std::size_t file, int words) {
            return paint(program, options.files[file], outputs[file], options.dotsPerInch, words);
        });
    int status = kExitOk;
    for (const WorkerVerdict& verdict : verdicts) {
        std::cerr << verdict.words;
        status = std::max(status, verdict.status);
    }
    return status;
}

}  // namespace quorvel::cli
