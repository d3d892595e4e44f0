#include "cli/output_paths.h"

#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <set>

#include "app/sentences.h"
#include "files/new_folder.h"
#include "files/target.h"

namespace quorvel::cli {

namespace fs = std::filesystem;

Result<std::vector<std::string>> outputPaths(const Options& options, const char* command, const std::string& ending) {
    if (options.output.empty() == options.outputFolder.empty())
        return makeError(ErrorCode::kOutputOrFolder).inFile(command);
    if (!options.output.empty()) {
        if (options.files.size() != 1) return makeError(ErrorCode::kOutputForSeveral).inFile(command);
        return std::vector{options.output};
    }
    const Result<bool> made = files::makeFolder(options.outputFolder);
    if (!made) return Error(made.error()).inFile(options.outputFolder);
    if (*made) {
        const Error notice = makeError(ErrorCode::kFolderMade, {options.outputFolder});
        std::cerr << command << ": " << app::sentence(notice, app::languageOf(options)) << '\n';
    }
    std::vector<std::string> paths;
    std::set<std::string> taken;
    for (const std::string& file : options.files) {
        fs::path name = fs::path(file).filename();
        if (!ending.empty()) name.replace_extension(ending);
        paths.push_back((fs::path(options.outputFolder) / name).string());
        if (!taken.insert(paths.back()).second) return makeError(ErrorCode::kSameName).inFile(paths.back());
    }
    return paths;
}

bool isStandardOutput(const std::string& path) {
    const Result<files::Target> target = files::resolveTarget(path);
    return target && target->descriptor == STDOUT_FILENO;
}

}  // namespace quorvel::cli
