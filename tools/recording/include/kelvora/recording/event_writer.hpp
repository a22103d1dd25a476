// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "kelvora/events.hpp"
#include "kelvora/recording/export.hpp"
#include "kelvora/recording/sensor_size.hpp"

namespace kelvora::recording {

/// How a file is written.
struct WriteOptions {
    /// Whether an existing file may be replaced. Devices and pipes may always be written.
    bool overwrite = true;

    /// Called when a signal arrives while the system opens or writes the file. May throw to end the
    /// wait; otherwise it continues.
    std::function<void()> on_signal = {};

    /// Called with the name of a file that remains incomplete, `PATH.partial`. Exceptions are
    /// ignored.
    std::function<void(const std::filesystem::path& partial)> on_partial = {};
};

/// Writes a recording from front to back. `openRecording` reads back exactly the same events.
///
/// The file gets its name at the end. Until then, an existing file of that name stays as it is.
class KELVORA_RECORDING_EXPORT EventWriter {
public:
    /// Without a successful `close`, the recording is incomplete: its events so far are kept as
    /// `PATH.partial`, or `PATH.partial.2` and so on if such a file exists.
    virtual ~EventWriter();

    /// Appends events.
    ///
    /// \param events  Continue the events of the call before.
    /// \throws RecordingError  if they cannot be written, as on a full disk, or if the format
    ///     cannot represent an event: a polarity other than 0 and 1 and, in EVT2 and EVT3,
    ///     coordinates over 2047, times that go back, and pauses of more than 12 days (including
    ///     the time before the first event).
    virtual void write(const std::vector<Event2D>& events) = 0;

    /// Writes all buffered bytes to the disk, and gives the file its name. Must be the last call.
    ///
    /// \throws RecordingError  if that fails, as on a full disk. The file is incomplete then.
    virtual void close() = 0;
};

/// Creates a recording. `formatFromExtension` suggests the format.
///
/// \param path  The file to create, or "-" for standard output.
/// \param format  One of the `writableFormats`.
/// \param sensor_size  Written to the header of all formats except records, which have none.
/// \param options  Whether to replace an existing file, and what to call meanwhile.
/// \return The writer, before the first event.
/// \throws RecordingError  if the file cannot be created, or exists and must not be replaced.
/// \throws std::invalid_argument  if `format` is not one of the `writableFormats`.
KELVORA_RECORDING_EXPORT std::unique_ptr<EventWriter> createRecording(
    const std::filesystem::path& path, std::string_view format, const SensorSize& sensor_size,
    const WriteOptions& options = {});

}  // namespace kelvora::recording
