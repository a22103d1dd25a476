// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "kelvora/recording/sensor_size.hpp"
#include "sessions/clustering_method.hpp"
#include "sessions/settings.hpp"

namespace kelvora::tool {

/// Divides all events of a window into a given number of clusters around centroids. Clusters
/// without events, for example from coinciding centroids, are omitted. Results differ from run to
/// run.
///
/// \throws std::runtime_error  if memory for the points cannot be reserved.
std::unique_ptr<ClusteringMethod> makeCentroidMethod(const Settings& settings,
                                                     recording::SensorSize sensor);

}  // namespace kelvora::tool
