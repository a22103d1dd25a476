// SPDX-License-Identifier: MIT
#include "event_intake.hpp"

#include <fmt/format.h>

#include <stdexcept>

namespace kelvora::python {

EventIntake::EventIntake(recording::SensorSize sensor_, tool::Polarity wanted_,
                         std::uint64_t longest_slice_)
    : sensor(sensor_), wanted(wanted_), longest_slice(longest_slice_), batch(EventLoader::kBatch) {}

/// Checks all events before processing the first, so that callers can fix a rejected array and pass
/// it again.
void EventIntake::check(const EventColumns& columns) {
    State trial = state;
    EventLoader loader(columns, sensor);
    for (std::size_t first = 0; first < columns.size; first += EventLoader::kBatch) {
        clean(loader, first, std::min(EventLoader::kBatch, columns.size - first), trial);
    }
    if (trial.first_time && trial.last_time - *trial.first_time > longest_slice) {
        throw std::invalid_argument(fmt::format(
            "the events since the last generate() span {} s, and at most {} s can be clustered in "
            "space and time: call generate() in between",
            static_cast<double>(trial.last_time - *trial.first_time) * 1e-6,
            static_cast<double>(longest_slice) * 1e-6));
    }
}

/// Loads and cleans some events.
/// \returns the number of events left in the batch.
std::size_t EventIntake::clean(EventLoader& loader, std::size_t first, std::size_t count,
                               State& progress) {
    const std::size_t loaded = loader.load(first, count, batch.data());
    const bool takes_off = wanted != tool::Polarity::On;
    const bool takes_on = wanted != tool::Polarity::Off;
    std::uint64_t time = progress.last_time;
    std::uint64_t clamped = 0;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < loaded; ++i) {
        const Event2D& event = batch[i];
        clamped += event.timestamp < time ? 1 : 0;
        time = std::max<std::uint64_t>(time, event.timestamp);
        if (event.polarity == 0 ? takes_off : takes_on) {
            progress.first_time = progress.first_time.value_or(time);
            Event2D& taken = batch[kept];
            taken.x = event.x;
            taken.y = event.y;
            taken.polarity = event.polarity;
            taken.timestamp = time;
            ++kept;
        }
    }
    progress.last_time = time;
    progress.dropped += count - loaded;
    progress.clamped += clamped;
    return kept;
}

}  // namespace kelvora::python
