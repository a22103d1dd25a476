// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "kelvora/events.hpp"

namespace kelvora {

/// The polarity that `filter_type` ignores; 2, which no event has, if it ignores none.
/// \throws std::out_of_range  "invalid unordered_map<K, T> key" if `filter_type` is not one of the
/// enumerators.
std::uint8_t rejectedPolarity(EventFilterType filter_type);

}  // namespace kelvora
