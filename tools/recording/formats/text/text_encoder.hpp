// SPDX-License-Identifier: MIT
#pragma once

#include "kelvora/recording/sensor_size.hpp"
#include "recording/coding/event_encoder.hpp"

namespace kelvora::recording {

/// Encodes a text recording: a line `width height`, then a line `t x y p` per event, the time in
/// seconds with six decimals. It can represent any event.
class TextEncoder : public EventEncoder {
public:
    explicit TextEncoder(const SensorSize& sensor_size);

    void encodeHeader(std::string& bytes) const override;
    void encode(const std::vector<Event2D>& events, std::string& bytes) override;

private:
    SensorSize sensor_size;
};

}  // namespace kelvora::recording
