// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

namespace kelvora::tool {

/// Returns free memory to the system and resets the peak of the resident memory.
///
/// \returns false if the system does not support it: `peakMemory` is then the peak since the
///     program started.
bool resetPeakMemory();

/// Peak resident memory of the whole program in bytes, including code and libraries. Empty if the
/// system does not report it.
std::optional<std::uint64_t> peakMemory();

}  // namespace kelvora::tool
