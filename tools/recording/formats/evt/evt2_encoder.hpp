// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "kelvora/recording/sensor_size.hpp"
#include "recording/coding/event_encoder.hpp"
#include "recording/formats/evt/evt_event_check.hpp"

namespace kelvora::recording {

/// Encodes an EVT2 recording. `EvtEventCheck` defines which events it can represent.
class Evt2Encoder : public EventEncoder {
public:
    Evt2Encoder(const std::string& file, const SensorSize& sensor_size);

    void encodeHeader(std::string& bytes) const override;
    void encode(const std::vector<Event2D>& events, std::string& bytes) override;

private:
    void encodeTimeHigh(std::uint64_t new_time_high, std::string& bytes);

    SensorSize sensor_size;
    EvtEventCheck event_check;
    std::uint64_t time_high = 0;  // last one written, before truncation
    bool has_time = false;
};

}  // namespace kelvora::recording
