// SPDX-License-Identifier: MIT
#include "command_line/interrupt.hpp"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <string>

namespace kelvora::tool {
namespace {

constexpr std::array<int, 3> kSignals = {SIGINT, SIGTERM, SIGHUP};

/// The result of a signal as exit status of a process. Each test has one, because signals last.
int outcomeOf(int signal) {
    catchSignals();
    static_cast<void>(std::raise(signal));
    try {
        throwIfInterrupted();
    } catch (const Interrupted& end) {
        const bool is_named = std::string(end.what()) == (signal == SIGINT ? "interrupted by Ctrl-C"
                                                          : signal == SIGTERM ? "ended by SIGTERM"
                                                                              : "ended by SIGHUP");
        return is_named && isInterrupted() && isTerminated() == (signal != SIGINT) ? exitStatus()
                                                                                   : 1;
    }
    return 0;
}

TEST(InterruptDeathTest, NotesTheFirstSignal) {
    EXPECT_EXIT(std::_Exit(outcomeOf(SIGINT)), testing::ExitedWithCode(130), "");
    EXPECT_EXIT(std::_Exit(outcomeOf(SIGTERM)), testing::ExitedWithCode(143), "");
    EXPECT_EXIT(std::_Exit(outcomeOf(SIGHUP)), testing::ExitedWithCode(129), "");
}

TEST(InterruptDeathTest, EndsTheProgramAtTheSecondSignal) {
    for (const int first : kSignals) {
        for (const int second : kSignals) {
            EXPECT_EXIT((outcomeOf(first), std::raise(second)), testing::KilledBySignal(second),
                        "");
        }
    }
}

TEST(InterruptDeathTest, EndsTheProgramAtASignalDuringTheHandlerOfTheFirst) {
    // Both signals are pending when the process unblocks them.
    const auto raiseBoth = [] {
        catchSignals();
        sigset_t both{};
        sigemptyset(&both);
        sigaddset(&both, SIGINT);
        sigaddset(&both, SIGTERM);
        sigprocmask(SIG_BLOCK, &both, nullptr);
        static_cast<void>(std::raise(SIGINT));
        static_cast<void>(std::raise(SIGTERM));
        sigprocmask(SIG_UNBLOCK, &both, nullptr);
    };
    EXPECT_EXIT((raiseBoth(), std::_Exit(0)), testing::KilledBySignal(SIGTERM), "");
}

TEST(InterruptDeathTest, MakesErrorsOfPipesAndLimits) {
    EXPECT_EXIT(std::_Exit(outcomeOf(SIGPIPE)), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(std::_Exit(outcomeOf(SIGXFSZ)), testing::ExitedWithCode(0), "");
    EXPECT_EXIT((catchSignals(), endByBrokenPipe()), testing::KilledBySignal(SIGPIPE), "");
}

TEST(InterruptDeathTest, RespectsSignalsThatAreIgnored) {
    for (const int signal : {SIGHUP, SIGTERM}) {
        EXPECT_EXIT((std::signal(signal, SIG_IGN), std::_Exit(outcomeOf(signal))),
                    testing::ExitedWithCode(0), "");
        EXPECT_EXIT((std::signal(signal, SIG_IGN), outcomeOf(SIGINT), std::raise(signal),
                     std::_Exit(exitStatus())),
                    testing::ExitedWithCode(130), "");
    }
    EXPECT_EXIT((std::signal(SIGPIPE, SIG_IGN), catchSignals(), endByBrokenPipe(), std::_Exit(7)),
                testing::ExitedWithCode(7), "");
}

}  // namespace
}  // namespace kelvora::tool
