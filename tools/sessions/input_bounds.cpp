// SPDX-License-Identifier: MIT
#include "sessions/input_bounds.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "kelvora/recording/recording_error.hpp"
#include "sessions/methods.hpp"

namespace kelvora::tool {

namespace {

constexpr std::uint64_t kMegabyte = 1'000'000;
constexpr std::uint64_t kFreeMemory = 32 * kMegabyte;
constexpr std::uint64_t kMemoryPerByte = 32;

// Measured peaks, rounded up. The event itself is in all of them, twice while a vector grows.
constexpr std::uint64_t kBytesPerCountedEvent = 48;
constexpr std::uint64_t kBytesPerPoint = 160;
constexpr std::uint64_t kBytesPerCoordinate = 20;

std::uint64_t bytesPerPoint(const PointSettings& settings) {
    const std::uint64_t coordinate_bytes =
        kBytesPerCoordinate * (settings.precision == Precision::Double ? 2 : 1);
    return kBytesPerPoint + static_cast<std::uint64_t>(settings.dim) * coordinate_bytes;
}

std::uint64_t cellsAcross(int pixels, std::uint64_t cell) {
    return (static_cast<std::uint64_t>(pixels) + cell - 1) / cell;
}

}  // namespace

InputBounds::InputBounds(std::filesystem::path path_, const Settings& settings,
                         const Wording& wording_)
    : path(std::move(path_)),
      wording(wording_),
      windows(settings.windows),
      is_grid(methodOf(settings.method).uses(Group::Grid)),
      counts_per_cell(settings.windows.polarity == Polarity::Separate ? 2 : 1),
      cell_width(static_cast<std::uint64_t>(settings.grid.cell_width)),
      cell_height(static_cast<std::uint64_t>(settings.grid.cell_height)),
      bytes_per_event(is_grid ? kBytesPerCountedEvent : bytesPerPoint(settings.point)) {}

std::uint64_t InputBounds::memory(std::uint64_t bytes) const {
    return windows.max_memory != 0 ? windows.max_memory * kMegabyte
                                   : kFreeMemory + kMemoryPerByte * bytes;
}

void InputBounds::checkSensor(recording::SensorSize sensor, std::uint64_t bytes) const {
    if (!is_grid) {
        return;
    }
    // A byte per pixel; two bytes per count, and a bit, which is less than a byte.
    const std::uint64_t pixels =
        static_cast<std::uint64_t>(sensor.width) * static_cast<std::uint64_t>(sensor.height);
    const std::uint64_t cells =
        cellsAcross(sensor.width, cell_width) * cellsAcross(sensor.height, cell_height);
    const std::uint64_t needed = pixels + cells * (2 * counts_per_cell + 1);
    if (needed > memory(bytes)) {
        throw recording::RecordingError(
            recording::ErrorKind::NotSuitable, path.string(),
            fmt::format("has a sensor of {} x {} pixels, whose grid takes {} MB of memory",
                        sensor.width, sensor.height, needed / kMegabyte + 1),
            {}, "check the size, or allow more memory with " + nameOf("max_memory"));
    }
}

std::uint64_t InputBounds::windowEvents(std::uint64_t bytes) const {
    return windows.max_window_events != 0
               ? windows.max_window_events
               : std::max<std::uint64_t>(memory(bytes) / bytes_per_event, 1);
}

void InputBounds::refuseWindow(std::uint64_t most_events, std::uint64_t start_time) const {
    throw recording::RecordingError(
        recording::ErrorKind::NotSuitable, path.string(),
        fmt::format("has more than {} events in a window", most_events),
        {recording::ErrorPlace::Unit::EventAt, start_time},
        "shorten the windows, or allow more events with " + nameOf("max_window_events"));
}

std::string InputBounds::nameOf(std::string_view keyword) const {
    return wording.name(*findParameter(keyword));
}

}  // namespace kelvora::tool
