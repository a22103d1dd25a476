// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "command_line/duration_histogram.hpp"
#include "command_line/quantities.hpp"
#include "recording/format.hpp"
#include "recording/sensor_size.hpp"

namespace kelvora::tool {

/// What one pass over a recording came to.
struct PassFigures {
    std::string name;
    std::uint64_t events = 0;
    std::uint64_t clusters = 0;
    std::uint64_t recorded_us = 0;             ///< From the first to the last event.
    double seconds = 0;                        ///< Of all windows together.
    DurationHistogram window_times;            ///< Of each window with events.
    std::optional<std::uint64_t> peak_memory;  ///< Bytes, of the whole program.
};

/// What is told to the user.
struct BenchReport {
    std::string recording;
    recording::Format format;
    recording::SensorSize sensor;
    Duration window;
    PassFigures reading;  ///< Its time is that of reading, cleaning and cutting into windows.
    std::vector<PassFigures> methods;
};

/// Figures that have no value, such as the rate of a pass that took no time, are shown as "-".
std::string tableOf(const BenchReport& report);

/// And here as null.
nlohmann::ordered_json jsonOf(const BenchReport& report);

}  // namespace kelvora::tool
