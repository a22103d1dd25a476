// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kelvora/recording/event_reader.hpp"
#include "recording/coding/event_decoder.hpp"
#include "recording/input_buffer.hpp"

namespace kelvora::recording {

/// Reads a file through a decoder.
class DecodingReader : public EventReader {
public:
    /// \param input  Where the decoder begins.
    /// \param format  Name of the format.
    DecodingReader(std::unique_ptr<InputBuffer> input, std::unique_ptr<EventDecoder> decoder,
                   std::string format, const std::optional<SensorSize>& sensor_size);

    bool read(std::vector<Event2D>& events) override;
    std::string format() const override { return format_name; }
    std::optional<SensorSize> sensorSize() const override { return sensor_size; }
    std::uint64_t skippedWords() const override { return decoder->skippedWords(); }
    std::uint64_t bytesRead() const override { return input->position(); }
    std::uint64_t fileSize() const override { return input->source().size(); }

private:
    void decodeSome(std::vector<Event2D>& events);

    std::unique_ptr<InputBuffer> input;
    std::unique_ptr<EventDecoder> decoder;
    std::string format_name;
    std::optional<SensorSize> sensor_size;
    std::exception_ptr defect;
    bool is_finished = false;
};

}  // namespace kelvora::recording
