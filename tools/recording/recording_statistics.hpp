// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "kelvora/events.hpp"
#include "kelvora/recording/sensor_size.hpp"

namespace kelvora::recording {

/// Statistics of a recording, computed chunk by chunk from the raw events before cleaning.
class RecordingStatistics {
public:
    /// \param sensor_size  Only needed to count events off the sensor.
    explicit RecordingStatistics(const std::optional<SensorSize>& sensor_size);

    /// Adds the next chunk.
    void add(const std::vector<Event2D>& events);

    /// Number of events. All figures below are 0 without events.
    std::uint64_t events() const { return event_count; }

    /// Earliest time, in microseconds.
    std::uint64_t firstTime() const { return event_count > 0 ? first_time : 0; }

    /// Latest time, in microseconds.
    std::uint64_t lastTime() const { return last_time; }

    /// Time from the earliest to the latest event, in microseconds.
    std::uint64_t duration() const { return lastTime() - firstTime(); }

    /// Events per second over the whole duration; 0 if the duration is 0.
    double meanRate() const;

    /// Events per second in the busiest of the 10 ms intervals that begin at multiples of 10 ms,
    /// but at least the mean rate, because a recording may be shorter than an interval. Events
    /// whose time goes back by up to a second count for the interval of the previous events.
    double peakRate() const;

    /// Share of events with polarity 1, from 0 to 1.
    double onShare() const;

    /// Number of events earlier than the previous event.
    std::uint64_t outOfOrder() const { return out_of_order; }

    /// Number of events off the sensor; empty if the size is unknown.
    std::optional<std::uint64_t> offSensor() const;

    /// Largest column of an event.
    int largestX() const { return largest_x; }

    /// Largest row of an event.
    int largestY() const { return largest_y; }

private:
    void addTime(std::uint64_t time);
    void addToInterval(std::uint64_t time);

    std::optional<SensorSize> sensor_size;
    std::uint64_t event_count = 0;
    std::uint64_t on_count = 0;
    std::uint64_t out_of_order = 0;
    std::uint64_t off_sensor = 0;
    std::uint64_t first_time;
    std::uint64_t last_time = 0;
    std::uint64_t time_before = 0;  // of the previous event
    std::uint64_t interval = 0;
    std::uint64_t interval_count = 0;
    std::uint64_t peak_count = 0;
    int largest_x = 0;
    int largest_y = 0;
};

}  // namespace kelvora::recording
