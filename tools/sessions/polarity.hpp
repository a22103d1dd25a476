// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "kelvora/events.hpp"

namespace kelvora::tool {

/// Which events are clustered, and whether polarities are counted separately.
enum class Polarity { All, On, Off, Separate };

/// Removes the events of the other polarity.
///
/// The generators have a filter for this, but all grid generators of a process share one filter per
/// event type.
void keepPolarity(std::vector<Event2D>& events, Polarity wanted);

}  // namespace kelvora::tool
