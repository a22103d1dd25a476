// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace kelvora {

/// Stands for no set, for points that are noise.
constexpr std::uint32_t kNoSet = std::numeric_limits<std::uint32_t>::max();

/// How the density clustering with several jobs finds core points and joins them with their
/// neighbours. The work is cut into blocks that threads share.
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

    /// Finds the core points of a block. Called once per block, by different threads at the same
    /// time.
    virtual void findCorePoints(std::size_t block) = 0;

    /// Joins the core points of a block with their neighbours. Called once per block, by different
    /// threads at the same time, after all calls of `findCorePoints` have returned.
    virtual void joinNeighbours(std::size_t block) = 0;

    /// Gives each point, in the caller's order, the number of its set, which is below the number of
    /// points, or `kNoSet`.
    virtual void writeSets(std::vector<std::uint32_t>& set_of) = 0;
};

}  // namespace kelvora
