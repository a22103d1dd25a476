// SPDX-License-Identifier: MIT
#include "recording/formats/text/text_format.hpp"

#include "recording/formats/text/text_decoder.hpp"
#include "recording/formats/text/text_encoder.hpp"
#include "recording/formats/text/text_header.hpp"

namespace kelvora::recording {
namespace {

OpenedRecording open(const RecordingStart& start) {
    const Bytes lines =
        start.is_whole ? start.head : start.head.substr(0, start.head.rfind('\n') + 1);
    const TextHeader header = parseTextHeader(lines, start.text, start.file);
    return {std::make_unique<TextDecoder>(start.file, header.layout, header.lines), header.length,
            header.sensor_size};
}

}  // namespace

Format textFormat() {
    Format format;
    format.name = "text";
    format.title = "a text recording";
    format.description = "one event per line";
    format.states_sensor_size = "if the first line is `width height`";
    format.extensions = {".txt", ".csv"};
    format.proposed_extensions = ".txt or .csv (text)";
    format.recognises = looksLikeTextRecording;
    format.open = open;
    format.makeEncoder = [](const std::string& /*file*/, const SensorSize& size) {
        return std::make_unique<TextEncoder>(size);
    };
    return format;
}

}  // namespace kelvora::recording
