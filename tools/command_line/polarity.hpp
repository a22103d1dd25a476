// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "kelvora/events.hpp"

namespace kelvora::tool {

/// Which events are clustered, and whether the polarities are counted apart.
enum class Polarity { All, On, Off, Separate };

/// Removes the events of the polarity that is not wanted.
///
/// The generators could do so themselves, but the grid generators of a process share one filter per
/// event type.
void keepPolarity(std::vector<Event2D>& events, Polarity wanted);

}  // namespace kelvora::tool
