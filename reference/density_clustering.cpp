// SPDX-License-Identifier: MIT
#include "reference/density_clustering.hpp"

#include <algorithm>
#include <limits>
#include <numeric>
#include <thread>
#include <utility>

namespace kelvora::reference {

namespace {

template <typename T>
void widenBox(std::vector<T>& box, const T* coordinates, std::size_t dim) {
    for (std::size_t axis = 0; axis < dim; ++axis) {
        box[axis] = std::min(box[axis], coordinates[axis]);
        box[dim + axis] = std::max(box[dim + axis], coordinates[axis]);
    }
}

template <typename T>
void maximaToExtents(std::vector<T>& box, std::size_t dim) {
    for (std::size_t axis = 0; axis < dim; ++axis) {
        box[dim + axis] -= box[axis];
    }
}

std::size_t findRoot(std::vector<std::size_t>& parent, std::size_t x) {
    std::size_t root = x;
    while (parent[root] != root) {
        root = parent[root];
    }
    while (parent[x] != root) {
        x = std::exchange(parent[x], root);
    }
    return root;
}

}  // namespace

/// A stack that holds each number at most once: a list that grew with all neighbours of all points
/// would take gigabytes.
template <int DIM, typename T>
class DensityClustering<DIM, T>::SeedStack {
public:
    explicit SeedStack(std::size_t n) : above(n, kAbsent), below(n, kAbsent) {}

    bool empty() const { return top == kNone; }

    void push(std::size_t i) {
        if (i == top) {
            return;
        }
        if (above[i] != kAbsent) {
            below[above[i]] = below[i];
            if (below[i] != kNone) {
                above[below[i]] = above[i];
            }
        }
        if (top != kNone) {
            above[top] = i;
        }
        below[i] = top;
        above[i] = kNone;
        top = i;
    }

    std::size_t pop() {
        const std::size_t i = top;
        top = below[i];
        if (top != kNone) {
            above[top] = kNone;
        }
        above[i] = kAbsent;
        return i;
    }

private:
    static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t kAbsent = kNone - 1;

    std::size_t top = kNone;
    std::vector<std::size_t> above;
    std::vector<std::size_t> below;
};

template <int DIM, typename T>
DensityClustering<DIM, T>::DensityClustering(double eps, int min_pts_)
    : radius(static_cast<T>(eps)), min_pts(static_cast<std::size_t>(min_pts_)), next_point(0) {}

template <int DIM, typename T>
DensityClustering<DIM, T>::~DensityClustering() = default;

template <int DIM, typename T>
void DensityClustering<DIM, T>::generateClusters(const std::vector<Point>& points,
                                                 Clusters& clusters, Boxes& boxes,
                                                 unsigned char n_jobs) {
    clusters.clear();
    boxes.clear();
    places = finitePlaces(points);
    is_finite.resize(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        is_finite[i] = points[i].coordinates == places[i].coordinates;
    }
    tree = std::make_unique<KDTree<DIM, T>>(places);
    if (n_jobs == 1) {
        runOneJob(clusters, boxes);
    } else {
        runManyJobs(clusters, boxes, n_jobs);
    }
}

template <int DIM, typename T>
std::size_t DensityClustering<DIM, T>::search(std::size_t i, Neighbours& neighbours) const {
    neighbours.clear();
    return is_finite[i] ? tree->radiusSearch(i, radius, neighbours) : 0;
}

template <int DIM, typename T>
void DensityClustering<DIM, T>::runOneJob(Clusters& clusters, Boxes& boxes) {
    const std::size_t n = places.size();
    clusters.reserve(n / min_pts);
    boxes.reserve(n / min_pts);
    visited.assign(n, false);
    seeds = std::make_unique<SeedStack>(n);
    for (std::size_t i = 0; i < n; ++i) {
        if (!visited[i] && search(i, seed_list) >= min_pts) {
            const auto& coordinates = places[i].coordinates;
            std::vector<T> box(coordinates.begin(), coordinates.end());
            box.insert(box.end(), coordinates.begin(), coordinates.end());
            clusters.push_back(expandCluster(i, box));
            maximaToExtents(box, DIM);
            boxes.push_back(std::move(box));
        }
    }
}

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
        if (search(j, neighbour_list) >= min_pts) {
            std::partition(neighbour_list.begin(), neighbour_list.end(),
                           [this](const auto& neighbour) { return !visited[neighbour.first]; });
            pushUnvisited(neighbour_list);
        }
        members.push_back(j);
        widenBox(box, places[j].coordinates.data(), DIM);
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
void DensityClustering<DIM, T>::runManyJobs(Clusters& clusters, Boxes& boxes,
                                            unsigned char n_jobs) {
    neighbour_lists.clear();
    neighbour_lists.resize(places.size());
    next_point = 0;
    std::vector<std::thread> workers;
    workers.reserve(n_jobs);
    for (int job = 0; job < n_jobs; ++job) {
        workers.emplace_back([this] { keepNeighbours(); });
    }
    for (std::thread& worker : workers) {
        worker.join();
    }
    std::vector<std::size_t> parent = joinNeighbours();
    reportSets(parent, clusters, boxes);
}

template <int DIM, typename T>
void DensityClustering<DIM, T>::keepNeighbours() {
    const std::size_t n = neighbour_lists.size();
    Neighbours neighbours;
    for (std::size_t i = next_point.fetch_add(1); i < n; i = next_point.fetch_add(1)) {
        if (search(i, neighbours) < min_pts) {
            continue;
        }
        for (const auto& neighbour : neighbours) {
            if (neighbour.first != i) {
                neighbour_lists[i].push_back(neighbour.first);
            }
        }
    }
}

template <int DIM, typename T>
std::vector<std::size_t> DensityClustering<DIM, T>::joinNeighbours() const {
    std::vector<std::size_t> parent(neighbour_lists.size());
    std::iota(parent.begin(), parent.end(), std::size_t{0});
    for (std::size_t i = 0; i < neighbour_lists.size(); ++i) {
        if (neighbour_lists[i].size() >= min_pts) {
            for (const std::size_t j : neighbour_lists[i]) {
                const std::size_t root = findRoot(parent, j);
                parent[root] = findRoot(parent, i);
            }
        }
    }
    return parent;
}

template <int DIM, typename T>
void DensityClustering<DIM, T>::reportSets(std::vector<std::size_t>& parent, Clusters& clusters,
                                           Boxes& boxes) const {
    constexpr std::size_t kNotReported = std::numeric_limits<std::size_t>::max();
    constexpr std::size_t kNotSeen = kNotReported - 1;
    std::vector<std::size_t> cluster_of_root(parent.size(), kNotReported);
    for (std::size_t i = 0; i < parent.size(); ++i) {
        if (neighbour_lists[i].size() >= min_pts) {
            cluster_of_root[findRoot(parent, i)] = kNotSeen;
        }
    }
    for (std::size_t i = 0; i < parent.size(); ++i) {
        std::size_t& cluster = cluster_of_root[findRoot(parent, i)];
        if (cluster == kNotReported) {
            continue;
        }
        if (cluster == kNotSeen) {
            cluster = clusters.size();
            clusters.emplace_back();
            boxes.push_back(std::vector<T>(2 * DIM, std::numeric_limits<T>::max()));
        }
        clusters[cluster].push_back(i);
        std::vector<T>& box = boxes[cluster];
        const auto& coordinates = places[i].coordinates;
        if (box[0] == std::numeric_limits<T>::max()) {
            std::copy(coordinates.begin(), coordinates.end(), box.begin());
            std::fill(box.begin() + DIM, box.end(), T{0});
        } else {
            widenBox(box, coordinates.data(), DIM);
        }
    }
    for (std::vector<T>& box : boxes) {
        maximaToExtents(box, DIM);
    }
}

template class DensityClustering<2, float>;
template class DensityClustering<2, double>;
template class DensityClustering<3, float>;
template class DensityClustering<3, double>;

}  // namespace kelvora::reference
