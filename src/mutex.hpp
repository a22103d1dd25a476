// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <mutex>

#include "thread_annotations.hpp"

namespace kelvora {

/// A `std::mutex` that Clang's thread safety analysis knows. Lock it with a `MutexLock`.
class KELVORA_CAPABILITY("mutex") Mutex {
private:
    friend class MutexLock;

    std::mutex mutex;
};

/// Holds a mutex from construction to destruction.
class KELVORA_SCOPED_CAPABILITY MutexLock {
public:
    explicit MutexLock(Mutex& mutex) KELVORA_ACQUIRE(mutex) : lock(mutex.mutex) {}
    ~MutexLock() KELVORA_RELEASE() {}  // NOLINT(modernize-use-equals-default): for the attribute

    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

    /// Waits for a notification. The mutex is unlocked while waiting, and locked again on return.
    void wait(std::condition_variable& condition) { condition.wait(lock); }

private:
    std::unique_lock<std::mutex> lock;
};

}  // namespace kelvora
