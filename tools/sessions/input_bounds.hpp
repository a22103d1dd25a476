// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "kelvora/recording/sensor_size.hpp"
#include "sessions/parameter_error.hpp"
#include "sessions/settings.hpp"

namespace kelvora::tool {

/// Bounds on the memory that a recording can ask for, so that a damaged or hostile one does not take
/// the whole machine.
///
/// The counts of the grid and the events of a window may take `WindowSettings::max_memory`
/// megabytes. Without this setting, they may take 32 MB and 32 bytes per byte of the recording.
class InputBounds {
public:
    /// \param path_  Path of the recording, for messages.
    /// \param wording_  How messages name parameters.
    InputBounds(std::filesystem::path path_, const Settings& settings, const Wording& wording_);

    /// Refuses a sensor that needs too much memory.
    ///
    /// \param bytes  Size of the recording; as far as it is known.
    /// \throws recording::RecordingError  which says how to allow it.
    void checkSensor(recording::SensorSize sensor, std::uint64_t bytes) const;

    /// Most events in a window.
    ///
    /// \param bytes  As above.
    std::uint64_t windowEvents(std::uint64_t bytes) const;

    /// Refuses a window with more events.
    ///
    /// \param start_time  Start of the window, microseconds.
    /// \throws recording::RecordingError  always. It says how to allow such windows.
    [[noreturn]] void refuseWindow(std::uint64_t most_events, std::uint64_t start_time) const;

private:
    std::uint64_t memory(std::uint64_t bytes) const;
    std::string nameOf(std::string_view keyword) const;

    std::filesystem::path path;
    Wording wording;
    WindowSettings windows;
    bool is_grid;
    std::uint64_t counts_per_cell;
    std::uint64_t cell_width;
    std::uint64_t cell_height;
    std::uint64_t bytes_per_event;
};

}  // namespace kelvora::tool
