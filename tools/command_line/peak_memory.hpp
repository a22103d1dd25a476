// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

namespace kelvora::tool {

/// Returns what is free to the system, and starts to watch for the peak of the resident memory
/// afresh.
///
/// \returns false if the system cannot: `peakMemory` is then the peak since the start of the program.
bool resetPeakMemory();

/// The largest resident memory of the whole program, in bytes: its code and libraries, what is read,
/// and all that is computed. Nothing if the system does not tell.
std::optional<std::uint64_t> peakMemory();

}  // namespace kelvora::tool
