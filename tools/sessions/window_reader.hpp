// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "kelvora/events.hpp"
#include "kelvora/recording/event_reader.hpp"
#include "kelvora/recording/sensor_size.hpp"
#include "recording/event_cleaner.hpp"
#include "recording/window_slicer.hpp"
#include "sessions/input_bounds.hpp"
#include "sessions/polarity.hpp"
#include "sessions/settings.hpp"
#include "sessions/time_range.hpp"

namespace kelvora::tool {

/// Reads a recording, cleans its events, and cuts them into windows.
///
///     bool has_more = true;
///     while (has_more) {
///         has_more = reader.read();
///         while (reader.next(window)) { ... }
///     }
///
/// A window with more events than `InputBounds` allows counts as a defect of the recording.
class WindowReader {
public:
    /// \param sensor_  Size of the recording's sensor.
    WindowReader(std::unique_ptr<recording::EventReader> reader_, recording::SensorSize sensor_,
                 const WindowSettings& options, InputBounds bounds_);

    recording::SensorSize sensorSize() const { return sensor; }

    /// Checks that the size of the sensor is within the bounds.
    /// \throws recording::RecordingError  otherwise.
    void checkSensor() const;

    /// Reads the next chunk of the recording. Call `next` until it returns false before.
    ///
    /// \return False at the end of the recording or of the selected range, and at a defect. The
    ///     last window is then complete.
    bool read();

    /// Returns the next complete window, which is valid until the next `read`.
    ///
    /// \return False if there is none yet; `window` is then unchanged.
    bool next(recording::Window& window);

    /// The `RecordingError` that ended reading, if any. The events before it are valid: report it
    /// after their results.
    std::exception_ptr defect() const { return reading_defect; }

    /// A remark for the user after the end, or an empty string.
    std::string remark() const;

    const recording::EventReader& source() const { return *reader; }
    const recording::EventCleaner& eventCleaner() const { return cleaner; }

private:
    std::uint64_t mostEvents() const;
    void endAtFullWindow(std::uint64_t start_time);

    std::unique_ptr<recording::EventReader> reader;
    recording::SensorSize sensor;
    recording::EventCleaner cleaner;
    TimeRange range;
    Polarity polarity;
    recording::WindowSlicer slicer;
    InputBounds bounds;
    std::vector<Event2D> events;
    std::exception_ptr reading_defect;
};

}  // namespace kelvora::tool
