// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "kelvora/recording/event_reader.hpp"

namespace kelvora::python {

/// Width and height, pixels.
using Size = std::pair<std::int64_t, std::int64_t>;

/// Names of formats: "'records', 'text', ... or 'evt3'".
std::string inWords(std::vector<std::string> names);

/// Lets Ctrl-C end a wait for a pipe. Python runs signal handlers in the main thread only.
/// \throws pybind11::error_already_set  if a handler raises.
void handleSignals();

/// How to read a recording, from the keyword arguments of `read`.
/// \throws std::invalid_argument  for an invalid argument.
recording::ReadOptions toReadOptions(const std::optional<Size>& sensor,
                                     const std::optional<std::string>& input_format,
                                     const std::optional<std::string>& columns,
                                     const std::optional<std::string>& time_unit);

}  // namespace kelvora::python
