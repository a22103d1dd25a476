// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

namespace kelvora::recording {

/// Extent of a sensor in pixels. Its pixels are x = 0 to width - 1 and y = 0 to height - 1.
struct SensorSize {
    int width;
    int height;
};

inline bool operator==(const SensorSize& left, const SensorSize& right) {
    return left.width == right.width && left.height == right.height;
}

inline bool operator!=(const SensorSize& left, const SensorSize& right) {
    return !(left == right);
}

/// Largest width and height: coordinates of events have 16 bits.
inline constexpr int kLargestSensorSide = 65536;

/// Whether both sides are from 1 to `kLargestSensorSide`.
bool isValid(const SensorSize& size);

/// Parses a size such as `640x480`; empty if the text has another form or the size is invalid.
std::optional<SensorSize> sensorSizeFromString(std::string_view text);

}  // namespace kelvora::recording
