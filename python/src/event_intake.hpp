// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "event_columns.hpp"
#include "event_loader.hpp"
#include "kelvora/events.hpp"
#include "kelvora/recording/sensor_size.hpp"
#include "sessions/polarity.hpp"

namespace kelvora::python {

/// Prepares the caller's events for a generator, slice by slice: keeps events on the sensor with
/// the selected polarity, and puts them in time order.
///
/// A time earlier than the previous event's is raised to the previous time.
class EventIntake {
public:
    static constexpr std::uint64_t kNoLongestSlice = std::numeric_limits<std::uint64_t>::max();

    /// \param longest_slice_  Largest difference between the times of a slice, microseconds.
    EventIntake(recording::SensorSize sensor_, tool::Polarity wanted_,
                std::uint64_t longest_slice_);

    /// Passes events to `feed`, batch by batch.
    ///
    /// \param feed  Called with a pointer to events and their number.
    /// \throws std::invalid_argument  if an event is rejected, or the slice becomes too long. No
    ///     event is processed then.
    template <class Feed>
    void take(const EventColumns& columns, const Feed& feed) {
        check(columns);
        EventLoader loader(columns, sensor);
        for (std::size_t first = 0; first < columns.size; first += EventLoader::kBatch) {
            const std::size_t count = std::min(EventLoader::kBatch, columns.size - first);
            feed(batch.data(), clean(loader, first, count, state));
        }
    }

    /// Ends a slice. Times must not go back across slices, either.
    void endSlice() { state.first_time.reset(); }

    /// Discards all events and resets the counters.
    void reset() { state = {}; }

    /// Number of events off the sensor.
    std::uint64_t dropped() const { return state.dropped; }

    /// Number of events whose time was raised.
    std::uint64_t clamped() const { return state.clamped; }

private:
    struct State {
        std::optional<std::uint64_t> first_time;  ///< Of the slice.
        std::uint64_t last_time = 0;
        std::uint64_t dropped = 0;
        std::uint64_t clamped = 0;
    };

    void check(const EventColumns& columns);
    std::size_t clean(EventLoader& loader, std::size_t first, std::size_t count, State& progress);

    recording::SensorSize sensor;
    tool::Polarity wanted;
    std::uint64_t longest_slice;
    State state;
    std::vector<Event2D> batch;
};

}  // namespace kelvora::python
