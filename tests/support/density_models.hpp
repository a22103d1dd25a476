// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

#include "support/points.hpp"

/// \file
/// What density clustering should find, by definition: every pair of points is compared, and
/// clusters are the connected parts of a graph. Square time.

namespace kelvora::test {

/// Who is a neighbour of whom, in the arithmetic of the points' own type.
template <class Kind>
class Neighbourhoods {
public:
    Neighbourhoods(const typename Kind::Points& points, double eps) : neighbours(points.size()) {
        using T = typename Kind::T;
        const T radius = static_cast<T>(eps);
        for (std::size_t a = 0; a < points.size(); ++a) {
            for (std::size_t b = 0; b < points.size(); ++b) {
                T sum = 0;
                for (std::size_t axis = 0; axis < Kind::kDim; ++axis) {
                    const T difference = points[a].coordinates[axis] - points[b].coordinates[axis];
                    sum += difference * difference;
                }
                if (sum < radius * radius) {
                    neighbours[a].push_back(b);
                }
            }
        }
    }

    /// Those closer than the radius, itself included, ascending.
    const std::vector<std::size_t>& of(std::size_t point) const { return neighbours[point]; }
    std::size_t points() const { return neighbours.size(); }

private:
    std::vector<std::vector<std::size_t>> neighbours;
};

constexpr std::size_t kNoGroup = std::numeric_limits<std::size_t>::max();

/// Gives each of the points that `isNode` the number of its connected part, in the order of their
/// first points; points are connected where `areLinked`.
template <class Kind, class IsNode, class AreLinked>
std::vector<std::size_t> connectedParts(const Neighbourhoods<Kind>& near, IsNode isNode,
                                        AreLinked areLinked) {
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
inline std::vector<std::vector<std::size_t>> membersOf(const std::vector<std::size_t>& group) {
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

/// Minima and extents of some points, the largest coordinates being at least `floor`.
template <class Kind>
std::vector<typename Kind::T> boxOf(const typename Kind::Points& points,
                                    const std::vector<std::size_t>& members,
                                    std::size_t first_for_maximum, typename Kind::T floor) {
    std::vector<typename Kind::T> box(2 * Kind::kDim);
    for (std::size_t axis = 0; axis < Kind::kDim; ++axis) {
        auto low = points[members[0]].coordinates[axis];
        auto high = floor;
        for (std::size_t i = 0; i < members.size(); ++i) {
            const auto value = points[members[i]].coordinates[axis];
            low = std::min(low, value);
            high = i >= first_for_maximum ? std::max(high, value) : high;
        }
        box[axis] = low;
        box[Kind::kDim + axis] = high - low;
    }
    return box;
}

/// With one job: a core point has `min_pts` points near it, itself included. Clusters are the
/// connected parts of the core points, and a border point belongs to the first it touches.
template <class Kind>
Clustering<typename Kind::T> modelOfOneJob(const typename Kind::Points& points, double eps,
                                           int min_pts) {
    const Neighbourhoods<Kind> near(points, eps);
    const auto isCore = [&](std::size_t i) {
        return min_pts > 0 && near.of(i).size() >= static_cast<std::size_t>(min_pts);
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
    Clustering<typename Kind::T> result{membersOf(group), {}};
    for (const auto& members : result.clusters) {
        constexpr auto kLowest = std::numeric_limits<typename Kind::T>::lowest();
        result.boxes.push_back(boxOf<Kind>(points, members, 0, kLowest));
    }
    return result;
}

/// With several jobs: a core point has `min_pts` others near it. It is linked with all of them, core
/// or not, and clusters are the connected parts that hold a core point. Their first points do not
/// count for the largest coordinates, which are 0 at least.
template <class Kind>
Clustering<typename Kind::T> modelOfManyJobs(const typename Kind::Points& points, double eps,
                                             int min_pts) {
    const Neighbourhoods<Kind> near(points, eps);
    const auto isCore = [&](std::size_t i) {
        return min_pts > 0 && near.of(i).size() > static_cast<std::size_t>(min_pts);
    };
    const auto touchesCore = [&](std::size_t i) {
        return std::any_of(near.of(i).begin(), near.of(i).end(), isCore);
    };
    const auto areLinked = [&](std::size_t a, std::size_t b) { return isCore(a) || isCore(b); };
    Clustering<typename Kind::T> result{membersOf(connectedParts(near, touchesCore, areLinked)),
                                        {}};
    for (const auto& members : result.clusters) {
        result.boxes.push_back(boxOf<Kind>(points, members, 1, 0));
    }
    return result;
}

}  // namespace kelvora::test
