// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "event_columns.hpp"
#include "kelvora/events.hpp"
#include "kelvora/recording/sensor_size.hpp"

namespace kelvora::python {

/// Reads events from columns of any type. Converts times to microseconds, and polarities to 0 and
/// 1.
///
/// Events off the sensor are skipped. Invalid values are rejected: fractions of pixels, infinite
/// and undefined numbers, negative times, times of 2^63 microseconds or more, and polarities other
/// than 0 and 1, or -1 and 1.
class EventLoader {
public:
    static constexpr std::size_t kBatch = 512;

    /// \param columns_  Must outlive the loader.
    EventLoader(const EventColumns& columns_, recording::SensorSize sensor);

    /// Reads events starting at number `first`.
    ///
    /// \param count  At most `kBatch`.
    /// \param events  Has room for `count` events; filled from the front.
    /// \returns the number of events on the sensor.
    /// \throws std::invalid_argument  that names the first rejected event.
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
    bool has_zero = false;   ///< Whether a polarity was 0.
    bool has_minus = false;  ///< Whether a polarity was -1. Both together are invalid.
    std::array<std::uint32_t, kBatch> xs;
    std::array<std::uint32_t, kBatch> ys;
    std::array<std::uint64_t, kBatch> times;
    std::array<std::uint8_t, kBatch> polarities;
};

}  // namespace kelvora::python
