// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "kelvora/events.hpp"
#include "recording/coding/bytes.hpp"

namespace kelvora::recording {

/// Maximum number of events after one call of `EventDecoder::decode`: 256 KiB of them.
inline constexpr std::size_t kMaxEventsPerChunk = 16384;

/// Maximum size of an item: the limit to which a reader grows its buffer.
inline constexpr std::size_t kMaxItemBytes = std::size_t{64} * 1024 * 1024;

/// Latest valid time, in microseconds (292,000 years). Later times are defects.
inline constexpr std::uint64_t kLatestTime = std::numeric_limits<std::int64_t>::max();

/// Decodes the bytes after the header of a recording into events.
///
/// The bytes come in pieces that may be cut anywhere. A decoder does not access files; the file
/// name is only used in messages.
class EventDecoder {
public:
    virtual ~EventDecoder() = default;

    /// Decodes complete items (records, words, lines or packets) from the front of `bytes` and
    /// appends their events.
    ///
    /// Stops before an item that is cut off by the end of `bytes`, and when `events` might outgrow
    /// `kMaxEventsPerChunk`.
    ///
    /// A call that uses no bytes and appends no events asks for more bytes: the next call gets the
    /// same bytes and more. So an item may have any size up to `kMaxItemBytes`, such as a packet of
    /// several MB. A packet with more events than a chunk is decoded in several calls, each of which
    /// appends events; the decoder remembers how far it is.
    ///
    /// \param bytes  Begins where the previous call stopped.
    /// \param events  Appended to. When a defect is thrown, it holds all events before the defect.
    /// \return Number of bytes used.
    /// \throws RecordingError  at a defect. The decoder must not be used afterwards.
    virtual std::size_t decode(Bytes bytes, std::vector<Event2D>& events) = 0;

    /// Decodes the bytes that `decode` left at the end of the recording.
    ///
    /// \throws RecordingError  if they are not a complete item.
    virtual void finish(Bytes rest, std::vector<Event2D>& events) = 0;

    /// Number of words skipped so far, see `EventReader::skippedWords`.
    virtual std::uint64_t skippedWords() const { return 0; }
};

}  // namespace kelvora::recording
