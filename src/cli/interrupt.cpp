#include "cli/interrupt.h"

#include "cli/exit_request.h"

#include <atomic>
#include <csignal>

namespace busquill::cli {

namespace {

std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free, "set by a signal handler");

sigset_t Signals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGHUP);
    return signals;
}

} // namespace

void NoticeInterrupts() {
    struct sigaction action {};
    action.sa_handler = [](int signal) {
        // After two requests without an effect, the third one ends the program.
        if (interrupted.exchange(true)) {
            std::signal(signal, SIG_DFL);
        }
    };
    sigemptyset(&action.sa_mask);
    action.sa_flags = 0; // a waiting read is interrupted
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGHUP, &action, nullptr);
}

bool Interrupted() noexcept {
    return interrupted.exchange(false);
}

void EndIfInterrupted() {
    if (Interrupted()) {
        throw Interruption();
    }
}

void Interrupt() noexcept {
    interrupted = true;
}

NoInterruptsForThreads::NoInterruptsForThreads() {
    const sigset_t signals = Signals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

NoInterruptsForThreads::~NoInterruptsForThreads() {
    const sigset_t signals = Signals();
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

} // namespace busquill::cli
