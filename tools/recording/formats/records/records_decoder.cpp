// SPDX-License-Identifier: MIT
#include "recording/formats/records/records_decoder.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "kelvora/recording/recording_error.hpp"

namespace kelvora::recording {
namespace {

constexpr std::size_t kPolarityOffset = 12;

// Polarity and padding as one number: 0 or 1 in a valid record.
std::uint32_t polarityAndPadding(const char* record) {
    return loadLittleEndian<std::uint32_t>(record + kPolarityOffset);
}

}  // namespace

bool isPlausibleRecord(Bytes record) {
    return record.size() == kRecordBytes && polarityAndPadding(record.data()) <= 1;
}

RecordsDecoder::RecordsDecoder(std::string file_) : file(std::move(file_)) {}

std::size_t RecordsDecoder::decode(Bytes bytes, std::vector<Event2D>& events) {
    const std::size_t room = kMaxEventsPerChunk - std::min(kMaxEventsPerChunk, events.size());
    const std::size_t count = std::min(bytes.size() / kRecordBytes, room);
    for (std::size_t i = 0; i < count; ++i) {
        const char* const record = bytes.data() + i * kRecordBytes;
        event.timestamp = loadLittleEndian<std::uint64_t>(record);
        event.x = loadLittleEndian<std::uint16_t>(record + 8);
        event.y = loadLittleEndian<std::uint16_t>(record + 10);
        event.polarity = static_cast<unsigned char>(record[kPolarityOffset]);
        if (polarityAndPadding(record) > 1 || event.timestamp > kLatestTime) {
            refuse(bytes.substr(i * kRecordBytes, kRecordBytes));
        }
        events.push_back(event);
        position += kRecordBytes;
    }
    return count * kRecordBytes;
}

void RecordsDecoder::finish(Bytes rest, std::vector<Event2D>& /*events*/) {
    if (!rest.empty()) {
        throw RecordingError(ErrorKind::Damaged, file, "ends in the middle of a record",
                             {ErrorPlace::Unit::Byte, position + rest.size()},
                             fmt::format("copy it again or cut it off after byte {}", position));
    }
}

void RecordsDecoder::refuse(Bytes record) const {
    const std::uint32_t polarity_and_padding = polarityAndPadding(record.data());
    std::string problem = "contains a record with padding that is not zero";
    if (polarity_and_padding <= 1) {
        problem = fmt::format("contains a record with the invalid time {}", event.timestamp);
    } else if (polarity_and_padding <= 0xFF) {
        problem = fmt::format("contains a record with polarity {} instead of 0 or 1",
                              polarity_and_padding);
    }
    throw RecordingError(ErrorKind::Damaged, file, problem, {ErrorPlace::Unit::Byte, position},
                         "check that the file consists of records of 16 bytes and is not damaged");
}

}  // namespace kelvora::recording
