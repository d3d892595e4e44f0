// Drawings as PDF and PNG with no window on the screen: `quorvel-desktop`, the program that paints, is run for each. A
// drawing that fails is told in a line, and the others follow; the exit status says that one did.
#include <unistd.h>

#include <filesystem>
#include <iostream>

#include "cli/commands.h"
#include "cli/output_paths.h"
#include "cli/workers.h"
#include "files/target.h"
#include "files/termination.h"

namespace quorvel::cli {

namespace {

namespace fs = std::filesystem;

constexpr char kPainter[] = "quorvel-desktop";

// Beside this program or in the library folder of its installation, as the plug-in is. Not on the search path, where
// whoever sent a folder of drawings might have put another one.
Result<std::string> painterProgram() {
    std::error_code absent;
    const fs::path folder = fs::read_symlink("/proc/self/exe", absent).parent_path();
    if (!absent)
        for (const fs::path& program : {folder / kPainter, folder.parent_path() / "lib/quorvel" / kPainter})
            if (access(program.c_str(), X_OK) == 0) return program.string();
    return makeError(ErrorCode::kNoPainter, {kPainter}).inFile("export");
}

// Puts the painting program in this process's place; comes back only when that cannot be.
WorkerVerdict paint(const std::string& program, const std::string& file, const std::string& output,
                    const Options& options, int words) {
    std::vector<std::string> arguments{program, "--export=" + output};
    // Only where no name says it.
    if (const Result<files::Target> target = files::resolveTarget(output);
        target && target->kind == files::TargetKind::kStream)
        arguments.push_back("--format=" + options.format);
    if (options.replacesReadOnly) arguments.emplace_back("--force");
    if (options.dotsPerInch > 0) arguments.push_back("--dpi=" + std::to_string(options.dotsPerInch));
    if (!options.language.empty()) arguments.push_back("--language=" + options.language);
    for (const std::string& folder : options.imageFolders) arguments.push_back("--allow-files=" + folder);
    arguments.insert(arguments.end(), {"--", file});
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    dup2(words, STDERR_FILENO);
    files::releaseSignals();
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
