// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <vector>

namespace kelvora {

/// The pixels of the events since the last reset, as long as there are few. The reset then clears
/// only the counts of these pixels, and not of the whole sensor.
class NotedPixels {
public:
    struct Pixel {
        std::uint16_t x;
        std::uint16_t y;
    };

    /// Notes nothing.
    NotedPixels() = default;

    /// \param most_events_  Most events whose pixels are noted.
    explicit NotedPixels(std::size_t most_events_) : most_events(most_events_) {
        pixels.reserve(most_events);
    }

    /// Notes the pixels of a batch, unless there are too many or some are already missing. Events
    /// are not checked: their pixels may be off the sensor.
    template <class Event>
    void note(const Event* events, std::size_t count) {
        are_all_noted = are_all_noted && count <= most_events - pixels.size();
        if (are_all_noted) {
            const auto noted = static_cast<std::ptrdiff_t>(pixels.size());
            pixels.resize(pixels.size() + count);
            std::transform(events, events + count, pixels.begin() + noted, [](const Event& event) {
                return Pixel{event.x, event.y};
            });
        }
    }

    /// Must be called if the pixel of an event is not noted.
    void giveUp() { are_all_noted = false; }

    /// Whether no pixel of an event since the last reset is missing.
    bool areAllNoted() const { return are_all_noted; }

    /// Forgets the pixels, and begins to note pixels again.
    void reset() {
        pixels.clear();
        are_all_noted = true;
    }

    auto begin() const { return pixels.begin(); }
    auto end() const { return pixels.end(); }

private:
    std::size_t most_events = 0;
    std::vector<Pixel> pixels;
    bool are_all_noted = true;
};

}  // namespace kelvora
