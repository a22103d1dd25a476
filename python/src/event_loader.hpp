// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "event_columns.hpp"
#include "kelvora/events.hpp"
#include "recording/sensor_size.hpp"

namespace kelvora::python {

/// Reads events from columns of any type: positions as they are, times in microseconds, and
/// polarities as 0 and 1.
///
/// Events off the sensor are left out. What is not a position, time or polarity at all is refused:
/// fractions of pixels, infinite and undefined numbers, negative times, times from 2^63 microseconds
/// on, and other polarities than 0 and 1, or -1 and 1.
class EventLoader {
public:
    static constexpr std::size_t kBatch = 512;

    /// \param columns_  Must live as long as the loader.
    EventLoader(const EventColumns& columns_, recording::SensorSize sensor);

    /// Reads events from number `first` on.
    ///
    /// \param count  At most `kBatch`.
    /// \param events  Room for as many; filled from the front.
    /// \returns how many of them are on the sensor.
    /// \throws std::invalid_argument  that names the first event that is refused.
    std::size_t load(std::size_t first, std::size_t count, Event2D* events);

private:
    bool hasPlainLayout() const;
    std::size_t loadPlain(std::size_t first, std::size_t count, Event2D* events);
    std::size_t loadAny(std::size_t first, std::size_t count, Event2D* events);
    void readPolarities(std::size_t first, std::size_t count);

    const EventColumns& columns;
    unsigned width;
    unsigned height;
    bool is_plain;
    bool has_zero = false;   ///< Whether there was a polarity 0,
    bool has_minus = false;  ///< and whether there was -1: both together mean nothing.
    std::array<std::uint32_t, kBatch> xs;
    std::array<std::uint32_t, kBatch> ys;
    std::array<std::uint64_t, kBatch> times;
    std::array<std::uint8_t, kBatch> polarities;
};

}  // namespace kelvora::python
