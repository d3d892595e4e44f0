// The signals are blocked in all threads but one, which waits for them: unlike in a signal handler, everything is
// allowed there.
#include "files/termination.h"

#include <unistd.h>

#include <csignal>
#include <map>
#include <mutex>
#include <thread>

namespace quorvel::files {

struct TerminationActions {
    std::recursive_mutex mutex;
    std::map<int, std::function<void()>> byNumber;
    int lastNumber = 0;
};

// One for the program and its shared libraries, each of which has this code: visible, so that the first one is taken.
// They outlive all static objects, which the main thread may be destroying when a signal comes.
__attribute__((visibility("default"))) TerminationActions*& terminationActions();
TerminationActions*& terminationActions() {
    static auto* all = new TerminationActions;
    return all;
}

namespace {

sigset_t& handledSignals() {
    static sigset_t set;
    return set;
}

[[noreturn]] void waitForSignal() {
    int signal = 0;
    ::sigwait(&handledSignals(), &signal);
    const std::scoped_lock held(terminationActions()->mutex);
    const auto& actions = terminationActions()->byNumber;
    for (auto last = actions.rbegin(); last != actions.rend(); ++last) last->second();
    ::_exit(128 + signal);
}

}  // namespace

void terminateCleanly() {
    terminationActions() = new TerminationActions;  // in a forked process the former ones are locked for good
    sigset_t& handled = handledSignals();
    ::sigemptyset(&handled);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction former {};
        ::sigaction(signal, nullptr, &former);
        if (former.sa_handler != SIG_IGN) ::sigaddset(&handled, signal);
    }
    ::pthread_sigmask(SIG_BLOCK, &handled, nullptr);
    std::thread(waitForSignal).detach();
}

void releaseSignals() { ::pthread_sigmask(SIG_UNBLOCK, &handledSignals(), nullptr); }

TerminationAction::TerminationAction(std::function<void()> act) {
    const TerminationPause pause;
    number_ = ++terminationActions()->lastNumber;
    terminationActions()->byNumber.emplace(number_, std::move(act));
}

TerminationAction::~TerminationAction() {
    const TerminationPause pause;
    terminationActions()->byNumber.erase(number_);
}

TerminationPause::TerminationPause() { terminationActions()->mutex.lock(); }
TerminationPause::~TerminationPause() { terminationActions()->mutex.unlock(); }

}  // namespace quorvel::files
