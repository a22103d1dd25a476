// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "kelvora/events.hpp"
#include "sessions/duration.hpp"

namespace kelvora::tool {

/// A part of a recording, relative to its first event: [from, to).
class TimeRange {
public:
    /// \param to_  If absent, the end of the recording.
    TimeRange(Duration from_, std::optional<Duration> to_);

    /// Removes the events of a chunk that lie outside the range.
    /// \param events  The next chunk, in time order.
    void keepInside(std::vector<Event2D>& events);

    /// Whether a chunk has reached the end of the range, so that all later chunks lie outside.
    bool isOver() const { return is_over; }

    /// Whether all events so far lie before the range.
    bool isAhead() const { return origin && last_time < *origin + from.microseconds; }

    /// Whether the range has an end that no event so far has reached.
    bool isOpen() const { return origin && to && !is_over; }

private:
    Duration from;
    std::optional<Duration> to;
    std::optional<std::uint64_t> origin;
    std::uint64_t last_time = 0;
    bool is_over = false;
};

}  // namespace kelvora::tool
