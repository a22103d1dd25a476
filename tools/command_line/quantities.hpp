// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "kelvora/recording/sensor_size.hpp"
#include "kelvora/recording/text_layout.hpp"

/// \file
/// Parsing of values on the command line.
///
/// The argument parser finds these functions by argument-dependent lookup. All of them throw
/// `CLI::ConversionError` with a description of the problem.

namespace kelvora::tool {

/// A length of time, written with its unit: 250us, 10ms, 1.5s.
struct Duration {
    std::uint64_t microseconds = 0;
};

bool lexical_cast(const std::string& text, Duration& duration);

/// Uses the largest unit that needs no fraction, for example 10ms.
std::string toString(Duration duration);

}  // namespace kelvora::tool

namespace kelvora::recording {

bool lexical_cast(const std::string& text, SensorSize& size);
bool lexical_cast(const std::string& text, TimeUnit& unit);

}  // namespace kelvora::recording
