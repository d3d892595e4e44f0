#include "cli/workers.h"

#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>

#include "cli/commands.h"
#include "cli/progress_line.h"
#include "files/termination.h"

namespace quorvel::cli {

namespace {

struct Worker {
    pid_t process = 0;
    int pipe = -1;
    std::size_t file = 0;
};

// Nothing that is thrown leaves the process, in which the program's own way out would be taken a second time.
WorkerVerdict verdictOf(const WorkerTask& task, std::size_t file, int words) {
    try {
        return task.work(file, words);
    } catch (const std::exception& thrown) {
        const Error error = makeError(ErrorCode::kInternal, {thrown.what()}).inFile(task.files[file]);
        return {kExitBadInput, app::sentence(error, task.language) + '\n', false};
    }
}

// A process that writes its words into a pipe and leaves with its status.
Result<Worker> startWorker(const WorkerTask& task, std::size_t file) {
    int ends[2];
    if (pipe(ends) != 0) return makeError(ErrorCode::kNoPipe).inFile(task.files[file]);
    const pid_t process = fork();
    if (process < 0) return makeError(ErrorCode::kNoProcess).inFile(task.files[file]);
    if (process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);  // also when nobody is left to end it
        files::terminateCleanly();
        close(ends[0]);
        const WorkerVerdict verdict = verdictOf(task, file, ends[1]);
        std::size_t written = 0;
        while (written < verdict.words.size()) {
            const ssize_t count = write(ends[1], verdict.words.data() + written, verdict.words.size() - written);
            if (count <= 0) _exit(kExitBadInput);
            written += static_cast<std::size_t>(count);
        }
        _exit(verdict.status);
    }
    close(ends[1]);
    return Worker{process, ends[0], file};
}

// Takes what the worker has to say now; true when it has ended.
bool readWorker(const Worker& worker, const WorkerTask& task, WorkerVerdict* verdict) {
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
    // A status above 128 is a signal that the process has taken care of.
    constexpr int kSignalStatus = 128;
    const int signal = WIFEXITED(status) ? WEXITSTATUS(status) - kSignalStatus : WTERMSIG(status);
    verdict->ended = signal <= 0;
    verdict->status = verdict->ended ? WEXITSTATUS(status) : kExitBadInput;
    if (verdict->ended) return true;
    const Error error = makeError(ErrorCode::kProcessKilled, {std::to_string(signal)}).inFile(task.files[worker.file]);
    verdict->words = app::sentence(error, task.language) + '\n';
    return true;
}

void waitForWords(const std::vector<Worker>& workers) {
    std::vector<pollfd> polled;
    for (const Worker& worker : workers) polled.push_back({worker.pipe, POLLIN, 0});
    poll(polled.data(), polled.size(), -1);
}

// Those that take no notice of being asked are killed.
void endWorkers(const std::vector<Worker>& workers) {
    constexpr auto kPause = std::chrono::milliseconds(10), kPatience = std::chrono::milliseconds(3000);
    for (const Worker& worker : workers) kill(worker.process, SIGTERM);
    auto waited = std::chrono::milliseconds(0);
    for (const Worker& worker : workers) {
        while (waitpid(worker.process, nullptr, WNOHANG) == 0 && waited < kPatience) {
            std::this_thread::sleep_for(kPause);
            waited += kPause;
        }
        kill(worker.process, SIGKILL);
    }
}

bool hasWords(const Worker& worker) {
    pollfd polled{worker.pipe, POLLIN, 0};
    return poll(&polled, 1, 0) > 0;
}

}  // namespace

Result<std::vector<WorkerVerdict>> runWorkers(const WorkerTask& task) {
    const std::vector<std::string>& files = task.files;
    const std::size_t atOnce = std::max(1U, std::thread::hardware_concurrency());
    const ProgressLine progress(files.size());
    std::vector<WorkerVerdict> verdicts(files.size());
    std::vector<Worker> running;
    const files::TerminationAction end([&running] { endWorkers(running); });
    std::size_t next = 0, ended = 0;
    while (ended < files.size()) {
        while (running.size() < atOnce && next < files.size()) {
            const files::TerminationPause pause;
            const Result<Worker> worker = startWorker(task, next++);
            if (!worker) return worker.error();
            running.push_back(*worker);
        }
        waitForWords(running);
        const files::TerminationPause pause;
        std::erase_if(running, [&](const Worker& worker) {
            if (!hasWords(worker) || !readWorker(worker, task, &verdicts[worker.file])) return false;
            progress.show(++ended, task.did);
            return true;
        });
    }
    return verdicts;
}

}  // namespace quorvel::cli
