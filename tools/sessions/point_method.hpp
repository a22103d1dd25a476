// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "kelvora/recording/sensor_size.hpp"
#include "recording/window_slicer.hpp"
#include "sessions/clustering_method.hpp"
#include "sessions/settings.hpp"

/// \file
/// Shared parts of the methods that cluster points.

namespace kelvora::tool {

/// Origin of the times of a window's points: its first event.
inline std::uint64_t originOf(const recording::Window& window) {
    return window.size() == 0 ? 0 : window.first->timestamp;
}

/// Feeds the events of a window to a generator. Times are relative to the first event: a float can
/// represent the microseconds of a window, but not microseconds since 1970.
template <class Generator>
void feed(Generator& generator, const recording::Window& window) {
    // Batches are small enough to stay in the cache until the generator reads them.
    constexpr std::size_t kBatch = 512;
    std::array<Event2D, kBatch> batch;
    std::size_t size = 0;
    const std::uint64_t origin = originOf(window);
    for (const Event2D& event : window) {
        batch[size].x = event.x;
        batch[size].y = event.y;
        batch[size].polarity = event.polarity;
        batch[size].timestamp = event.timestamp - origin;
        if (++size == kBatch) {
            generator.processEvents(batch.data(), size);
            size = 0;
        }
    }
    generator.processEvents(batch.data(), size);
}

/// Creates a method of the chosen dimension and precision.
template <template <int, typename> class PointMethod>
std::unique_ptr<ClusteringMethod> makePointMethod(const Settings& settings,
                                                  recording::SensorSize sensor) {
    const bool is_float = settings.point.precision == Precision::Float;
    if (settings.point.dim == 2 && is_float) {
        return std::make_unique<PointMethod<2, float>>(settings, sensor);
    }
    if (settings.point.dim == 2) {
        return std::make_unique<PointMethod<2, double>>(settings, sensor);
    }
    if (is_float) {
        return std::make_unique<PointMethod<3, float>>(settings, sensor);
    }
    return std::make_unique<PointMethod<3, double>>(settings, sensor);
}

}  // namespace kelvora::tool
