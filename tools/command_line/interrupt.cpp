// SPDX-License-Identifier: MIT
#include "command_line/interrupt.hpp"

#include <csignal>

namespace kelvora::tool {

namespace {

volatile std::sig_atomic_t interrupted = 0;

void handleInterrupt(int signal) {
    interrupted = 1;
    static_cast<void>(std::signal(signal, SIG_DFL));
}

}  // namespace

void catchInterrupts() {
    static_cast<void>(std::signal(SIGINT, handleInterrupt));
}

bool isInterrupted() {
    return interrupted != 0;
}

}  // namespace kelvora::tool
