// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <unordered_map>
#include <vector>

#include "kelvora/kd_point.hpp"
#include "recording/window_slicer.hpp"
#include "sessions/clustering_method.hpp"
#include "sessions/settings.hpp"

namespace kelvora::tool {

/// Origin of the times of a window's points: its first event.
inline std::uint64_t originOf(const recording::Window& window) {
    return window.size() == 0 ? 0 : window.first->timestamp;
}

/// The point that the generators make from an event whose time is relative to `origin`.
template <int DIM, typename T>
KDPoint<DIM, T> pointOf(const Event2D& event, std::uint64_t origin, const EventScales& scales) {
    KDPoint<DIM, T> point;
    point.coordinates[0] = static_cast<T>(event.x) * static_cast<T>(scales.x);
    point.coordinates[1] = static_cast<T>(event.y) * static_cast<T>(scales.y);
    if constexpr (DIM == 3) {
        point.coordinates[2] =
            static_cast<T>(event.timestamp - origin) * static_cast<T>(scales.time);
    }
    return point;
}

/// Hashes coordinates, so that equal points get the same hash.
template <int DIM, typename T>
struct PointHash {
    std::size_t operator()(const std::array<T, DIM>& coordinates) const {
        std::size_t hash = 0;
        for (const T coordinate : coordinates) {
            hash = hash * 0x9E3779B97F4A7C15U + std::hash<T>()(coordinate);
        }
        return hash;
    }
};

/// Finds the cluster of each event of a window by looking up the event's point among the points of
/// the clusters. Equal points always belong to the same cluster. If a position has more events than
/// points, the oldest events were not clustered.
template <int DIM, typename T>
std::vector<int> labelsFromPoints(const recording::Window& window,
                                  const std::vector<std::vector<KDPoint<DIM, T>>>& clusters,
                                  const EventScales& scales) {
    struct Place {
        int cluster = kNoCluster;
        std::size_t count = 0;
    };
    std::unordered_map<std::array<T, DIM>, Place, PointHash<DIM, T>> places;
    for (std::size_t cluster = 0; cluster < clusters.size(); ++cluster) {
        for (const KDPoint<DIM, T>& point : clusters[cluster]) {
            Place& place = places[point.coordinates];
            place.cluster = static_cast<int>(cluster);
            ++place.count;
        }
    }
    std::vector<int> labels(window.size(), kNoCluster);
    for (std::size_t i = window.size(); i-- > 0;) {
        const auto found =
            places.find(pointOf<DIM, T>(window.first[i], originOf(window), scales).coordinates);
        if (found != places.end() && found->second.count > 0) {
            labels[i] = found->second.cluster;
            --found->second.count;
        }
    }
    return labels;
}

/// Labels the events of the window that the generator clustered last.
template <int DIM, typename T, class Generator>
void labelEvents(Generator& generator, const recording::Window& window, const EventScales& scales,
                 std::vector<int>& labels) {
    std::vector<std::vector<KDPoint<DIM, T>>> points;
    generator.getClusterPoints(points, false);
    labels = labelsFromPoints(window, points, scales);
}

/// Sorts the clusters and their centroids by first event, and removes clusters without events.
void sortByFirstEvent(WindowClusters& found);

}  // namespace kelvora::tool
