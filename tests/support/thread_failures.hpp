// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

/// \file
/// Makes threads and their allocations fail.
///
/// Linking `thread_failures.cpp` into a program replaces `pthread_create` and the allocation
/// functions, for the libraries, too.

namespace kelvora::test {

/// Counts threads started during its lifetime. At most one may exist at a time.
class ThreadStartWatch {
public:
    /// \param allowed  Number of threads after which no more can be started.
    explicit ThreadStartWatch(int allowed = 1000);
    ~ThreadStartWatch();
    ThreadStartWatch(const ThreadStartWatch&) = delete;
    ThreadStartWatch& operator=(const ThreadStartWatch&) = delete;

    /// Number of threads started.
    int started() const;
    /// Whether all of these threads have ended.
    bool allEnded() const;
};

/// During its lifetime, allocations fail in all threads except the one that created it.
class FailingThreadAllocations {
public:
    /// \param allowed  Number of allocations in all these threads together that do not fail.
    explicit FailingThreadAllocations(int allowed);
    ~FailingThreadAllocations();
    FailingThreadAllocations(const FailingThreadAllocations&) = delete;
    FailingThreadAllocations& operator=(const FailingThreadAllocations&) = delete;
};

}  // namespace kelvora::test
