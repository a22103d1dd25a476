// SPDX-License-Identifier: MIT
#include "recording/formats/text/text_encoder.hpp"

#include <fmt/compile.h>
#include <fmt/format.h>

#include <iterator>

namespace kelvora::recording {

TextEncoder::TextEncoder(const SensorSize& sensor_size_) : sensor_size(sensor_size_) {}

void TextEncoder::encodeHeader(std::string& bytes) const {
    fmt::format_to(std::back_inserter(bytes), FMT_COMPILE("{} {}\n"), sensor_size.width,
                   sensor_size.height);
}

void TextEncoder::encode(const std::vector<Event2D>& events, std::string& bytes) {
    constexpr unsigned long long kMicrosecondsPerSecond = 1'000'000;
    for (const Event2D& event : events) {
        fmt::format_to(std::back_inserter(bytes), FMT_COMPILE("{}.{:06} {} {} {}\n"),
                       event.timestamp / kMicrosecondsPerSecond,
                       event.timestamp % kMicrosecondsPerSecond, event.x, event.y,
                       static_cast<unsigned>(event.polarity));
    }
}

}  // namespace kelvora::recording
