// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "failures/failure_plan.hpp"
#include "failures/resources.hpp"

namespace kelvora::failures {

/// During its lifetime, a descriptor leads to a device that is full.
class FullDevice {
public:
    explicit FullDevice(int descriptor_)
        : descriptor(descriptor_),
          original(::fcntl(descriptor, F_DUPFD_CLOEXEC, kFirstOwnDescriptor)) {
        const Uncounted uncounted;
        const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
        if (original >= 0) {
            ::dup2(full, descriptor);
        }
        ::close(full);
    }

    ~FullDevice() {
        const Uncounted uncounted;
        const int error = errno;
        if (original >= 0 && !stays) {
            ::dup2(original, descriptor);
        }
        ::close(original);
        errno = error;
    }

    FullDevice(const FullDevice&) = delete;
    FullDevice& operator=(const FullDevice&) = delete;

    /// Lets the descriptor lead there until the end of the process.
    void stay() { stays = true; }

private:
    int descriptor;
    int original;
    bool stays = false;
};

}  // namespace kelvora::failures
