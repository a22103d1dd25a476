// SPDX-License-Identifier: MIT
#pragma once

#include "recording/coding/event_encoder.hpp"

namespace kelvora::recording {

/// Encodes records, which can represent any event.
class RecordsEncoder : public EventEncoder {
public:
    void encodeHeader(std::string& bytes) const override;
    void encode(const std::vector<Event2D>& events, std::string& bytes) override;
};

}  // namespace kelvora::recording
