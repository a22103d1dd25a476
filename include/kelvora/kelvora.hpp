// SPDX-License-Identifier: MIT
#pragma once

/// \file
/// The whole library.

#include "kelvora/cluster_geometry.hpp"
#include "kelvora/events.hpp"
#include "kelvora/grid_based_cluster_generator.hpp"
#include "kelvora/version.hpp"
