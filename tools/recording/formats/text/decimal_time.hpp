// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "kelvora/recording/text_layout.hpp"

namespace kelvora::recording {

/// Converts a time written as a decimal number into microseconds, rounded to the nearest (halves
/// up).
///
/// Decimal digits are converted exactly: 1615211683.123456789 s loses nothing to floating point.
/// Only numbers with an exponent go through double precision.
///
/// \return Nothing if `number` is not a number, is negative, or is later than `kLatestTime`.
std::optional<std::uint64_t> microsecondsFromDecimal(std::string_view number, TimeUnit unit);

}  // namespace kelvora::recording
