// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <memory>

#include "command_line/clustering_method.hpp"
#include "command_line/point_options.hpp"
#include "recording/window_slicer.hpp"

/// \file
/// Shared parts of the methods that cluster points.

namespace kelvora::tool {

/// Feeds the events of a window to a generator. Times are relative to the start of the window: a
/// float can represent the microseconds of a window, but not microseconds since 1970.
template <class Generator>
void feed(Generator& generator, const recording::Window& window) {
    // Batches are small enough to stay in the cache until the generator reads them.
    constexpr std::size_t kBatch = 512;
    std::array<Event2D, kBatch> batch;
    std::size_t size = 0;
    for (const Event2D& event : window) {
        batch[size].x = event.x;
        batch[size].y = event.y;
        batch[size].polarity = event.polarity;
        batch[size].timestamp = event.timestamp - window.start_time;
        if (++size == kBatch) {
            generator.processEvents(batch.data(), size);
            size = 0;
        }
    }
    generator.processEvents(batch.data(), size);
}

/// Creates a method of the given dimension and precision.
template <template <int, typename> class Method, class... Arguments>
std::unique_ptr<ClusteringMethod> makePointMethod(const PointOptions& options,
                                                  const Arguments&... arguments) {
    const bool is_float = options.precision == Precision::Float;
    if (options.dim == 2 && is_float) {
        return std::make_unique<Method<2, float>>(options, arguments...);
    }
    if (options.dim == 2) {
        return std::make_unique<Method<2, double>>(options, arguments...);
    }
    if (is_float) {
        return std::make_unique<Method<3, float>>(options, arguments...);
    }
    return std::make_unique<Method<3, double>>(options, arguments...);
}

}  // namespace kelvora::tool
