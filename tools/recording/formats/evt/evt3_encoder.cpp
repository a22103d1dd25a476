// SPDX-License-Identifier: MIT
#include "recording/formats/evt/evt3_encoder.hpp"

#include <algorithm>
#include <iterator>

#include "recording/coding/bytes.hpp"
#include "recording/formats/evt/evt3_word.hpp"
#include "recording/formats/evt/evt_header.hpp"

namespace kelvora::recording {
namespace {

using Iterator = std::vector<Event2D>::const_iterator;

constexpr unsigned kVectorWidth = 12;

// Write a pause in steps small enough that a reader does not take them for a time that goes back.
constexpr std::uint64_t kLongestStep = std::uint64_t{1} << (kEvt3TimeHighBits - 2);

void appendWord(Evt3WordType type, std::uint64_t payload, std::string& bytes) {
    const auto type_bits =
        static_cast<std::uint16_t>(static_cast<unsigned>(type) << kEvt3TypeShift);
    appendLittleEndian<std::uint16_t>(
        bytes, static_cast<std::uint16_t>(type_bits | (payload & kEvt3PayloadMask)));
}

std::uint64_t columnAndPolarity(const Event2D& event) {
    return event.x | (static_cast<unsigned>(event.polarity) << kEvt3PolarityShift);
}

// End of the events from `first` on that can be written together as vectors.
Iterator endOfRun(Iterator first, Iterator last) {
    const auto breaks_run = [](const Event2D& before, const Event2D& after) {
        return after.timestamp != before.timestamp || after.y != before.y ||
               after.polarity != before.polarity || after.x <= before.x;
    };
    const auto last_of_run = std::adjacent_find(first, last, breaks_run);
    return last_of_run == last ? last : std::next(last_of_run);
}

void appendSingles(Iterator first, Iterator last, std::string& bytes) {
    for (; first != last; ++first) {
        appendWord(Evt3WordType::AddressX, columnAndPolarity(*first), bytes);
    }
}

void appendVectors(Iterator first, Iterator last, std::string& bytes) {
    appendWord(Evt3WordType::VectorBaseX, columnAndPolarity(*first), bytes);
    for (unsigned base = first->x; first != last; base += kVectorWidth) {
        unsigned valid = 0;
        for (; first != last && first->x < base + kVectorWidth; ++first) {
            valid |= 1U << (first->x - base);
        }
        appendWord(Evt3WordType::Vector12, valid, bytes);
    }
}

void appendRun(Iterator first, Iterator last, std::string& bytes) {
    const auto singles = static_cast<unsigned>(last - first);
    const unsigned vectors = (std::prev(last)->x - first->x) / kVectorWidth + 1U;
    if (1 + vectors < singles) {
        appendVectors(first, last, bytes);
    } else {
        appendSingles(first, last, bytes);
    }
}

}  // namespace

Evt3Encoder::Evt3Encoder(const std::string& file, const SensorSize& sensor_size_)
    : sensor_size(sensor_size_), event_check(file) {}

void Evt3Encoder::encodeHeader(std::string& bytes) const {
    bytes += evtHeader(3, sensor_size);
}

void Evt3Encoder::encode(const std::vector<Event2D>& events, std::string& bytes) {
    for (const Event2D& event : events) {
        event_check.check(event);
    }
    for (auto first = events.begin(); first != events.end();) {
        const auto last = endOfRun(first, events.end());
        encodeTime(first->timestamp, bytes);
        encodeRow(first->y, bytes);
        appendRun(first, last, bytes);
        first = last;
    }
}

void Evt3Encoder::encodeTime(std::uint64_t time, std::string& bytes) {
    if (time == last_time) {
        return;
    }
    const std::uint64_t new_time_high = time >> kEvt3TimeLowBits;
    if (!last_time) {
        appendWord(Evt3WordType::TimeHigh, 0, bytes);
    }
    while (time_high < new_time_high) {
        time_high = std::min(new_time_high, time_high + kLongestStep);
        appendWord(Evt3WordType::TimeHigh, time_high, bytes);
    }
    appendWord(Evt3WordType::TimeLow, time, bytes);
    last_time = time;
}

void Evt3Encoder::encodeRow(std::uint16_t y, std::string& bytes) {
    if (row != y) {
        appendWord(Evt3WordType::AddressY, y, bytes);
        row = y;
    }
}

}  // namespace kelvora::recording
