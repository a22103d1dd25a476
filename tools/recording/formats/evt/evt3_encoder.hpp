// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kelvora/recording/sensor_size.hpp"
#include "recording/coding/event_encoder.hpp"
#include "recording/formats/evt/evt_event_check.hpp"

namespace kelvora::recording {

/// Encodes an EVT3 recording. `EvtEventCheck` defines which events it can represent.
///
/// Consecutive events of the same time, row and polarity are written as vectors if their columns
/// ascend and vectors need fewer words. The order of events is always preserved.
class Evt3Encoder : public EventEncoder {
public:
    Evt3Encoder(const std::string& file, const SensorSize& sensor_size);

    void encodeHeader(std::string& bytes) const override;
    void encode(const std::vector<Event2D>& events, std::string& bytes) override;

private:
    void encodeTime(std::uint64_t time, std::string& bytes);
    void encodeRow(std::uint16_t y, std::string& bytes);

    SensorSize sensor_size;
    EvtEventCheck event_check;
    std::optional<std::uint64_t>
        last_time;                // last ones written; time and row apply to the following events
    std::uint64_t time_high = 0;  // last one written, before truncation
    std::optional<std::uint16_t> row;
};

}  // namespace kelvora::recording
