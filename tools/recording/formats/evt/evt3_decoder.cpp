// SPDX-License-Identifier: MIT
#include "recording/formats/evt/evt3_decoder.hpp"

#include <utility>

#include "recording/formats/evt/evt3_word.hpp"
#include "recording/formats/evt/evt_header.hpp"

namespace kelvora::recording {
namespace {

constexpr std::size_t kMaxEventsPerWord = 12;
constexpr unsigned kColumns = kEvt3CoordinateMask + 1U;

}  // namespace

Evt3Decoder::Evt3Decoder(std::string file_, std::uint64_t header_length)
    : file(std::move(file_)),
      position(header_length),
      time_high(kEvt3TimeHighBits, kEvt3TimeLowBits),
      vector_x(kColumns) {}

std::size_t Evt3Decoder::decode(Bytes bytes, std::vector<Event2D>& events) {
    constexpr std::size_t kWordBytes = sizeof(std::uint16_t);
    std::size_t used = 0;
    while (used + kWordBytes <= bytes.size() &&
           events.size() + kMaxEventsPerWord <= kMaxEventsPerChunk) {
        decodeWord(loadLittleEndian<std::uint16_t>(bytes.data() + used), events);
        used += kWordBytes;
    }
    position += used;
    return used;
}

void Evt3Decoder::finish(Bytes rest, std::vector<Event2D>& /*events*/) {
    refuseEndInsideWord(file, position, rest);
}

void Evt3Decoder::decodeWord(std::uint16_t word, std::vector<Event2D>& events) {
    const auto payload = static_cast<std::uint16_t>(word & kEvt3PayloadMask);
    switch (static_cast<Evt3WordType>(word >> kEvt3TypeShift)) {
        case Evt3WordType::AddressY:
            event.y = payload & kEvt3CoordinateMask;
            has_row = true;
            break;
        case Evt3WordType::AddressX:
            decodeSingle(payload, events);
            break;
        case Evt3WordType::VectorBaseX:
            vector_x = payload & kEvt3CoordinateMask;
            vector_polarity = static_cast<unsigned char>(payload >> kEvt3PolarityShift);
            break;
        case Evt3WordType::Vector12:
            decodeVector(payload, 12, events);
            break;
        case Evt3WordType::Vector8:
            decodeVector(payload & 0xFFU, 8, events);
            break;
        case Evt3WordType::TimeLow:
            event.timestamp = time_high.microseconds() | payload;
            break;
        case Evt3WordType::TimeHigh:
            decodeTimeHigh(payload);
            break;
        case Evt3WordType::Continued4:
        case Evt3WordType::ExternalTrigger:
        case Evt3WordType::Others:
        case Evt3WordType::Continued12:
            break;
        default:
            ++skipped_words;
    }
}

void Evt3Decoder::decodeTimeHigh(std::uint16_t high) {
    const bool was_known = time_high.isKnown();
    const std::uint64_t before = time_high.microseconds();
    time_high.set(high);
    // The old low part does not belong to the new high part: with it, events between this word and
    // the next low part would be up to 4 ms late. However, sensors repeat the high part, which must
    // not reset the low one.
    if (!was_known || time_high.microseconds() != before) {
        event.timestamp = time_high.microseconds();
    }
}

void Evt3Decoder::decodeSingle(std::uint16_t payload, std::vector<Event2D>& events) {
    if (!canPlaceEvents()) {
        ++skipped_words;
        return;
    }
    event.x = payload & kEvt3CoordinateMask;
    event.polarity = static_cast<unsigned char>(payload >> kEvt3PolarityShift);
    events.push_back(event);
}

void Evt3Decoder::decodeVector(unsigned valid, unsigned width, std::vector<Event2D>& events) {
    if (!canPlaceEvents() || vector_x >= kColumns) {
        ++skipped_words;
        return;
    }
    event.polarity = vector_polarity;
    for (unsigned x = vector_x; valid != 0; ++x, valid >>= 1U) {
        if ((valid & 1U) != 0) {
            event.x = static_cast<std::uint16_t>(x);
            events.push_back(event);
        }
    }
    vector_x += width;
}

}  // namespace kelvora::recording
