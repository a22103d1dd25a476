// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "command_line/quantities.hpp"
#include "kelvora/events.hpp"

namespace kelvora::tool {

/// A part of a recording, counted from its first event: [from, to).
class TimeRange {
public:
    /// \param to_  The end of the recording if absent.
    TimeRange(Duration from_, std::optional<Duration> to_);

    /// Removes the events of a chunk that lie outside.
    /// \param events  The next chunk, in order of time.
    void keepInside(std::vector<Event2D>& events);

    /// Whether a chunk has reached the end, so that no later one holds an event of the range.
    bool isOver() const { return is_over; }

private:
    Duration from;
    std::optional<Duration> to;
    std::optional<std::uint64_t> origin;
    bool is_over = false;
};

}  // namespace kelvora::tool
