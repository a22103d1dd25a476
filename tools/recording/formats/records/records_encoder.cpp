// SPDX-License-Identifier: MIT
#include "recording/formats/records/records_encoder.hpp"

#include <cstdint>

#include "recording/coding/bytes.hpp"

namespace kelvora::recording {

void RecordsEncoder::encodeHeader(std::string& /*bytes*/) const {}

void RecordsEncoder::encode(const std::vector<Event2D>& events, std::string& bytes) {
    for (const Event2D& event : events) {
        appendLittleEndian<std::uint64_t>(bytes, event.timestamp);
        appendLittleEndian<std::uint16_t>(bytes, event.x);
        appendLittleEndian<std::uint16_t>(bytes, event.y);
        appendLittleEndian<std::uint32_t>(bytes, event.polarity);  // and the padding
    }
}

}  // namespace kelvora::recording
