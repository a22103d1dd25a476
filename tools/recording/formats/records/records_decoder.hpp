// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "recording/coding/event_decoder.hpp"

namespace kelvora::recording {

/// Size of a record: u64 time in microseconds, u16 x, u16 y, u8 polarity and 3 zero bytes, all
/// little-endian.
inline constexpr std::size_t kRecordBytes = 16;

/// Whether these 16 bytes can be a record: polarity 0 or 1, padding zero.
bool isPlausibleRecord(Bytes record);

/// Decodes records of `kRecordBytes` bytes. They have no header.
///
/// Defects are a polarity other than 0 or 1, padding other than zero, a time after `kLatestTime`,
/// and an end in the middle of a record.
class RecordsDecoder : public EventDecoder {
public:
    explicit RecordsDecoder(std::string file);

    std::size_t decode(Bytes bytes, std::vector<Event2D>& events) override;
    void finish(Bytes rest, std::vector<Event2D>& events) override;

private:
    [[noreturn]] void refuse(Bytes record) const;

    std::string file;
    std::uint64_t position = 0;  // of the next record in the file, in bytes
    Event2D event;               // reused: copying an event is much cheaper than constructing one
};

}  // namespace kelvora::recording
