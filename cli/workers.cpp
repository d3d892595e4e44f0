#include "cli/workers.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <thread>

#include "app/script.h"
#include "cli/commands.h"
#include "cli/progress_line.h"

namespace quorvel::cli {

namespace {

struct Worker {
    pid_t process = 0;
    int pipe = -1;
    std::size_t file = 0;
};

using Work = std::function<WorkerVerdict(std::size_t file, int words)>;

// Nothing that is thrown leaves the process, in which the program's own way out would be taken a second time.
WorkerVerdict verdictOf(const std::string& file, std::size_t index, const Work& work, int words) {
    try {
        return work(index, words);
    } catch (const std::exception& error) {
        return {kExitBadInput, file + ": " + error.what() + '\n', false};
    }
}

// A process that writes its words into a pipe and leaves with its status.
Worker startWorker(const std::string& file, std::size_t index, const Work& work) {
    int ends[2];
    if (pipe(ends) != 0) throw app::InputError(file + ": no pipe for its process");
    const pid_t process = fork();
    if (process < 0) throw app::InputError(file + ": no process for it");
    if (process == 0) {
        close(ends[0]);
        const WorkerVerdict verdict = verdictOf(file, index, work, ends[1]);
        std::size_t written = 0;
        while (written < verdict.words.size()) {
            const ssize_t count = write(ends[1], verdict.words.data() + written, verdict.words.size() - written);
            if (count <= 0) _exit(kExitBadInput);
            written += static_cast<std::size_t>(count);
        }
        _exit(verdict.status);
    }
    close(ends[1]);
    return {process, ends[0], index};
}

// Takes what the worker has to say now; true when it has ended.
bool readWorker(const Worker& worker, const std::string& file, WorkerVerdict* verdict) {
    char bytes[65536];
    const ssize_t count = read(worker.pipe, bytes, sizeof bytes);
    if (count > 0) {
        verdict->words.append(bytes, static_cast<std::size_t>(count));
        return false;
    }
    if (count < 0 && errno == EINTR) return false;
    close(worker.pipe);
    int status = 0;
    while (waitpid(worker.process, &status, 0) < 0 && errno == EINTR) {
    }
    verdict->status = WIFEXITED(status) ? WEXITSTATUS(status) : kExitBadInput;
    verdict->ended = WIFEXITED(status);
    if (!verdict->ended)
        verdict->words = file + ": its process ended on signal " + std::to_string(WTERMSIG(status)) + '\n';
    return true;
}

void waitForWords(const std::vector<Worker>& workers) {
    std::vector<pollfd> polled;
    for (const Worker& worker : workers) polled.push_back({worker.pipe, POLLIN, 0});
    poll(polled.data(), polled.size(), -1);
}

bool hasWords(const Worker& worker) {
    pollfd polled{worker.pipe, POLLIN, 0};
    return poll(&polled, 1, 0) > 0;
}

}  // namespace

std::vector<WorkerVerdict> runWorkers(const std::vector<std::string>& files, const char* did, const Work& work) {
    const std::size_t atOnce = std::max(1U, std::thread::hardware_concurrency());
    const ProgressLine progress(files.size());
    std::vector<WorkerVerdict> verdicts(files.size());
    std::vector<Worker> running;
    std::size_t next = 0, ended = 0;
    while (ended < files.size()) {
        while (running.size() < atOnce && next < files.size()) {
            running.push_back(startWorker(files[next], next, work));
            ++next;
        }
        waitForWords(running);
        std::erase_if(running, [&](const Worker& worker) {
            if (!hasWords(worker) || !readWorker(worker, files[worker.file], &verdicts[worker.file])) return false;
            progress.show(++ended, did);
            return true;
        });
    }
    return verdicts;
}

}  // namespace quorvel::cli
