// SPDX-License-Identifier: MIT
#include "recording/decoding_reader.hpp"

#include <utility>

#include "kelvora/recording/recording_error.hpp"

namespace kelvora::recording {

DecodingReader::DecodingReader(std::unique_ptr<InputBuffer> input_,
                               std::unique_ptr<EventDecoder> decoder_, std::string format,
                               const std::optional<SensorSize>& sensor_size_)
    : input(std::move(input_)),
      decoder(std::move(decoder_)),
      format_name(std::move(format)),
      sensor_size(sensor_size_) {}

bool DecodingReader::read(std::vector<Event2D>& events) {
    events.clear();
    if (defect) {
        std::rethrow_exception(defect);
    }
    try {
        while (events.empty() && !is_finished) {
            decodeSome(events);
        }
    } catch (const RecordingError&) {
        // Return the events before the defect first. The next call throws the error.
        defect = std::current_exception();
        if (events.empty()) {
            throw;
        }
    }
    return !events.empty();
}

// Decodes the buffer, reads more bytes, or finishes.
void DecodingReader::decodeSome(std::vector<Event2D>& events) {
    const std::size_t used = decoder->decode(input->unread(), events);
    input->skip(used);
    if (used > 0 || !events.empty() || input->fill()) {
        return;
    }
    is_finished = true;
    decoder->finish(input->unread(), events);
    input->skip(input->unread().size());
}

}  // namespace kelvora::recording
