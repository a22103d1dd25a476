// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <opencv2/core/mat.hpp>

#include "kelvora/grid_based_cluster_generator.hpp"
#include "kelvora/recording/sensor_size.hpp"
#include "sessions/clustering_method.hpp"
#include "sessions/settings.hpp"

namespace kelvora::tool {

/// Clusters by counting events in the cells of a grid. Does not label events.
class GridMethod : public ClusteringMethod {
public:
    GridMethod(const Settings& settings, recording::SensorSize sensor);

    void cluster(const recording::Window& window, WindowClusters& found) override;

    bool takeEarly(const recording::Window& events) override;

    /// The counts since the last window. Refers to the generator: the next call changes it.
    cv::Mat activeMap();

private:
    GridBasedClusterGenerator generator;
};

std::unique_ptr<ClusteringMethod> makeGridMethod(const Settings& settings,
                                                 recording::SensorSize sensor);

}  // namespace kelvora::tool
