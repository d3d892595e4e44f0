// Ending on a signal with nothing left behind: temporary files and folders are removed, child processes ended.
#pragma once

#include <functional>

namespace quorvel::files {

// From now on SIGINT, SIGTERM and SIGHUP, unless the caller of the program has them ignored, end the process with the
// status 128 + signal, after what the TerminationActions do. To be called before any other thread is started, and again
// in a forked process, which begins without actions.
void terminateCleanly();
// For a program that is going to take this process's place.
void releaseSignals();

// Something to be done before the process ends on a signal, on a thread of its own; the last one made is done first.
class TerminationAction {
  public:
    explicit TerminationAction(std::function<void()> act);
    ~TerminationAction();  // it is not done any more
    TerminationAction(const TerminationAction&) = delete;
    TerminationAction& operator=(const TerminationAction&) = delete;

  private:
    int number_;
};

// While one exists, a signal waits: what is being done is done whole, and what actions see does not change.
class TerminationPause {
  public:
    TerminationPause();
    ~TerminationPause();
    TerminationPause(const TerminationPause&) = delete;
    TerminationPause& operator=(const TerminationPause&) = delete;
};

}  // namespace quorvel::files
