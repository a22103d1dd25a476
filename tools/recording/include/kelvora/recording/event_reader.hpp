// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kelvora/events.hpp"
#include "kelvora/recording/export.hpp"
#include "kelvora/recording/sensor_size.hpp"
#include "kelvora/recording/text_layout.hpp"

namespace kelvora::recording {

/// Reads a recording from front to back, chunk by chunk. Memory does not grow with the length of
/// the recording.
///
/// Events are returned exactly as recorded, even if they are off the sensor or go back in time.
///
///     const auto reader = openRecording("street.raw");
///     std::vector<kelvora::Event2D> events;
///     while (reader->read(events)) {
///         ...
///     }
class KELVORA_RECORDING_EXPORT EventReader {
public:
    virtual ~EventReader();

    /// Replaces the contents of `events` with the next chunk of at most 16384 events.
    ///
    /// A chunk from a pipe contains the events that have arrived.
    ///
    /// \param[out] events  The chunk. Its memory is reused.
    /// \return False at the end, with `events` empty.
    /// \throws RecordingError  at a defect, after earlier calls have returned all events before it.
    ///     Later calls throw the same error.
    virtual bool read(std::vector<Event2D>& events) = 0;

    /// \return Name of the format, one of `readableFormats`.
    virtual std::string format() const = 0;

    /// \return The size given in `ReadOptions` or else by the recording; empty if neither gives it.
    virtual std::optional<SensorSize> sensorSize() const = 0;

    /// \return Number of EVT words skipped so far: of unknown type, and words at the start whose
    /// events cannot be decoded because no time or row was given yet. Always 0 for other formats.
    virtual std::uint64_t skippedWords() const = 0;

    /// \return Number of bytes decoded so far, including the header.
    virtual std::uint64_t bytesRead() const = 0;

    /// \return Size of the file in bytes; 0 if unknown, as for a pipe.
    virtual std::uint64_t fileSize() const = 0;
};

/// Properties that override or complete the information in the recording.
struct ReadOptions {
    std::optional<std::string> format;      ///< Name of the format, instead of detecting it.
    std::optional<SensorSize> sensor_size;  ///< Overrides the recorded size.
    TextLayout text;                        ///< For text recordings.

    /// Called when a signal arrives during a wait for a pipe. May throw to end the wait: the reader
    /// stays usable and loses no events.
    std::function<void()> on_signal = {};
};

/// Opens a recording of one of the `readableFormats`: a file, or a pipe such as `/dev/stdin`.
/// Reads the first 64 KiB to recognise the format and to read the header.
///
/// \param path  The file or pipe.
/// \param options  Information to override, or missing in the recording.
/// \return The reader, before the first event.
/// \throws RecordingError  if the file cannot be opened or is empty, if its format is unknown or
///     not `options.format`, or if its header has a defect.
/// \throws std::invalid_argument  if `options.format` is not one of the `readableFormats`.
KELVORA_RECORDING_EXPORT std::unique_ptr<EventReader> openRecording(
    const std::filesystem::path& path, const ReadOptions& options = {});

}  // namespace kelvora::recording
