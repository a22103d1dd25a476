// SPDX-License-Identifier: MIT
#pragma once

#include <iosfwd>

#include "kelvora/grid_based_cluster_generator.hpp"

namespace kelvora::test {

/// Named constructor arguments of a grid generator.
///
/// The defaults give a grid of 10 x 10 cells in which one event is enough and clusters may have any
/// size.
struct GridSettings {
    int sensor_width = 40;
    int sensor_height = 40;
    int cell_width = 4;
    int cell_height = 4;
    int max_cluster_size = 1'000'000;
    int min_cluster_size = 0;
    EventFilterType filter_type = POLARITY_FREE;
    bool count_pixel_once = false;
    unsigned short activation_threshold = 1;

    GridSettings& sensor(int width, int height);
    GridSettings& cells(int width, int height);
    GridSettings& clusterSizes(int smallest, int largest);
    GridSettings& filter(EventFilterType type);
    GridSettings& countPixelOnce();
    GridSettings& threshold(unsigned short events);

    /// The generator, or its model.
    template <class Generator = GridBasedClusterGenerator>
    Generator build() const {
        return {sensor_width, sensor_height,    cell_width,
                cell_height,  max_cluster_size, min_cluster_size,
                filter_type,  count_pixel_once, activation_threshold};
    }
};

std::ostream& operator<<(std::ostream& out, const GridSettings& settings);

}  // namespace kelvora::test
