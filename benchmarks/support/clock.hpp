// SPDX-License-Identifier: MIT
#pragma once

#include <ctime>

namespace kelvora::benchmarks {

/// Milliseconds of processor time that all threads of the program have taken.
inline double processorMilliseconds() {
    return 1000 * static_cast<double>(std::clock()) / static_cast<double>(CLOCKS_PER_SEC);
}

}  // namespace kelvora::benchmarks
