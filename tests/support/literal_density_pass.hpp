// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <nanoflann.hpp>
#include <numeric>
#include <utility>
#include <vector>

#include "support/points.hpp"

namespace kelvora::test {

/// Both passes, step by step, over nanoflann as it comes. With one job, which point is taken when,
/// and so the order of the members, follows from the walk through the tree and from how a list is
/// partitioned.
///
/// Points that are not finite stand at the largest number, and have no neighbours.
template <class Kind>
class LiteralDensityPass {
public:
    using T = typename Kind::T;

    LiteralDensityPass(const typename Kind::Points& points_, double eps, std::size_t min_pts_)
        : source{points_},
          radius(static_cast<T>(eps)),
          min_pts(min_pts_),
          tree(Kind::kDim, source, nanoflann::KDTreeSingleIndexAdaptorParams(10)),
          visited(points_.size(), false) {}

    std::vector<std::vector<std::size_t>> run() {
        std::vector<std::vector<std::size_t>> clusters;
        for (std::size_t i = 0; i < visited.size(); ++i) {
            if (!visited[i]) {
                seeds = search(i);
                if (seeds.size() >= min_pts) {
                    clusters.push_back(expand(i));
                }
            }
        }
        return clusters;
    }

    /// The pass with several jobs: clusters in the order of their first members, which ascend.
    std::vector<std::vector<std::size_t>> runWithManyJobs() const {
        const std::size_t n = source.points.size();
        std::vector<std::size_t> set(n);
        std::iota(set.begin(), set.end(), std::size_t{0});
        std::vector<bool> is_core(n);
        for (std::size_t i = 0; i < n; ++i) {
            const std::vector<std::size_t> neighbours = search(i);
            is_core[i] = neighbours.size() > min_pts;
            for (std::size_t k = 0; is_core[i] && k < neighbours.size(); ++k) {
                set[rootOf(set, neighbours[k])] = rootOf(set, i);
            }
        }
        std::vector<std::vector<std::size_t>> members(n);
        std::vector<bool> has_core(n);
        for (std::size_t i = 0; i < n; ++i) {
            members[rootOf(set, i)].push_back(i);
            has_core[rootOf(set, i)] = has_core[rootOf(set, i)] || is_core[i];
        }
        std::vector<std::vector<std::size_t>> clusters;
        for (std::size_t root = 0; root < n; ++root) {
            if (has_core[root]) {
                clusters.push_back(members[root]);
            }
        }
        std::sort(clusters.begin(), clusters.end());
        return clusters;
    }

    /// Neighbours in the order in which the tree is walked.
    std::vector<std::size_t> search(std::size_t i) const {
        std::vector<nanoflann::ResultItem<std::size_t, T>> found;
        if (source.isFinite(i)) {
            tree.radiusSearch(source.points[i].coordinates.data(), radius * radius, found,
                              nanoflann::SearchParameters(0.0F, false));
        }
        std::vector<std::size_t> neighbours;
        for (const auto& item : found) {
            neighbours.push_back(item.first);
        }
        return neighbours;
    }

private:
    struct Source {
        const typename Kind::Points& points;

        std::size_t kdtree_get_point_count() const { return points.size(); }
        T kdtree_get_pt(std::size_t i, std::size_t axis) const {
            const T value = points[i].coordinates[axis];
            return std::isfinite(value) ? value : std::numeric_limits<T>::max();
        }
        bool isFinite(std::size_t i) const {
            return std::all_of(points[i].coordinates.begin(), points[i].coordinates.end(),
                               [](T value) { return std::isfinite(value); });
        }
        template <class Box>
        bool kdtree_get_bbox(Box& /*box*/) const {
            return false;
        }
    };

    static std::size_t rootOf(std::vector<std::size_t>& set, std::size_t i) {
        while (set[i] != i) {
            i = set[i] = set[set[i]];
        }
        return i;
    }

    std::vector<std::size_t> expand(std::size_t first) {
        visited[first] = true;
        std::vector<std::size_t> members = {first};
        while (!seeds.empty()) {
            const std::size_t j = seeds.back();
            seeds.pop_back();
            if (visited[j]) {
                continue;
            }
            visited[j] = true;
            std::vector<std::size_t> neighbours = search(j);
            if (neighbours.size() >= min_pts) {
                const std::size_t unvisited = partition(neighbours);
                for (std::size_t k = 0; k < unvisited; ++k) {
                    seeds.push_back(neighbours[k]);
                }
            }
            members.push_back(j);
        }
        return members;
    }

    /// Puts the unvisited points first: the first one from the front that is in the wrong place is
    /// exchanged with the first one from the back, until the two searches meet.
    std::size_t partition(std::vector<std::size_t>& list) const {
        std::size_t front = 0;
        std::size_t back = list.size();
        while (true) {
            while (front < back && !visited[list[front]]) {
                ++front;
            }
            while (front < back && visited[list[back - 1]]) {
                --back;
            }
            if (front >= back) {
                return front;
            }
            std::swap(list[front], list[back - 1]);
            ++front;
            --back;
        }
    }

    Source source;
    T radius;
    std::size_t min_pts;
    nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<T, Source, T, std::size_t>,
                                        Source, Kind::kDim, std::size_t>
        tree;
    std::vector<bool> visited;
    std::vector<std::size_t> seeds;
};

}  // namespace kelvora::test
