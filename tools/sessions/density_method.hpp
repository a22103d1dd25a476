// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "kelvora/recording/sensor_size.hpp"
#include "sessions/clustering_method.hpp"
#include "sessions/settings.hpp"

namespace kelvora::tool {

/// Clusters by density. Results are the same in every run, with any number of jobs.
///
/// \throws std::runtime_error  if memory for the points cannot be reserved.
std::unique_ptr<ClusteringMethod> makeDensityMethod(const Settings& settings,
                                                    recording::SensorSize sensor);

}  // namespace kelvora::tool
