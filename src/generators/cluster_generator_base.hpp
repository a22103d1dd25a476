// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvora/cluster_geometry.hpp"

namespace kelvora {

/// Base of all generator implementations: the sensor size, and the two operations on the
/// accumulated events. Adding events is not virtual, because it is a template over the event type.
class ClusterGeneratorBase {
public:
    ClusterGeneratorBase(int sensor_width_, int sensor_height_)
        : sensor_width(sensor_width_), sensor_height(sensor_height_) {}

    ClusterGeneratorBase(const ClusterGeneratorBase&) = delete;
    ClusterGeneratorBase& operator=(const ClusterGeneratorBase&) = delete;

    virtual ~ClusterGeneratorBase() = default;

    virtual void generateClusters(std::size_t timestamp,
                                  std::vector<ClusterGeometry>& clusters) = 0;

    virtual void reset() = 0;

protected:
    std::int32_t sensor_width;       ///< Pixels.
    std::int32_t sensor_height;      ///< Pixels.
    std::uint64_t base_counter = 0;  ///< Unused, but part of the layout.
};

}  // namespace kelvora
