// SPDX-License-Identifier: MIT
#include "scoring/frame.hpp"

#include <algorithm>

namespace kelvora::scoring {
namespace {

template <class Row>
void sortByTime(std::vector<Row>& rows) {
    std::stable_sort(rows.begin(), rows.end(), [](const Row& left, const Row& right) {
        return left.timestamp_us < right.timestamp_us;
    });
}

/// Differences between distinct successive times, in ascending order.
template <class Row>
std::vector<std::uint64_t> intervals(const std::vector<Row>& sorted_rows) {
    std::vector<std::uint64_t> result;
    for (std::size_t i = 1; i < sorted_rows.size(); ++i) {
        if (sorted_rows[i].timestamp_us != sorted_rows[i - 1].timestamp_us) {
            result.push_back(sorted_rows[i].timestamp_us - sorted_rows[i - 1].timestamp_us);
        }
    }
    std::sort(result.begin(), result.end());
    return result;
}

/// Appends the rows of a time to `taken`. If there are any, they are at the front of the remaining
/// rows.
template <class Row>
void takeRows(const std::vector<Row>& rows, std::size_t& next, std::uint64_t time,
              std::vector<Row>& taken) {
    for (; next < rows.size() && rows[next].timestamp_us == time; ++next) {
        taken.push_back(rows[next]);
    }
}

/// \returns how many were removed.
std::size_t removeOutside(std::vector<ClusterBox>& clusters, const std::vector<TruthBox>& truth) {
    const std::size_t before = clusters.size();
    const auto is_outside = [&truth](const ClusterBox& cluster) {
        return truth.empty() || cluster.timestamp_us < truth.front().timestamp_us ||
               cluster.timestamp_us > truth.back().timestamp_us;
    };
    clusters.erase(std::remove_if(clusters.begin(), clusters.end(), is_outside), clusters.end());
    return before - clusters.size();
}

}  // namespace

FrameSequence joinFrames(std::vector<TruthBox> truth, std::vector<ClusterBox> clusters) {
    sortByTime(truth);
    sortByTime(clusters);
    FrameSequence sequence;
    const std::vector<std::uint64_t> truth_intervals = intervals(truth);
    if (!truth_intervals.empty()) {
        sequence.truth_interval_us = truth_intervals[truth_intervals.size() / 2];
    }
    const std::vector<std::uint64_t> cluster_intervals = intervals(clusters);
    if (!cluster_intervals.empty()) {
        sequence.cluster_interval_us = cluster_intervals.front();
    }
    sequence.clusters_outside = removeOutside(clusters, truth);

    std::size_t next_truth = 0;
    std::size_t next_cluster = 0;
    // No cluster lies after the last truth.
    while (next_truth < truth.size()) {
        std::uint64_t time = truth[next_truth].timestamp_us;
        if (next_cluster < clusters.size()) {
            time = std::min(time, clusters[next_cluster].timestamp_us);
        }
        Frame& frame = sequence.frames.emplace_back();
        takeRows(truth, next_truth, time, frame.truth);
        takeRows(clusters, next_cluster, time, frame.clusters);
        sequence.common_times += !frame.truth.empty() && !frame.clusters.empty() ? 1 : 0;
    }
    return sequence;
}

}  // namespace kelvora::scoring
