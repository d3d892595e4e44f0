#include "cli/output_paths.h"

#include <filesystem>
#include <set>

#include "app/script.h"
#include "platform/file.h"

namespace quorvel::cli {

namespace fs = std::filesystem;

std::vector<std::string> outputPaths(const OutputRequest& question) {
    const std::string command = std::string(question.command) + ": ";
    if (question.output.empty() == question.folder.empty())
        throw app::InputError(command + "-o for one drawing, --out-dir for several");
    if (!question.output.empty()) {
        if (question.files.size() != 1) throw app::InputError(command + "several drawings need --out-dir");
        return {question.output};
    }
    if (!platform::CreateFolder(question.folder)) throw app::InputError(question.folder + ": cannot be created");
    std::vector<std::string> paths;
    std::set<std::string> taken;
    for (const std::string& file : question.files) {
        fs::path name = fs::path(file).filename();
        if (!question.ending.empty()) name.replace_extension(question.ending);
        paths.push_back((fs::path(question.folder) / name).string());
        if (!taken.insert(paths.back()).second) throw app::InputError(paths.back() + ": two drawings of this name");
    }
    return paths;
}

}  // namespace quorvel::cli
