// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>

namespace kelvora {

/// Holds threads back until tasks are done that they have shared.
class TaskGate {
public:
    /// Closes the gate for that many tasks. Not while threads wait.
    void close(std::size_t tasks) {
        tasks_left = tasks;
        is_given_up = false;
    }

    /// Says that a thread has done so many of the tasks. Returns whether the last one was among them.
    bool done(std::size_t tasks) {
        const std::lock_guard<std::mutex> lock(mutex);
        tasks_left -= tasks;
        if (tasks_left == 0) {
            opened.notify_all();
        }
        return tasks > 0 && tasks_left == 0;
    }

    /// Says that the tasks will not all be done.
    void giveUp() {
        const std::lock_guard<std::mutex> lock(mutex);
        is_given_up = true;
        opened.notify_all();
    }

    /// Waits for the tasks. Returns whether they are done: otherwise, somebody has given up.
    bool wait() {
        std::unique_lock<std::mutex> lock(mutex);
        opened.wait(lock, [this] { return tasks_left == 0 || is_given_up; });
        return !is_given_up;
    }

private:
    std::mutex mutex;
    std::condition_variable opened;
    std::size_t tasks_left = 0;
    bool is_given_up = false;
};

}  // namespace kelvora
