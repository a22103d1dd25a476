// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "kelvora/events.hpp"

namespace kelvora::benchmarks {

/// The first `count` events of a recording, with times from the first one: the file
/// `NAME.events.bin` in the directory that the environment variable `KELVORA_RECORDINGS` names. None
/// if there is no such file.
std::vector<Event2D> recordedEvents(const std::string& name, std::size_t count);

}  // namespace kelvora::benchmarks
