// SPDX-License-Identifier: MIT
#include "scoring/frame_matcher.hpp"

#include <algorithm>

#include "scoring/assignment.hpp"

namespace kelvora::scoring {

namespace {

/// Sorts numbers and removes repeated ones.
void makeUnique(std::vector<std::size_t>& numbers) {
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
}

std::size_t placeOf(std::size_t number, const std::vector<std::size_t>& ascending) {
    return static_cast<std::size_t>(std::lower_bound(ascending.begin(), ascending.end(), number) -
                                    ascending.begin());
}

}  // namespace

FrameMatcher::FrameMatcher(const Frame& frame_, double min_iou_, std::size_t most_pairs_)
    : frame(frame_),
      min_iou(min_iou_),
      most_pairs(most_pairs_),
      is_matched(frame_.truth.size(), false),
      is_taken(frame_.clusters.size(), false) {}

void FrameMatcher::matchWithTrack(std::size_t object, std::uint64_t track) {
    if (by_track.size() != frame.clusters.size()) {
        for (std::size_t cluster = 0; cluster < frame.clusters.size(); ++cluster) {
            by_track.emplace_back(frame.clusters[cluster].track, cluster);
        }
        std::sort(by_track.begin(), by_track.end());
    }
    auto next =
        std::lower_bound(by_track.begin(), by_track.end(), std::pair(track, std::size_t{0}));
    for (; next != by_track.end() && next->first == track; ++next) {
        if (!is_taken[next->second] && iou(object, next->second) >= min_iou) {
            match(object, next->second);
            return;
        }
    }
}

void FrameMatcher::matchAll(const std::vector<std::size_t>& objects) {
    std::vector<std::size_t> free_objects;
    std::vector<Box> rows;
    for (const std::size_t object : objects) {
        if (!is_matched[object]) {
            free_objects.push_back(object);
            rows.push_back(frame.truth[object].box);
        }
    }
    std::vector<std::size_t> free_clusters;
    std::vector<Box> columns;
    for (std::size_t cluster = 0; cluster < is_taken.size(); ++cluster) {
        if (!is_taken[cluster]) {
            free_clusters.push_back(cluster);
            columns.push_back(frame.clusters[cluster].box);
        }
    }
    cluster_of.assign(frame.truth.size(), std::nullopt);
    const auto overlaps = findOverlaps(rows, columns, min_iou, most_pairs);
    for (const auto& group : groupOverlaps(overlaps, rows.size())) {
        matchGroup(group, free_objects, free_clusters);
    }
    for (const std::size_t object : free_objects) {
        if (cluster_of[object]) {
            match(object, *cluster_of[object]);
        }
    }
}

/// Finds the clusters of objects that overlap with no others.
///
/// \param objects,clusters  The indices that the rows and columns of the group stand for.
void FrameMatcher::matchGroup(const std::vector<Overlap>& group,
                              const std::vector<std::size_t>& objects,
                              const std::vector<std::size_t>& clusters) {
    std::vector<std::size_t> rows;
    std::vector<std::size_t> columns;
    for (const Overlap& overlap : group) {
        rows.push_back(overlap.row);
        columns.push_back(overlap.column);
    }
    makeUnique(rows);
    makeUnique(columns);
    if (rows.size() > most_pairs / columns.size()) {
        throw TooManyOverlaps();
    }
    CostMatrix costs(rows.size(), columns.size());
    for (const Overlap& overlap : group) {
        costs.at(placeOf(overlap.row, rows), placeOf(overlap.column, columns)) = 1.0 - overlap.iou;
    }
    const auto column_of = assign(costs);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (column_of[row]) {
            cluster_of[objects[rows[row]]] = clusters[columns[*column_of[row]]];
        }
    }
}

double FrameMatcher::iou(std::size_t object, std::size_t cluster) const {
    return intersectionOverUnion(frame.truth[object].box, frame.clusters[cluster].box);
}

void FrameMatcher::match(std::size_t object, std::size_t cluster) {
    is_matched[object] = true;
    is_taken[cluster] = true;
    made.push_back({object, cluster, iou(object, cluster)});
}

}  // namespace kelvora::scoring
