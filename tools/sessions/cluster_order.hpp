// SPDX-License-Identifier: MIT
#pragma once

#include "sessions/clustering_method.hpp"

namespace kelvora::tool {

/// Sorts the clusters and their centroids by first event, and removes clusters without events.
void sortByFirstEvent(WindowClusters& found);

}  // namespace kelvora::tool
