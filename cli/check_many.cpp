#include "cli/check_many.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <thread>

#include "cli/commands.h"
#include "cli/recalculation.h"
#include "cli/script.h"

namespace quorvel::cli {

namespace {

// What one drawing's process has to say.
struct Verdict {
    int status = kExitBadInput;
    std::string out;
};

Verdict checkOne(const std::string& file, const SessionOptions& options, bool json) {
    try {
        Session session(options);
        session.openDrawing(file);
        session.start();
        const std::vector<DimensionCheck> checks = checkDimensions(session);
        const bool stale = std::any_of(checks.begin(), checks.end(), [](const auto& check) { return check.stale(); });
        return {stale ? kExitFault : kExitOk, json ? checkJson(file, checks).dump(1) : checkText(file, checks)};
    } catch (const std::exception& error) {
        const std::string what = error.what();
        const std::string line = what.rfind(file, 0) == 0 ? what : file + ": " + what;
        if (json) return {kExitBadInput, Json({{"file", file}, {"error", what}}).dump(1)};
        return {kExitBadInput, line + '\n'};
    }
}

struct Worker {
    pid_t process = 0;
    int pipe = -1;
    std::size_t file = 0;
};

// A process that writes its words into a pipe and leaves with its status.
Worker startWorker(const std::string& file, std::size_t index, const SessionOptions& options, bool json) {
    int ends[2];
    if (pipe(ends) != 0) throw InputError(file + ": no pipe for its process");
    const pid_t process = fork();
    if (process < 0) throw InputError(file + ": no process for it");
    if (process == 0) {
        close(ends[0]);
        const Verdict verdict = checkOne(file, options, json);
        std::size_t written = 0;
        while (written < verdict.out.size()) {
            const ssize_t count = write(ends[1], verdict.out.data() + written, verdict.out.size() - written);
            if (count <= 0) _exit(kExitBadInput);
            written += static_cast<std::size_t>(count);
        }
        _exit(verdict.status);
    }
    close(ends[1]);
    return {process, ends[0], index};
}

// Takes what the worker has to say now; true when it has ended.
bool readWorker(const Worker& worker, const std::string& file, Verdict* verdict) {
    char bytes[65536];
    const ssize_t count = read(worker.pipe, bytes, sizeof bytes);
    if (count > 0) {
        verdict->out.append(bytes, static_cast<std::size_t>(count));
        return false;
    }
    if (count < 0 && errno == EINTR) return false;
    close(worker.pipe);
    int status = 0;
    while (waitpid(worker.process, &status, 0) < 0 && errno == EINTR) {
    }
    verdict->status = WIFEXITED(status) ? WEXITSTATUS(status) : kExitBadInput;
    if (!WIFEXITED(status))
        verdict->out = file + ": its process ended on signal " + std::to_string(WTERMSIG(status)) + '\n';
    return true;
}

class Progress {
  public:
    explicit Progress(std::size_t total) : total_(total), shown_(total > 1 && isatty(STDERR_FILENO) != 0) {}
    ~Progress() {
        if (shown_) std::cerr << "\r\x1b[K";
    }
    void done(std::size_t count) const {
        if (shown_) std::cerr << "\r\x1b[K" << count << " of " << total_ << " drawings checked" << std::flush;
    }

  private:
    std::size_t total_;
    bool shown_;
};

void waitForWords(const std::vector<Worker>& workers) {
    std::vector<pollfd> polled;
    for (const Worker& worker : workers) polled.push_back({worker.pipe, POLLIN, 0});
    poll(polled.data(), polled.size(), -1);
}

bool hasWords(const Worker& worker) {
    pollfd polled{worker.pipe, POLLIN, 0};
    return poll(&polled, 1, 0) > 0;
}

std::vector<Verdict> runWorkers(const std::vector<std::string>& files, const SessionOptions& options, bool json) {
    const std::size_t atOnce = std::max(1U, std::thread::hardware_concurrency());
    const Progress progress(files.size());
    std::vector<Verdict> verdicts(files.size());
    std::vector<Worker> running;
    std::size_t next = 0, ended = 0;
    while (ended < files.size()) {
        while (running.size() < atOnce && next < files.size()) {
            running.push_back(startWorker(files[next], next, options, json));
            ++next;
        }
        waitForWords(running);
        std::erase_if(running, [&](const Worker& worker) {
            if (!hasWords(worker) || !readWorker(worker, files[worker.file], &verdicts[worker.file])) return false;
            progress.done(++ended);
            return true;
        });
    }
    return verdicts;
}

}  // namespace

int checkMany(const std::vector<std::string>& files, const SessionOptions& options, bool json) {
    const std::vector<Verdict> verdicts = runWorkers(files, options, json);
    int status = kExitOk;
    if (json) std::cout << "[\n";
    for (std::size_t i = 0; i < verdicts.size(); ++i) {
        const bool unreadable = verdicts[i].status == kExitBadInput;
        (unreadable && !json ? std::cerr : std::cout)
            << verdicts[i].out << (json && i + 1 < verdicts.size() ? ",\n" : "");
        status = std::max(status, verdicts[i].status);
    }
    if (json) std::cout << "\n]\n";
    return status;
}

}  // namespace quorvel::cli
