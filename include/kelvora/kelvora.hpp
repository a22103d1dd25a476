// SPDX-License-Identifier: MIT
#pragma once

/// \file
/// Includes all headers of the library.
///
/// \code{.cpp}
/// const kelvora::GridBasedClusterGeneratorOptions options;
/// kelvora::GridBasedClusterGenerator generator(640, 480, options);
/// kelvora::ClusterTracker tracker;
/// std::vector<kelvora::ClusterGeometry> clusters;
/// generator.generateClusters(10000, clusters);  // no events yet: no clusters
/// tracker.update(clusters);
/// std::cout << tracker.getTracks().size() << " objects\n";
/// \endcode

#include "kelvora/centroid_based_cluster_generator.hpp"
#include "kelvora/centroid_clustering.hpp"
#include "kelvora/cluster_geometry.hpp"
#include "kelvora/cluster_tracker.hpp"
#include "kelvora/density_based_cluster_generator.hpp"
#include "kelvora/density_clustering.hpp"
#include "kelvora/distance_based_cluster_matcher.hpp"
#include "kelvora/events.hpp"
#include "kelvora/grid_based_cluster_generator.hpp"
#include "kelvora/kd_point.hpp"
#include "kelvora/kd_tree.hpp"
#include "kelvora/sliding_event_counter.hpp"
#include "kelvora/version.hpp"
