// SPDX-License-Identifier: MIT
#include "recording/formats/records/records_format.hpp"

#include "recording/formats/records/records_decoder.hpp"
#include "recording/formats/records/records_encoder.hpp"

namespace kelvora::recording {
namespace {

bool looksLikeRecords(Bytes head) {
    if (head.size() < kRecordBytes) {
        return false;
    }
    for (std::size_t start = 0; start + kRecordBytes <= head.size(); start += kRecordBytes) {
        if (!isPlausibleRecord(head.substr(start, kRecordBytes))) {
            return false;
        }
    }
    return true;
}

OpenedRecording open(const RecordingStart& start) {
    return {std::make_unique<RecordsDecoder>(start.file), 0, std::nullopt};
}

}  // namespace

Format recordsFormat() {
    Format format;
    format.name = "records";
    format.title = "a recording of packed records";
    format.description = "16 bytes per event, no header";
    format.states_sensor_size = "no";
    format.extensions = {".bin"};
    format.proposed_extensions = ".bin (records)";
    format.recognises = looksLikeRecords;
    format.open = open;
    format.makeEncoder = [](const std::string& /*file*/, const SensorSize& /*size*/) {
        return std::make_unique<RecordsEncoder>();
    };
    return format;
}

}  // namespace kelvora::recording
