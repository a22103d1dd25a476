// SPDX-License-Identifier: MIT
#include "recording/formats/evt/evt2_format.hpp"

#include "recording/formats/evt/evt2_decoder.hpp"
#include "recording/formats/evt/evt2_encoder.hpp"
#include "recording/formats/evt/evt_header.hpp"

namespace kelvora::recording {
namespace {

constexpr std::string_view kVersion = "2";

OpenedRecording open(const RecordingStart& start) {
    const EvtHeader header = openEvtHeader(start, kVersion);
    return {std::make_unique<Evt2Decoder>(start.file, header.length), header.length,
            header.sensor_size};
}

}  // namespace

Format evt2Format() {
    Format format;
    format.name = "evt2";
    format.title = "an EVT 2 recording";
    format.description =
        "`%` header, then 32-bit words, one for each event and one for the upper bits of the time "
        "(34 bits in all)";
    format.states_sensor_size = "usually, in the header";
    format.extensions = {".evt2", ".evt2.raw"};
    format.proposed_extensions = ".evt2.raw";
    format.recognises = [](Bytes head) { return parseEvtHeader(head).evt_version == kVersion; };
    format.open = open;
    format.makeEncoder = [](const std::string& file, const SensorSize& size) {
        return std::make_unique<Evt2Encoder>(file, size);
    };
    return format;
}

}  // namespace kelvora::recording
