// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "kelvora/events.hpp"
#include "recording/bytes.hpp"

namespace kelvora::recording {

/// Most events that one call of `EventDecoder::decode` leaves in its vector: 256 KiB of them.
inline constexpr std::size_t kMaxEventsPerChunk = 16384;

/// Latest time, in microseconds, that counts as one (it is 292,000 years away); what is later is a
/// defect.
inline constexpr std::uint64_t kLatestTime = std::numeric_limits<std::int64_t>::max();

/// Turns the bytes that follow the header of a recording into events.
///
/// The bytes come in pieces, cut anywhere. A decoder knows no files: it is told the name for its
/// messages only.
class EventDecoder {
public:
    virtual ~EventDecoder() = default;

    /// Decodes whole items (records, words or lines) from the front of `bytes` and appends their
    /// events.
    ///
    /// Stops before an item that is cut off by the end of `bytes`, and when `events` might outgrow
    /// `kMaxEventsPerChunk`.
    ///
    /// \param bytes  Begins where the previous call stopped.
    /// \param events  Appended to. When a defect is thrown, it holds all events before the defect.
    /// \return Number of bytes used; 0 if more bytes are needed.
    /// \throws RecordingError  at a defect, after which the decoder must not be used any more.
    virtual std::size_t decode(Bytes bytes, std::vector<Event2D>& events) = 0;

    /// Decodes the bytes that `decode` left over, at the end of the recording.
    ///
    /// \throws RecordingError  if they are not a whole item.
    virtual void finish(Bytes rest, std::vector<Event2D>& events) = 0;

    /// Words that were skipped so far: see `EventReader::skippedWords`.
    virtual std::uint64_t skippedWords() const { return 0; }
};

}  // namespace kelvora::recording
