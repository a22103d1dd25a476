// SPDX-License-Identifier: MIT
#include "failures/resources.hpp"

#include <fcntl.h>

int kelvora::failures::openDescriptors() {
    int open = 0;
    for (int descriptor = 0; descriptor < kFirstOwnDescriptor; ++descriptor) {
        open += ::fcntl(descriptor, F_GETFD) >= 0 ? 1 : 0;
    }
    return open;
}
