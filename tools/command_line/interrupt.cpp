// SPDX-License-Identifier: MIT
#include "command_line/interrupt.hpp"

#include <atomic>
#include <csignal>
#include <initializer_list>

namespace kelvora::tool {

namespace {

std::atomic<int> received{0};
bool is_pipe_ignored = false;

void noteSignal(int signal) {
    received = signal;
}

bool isIgnored(int signal) {
    struct sigaction action {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

/// Interrupts waits for files, which would go on otherwise.
void catchOnce(int signal) {
    struct sigaction action {};
    action.sa_handler = noteSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    static_cast<void>(::sigaction(signal, &action, nullptr));
}

}  // namespace

void catchSignals() {
    catchOnce(SIGINT);
    for (const int signal : {SIGTERM, SIGHUP}) {
        if (!isIgnored(signal)) {
            catchOnce(signal);
        }
    }
    is_pipe_ignored = isIgnored(SIGPIPE);
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
}

bool isInterrupted() {
    return received != 0;
}

bool isTerminated() {
    return received == SIGTERM || received == SIGHUP;
}

int exitStatus() {
    constexpr int kEndedBySignal = 128;
    return isInterrupted() ? kEndedBySignal + received : 0;
}

const char* Interrupted::what() const noexcept {
    switch (received) {
        case SIGTERM:
            return "ended by SIGTERM";
        case SIGHUP:
            return "ended by SIGHUP";
        default:
            return "interrupted by Ctrl-C";
    }
}

void throwIfInterrupted() {
    if (isInterrupted()) {
        throw Interrupted();
    }
}

void throwIfTerminated() {
    if (isTerminated()) {
        throw Interrupted();
    }
}

void endByBrokenPipe() {
    if (!is_pipe_ignored) {
        static_cast<void>(std::signal(SIGPIPE, SIG_DFL));
        static_cast<void>(std::raise(SIGPIPE));
    }
}

}  // namespace kelvora::tool
