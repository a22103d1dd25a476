// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvora/events.hpp"
#include "kelvora/recording/sensor_size.hpp"

namespace kelvora::recording {

/// Makes the events of a recording fit for clustering: on the sensor, and in order of time.
///
/// - Events off the sensor are dropped.
/// - A time earlier than the previous event's is raised to the previous event's time.
/// - A single time more than a second ahead of both neighbours is treated as damaged and lowered to
///   the time of the previous event (the next one, for the first event). Otherwise all later events
///   would be raised to it. The check needs the next event of the same chunk, so the last event of
///   a chunk is not checked.
///
/// Damage to several consecutive events is not repaired. `clampedTimes` returns how many times were
/// changed.
class EventCleaner {
public:
    explicit EventCleaner(const SensorSize& sensor_size);

    /// Cleans the next chunk in place. Afterwards, times never decrease within `events` or from
    /// call to call.
    void clean(std::vector<Event2D>& events);

    /// Number of events dropped since the start.
    std::uint64_t droppedOffSensor() const { return dropped_off_sensor; }

    /// Number of events whose time was changed since the start.
    std::uint64_t clampedTimes() const { return clamped_times; }

private:
    void dropOffSensor(std::vector<Event2D>& events);
    std::uint64_t cleanTime(std::uint64_t time, std::uint64_t next_time);

    unsigned width;
    unsigned height;
    bool has_time = false;        // whether `last_time` is set
    std::uint64_t last_time = 0;  // of the cleaned events
    std::uint64_t dropped_off_sensor = 0;
    std::uint64_t clamped_times = 0;
};

}  // namespace kelvora::recording
