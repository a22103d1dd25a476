// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "kelvora/distance_based_cluster_matcher.hpp"
#include "reference/distance_based_cluster_matcher.hpp"

namespace kelvora::test {
namespace {

using reference::MatchedPair;
using reference::pairsOf;
using ::testing::ElementsAre;

using Clusters = std::vector<ClusterGeometry>;

/// A matcher of thresholds 5 and 2 that has matched a cluster with itself, under the tag 17.
class MatcherWithHistory {
public:
    MatcherWithHistory() {
        // The number is part of the callback and copied with it.
        matcher.setDetectedMatchCallback(
            [this, number = 0](ClusterGeometry&, ClusterGeometry&, int) mutable {
                call_numbers.push_back(++number);
            });
        matcher.matchClusters(origin, origin, 17);
    }

    Clusters origin = {{0, 0, 0, 0, 0}};
    DistanceBasedClusterMatcher matcher{5, 2};
    std::vector<int> call_numbers;
};

/// Copies made in one way or the other.
class CopiedMatcher : public MatcherWithHistory, public ::testing::TestWithParam<bool> {
protected:
    DistanceBasedClusterMatcher copy() const {
        if (GetParam()) {
            return matcher;
        }
        DistanceBasedClusterMatcher assigned(1000, 1000);
        assigned.setDetectedMatchCallback([](ClusterGeometry&, ClusterGeometry&, int) { FAIL(); });
        return assigned = matcher;
    }
};

TEST_P(CopiedMatcher, HasTheSameThresholds) {
    Clusters others = {{0, 6, 0, 0, 0}, {0, 0, 3, 0, 0}, {2, 3, 2, 2, 0}};
    DistanceBasedClusterMatcher copied = copy();
    copied.matchClusters(origin, others);
    EXPECT_THAT(pairsOf(copied), ElementsAre(MatchedPair{0, 2, 0, 25}));
}

TEST_P(CopiedMatcher, HasTheSameRecords) {
    EXPECT_THAT(pairsOf(copy()), ElementsAre(MatchedPair{0, 0, 17, 0}));
}

TEST_P(CopiedMatcher, HasItsOwnCallback) {
    DistanceBasedClusterMatcher copied = copy();
    copied.matchClusters(origin, origin);
    matcher.matchClusters(origin, origin);
    EXPECT_THAT(call_numbers, ElementsAre(1, 2, 2));
}

TEST_P(CopiedMatcher, ChangesApartFromTheOriginal) {
    Clusters none;
    DistanceBasedClusterMatcher copied = copy();
    copied.matchClusters(none, none);
    copied.setDetectedMatchCallback(nullptr);
    EXPECT_THAT(pairsOf(matcher), ElementsAre(MatchedPair{0, 0, 17, 0}));
    matcher.matchClusters(origin, origin);
    EXPECT_THAT(call_numbers, ElementsAre(1, 2));
}

TEST_P(CopiedMatcher, HasNoCallbackIfTheOriginalHasNone) {
    matcher.setDetectedMatchCallback(nullptr);
    DistanceBasedClusterMatcher copied = copy();
    EXPECT_EQ(copied.matchClusters(origin, origin), 1U);
}

INSTANTIATE_TEST_SUITE_P(, CopiedMatcher, ::testing::Bool(), [](const auto& parameter) {
    return parameter.param ? "Constructed" : "Assigned";
});

class MatcherAssignedToItself : public MatcherWithHistory, public ::testing::Test {};

TEST_F(MatcherAssignedToItself, StaysTheSame) {
    const DistanceBasedClusterMatcher& same = matcher;
    EXPECT_EQ(&(matcher = same), &matcher);
    EXPECT_THAT(pairsOf(matcher), ElementsAre(MatchedPair{0, 0, 17, 0}));
    Clusters others = {{0, 6, 0, 0, 0}, {0, 0, 3, 0, 0}, {2, 3, 2, 2, 0}};
    EXPECT_EQ(matcher.matchClusters(origin, others), 1U);
    EXPECT_THAT(call_numbers, ElementsAre(1, 2));
}

}  // namespace
}  // namespace kelvora::test
