// SPDX-License-Identifier: MIT
#pragma once

#include <exception>

#include "mutex.hpp"

namespace kelvora {

/// The first exception thrown on any of several threads.
class FirstFailure {
public:
    /// Keeps the exception that is being handled, unless there is an earlier one.
    void keepCurrent() {
        const MutexLock lock(mutex);
        if (!exception) {
            exception = std::current_exception();
        }
    }

    /// Throws the exception, if there is one.
    void rethrow() {
        const MutexLock lock(mutex);
        if (exception) {
            std::rethrow_exception(exception);
        }
    }

private:
    Mutex mutex;
    std::exception_ptr exception KELVORA_GUARDED_BY(mutex);
};

}  // namespace kelvora
