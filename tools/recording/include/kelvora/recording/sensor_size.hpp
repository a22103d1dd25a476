// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

#include "kelvora/recording/export.hpp"

namespace kelvora::recording {

/// Extent of a sensor in pixels. Its pixels are x = 0 to width - 1 and y = 0 to height - 1.
struct SensorSize {
    int width;   ///< Number of columns.
    int height;  ///< Number of rows.
};

/// Whether both sides are equal.
///
/// \param left   A size.
/// \param right  The size to compare it with.
/// \return True if they are equal.
inline bool operator==(const SensorSize& left, const SensorSize& right) {
    return left.width == right.width && left.height == right.height;
}

/// Whether a side differs.
///
/// \param left   A size.
/// \param right  The size to compare it with.
/// \return True if they differ.
inline bool operator!=(const SensorSize& left, const SensorSize& right) {
    return !(left == right);
}

/// Largest width and height: coordinates of events have 16 bits.
inline constexpr int kLargestSensorSide = 65536;

/// Whether a size is possible.
///
/// \param size  The size to check.
/// \return True if both sides are from 1 to `kLargestSensorSide`.
KELVORA_RECORDING_EXPORT bool isValid(const SensorSize& size);

/// Parses a size such as `640x480`.
///
/// \param text  Width and height.
/// \return Empty if the text has another form or the size is invalid.
KELVORA_RECORDING_EXPORT std::optional<SensorSize> sensorSizeFromString(std::string_view text);

}  // namespace kelvora::recording
