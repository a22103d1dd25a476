// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "kelvora/recording/formats.hpp"
#include "kelvora/recording/sensor_size.hpp"
#include "kelvora/recording/text_layout.hpp"
#include "sessions/duration.hpp"

/// \file
/// Parsing of values on the command line.
///
/// The argument parser finds these functions by argument-dependent lookup. All of them throw
/// `CLI::ConversionError` with a description of the problem.

namespace kelvora::tool {

bool lexical_cast(const std::string& text, Duration& duration);

}  // namespace kelvora::tool

namespace kelvora::recording {

bool lexical_cast(const std::string& text, SensorSize& size);
bool lexical_cast(const std::string& text, TimeUnit& unit);

}  // namespace kelvora::recording
