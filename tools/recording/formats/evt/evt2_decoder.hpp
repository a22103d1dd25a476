// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "recording/coding/event_decoder.hpp"
#include "recording/formats/evt/evt_time_high.hpp"

namespace kelvora::recording {

/// Decodes an EVT2 recording after its header.
///
/// Events are returned as recorded, even if times go back. Words of unknown type and events before
/// the first time word (in a recording cut out of a stream) are skipped and counted. The only
/// possible defect is an end in the middle of a word.
class Evt2Decoder : public EventDecoder {
public:
    /// \param header_length  Number of bytes before the first word.
    Evt2Decoder(std::string file, std::uint64_t header_length);

    std::size_t decode(Bytes bytes, std::vector<Event2D>& events) override;
    void finish(Bytes rest, std::vector<Event2D>& events) override;
    std::uint64_t skippedWords() const override { return skipped_words; }

private:
    void decodeWord(std::uint32_t word, std::vector<Event2D>& events);
    void decodeEvent(std::uint32_t word, unsigned char polarity, std::vector<Event2D>& events);

    std::string file;
    std::uint64_t position;  // of the next word in the file, in bytes
    std::uint64_t skipped_words = 0;
    EvtTimeHigh time_high;
    Event2D event;  // reused: copying an event is much cheaper than constructing one
};

}  // namespace kelvora::recording
