// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>

#include "command_line/clustering_method.hpp"
#include "command_line/polarity.hpp"
#include "kelvora/grid_based_cluster_generator.hpp"
#include "kelvora/recording/sensor_size.hpp"

namespace kelvora::tool {

/// Parameters of the grid method. The defaults suit windows of about 10 ms: the edge of a moving
/// object crosses several pixels of a cell, noise and hot pixels hardly ever do, and cells are
/// large enough to bridge the gaps where an outline is parallel to its motion.
struct GridOptions {
    int cell_width = 5;
    int cell_height = 5;
    int max_cluster_size = 10000;
    int min_cluster_size = 15;
    bool count_every_event = false;
    unsigned short activation_threshold = 2;
};

/// Adds an option for each parameter of the grid method.
void declareOptions(CLI::App& command, GridOptions& options);

/// Clusters by counting events in the cells of a grid.
class GridMethod : public ClusteringMethod {
public:
    GridMethod(recording::SensorSize sensor, Polarity polarity, const GridOptions& options);

    void cluster(const recording::Window& window, WindowClusters& found) override;

private:
    GridBasedClusterGenerator generator;
};

}  // namespace kelvora::tool
