// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <iosfwd>
#include <tuple>
#include <vector>

#include "kelvora/cluster_geometry.hpp"
#include "kelvora/distance_based_cluster_matcher.hpp"

namespace kelvora::reference {

/// An accepted pair, comparable and printable.
struct MatchedPair {
    int first;
    int second;
    int match_tag;
    float squared_distance;
};

bool operator==(const MatchedPair& a, const MatchedPair& b);
std::ostream& operator<<(std::ostream& out, const MatchedPair& pair);

/// The pairs that a matcher of the library recorded.
std::vector<MatchedPair> pairsOf(const kelvora::DistanceBasedClusterMatcher& matcher);

/// The rules of `kelvora::DistanceBasedClusterMatcher` by definition: the distances of all pairs are
/// computed and sorted, and then every pair is taken that still can be. Square time.
class DistanceBasedClusterMatcher {
public:
    using Clusters = std::vector<ClusterGeometry>;
    /// Squared distance and the positions in both batches.
    using Candidate = std::tuple<float, std::size_t, std::size_t>;

    DistanceBasedClusterMatcher(float distance_threshold_, float size_threshold_)
        : distance_threshold(distance_threshold_), size_threshold(size_threshold_) {}

    std::vector<MatchedPair> match(const Clusters& first, const Clusters& second,
                                   int match_tag) const;

    /// The pairs close enough to each other, by ascending distance.
    std::vector<Candidate> candidates(const Clusters& first, const Clusters& second) const;

    bool areOfSimilarSize(const ClusterGeometry& a, const ClusterGeometry& b) const;

private:
    float distance_threshold;
    float size_threshold;
};

}  // namespace kelvora::reference
