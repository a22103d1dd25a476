// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "command_line/duration_histogram.hpp"
#include "kelvora/recording/formats.hpp"
#include "kelvora/recording/sensor_size.hpp"
#include "sessions/duration.hpp"

namespace kelvora::tool {

/// Results of one pass over a recording.
struct PassFigures {
    std::string name;
    std::uint64_t events = 0;
    std::uint64_t clusters = 0;
    std::uint64_t recorded_us = 0;             ///< From the first to the last event.
    double seconds = 0;                        ///< Total of all windows.
    DurationHistogram window_times;            ///< One per window with events.
    std::optional<std::uint64_t> peak_memory;  ///< Bytes, of the whole program.
};

/// The results shown to the user.
struct BenchReport {
    std::string recording;
    std::string format;
    recording::SensorSize sensor;
    Duration window;
    PassFigures reading;  ///< Reading, cleaning and cutting into windows.
    std::vector<PassFigures> methods;
};

/// Figures that have no value, such as the rate of a pass that took no time, are shown as "-".
std::string tableOf(const BenchReport& report);

/// Figures that have no value are null.
nlohmann::ordered_json jsonOf(const BenchReport& report);

}  // namespace kelvora::tool
