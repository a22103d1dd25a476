// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "scoring/box.hpp"

namespace kelvora::scoring {

/// Where an object truly was.
struct TruthBox {
    std::uint64_t timestamp_us = 0;
    Box box;
    std::int64_t id = 0;      ///< Of the same object throughout.
    double visibility = 1.0;  ///< Share of the object that can be seen.
    bool is_moving = true;
};

/// Where a cluster was found.
struct ClusterBox {
    std::uint64_t timestamp_us = 0;
    Box box;
    std::uint64_t track = 0;  ///< Of the same track throughout, from 1; 0 if there are no tracks.
};

/// All that is there at a time.
struct Frame {
    std::vector<TruthBox> truth;
    std::vector<ClusterBox> clusters;
};

/// The times of the truth in ascending order, and those of clusters in between.
struct FrameSequence {
    std::vector<Frame> frames;
    std::size_t common_times = 0;  ///< Frames with truth and clusters.

    /// Clusters before the first or after the last truth, which are in no frame.
    std::size_t clusters_outside = 0;

    /// Median time from one truth to the next; 0 if there are less than two times.
    std::uint64_t truth_interval_us = 0;

    /// Least time from one cluster to a later one; 0 if there are less than two times.
    std::uint64_t cluster_interval_us = 0;
};

/// Sorts rows, which may come in any order, into frames. Rows of the same time keep their order.
FrameSequence joinFrames(std::vector<TruthBox> truth, std::vector<ClusterBox> clusters);

}  // namespace kelvora::scoring
