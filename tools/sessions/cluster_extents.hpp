// SPDX-License-Identifier: MIT
#pragma once

#include "recording/window_slicer.hpp"
#include "sessions/clustering_method.hpp"

namespace kelvora::tool {

/// Sets the extents of the clusters from the events with their labels. Times are set only if the
/// method found clusters in time. O(events).
void measureExtents(const recording::Window& window, WindowClusters& found);

/// The library clips the box of events in one row or column of pixels to 0,0,0,0. Replaces such a
/// box by the true one, one pixel wide or high. Needs labels. O(events).
void replaceZeroBoxes(const recording::Window& window, WindowClusters& found);

}  // namespace kelvora::tool
