// SPDX-License-Identifier: MIT
#pragma once

/// \file
/// The whole library.

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
