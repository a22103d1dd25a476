// SPDX-License-Identifier: MIT
#include "kelvora/density_clustering.hpp"

#include <algorithm>
#include <exception>
#include <limits>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

#include "clustering/disjoint_sets.hpp"
#include "clustering/point_box.hpp"
#include "clustering/seed_stack.hpp"

namespace kelvora {

namespace {

/// Whether a neighbourhood of that size is dense. None is, without a positive number to compare
/// with.
bool isDense(std::size_t count, int min_pts) {
    return min_pts > 0 && count >= static_cast<std::size_t>(min_pts);
}

/// The box of one point, as minima and maxima.
template <int DIM, typename T>
std::vector<T> boxAround(const KDPoint<DIM, T>& point) {
    std::vector<T> box(point.coordinates.begin(), point.coordinates.end());
    box.insert(box.end(), point.coordinates.begin(), point.coordinates.end());
    return box;
}

/// The box that the parallel pass begins a cluster with: the largest number everywhere.
template <int DIM, typename T>
std::vector<T> untouchedBox() {
    return std::vector<T>(2 * DIM, std::numeric_limits<T>::max());
}

/// Adds a point to a box of the parallel pass. The first point leaves the maxima at 0, not at its
/// own coordinates: results have always been so, and callers rely on them.
template <int DIM, typename T>
void addToBox(std::vector<T>& box, const KDPoint<DIM, T>& point) {
    if (box[0] == std::numeric_limits<T>::max()) {
        std::copy(point.coordinates.begin(), point.coordinates.end(), box.begin());
        std::fill(box.begin() + DIM, box.end(), T{0});
    } else {
        widenBox(box, point);
    }
}

}  // namespace

template <int DIM, typename T>
DensityClustering<DIM, T>::DensityClustering(double eps_, int min_pts_)
    : eps(eps_), min_pts(min_pts_), seeds(std::make_unique<SeedStack>()), next_point(0) {}

template <int DIM, typename T>
DensityClustering<DIM, T>::~DensityClustering() = default;

template <int DIM, typename T>
void DensityClustering<DIM, T>::generateClustersMultiThread(
    const std::vector<Point>& points, std::vector<std::vector<std::size_t>>& clusters,
    std::vector<std::vector<T>>& boxes, unsigned char n_jobs) {
    if (n_jobs == 0) {
        throw std::runtime_error("n_jobs must be greater than 0");
    }
    kd_tree.build(points, 1);
    generateClustersMultiThreadPrivate(clusters, boxes, n_jobs);
}

template <int DIM, typename T>
void DensityClustering<DIM, T>::generateClustersPrivate(
    std::vector<std::vector<std::size_t>>& clusters, std::vector<std::vector<T>>& boxes) {
    clusters.clear();
    boxes.clear();
    const std::size_t n = kd_tree.getPointsCount();
    if (min_pts > 0) {
        clusters.reserve(n / static_cast<std::size_t>(min_pts));
        boxes.reserve(n / static_cast<std::size_t>(min_pts));
    }
    visited.assign(n, false);
    seeds->reset(n);
    seed_list.clear();
    seed_list.reserve(n / 100);
    neighbour_list.clear();
    neighbour_list.reserve(n / 100);
    for (std::size_t i = 0; i < n; ++i) {
        // A point that is not core stays unvisited: a later cluster may take it in as border point.
        if (!visited[i] && searchNeighbours(i, seed_list)) {
            std::vector<T> box = boxAround(kd_tree.getPoint(i));
            clusters.push_back(expandCluster(i, box));
            maximaToExtents<DIM>(box);
            boxes.push_back(std::move(box));
        }
    }
}

/// Finds the neighbours of a point, itself included. Returns whether it is a core point.
template <int DIM, typename T>
bool DensityClustering<DIM, T>::searchNeighbours(std::size_t index, Neighbours& neighbours) const {
    return isDense(kd_tree.radiusSearchIndex(static_cast<T>(eps), neighbours, false, index),
                   min_pts);
}

/// Collects the cluster of a core point whose neighbours are in the seed list.
template <int DIM, typename T>
std::vector<std::size_t> DensityClustering<DIM, T>::expandCluster(std::size_t seed,
                                                                  std::vector<T>& box) {
    visited[seed] = true;
    std::vector<std::size_t> members;
    members.reserve(seed_list.size());
    members.push_back(seed);
    pushUnvisited(seed_list);
    while (!seeds->empty()) {
        const std::size_t j = seeds->pop();
        visited[j] = true;
        if (searchNeighbours(j, neighbour_list)) {
            // The order decides that of the cluster's members: a stable partition, say, would be
            // another one.
            std::partition(neighbour_list.begin(), neighbour_list.end(),
                           [this](const auto& neighbour) { return !visited[neighbour.first]; });
            pushUnvisited(neighbour_list);
        }
        members.push_back(j);
        widenBox(box, kd_tree.getPoint(j));
    }
    return members;
}

template <int DIM, typename T>
void DensityClustering<DIM, T>::pushUnvisited(const Neighbours& neighbours) {
    for (const auto& neighbour : neighbours) {
        if (!visited[neighbour.first]) {
            seeds->push(neighbour.first);
        }
    }
}

template <int DIM, typename T>
void DensityClustering<DIM, T>::generateClustersMultiThreadPrivate(
    std::vector<std::vector<std::size_t>>& clusters, std::vector<std::vector<T>>& boxes,
    unsigned char n_jobs) {
    if (n_jobs == 1) {
        generateClustersPrivate(clusters, boxes);
        return;
    }
    clusters.clear();
    boxes.clear();
    const std::size_t n = kd_tree.getPointsCount();
    neighbour_lists.clear();
    neighbour_lists.resize(n);
    visited.assign(n, false);
    next_point = 0;
    runWorkers(n_jobs);
    DisjointSets sets(n);
    joinNeighbours(sets);
    reportSets(sets, clusters, boxes);
}

/// Runs `thouroughSearch` on that many threads. Whatever goes wrong, in a thread or in starting
/// one, leaves from here, when no thread runs any more.
template <int DIM, typename T>
void DensityClustering<DIM, T>::runWorkers(unsigned char n_jobs) {
    std::exception_ptr failure;
    std::mutex failure_mutex;
    const auto fail = [&] {
        const std::lock_guard<std::mutex> lock(failure_mutex);
        if (!failure) {
            failure = std::current_exception();
        }
        next_point = kd_tree.getPointsCount();  // nothing left to do for the others
    };
    const auto work = [&] {
        try {
            thouroughSearch();
        } catch (...) {
            fail();
        }
    };
    std::vector<std::thread> workers;
    workers.reserve(n_jobs);
    try {
        for (int job = 0; job < n_jobs; ++job) {
            workers.emplace_back(work);
        }
    } catch (...) {
        fail();
    }
    for (std::thread& worker : workers) {
        worker.join();
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

template <int DIM, typename T>
void DensityClustering<DIM, T>::thouroughSearch() {
    const std::size_t n = kd_tree.getPointsCount();
    Neighbours neighbours;
    for (std::size_t i = next_point.fetch_add(1); i < n; i = next_point.fetch_add(1)) {
        if (!searchNeighbours(i, neighbours)) {
            continue;
        }
        for (const auto& neighbour : neighbours) {
            if (neighbour.first != i) {
                neighbour_lists[i].push_back(neighbour.first);
            }
        }
    }
}

/// Whether a point acts as core point in the parallel pass: its list, which does not hold the point
/// itself, must be long enough.
template <int DIM, typename T>
bool DensityClustering<DIM, T>::hasCoreList(std::size_t index) const {
    return isDense(neighbour_lists[index].size(), min_pts);
}

/// Joins each core point with all its neighbours.
template <int DIM, typename T>
void DensityClustering<DIM, T>::joinNeighbours(DisjointSets& sets) const {
    for (std::size_t i = 0; i < neighbour_lists.size(); ++i) {
        if (hasCoreList(i)) {
            for (const std::size_t j : neighbour_lists[i]) {
                sets.join(j, i);
            }
        }
    }
}

/// Reports each set that holds a core point, in the order of their first points.
template <int DIM, typename T>
void DensityClustering<DIM, T>::reportSets(DisjointSets& sets,
                                           std::vector<std::vector<std::size_t>>& clusters,
                                           std::vector<std::vector<T>>& boxes) const {
    constexpr std::size_t kNotReported = std::numeric_limits<std::size_t>::max();
    constexpr std::size_t kNotSeen = kNotReported - 1;
    const std::size_t n = neighbour_lists.size();
    std::vector<std::size_t> cluster_of_root(n, kNotReported);
    for (std::size_t i = 0; i < n; ++i) {
        if (hasCoreList(i)) {
            cluster_of_root[sets.find(i)] = kNotSeen;
        }
    }
    for (std::size_t i = 0; i < n; ++i) {
        std::size_t& cluster = cluster_of_root[sets.find(i)];
        if (cluster == kNotReported) {
            continue;
        }
        if (cluster == kNotSeen) {
            cluster = clusters.size();
            clusters.emplace_back();
            boxes.push_back(untouchedBox<DIM, T>());
        }
        clusters[cluster].push_back(i);
        addToBox(boxes[cluster], kd_tree.getPoint(i));
    }
    for (std::vector<T>& box : boxes) {
        maximaToExtents<DIM>(box);
    }
}

template class DensityClustering<2, float>;
template class DensityClustering<2, double>;
template class DensityClustering<3, float>;
template class DensityClustering<3, double>;

}  // namespace kelvora
