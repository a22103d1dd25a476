// SPDX-License-Identifier: MIT
#include "clustering/task_gate.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

namespace kelvora {
namespace {

TEST(TaskGate, IsOpenWithoutTasks) {
    TaskGate gate;
    gate.close(0);
    EXPECT_TRUE(gate.wait());
}

TEST(TaskGate, TellsWhichThreadDidTheLastTask) {
    TaskGate gate;
    gate.close(5);
    EXPECT_FALSE(gate.done(2));
    EXPECT_FALSE(gate.done(0));
    EXPECT_TRUE(gate.done(3));
    EXPECT_FALSE(gate.done(0));
    EXPECT_TRUE(gate.wait());
}

TEST(TaskGate, BlocksThreadsUntilAllTasksAreDone) {
    constexpr std::size_t kThreads = 4;
    for (int round = 0; round < 200; ++round) {
        TaskGate gate;
        gate.close(kThreads);
        std::atomic<std::size_t> done = 0;
        std::atomic<bool> was_early = false;
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < kThreads; ++i) {
            threads.emplace_back([&] {
                ++done;
                gate.done(1);
                if (!gate.wait() || done != kThreads) {
                    was_early = true;
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        ASSERT_FALSE(was_early) << "round " << round;
    }
}

TEST(TaskGate, TellsWaitingThreadsThatATaskFailed) {
    TaskGate gate;
    gate.close(2);
    bool all_done = true;
    std::thread waiting([&] { all_done = gate.wait(); });
    gate.done(1);
    gate.giveUp();
    waiting.join();
    EXPECT_FALSE(all_done);
}

TEST(TaskGate, CanBeClosedAgain) {
    TaskGate gate;
    gate.close(1);
    gate.giveUp();
    EXPECT_FALSE(gate.wait());
    gate.close(1);
    EXPECT_TRUE(gate.done(1));
    EXPECT_TRUE(gate.wait());
}

}  // namespace
}  // namespace kelvora
