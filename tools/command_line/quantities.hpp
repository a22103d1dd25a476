// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "recording/format.hpp"
#include "recording/sensor_size.hpp"
#include "recording/text_layout.hpp"

/// \file
/// Values as they are written on the command line.
///
/// The argument parser finds these readers by their name, in the namespace of the type. All of them
/// throw `CLI::ConversionError`, saying what is wrong with the text.

namespace kelvora::tool {

/// A length of time. Written with its unit: 250us, 10ms, 1.5s.
struct Duration {
    std::uint64_t microseconds = 0;
};

bool lexical_cast(const std::string& text, Duration& duration);

/// With the largest unit that needs no fraction: 10ms.
std::string toString(Duration duration);

}  // namespace kelvora::tool

namespace kelvora::recording {

bool lexical_cast(const std::string& text, SensorSize& size);
bool lexical_cast(const std::string& text, Format& format);
bool lexical_cast(const std::string& text, TimeUnit& unit);

}  // namespace kelvora::recording
