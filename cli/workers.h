// One process for each file, as many at a time as there are cores: a file that brings its process down takes no other
// along.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace quorvel::cli {

// What the process for one file has to say.
struct WorkerVerdict {
    int status = 0;
    std::string words;
    bool ended = true;  // false: a signal took the process down, and words say which
};

// work runs in the file's own process; what it returns comes back, and so does what it, or a program that takes its
// place, writes to the descriptor `words`. Verdicts come in the order of the files. did: for the progress line, as in
// " drawings checked". Throws InputError when no process can be made.
std::vector<WorkerVerdict> runWorkers(const std::vector<std::string>& files, const char* did,
                                      const std::function<WorkerVerdict(std::size_t file, int words)>& work);

}  // namespace quorvel::cli
