// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "kelvora/events.hpp"
#include "recording/format.hpp"
#include "recording/sensor_size.hpp"
#include "recording/text_layout.hpp"

namespace kelvora::recording {

/// Reads a recording from front to back, chunk by chunk. Memory does not grow with the length of
/// the recording.
///
/// Events are given exactly as recorded: off the sensor or back in time if the recording has such.
/// `EventCleaner` puts that right.
///
///     const auto reader = openRecording("street.raw");
///     std::vector<kelvora::Event2D> events;
///     while (reader->read(events)) {
///         ...
///     }
class EventReader {
public:
    virtual ~EventReader() = default;

    /// Replaces the contents of `events` by the next chunk, of at most 16384 events.
    ///
    /// From a pipe, a chunk is what has arrived.
    ///
    /// \return False at the end, with `events` empty.
    /// \throws RecordingError  at a defect. The events before it have all been given by earlier
    ///     calls; later calls throw the same error.
    virtual bool read(std::vector<Event2D>& events) = 0;

    virtual Format format() const = 0;

    /// What `ReadOptions` said or else the recording itself; nothing if neither did.
    virtual std::optional<SensorSize> sensorSize() const = 0;

    /// Number of EVT words that were skipped so far: those of unknown type, and those at the start
    /// whose events cannot be placed as no time or row was given yet. Always 0 for other formats.
    virtual std::uint64_t skippedWords() const = 0;

    /// Number of bytes of the file that were turned into events so far, header included.
    virtual std::uint64_t bytesRead() const = 0;

    /// Size of the file in bytes; 0 if it is not known, as that of a pipe.
    virtual std::uint64_t fileSize() const = 0;
};

/// What a user knows better than the recording.
struct ReadOptions {
    std::optional<Format> format;           ///< Instead of the one found by content.
    std::optional<SensorSize> sensor_size;  ///< Instead of that of the recording.
    TextLayout text;                        ///< For text recordings.

    /// Called when a signal arrives while a pipe is waited for. Gives up by throwing: the reader stays
    /// usable, and loses no events by it.
    std::function<void()> on_signal = {};
};

/// Opens a recording of any `Format`: a file, or a pipe such as `/dev/stdin`. Reads the first 64
/// KiB to recognise the format and to read the header.
///
/// \throws RecordingError  if the file cannot be opened or is empty, if its format is not known or
///     not `options.format`, or if its header has a defect.
std::unique_ptr<EventReader> openRecording(const std::filesystem::path& path,
                                           const ReadOptions& options = {});

}  // namespace kelvora::recording
