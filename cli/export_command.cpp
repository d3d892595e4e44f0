// Drawings as PDF and PNG with no window on the screen: `quorvel-desktop`, the program that paints, is run for each. A
// drawing that fails is told in a line, and the others follow; the exit status says that one did.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <sstream>

#include "cli/commands.h"
#include "cli/output_paths.h"
#include "cli/workers.h"

namespace quorvel::cli {

namespace {

namespace fs = std::filesystem;

constexpr char kPainter[] = "quorvel-desktop";

// Beside this program, or on the search path.
Result<std::string> painterProgram() {
    std::error_code absent;
    const fs::path beside = fs::read_symlink("/proc/self/exe", absent).parent_path() / kPainter;
    if (!absent && access(beside.c_str(), X_OK) == 0) return beside.string();
    const char* searched = std::getenv("PATH");
    std::istringstream folders(searched != nullptr ? searched : "");
    for (std::string folder; std::getline(folders, folder, ':');)
        if (const fs::path program = fs::path(folder) / kPainter; access(program.c_str(), X_OK) == 0)
            return program.string();
    return makeError(ErrorCode::kNoPainter, {kPainter}).inFile("export");
}

// Puts the painting program in this process's place; comes back only when that cannot be.
WorkerVerdict paint(const std::string& program, const std::string& file, const std::string& output,
                    const Options& options, int words) {
    std::vector<std::string> arguments{program, "--export=" + output};
    if (options.dotsPerInch > 0) arguments.push_back("--dpi=" + std::to_string(options.dotsPerInch));
    if (!options.language.empty()) arguments.push_back("--language=" + options.language);
    arguments.insert(arguments.end(), {"--", file});
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    dup2(words, STDERR_FILENO);
    execv(program.c_str(), pointers.data());
    const Error error = makeError(ErrorCode::kNotRunnable).inFile(program);
    return {kExitBadInput, app::sentence(error, app::languageOf(options)) + '\n'};
}

}  // namespace

Result<int> exportDrawings(const Options& options) {
    const auto outputs = outputPaths(options, "export", "." + options.format);
    if (!outputs) return outputs.error();
    const Result<std::string> program = painterProgram();
    if (!program) return program.error();
    const auto verdicts =
        runWorkers({options.files, " drawings exported", app::languageOf(options), [&](std::size_t file, int words) {
                        return paint(*program, options.files[file], (*outputs)[file], options, words);
                    }});
    if (!verdicts) return verdicts.error();
    int status = kExitOk;
    for (const WorkerVerdict& verdict : *verdicts) {
        std::cerr << verdict.words;
        status = std::max(status, verdict.status);
    }
    return status;
}

}  // namespace quorvel::cli
