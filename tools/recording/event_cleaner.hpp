// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvora/events.hpp"
#include "recording/sensor_size.hpp"

namespace kelvora::recording {

/// Makes the events of a recording fit for clustering: on the sensor, and in order of time.
///
/// - Events off the sensor are dropped.
/// - A time that goes back is raised to that of the event before.
/// - A single time that is more than a second ahead of its neighbours on both sides is damaged, and
///   is lowered to that of the event before (or after, for the first). Else all that follows would
///   be raised to it. The next event of the same chunk is looked at: the last event of a chunk is
///   believed.
///
/// Of damage that affects several events in a row nothing is repaired; `clampedTimes` tells how
/// many times were changed.
class EventCleaner {
public:
    explicit EventCleaner(const SensorSize& sensor_size);

    /// Cleans the next chunk in place. The times of `events` then never decrease, nor from call to
    /// call.
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
    bool has_time = false;        // that of the last event
    std::uint64_t last_time = 0;  // of the cleaned events
    std::uint64_t dropped_off_sensor = 0;
    std::uint64_t clamped_times = 0;
};

}  // namespace kelvora::recording
