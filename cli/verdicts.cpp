// What `check` and `info` print: the verdict on each drawing, in the order of the files.
#include "cli/verdicts.h"

#include <algorithm>
#include <iostream>

#include "cli/json_output.h"

namespace quorvel::cli {

namespace {

std::string withoutLineEnd(std::string text) {
    if (text.ends_with('\n')) text.pop_back();
    return text;
}

}  // namespace

Result<int> printVerdicts(const Options& options, const char* did,
                          WorkerVerdict (*verdictOn)(const std::string& file, const Options& options)) {
    const std::vector<std::string>& files = options.files;
    const bool json = options.isJson;
    const auto verdicts = runWorkers(
        {files, did, app::languageOf(options), [&](std::size_t file, int) { return verdictOn(files[file], options); }});
    if (!verdicts) return verdicts.error();
    int status = kExitOk;
    if (json) std::cout << drawingsJsonHead();
    for (std::size_t i = 0; i < files.size(); ++i) {
        const WorkerVerdict& verdict = (*verdicts)[i];
        const bool unreadable = verdict.status == kExitBadInput;
        (unreadable && !json ? std::cerr : std::cout)
            << (verdict.ended || !json ? verdict.words : errorJson(files[i], withoutLineEnd(verdict.words)))
            << (json && i + 1 < files.size() ? ",\n" : "");
        status = std::max(status, verdict.status);
    }
    if (json) std::cout << "\n]}\n";
    return status;
}

}  // namespace quorvel::cli
