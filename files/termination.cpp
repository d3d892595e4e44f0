// The signals are blocked in all threads but one, which waits for them: unlike in a signal handler, everything is
// allowed there.
#include "files/termination.h"

#include <unistd.h>

#include <csignal>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

namespace quorvel::files {

struct TerminationActions {
    std::recursive_mutex mutex;
    std::map<int, std::function<void()>> byNumber;
    int lastNumber = 0;
    TerminationActions* former = nullptr;  // of the process that this one was forked from; never freed
};

// One for the program and its shared libraries, each of which has this code: visible, so that the first one is taken,
// and weak, so that no compiler takes for granted that it is the one beside the caller. They outlive all static
// objects, which the main thread may be destroying when a signal comes.
__attribute__((visibility("default"), weak)) TerminationActions*& terminationActions();
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
    auto* actions = new TerminationActions;  // in a forked process the former ones may be locked for good
    actions->former = std::exchange(terminationActions(), actions);
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
