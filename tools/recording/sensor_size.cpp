// SPDX-License-Identifier: MIT
#include "kelvora/recording/sensor_size.hpp"

#include <charconv>

namespace kelvora::recording {

bool isValid(const SensorSize& size) {
    return size.width >= 1 && size.width <= kLargestSensorSide && size.height >= 1 &&
           size.height <= kLargestSensorSide;
}

std::optional<SensorSize> sensorSizeFromString(std::string_view text) {
    SensorSize size{};
    const char* const end = text.data() + text.size();
    const auto width = std::from_chars(text.data(), end, size.width);
    if (width.ec != std::errc() || width.ptr == end || *width.ptr != 'x') {
        return std::nullopt;
    }
    const auto height = std::from_chars(width.ptr + 1, end, size.height);
    if (height.ec != std::errc() || height.ptr != end || !isValid(size)) {
        return std::nullopt;
    }
    return size;
}

}  // namespace kelvora::recording
