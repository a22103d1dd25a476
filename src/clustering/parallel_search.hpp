// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "kelvora/kd_point.hpp"

namespace kelvora {

/// Stands for no set, for points that are noise.
constexpr std::uint32_t kNoSet = std::numeric_limits<std::uint32_t>::max();

/// How the density clustering with several jobs finds core points and joins them with their
/// neighbours. The work is cut into blocks that threads share, and must not allocate memory: a thread
/// has nobody to tell that there is none.
///
/// A core point has `min_pts` others that are closer than the radius, in the arithmetic of `T`. It is
/// joined with all of them, whether they are core points or not.
class ParallelSearch {
public:
    ParallelSearch() = default;
    virtual ~ParallelSearch() = default;
    ParallelSearch(const ParallelSearch&) = delete;
    ParallelSearch& operator=(const ParallelSearch&) = delete;

    virtual std::size_t blocks() const = 0;

    /// Finds the core points of a block. Each block is searched once.
    virtual void findCorePoints(std::size_t block) = 0;

    /// Joins the core points of a block with their neighbours, when those of all blocks are known.
    virtual void joinNeighbours(std::size_t block) = 0;

    /// Gives each point, in the caller's order, the number of its set, which is below the number of
    /// points, or `kNoSet`.
    virtual void writeSets(std::vector<std::uint32_t>& set_of) = 0;
};

/// The squared distance as nanoflann computes it: results depend on each of its roundings.
template <int DIM, typename T>
T squaredDistance(const std::array<T, DIM>& a, const std::array<T, DIM>& b) {
    T sum = 0;
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        const T difference = a[axis] - b[axis];
        sum += difference * difference;
    }
    return sum;
}

}  // namespace kelvora
