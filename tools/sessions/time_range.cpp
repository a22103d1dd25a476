// SPDX-License-Identifier: MIT
#include "sessions/time_range.hpp"

#include <algorithm>

namespace kelvora::tool {

namespace {

std::vector<Event2D>::iterator firstAtOrAfter(std::vector<Event2D>& events, std::uint64_t time) {
    return std::partition_point(events.begin(), events.end(),
                                [time](const Event2D& event) { return event.timestamp < time; });
}

}  // namespace

TimeRange::TimeRange(Duration from_, std::optional<Duration> to_) : from(from_), to(to_) {}

void TimeRange::keepInside(std::vector<Event2D>& events) {
    if (events.empty()) {
        return;
    }
    if (!origin) {
        origin = events.front().timestamp;
    }
    last_time = events.back().timestamp;
    if (to) {
        const auto end = firstAtOrAfter(events, *origin + to->microseconds);
        is_over = end != events.end();
        events.erase(end, events.end());
    }
    events.erase(events.begin(), firstAtOrAfter(events, *origin + from.microseconds));
}

}  // namespace kelvora::tool
