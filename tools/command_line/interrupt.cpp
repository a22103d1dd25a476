// SPDX-License-Identifier: MIT
#include "command_line/interrupt.hpp"

#include <array>
#include <atomic>
#include <csignal>

namespace kelvora::tool {

namespace {

constexpr std::array<int, 3> kSignals = {SIGINT, SIGTERM, SIGHUP};

std::atomic<int> received{0};
bool is_pipe_ignored = false;

bool isIgnored(int signal) {
    struct sigaction action {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

/// Notes the first signal. From then on, every signal ends the program at once.
void noteSignal(int signal) {
    int none = 0;
    received.compare_exchange_strong(none, signal);
    for (const int next : kSignals) {
        if (!isIgnored(next)) {
            static_cast<void>(std::signal(next, SIG_DFL));
        }
    }
}

/// Calls the handler at a signal. Interrupts waits for files, which would go on otherwise.
void catchSignal(int signal) {
    struct sigaction action {};
    action.sa_handler = noteSignal;
    // The next signal waits until the handler has switched itself off.
    for (const int next : kSignals) {
        static_cast<void>(::sigaddset(&action.sa_mask, next));
    }
    static_cast<void>(::sigaction(signal, &action, nullptr));
}

}  // namespace

void catchSignals() {
    for (const int signal : kSignals) {
        // Shells start background commands with SIGINT ignored, but users may send it on purpose.
        if (signal == SIGINT || !isIgnored(signal)) {
            catchSignal(signal);
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
