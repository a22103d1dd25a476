// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <cstddef>

#include "mutex.hpp"

namespace kelvora {

/// Makes threads wait until all the tasks that they share are done.
class TaskGate {
public:
    /// Closes the gate for `tasks` tasks. Must not be called while threads wait.
    void close(std::size_t tasks) {
        const MutexLock lock(mutex);
        tasks_left = tasks;
        is_given_up = false;
    }

    /// Reports that a thread has done `tasks` of the tasks. Returns whether the last one was among
    /// them.
    bool done(std::size_t tasks) {
        const MutexLock lock(mutex);
        tasks_left -= tasks;
        if (tasks_left == 0) {
            opened.notify_all();
        }
        return tasks > 0 && tasks_left == 0;
    }

    /// Reports that some tasks will never be done.
    void giveUp() {
        const MutexLock lock(mutex);
        is_given_up = true;
        opened.notify_all();
    }

    /// Waits until all tasks are done or a thread gives up. Returns whether they are done.
    bool wait() {
        MutexLock lock(mutex);
        while (tasks_left != 0 && !is_given_up) {
            lock.wait(opened);
        }
        return !is_given_up;
    }

private:
    Mutex mutex;
    std::condition_variable opened;
    std::size_t tasks_left KELVORA_GUARDED_BY(mutex) = 0;
    bool is_given_up KELVORA_GUARDED_BY(mutex) = false;
};

}  // namespace kelvora
