// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "scoring/box.hpp"

namespace kelvora::scoring {

/// The true box of an object.
struct TruthBox {
    std::uint64_t timestamp_us = 0;
    Box box;
    std::int64_t id = 0;      ///< The same in all frames.
    double visibility = 1.0;  ///< Visible share of the object.
    bool is_moving = true;
};

/// The box of a cluster.
struct ClusterBox {
    std::uint64_t timestamp_us = 0;
    Box box;
    std::uint64_t track = 0;  ///< From 1, the same in all frames; 0 without tracks.
};

/// All objects and clusters at one time.
struct Frame {
    std::vector<TruthBox> truth;
    std::vector<ClusterBox> clusters;
};

/// In ascending order: all times of the truth, and times between them that have clusters.
struct FrameSequence {
    std::vector<Frame> frames;
    std::size_t common_times = 0;  ///< Frames with truth and clusters.

    /// Clusters before the first or after the last truth, which belong to no frame.
    std::size_t clusters_outside = 0;

    /// Median interval of the truth; 0 with fewer than two times.
    std::uint64_t truth_interval_us = 0;

    /// Shortest interval of the clusters; 0 with fewer than two times.
    std::uint64_t cluster_interval_us = 0;
};

/// Sorts rows, which may come in any order, into frames. Rows of the same time keep their order.
FrameSequence joinFrames(std::vector<TruthBox> truth, std::vector<ClusterBox> clusters);

}  // namespace kelvora::scoring
