// SPDX-License-Identifier: MIT
#include "reference/distance_based_cluster_matcher.hpp"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <set>

namespace kelvora::reference {

bool operator==(const MatchedPair& a, const MatchedPair& b) {
    return std::tie(a.first, a.second, a.match_tag, a.squared_distance) ==
           std::tie(b.first, b.second, b.match_tag, b.squared_distance);
}

std::ostream& operator<<(std::ostream& out, const MatchedPair& pair) {
    return out << pair.first << " and " << pair.second << ", tag " << pair.match_tag
               << ", squared distance " << pair.squared_distance;
}

std::vector<MatchedPair> pairsOf(const kelvora::DistanceBasedClusterMatcher& matcher) {
    std::vector<MatchedPair> pairs;
    for (const auto& record : matcher.getPairRecords()) {
        pairs.push_back(
            {record.first_index, record.second_index, record.match_tag, record.squared_distance});
    }
    return pairs;
}

std::vector<MatchedPair> DistanceBasedClusterMatcher::match(const Clusters& first,
                                                            const Clusters& second,
                                                            int match_tag) const {
    std::vector<MatchedPair> pairs;
    std::set<const ClusterGeometry*> taken;
    for (const auto& [squared_distance, i, j] : candidates(first, second)) {
        const bool are_free = taken.count(&first[i]) + taken.count(&second[j]) == 0;
        if (are_free && areOfSimilarSize(first[i], second[j])) {
            taken.insert({&first[i], &second[j]});
            pairs.push_back(
                {static_cast<int>(i), static_cast<int>(j), match_tag, squared_distance});
        }
    }
    return pairs;
}

std::vector<DistanceBasedClusterMatcher::Candidate> DistanceBasedClusterMatcher::candidates(
    const Clusters& first, const Clusters& second) const {
    std::vector<Candidate> found;
    for (std::size_t i = 0; i < first.size(); ++i) {
        for (std::size_t j = 0; j < second.size(); ++j) {
            const auto difference = first[i].getCenter() - second[j].getCenter();
            const float squared_distance =
                difference.x * difference.x + difference.y * difference.y;
            if (squared_distance <= distance_threshold * distance_threshold) {
                found.emplace_back(squared_distance, i, j);
            }
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

bool DistanceBasedClusterMatcher::areOfSimilarSize(const ClusterGeometry& a,
                                                   const ClusterGeometry& b) const {
    return std::fabs(a.width - b.width) <= size_threshold &&
           std::fabs(a.height - b.height) <= size_threshold;
}

}  // namespace kelvora::reference
