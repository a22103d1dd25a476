// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "kelvora/recording/event_reader.hpp"

namespace kelvora::python {

/// Width and height, pixels.
using Size = std::pair<std::int64_t, std::int64_t>;

/// The names of all readable formats: "'records', 'text', ... or 'evt3'".
std::string formatsInWords();

/// How to read a recording, from the keyword arguments of `read`.
/// \throws std::invalid_argument  for an invalid argument.
recording::ReadOptions toReadOptions(const std::optional<Size>& sensor,
                                     const std::optional<std::string>& input_format,
                                     const std::optional<std::string>& columns,
                                     const std::optional<std::string>& time_unit);

}  // namespace kelvora::python
