// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace kelvora {

/// The set of points that are noise.
constexpr std::uint32_t kNoSet = std::numeric_limits<std::uint32_t>::max();

/// Finds core points and joins them with their neighbours, for the density clustering with several
/// jobs. The work is divided into blocks that threads share.
///
/// A core point has at least `min_pts` others closer than the radius, in the arithmetic of `T`. It
/// is joined with all of them, core points or not.
class ParallelSearch {
public:
    ParallelSearch() = default;
    virtual ~ParallelSearch() = default;
    ParallelSearch(const ParallelSearch&) = delete;
    ParallelSearch& operator=(const ParallelSearch&) = delete;

    /// Returns the number of blocks.
    virtual std::size_t blocks() const = 0;

    /// Finds the core points of a block. Called once per block, by different threads
    /// at the same time.
    virtual void findCorePoints(std::size_t block) = 0;

    /// Joins the core points of a block with their neighbours. Called once per block, by different
    /// threads at the same time, after all calls of `findCorePoints` have returned.
    virtual void joinNeighbours(std::size_t block) = 0;

    /// Writes the set of each point, in the caller's order: a number below the number
    /// of points, or `kNoSet`.
    virtual void writeSets(std::vector<std::uint32_t>& set_of) = 0;
};

}  // namespace kelvora
