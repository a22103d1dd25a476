// SPDX-License-Identifier: MIT
#include "recording/recording_statistics.hpp"

#include <algorithm>
#include <limits>

namespace kelvora::recording {
namespace {

constexpr std::uint64_t kInterval = 10'000;  // microseconds
constexpr std::uint64_t kIntervalsPerSecond = 100;
constexpr double kMicrosecondsPerSecond = 1e6;

}  // namespace

RecordingStatistics::RecordingStatistics(const std::optional<SensorSize>& sensor_size_)
    : sensor_size(sensor_size_), first_time(std::numeric_limits<std::uint64_t>::max()) {}

void RecordingStatistics::add(const std::vector<Event2D>& events) {
    for (const Event2D& event : events) {
        addTime(event.timestamp);
        on_count += event.polarity != 0 ? 1 : 0;
        largest_x = std::max<int>(largest_x, event.x);
        largest_y = std::max<int>(largest_y, event.y);
        if (sensor_size && (event.x >= sensor_size->width || event.y >= sensor_size->height)) {
            ++off_sensor;
        }
    }
    event_count += events.size();
}

void RecordingStatistics::addTime(std::uint64_t time) {
    out_of_order += time < time_before ? 1 : 0;
    time_before = time;
    first_time = std::min(first_time, time);
    last_time = std::max(last_time, time);
    addToInterval(time);
}

void RecordingStatistics::addToInterval(std::uint64_t time) {
    const std::uint64_t new_interval = time / kInterval;
    if (new_interval > interval || new_interval + kIntervalsPerSecond < interval) {
        interval = new_interval;
        interval_count = 0;
    }
    ++interval_count;
    peak_count = std::max(peak_count, interval_count);
}

double RecordingStatistics::meanRate() const {
    if (duration() == 0) {
        return 0.0;
    }
    return static_cast<double>(event_count) * kMicrosecondsPerSecond /
           static_cast<double>(duration());
}

double RecordingStatistics::peakRate() const {
    return std::max(static_cast<double>(peak_count * kIntervalsPerSecond), meanRate());
}

double RecordingStatistics::onShare() const {
    return event_count == 0 ? 0.0
                            : static_cast<double>(on_count) / static_cast<double>(event_count);
}

std::optional<std::uint64_t> RecordingStatistics::offSensor() const {
    return sensor_size ? std::optional(off_sensor) : std::nullopt;
}

}  // namespace kelvora::recording
