// SPDX-License-Identifier: MIT
#include "reference/distance_based_cluster_matcher.hpp"

#include <gmock/gmock.h>

#include <vector>

namespace kelvora::test {
namespace {

using reference::MatchedPair;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Model = reference::DistanceBasedClusterMatcher;

/// Squares of four pixels with these left edges.
Model::Clusters squaresAt(const std::vector<float>& xs, float size = 4) {
    Model::Clusters clusters;
    for (const float x : xs) {
        clusters.emplace_back(x, 0.0F, size, size, 0ULL);
    }
    return clusters;
}

TEST(ReferenceMatcher, AcceptsTheClosestPairsFirst) {
    EXPECT_THAT(Model(10, 5).match(squaresAt({0, 3}), squaresAt({4, 9}), 17),
                ElementsAre(MatchedPair{1, 0, 17, 1}, MatchedPair{0, 1, 17, 81}));
}

TEST(ReferenceMatcher, TakesEarlierClustersFirstAtTheSameDistance) {
    EXPECT_THAT(Model(10, 5).match(squaresAt({2, 0}), squaresAt({1, 1}), 0),
                ElementsAre(MatchedPair{0, 0, 0, 1}, MatchedPair{1, 1, 0, 1}));
}

TEST(ReferenceMatcher, AcceptsDistancesUpToTheThreshold) {
    EXPECT_THAT(Model(3, 5).match(squaresAt({0}), squaresAt({3}), 0),
                ElementsAre(MatchedPair{0, 0, 0, 9}));
    EXPECT_THAT(Model(3, 5).match(squaresAt({0}), squaresAt({3.5F}), 0), IsEmpty());
}

TEST(ReferenceMatcher, AcceptsDifferencesInSizeUpToTheThreshold) {
    EXPECT_THAT(Model(10, 2).match(squaresAt({0}), squaresAt({-1}, 6), 0),
                ElementsAre(MatchedPair{0, 0, 0, 1}));
    EXPECT_THAT(Model(10, 2).match(squaresAt({0}), squaresAt({-1}, 6.5F), 0), IsEmpty());
}

TEST(ReferenceMatcher, MatchesEachClusterOnceWithinABatch) {
    const auto batch = squaresAt({0, 1});
    EXPECT_THAT(Model(10, 5).match(batch, batch, 0),
                ElementsAre(MatchedPair{0, 0, 0, 0}, MatchedPair{1, 1, 0, 0}));
}

}  // namespace
}  // namespace kelvora::test
