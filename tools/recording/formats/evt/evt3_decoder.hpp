// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "recording/coding/event_decoder.hpp"
#include "recording/formats/evt/evt_time_high.hpp"

namespace kelvora::recording {

/// Decodes an EVT3 recording after its header.
///
/// Events are returned as recorded, even if times go back a little. Words of unknown type are
/// skipped and counted. So are words whose events have no time, row or column yet (at the start of
/// a recording cut out of a stream), and vectors that begin right of column 2047. The only possible
/// defect is an end in the middle of a word.
class Evt3Decoder : public EventDecoder {
public:
    /// \param header_length  Number of bytes before the first word.
    Evt3Decoder(std::string file, std::uint64_t header_length);

    std::size_t decode(Bytes bytes, std::vector<Event2D>& events) override;
    void finish(Bytes rest, std::vector<Event2D>& events) override;
    std::uint64_t skippedWords() const override { return skipped_words; }

private:
    void decodeWord(std::uint16_t word, std::vector<Event2D>& events);
    void decodeTimeHigh(std::uint16_t high);
    void decodeSingle(std::uint16_t payload, std::vector<Event2D>& events);
    void decodeVector(unsigned valid, unsigned width, std::vector<Event2D>& events);
    bool canPlaceEvents() const { return has_row && time_high.isKnown(); }

    std::string file;
    std::uint64_t position;  // of the next word in the file, in bytes
    std::uint64_t skipped_words = 0;
    EvtTimeHigh time_high;
    bool has_row = false;
    unsigned
        vector_x;  // column of the next vector's first bit; right of the last column before the first base
    unsigned char vector_polarity = 0;
    Event2D event;  // time and row of the events that follow
};

}  // namespace kelvora::recording
