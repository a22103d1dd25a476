// SPDX-License-Identifier: MIT
#include "recording/event_cleaner.hpp"

namespace kelvora::recording {
namespace {

constexpr std::uint64_t kLargestStep =
    1'000'000;  // microseconds: a larger one ahead has to be confirmed

bool isFarAhead(std::uint64_t time, std::uint64_t of) {
    return time > of && time - of > kLargestStep;
}

}  // namespace

EventCleaner::EventCleaner(const SensorSize& sensor_size)
    : width(static_cast<unsigned>(sensor_size.width)),
      height(static_cast<unsigned>(sensor_size.height)) {}

void EventCleaner::clean(std::vector<Event2D>& events) {
    dropOffSensor(events);
    for (std::size_t i = 0; i < events.size(); ++i) {
        const std::uint64_t time = events[i].timestamp;
        const std::uint64_t next_time = i + 1 < events.size() ? events[i + 1].timestamp : time;
        last_time = cleanTime(time, next_time);
        clamped_times += last_time != time ? 1 : 0;
        events[i].timestamp = last_time;
        has_time = true;
    }
}

void EventCleaner::dropOffSensor(std::vector<Event2D>& events) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < events.size(); ++i) {
        if (events[i].x < width && events[i].y < height) {
            if (kept != i) {
                events[kept] = events[i];
            }
            ++kept;
        }
    }
    dropped_off_sensor += events.size() - kept;
    events.erase(events.begin() + static_cast<std::ptrdiff_t>(kept), events.end());
}

std::uint64_t EventCleaner::cleanTime(std::uint64_t time, std::uint64_t next_time) {
    if (!has_time) {
        return isFarAhead(time, next_time) ? next_time : time;
    }
    const bool is_damaged = isFarAhead(time, last_time) && isFarAhead(time, next_time);
    return time < last_time || is_damaged ? last_time : time;
}

}  // namespace kelvora::recording
