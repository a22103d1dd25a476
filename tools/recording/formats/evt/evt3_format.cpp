// SPDX-License-Identifier: MIT
#include "recording/formats/evt/evt3_format.hpp"

#include "recording/formats/evt/evt3_decoder.hpp"
#include "recording/formats/evt/evt3_encoder.hpp"
#include "recording/formats/evt/evt_header.hpp"

namespace kelvora::recording {
namespace {

constexpr std::string_view kVersion = "3";

OpenedRecording open(const RecordingStart& start) {
    const EvtHeader header = openEvtHeader(start, kVersion);
    return {std::make_unique<Evt3Decoder>(start.file, header.length), header.length,
            header.sensor_size};
}

}  // namespace

Format evt3Format() {
    Format format;
    format.name = "evt3";
    format.title = "an EVT 3 recording";
    format.description =
        "`%` header, then 16-bit words for the time (24 bits), the row, single events, and groups "
        "of "
        "up to 12 pixels in a row";
    format.states_sensor_size = "usually, in the header";
    format.extensions = {".evt3", ".raw"};
    format.proposed_extensions = ".evt3.raw";
    format.recognises = [](Bytes head) { return parseEvtHeader(head).evt_version == kVersion; };
    format.open = open;
    format.makeEncoder = [](const std::string& file, const SensorSize& size) {
        return std::make_unique<Evt3Encoder>(file, size);
    };
    return format;
}

}  // namespace kelvora::recording
