// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

#include "kelvora/events.hpp"
#include "kelvora/recording/export.hpp"
#include "kelvora/recording/sensor_size.hpp"

namespace kelvora::recording {

/// Writes a recording from front to back. `openRecording` reads back exactly the same events.
class KELVORA_RECORDING_EXPORT EventWriter {
public:
    /// Closes the recording if `close` was not called. Errors are then ignored.
    virtual ~EventWriter();

    /// Appends events.
    ///
    /// \param events  Continue the events of the call before.
    /// \throws RecordingError  if they cannot be written, as on a full disk, or if the format
    ///     cannot represent an event: a polarity other than 0 and 1 and, in EVT2 and EVT3,
    ///     coordinates over 2047, times that go back, and pauses of more than 12 days (including
    ///     the time before the first event).
    virtual void write(const std::vector<Event2D>& events) = 0;

    /// Writes all buffered bytes and closes the file. Must be the last call.
    ///
    /// \throws RecordingError  if that fails, as on a full disk.
    virtual void close() = 0;
};

/// Creates a recording, which replaces an existing file. `formatFromExtension` suggests the format.
///
/// \param path  The file to create.
/// \param format  One of the `writableFormats`.
/// \param sensor_size  Written to the header of all formats except records, which have none.
/// \return The writer, before the first event.
/// \throws RecordingError  if the file cannot be created.
/// \throws std::invalid_argument  if `format` is not one of the `writableFormats`.
KELVORA_RECORDING_EXPORT std::unique_ptr<EventWriter> createRecording(
    const std::filesystem::path& path, std::string_view format, const SensorSize& sensor_size);

}  // namespace kelvora::recording
