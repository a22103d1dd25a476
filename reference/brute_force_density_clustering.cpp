// SPDX-License-Identifier: MIT
#include "reference/brute_force_density_clustering.hpp"

#include <algorithm>
#include <limits>

namespace kelvora::reference {

namespace {

constexpr std::size_t kNoGroup = std::numeric_limits<std::size_t>::max();

/// Gives each of the points that `isNode` the number of its connected part, in the order of their
/// first points; points are connected where `areLinked`.
template <class Near, class IsNode, class AreLinked>
std::vector<std::size_t> connectedParts(const Near& near, IsNode isNode, AreLinked areLinked) {
    std::vector<std::size_t> part(near.points(), kNoGroup);
    std::size_t parts = 0;
    for (std::size_t first = 0; first < near.points(); ++first) {
        if (!isNode(first) || part[first] != kNoGroup) {
            continue;
        }
        std::vector<std::size_t> reached = {first};
        part[first] = parts;
        for (std::size_t next = 0; next < reached.size(); ++next) {
            for (const std::size_t other : near.of(reached[next])) {
                if (isNode(other) && part[other] == kNoGroup && areLinked(reached[next], other)) {
                    part[other] = parts;
                    reached.push_back(other);
                }
            }
        }
        ++parts;
    }
    return part;
}

/// Ascending members of each group that has any.
std::vector<std::vector<std::size_t>> membersOf(const std::vector<std::size_t>& group) {
    std::vector<std::vector<std::size_t>> members(group.size());
    for (std::size_t i = 0; i < group.size(); ++i) {
        if (group[i] != kNoGroup) {
            members[group[i]].push_back(i);
        }
    }
    members.erase(std::remove_if(members.begin(), members.end(),
                                 [](const auto& cluster) { return cluster.empty(); }),
                  members.end());
    return members;
}

/// Minima and extents of some points. Members before `first_for_maximum` do not count for the
/// largest coordinates, which are at least `floor`.
template <int DIM, typename T>
std::vector<T> boxOf(const std::vector<KDPoint<DIM, T>>& points,
                     const std::vector<std::size_t>& members, std::size_t first_for_maximum,
                     T floor) {
    std::vector<T> box(2 * DIM);
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        T low = points[members[0]].coordinates[axis];
        T high = floor;
        for (std::size_t i = 0; i < members.size(); ++i) {
            const T value = points[members[i]].coordinates[axis];
            low = std::min(low, value);
            high = i >= first_for_maximum ? std::max(high, value) : high;
        }
        box[axis] = low;
        box[DIM + axis] = high - low;
    }
    return box;
}

}  // namespace

template <int DIM, typename T>
Neighbourhoods<DIM, T>::Neighbourhoods(const std::vector<KDPoint<DIM, T>>& points, double eps)
    : neighbours(points.size()) {
    const T radius = static_cast<T>(eps);
    for (std::size_t a = 0; a < points.size(); ++a) {
        for (std::size_t b = 0; b < points.size(); ++b) {
            T sum = 0;
            for (std::size_t axis = 0; axis < DIM; ++axis) {
                const T difference = points[a].coordinates[axis] - points[b].coordinates[axis];
                sum += difference * difference;
            }
            if (sum < radius * radius) {
                neighbours[a].push_back(b);
            }
        }
    }
}

template <int DIM, typename T>
void BruteForceDensityClustering<DIM, T>::generateClusters(const std::vector<Point>& points,
                                                           Clusters& clusters, Boxes& boxes,
                                                           unsigned char n_jobs) const {
    clusters.clear();
    boxes.clear();
    if (min_pts <= 0) {
        return;
    }
    if (n_jobs == 1) {
        runOneJob(points, clusters, boxes);
    } else {
        runManyJobs(points, clusters, boxes);
    }
}

/// A core point has `min_pts` points near it, itself included. Clusters are the connected parts of
/// the core points, and a border point belongs to the first it touches.
template <int DIM, typename T>
void BruteForceDensityClustering<DIM, T>::runOneJob(const std::vector<Point>& points,
                                                    Clusters& clusters, Boxes& boxes) const {
    const Neighbourhoods<DIM, T> near(points, eps);
    const auto isCore = [&](std::size_t i) {
        return near.of(i).size() >= static_cast<std::size_t>(min_pts);
    };
    const auto part = connectedParts(near, isCore, [](std::size_t, std::size_t) { return true; });
    std::vector<std::size_t> group = part;
    for (std::size_t i = 0; i < points.size(); ++i) {
        for (const std::size_t neighbour : near.of(i)) {
            if (!isCore(i)) {
                group[i] = std::min(group[i], part[neighbour]);
            }
        }
    }
    clusters = membersOf(group);
    for (const auto& members : clusters) {
        boxes.push_back(boxOf<DIM, T>(points, members, 0, std::numeric_limits<T>::lowest()));
    }
}

/// A core point has `min_pts` others near it. It is linked with all of them, core or not, and
/// clusters are the connected parts that hold a core point. Their first points do not count for the
/// largest coordinates, which are 0 at least.
template <int DIM, typename T>
void BruteForceDensityClustering<DIM, T>::runManyJobs(const std::vector<Point>& points,
                                                      Clusters& clusters, Boxes& boxes) const {
    const Neighbourhoods<DIM, T> near(points, eps);
    const auto isCore = [&](std::size_t i) {
        return near.of(i).size() > static_cast<std::size_t>(min_pts);
    };
    const auto touchesCore = [&](std::size_t i) {
        return std::any_of(near.of(i).begin(), near.of(i).end(), isCore);
    };
    const auto areLinked = [&](std::size_t a, std::size_t b) { return isCore(a) || isCore(b); };
    clusters = membersOf(connectedParts(near, touchesCore, areLinked));
    for (const auto& members : clusters) {
        boxes.push_back(boxOf<DIM, T>(points, members, 1, 0));
    }
}

template class Neighbourhoods<2, float>;
template class Neighbourhoods<2, double>;
template class Neighbourhoods<3, float>;
template class Neighbourhoods<3, double>;
template class BruteForceDensityClustering<2, float>;
template class BruteForceDensityClustering<2, double>;
template class BruteForceDensityClustering<3, float>;
template class BruteForceDensityClustering<3, double>;

}  // namespace kelvora::reference
