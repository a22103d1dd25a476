// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "kelvora/events.hpp"
#include "recording/sensor_size.hpp"

namespace kelvora::recording {

/// Sums up a recording, chunk by chunk and as it is: before cleaning.
class RecordingStatistics {
public:
    /// \param sensor_size  Needed only to count the events off the sensor.
    explicit RecordingStatistics(const std::optional<SensorSize>& sensor_size);

    /// Takes the next chunk.
    void add(const std::vector<Event2D>& events);

    /// Number of events. What follows is 0 as long as there are none.
    std::uint64_t events() const { return event_count; }

    /// Earliest time, in microseconds.
    std::uint64_t firstTime() const { return event_count > 0 ? first_time : 0; }

    /// Latest time, in microseconds.
    std::uint64_t lastTime() const { return last_time; }

    /// From the earliest to the latest time, in microseconds.
    std::uint64_t duration() const { return lastTime() - firstTime(); }

    /// Events per second over the whole duration; 0 if that is 0.
    double meanRate() const;

    /// Events per second in the busiest of the 10 ms intervals that begin at multiples of 10 ms,
    /// and never less than the mean rate: a recording may be shorter than an interval. Times that
    /// go back by up to a second count for the interval of the events before.
    double peakRate() const;

    /// Events of polarity 1 per event, from 0 to 1.
    double onShare() const;

    /// Number of events earlier than the event before them.
    std::uint64_t outOfOrder() const { return out_of_order; }

    /// Number of events off the sensor; nothing if the size is not known.
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
    std::uint64_t time_before = 0;  // of the event before
    std::uint64_t interval = 0;
    std::uint64_t interval_count = 0;
    std::uint64_t peak_count = 0;
    int largest_x = 0;
    int largest_y = 0;
};

}  // namespace kelvora::recording
