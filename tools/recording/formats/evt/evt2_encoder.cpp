// SPDX-License-Identifier: MIT
#include "recording/formats/evt/evt2_encoder.hpp"

#include <algorithm>

#include "recording/coding/bytes.hpp"
#include "recording/formats/evt/evt2_word.hpp"
#include "recording/formats/evt/evt_header.hpp"

namespace kelvora::recording {
namespace {

// Write a pause in steps small enough that a reader does not take them for a time that goes back.
constexpr std::uint64_t kLongestStep = std::uint64_t{1} << (kEvt2TimeHighBits - 2);

std::uint32_t wordOf(Evt2WordType type, std::uint32_t payload) {
    return (static_cast<std::uint32_t>(type) << kEvt2TypeShift) | payload;
}

std::uint32_t eventWord(const Event2D& event) {
    const auto time_low = static_cast<std::uint32_t>(event.timestamp) & kEvt2TimeLowMask;
    return wordOf(event.polarity == 0 ? Evt2WordType::EventOff : Evt2WordType::EventOn,
                  (time_low << kEvt2TimeLowShift) |
                      (static_cast<std::uint32_t>(event.x) << kEvt2XShift) | event.y);
}

}  // namespace

Evt2Encoder::Evt2Encoder(const std::string& file, const SensorSize& sensor_size_)
    : sensor_size(sensor_size_), event_check(file) {}

void Evt2Encoder::encodeHeader(std::string& bytes) const {
    bytes += evtHeader(2, sensor_size);
}

void Evt2Encoder::encode(const std::vector<Event2D>& events, std::string& bytes) {
    for (const Event2D& event : events) {
        event_check.check(event);
        encodeTimeHigh(event.timestamp >> kEvt2TimeLowBits, bytes);
        appendLittleEndian<std::uint32_t>(bytes, eventWord(event));
    }
}

void Evt2Encoder::encodeTimeHigh(std::uint64_t new_time_high, std::string& bytes) {
    while (!has_time || time_high < new_time_high) {
        time_high = has_time ? std::min(new_time_high, time_high + kLongestStep) : 0;
        has_time = true;
        const auto payload = static_cast<std::uint32_t>(time_high & kEvt2TimeHighMask);
        appendLittleEndian<std::uint32_t>(bytes, wordOf(Evt2WordType::TimeHigh, payload));
    }
}

}  // namespace kelvora::recording
