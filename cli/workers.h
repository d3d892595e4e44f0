// One process for each file, as many at a time as there are cores: a file that brings its process down takes no other
// along.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/sentences.h"
#include "base/result.h"

namespace quorvel::cli {

// What the process for one file has to say.
struct WorkerVerdict {
    int status = 0;
    std::string words;
    bool ended = true;  // false: a signal took the process down, and words say which
};

struct WorkerTask {
    const std::vector<std::string>& files;
    const char* did;  // for the progress line, as in " drawings checked"
    app::Language language;
    // Runs in the file's own process. What it returns comes back, and so does what it, or a program that takes its
    // place, writes to the descriptor `words`.
    std::function<WorkerVerdict(std::size_t file, int words)> work;
};

// Verdicts come in the order of the files. An error when no process can be made.
Result<std::vector<WorkerVerdict>> runWorkers(const WorkerTask& task);

}  // namespace quorvel::cli
