// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

/// \file
/// Makes threads fail.
///
/// Linking `thread_failures.cpp` into a program replaces `pthread_create` and the allocation
/// functions, for the libraries, too.

namespace kelvora::test {

/// Counts threads that are started while it lives. At most one may live at a time.
class ThreadStartWatch {
public:
    /// \param allowed  Number of threads after which no more can be started.
    explicit ThreadStartWatch(int allowed = 1000);
    ~ThreadStartWatch();
    ThreadStartWatch(const ThreadStartWatch&) = delete;
    ThreadStartWatch& operator=(const ThreadStartWatch&) = delete;

    /// Threads that were started.
    int started() const;
    /// Whether no thread of them runs any more.
    bool allEnded() const;
};

/// While it lives, allocations in other threads than the one that made it fail.
class FailingThreadAllocations {
public:
    /// \param allowed  Number of allocations, of all those threads together, that do not fail.
    explicit FailingThreadAllocations(int allowed);
    ~FailingThreadAllocations();
    FailingThreadAllocations(const FailingThreadAllocations&) = delete;
    FailingThreadAllocations& operator=(const FailingThreadAllocations&) = delete;
};

}  // namespace kelvora::test
