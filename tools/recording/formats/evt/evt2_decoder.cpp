// SPDX-License-Identifier: MIT
#include "recording/formats/evt/evt2_decoder.hpp"

#include <utility>

#include "recording/formats/evt/evt2_word.hpp"
#include "recording/formats/evt/evt_header.hpp"

namespace kelvora::recording {

Evt2Decoder::Evt2Decoder(std::string file_, std::uint64_t header_length)
    : file(std::move(file_)),
      position(header_length),
      time_high(kEvt2TimeHighBits, kEvt2TimeLowBits) {}

std::size_t Evt2Decoder::decode(Bytes bytes, std::vector<Event2D>& events) {
    constexpr std::size_t kWordBytes = sizeof(std::uint32_t);
    std::size_t used = 0;
    while (used + kWordBytes <= bytes.size() && events.size() < kMaxEventsPerChunk) {
        decodeWord(loadLittleEndian<std::uint32_t>(bytes.data() + used), events);
        used += kWordBytes;
    }
    position += used;
    return used;
}

void Evt2Decoder::finish(Bytes rest, std::vector<Event2D>& /*events*/) {
    refuseEndInsideWord(file, position, rest);
}

void Evt2Decoder::decodeWord(std::uint32_t word, std::vector<Event2D>& events) {
    switch (static_cast<Evt2WordType>(word >> kEvt2TypeShift)) {
        case Evt2WordType::EventOff:
            decodeEvent(word, 0, events);
            break;
        case Evt2WordType::EventOn:
            decodeEvent(word, 1, events);
            break;
        case Evt2WordType::TimeHigh:
            time_high.set(word & kEvt2TimeHighMask);
            break;
        case Evt2WordType::ExternalTrigger:
        case Evt2WordType::Others:
        case Evt2WordType::Continued:
            break;
        default:
            ++skipped_words;
    }
}

void Evt2Decoder::decodeEvent(std::uint32_t word, unsigned char polarity,
                              std::vector<Event2D>& events) {
    if (!time_high.isKnown()) {
        ++skipped_words;
        return;
    }
    event.x = static_cast<std::uint16_t>((word >> kEvt2XShift) & kEvt2CoordinateMask);
    event.y = static_cast<std::uint16_t>(word & kEvt2CoordinateMask);
    event.polarity = polarity;
    event.timestamp = time_high.microseconds() | ((word >> kEvt2TimeLowShift) & kEvt2TimeLowMask);
    events.push_back(event);
}

}  // namespace kelvora::recording
