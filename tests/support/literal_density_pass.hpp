// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <nanoflann.hpp>
#include <utility>
#include <vector>

#include "support/points.hpp"

namespace kelvora::test {

/// The pass with one job, step by step, over nanoflann as it comes: which point is taken when, and
/// so the order of the members, follows from the walk through the tree and from how a list is
/// partitioned.
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

    /// Neighbours in the order in which the tree is walked.
    std::vector<std::size_t> search(std::size_t i) const {
        std::vector<nanoflann::ResultItem<std::size_t, T>> found;
        if (!visited.empty()) {
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
            return points[i].coordinates[axis];
        }
        template <class Box>
        bool kdtree_get_bbox(Box& /*box*/) const {
            return false;
        }
    };

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
