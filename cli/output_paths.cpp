#include "cli/output_paths.h"

#include <filesystem>
#include <set>

#include "platform/file.h"

namespace quorvel::cli {

namespace fs = std::filesystem;

Result<std::vector<std::string>> outputPaths(const Options& options, const char* command, const std::string& ending) {
    if (options.output.empty() == options.outputFolder.empty())
        return makeError(ErrorCode::kOutputOrFolder).inFile(command);
    if (!options.output.empty()) {
        if (options.files.size() != 1) return makeError(ErrorCode::kOutputForSeveral).inFile(command);
        return std::vector{options.output};
    }
    if (!platform::CreateFolder(options.outputFolder))
        return makeError(ErrorCode::kNotCreatable).inFile(options.outputFolder);
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

}  // namespace quorvel::cli
