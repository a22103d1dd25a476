// SPDX-License-Identifier: MIT
#include "kelvora/distance_based_cluster_matcher.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <stdexcept>
#include <vector>

#include "reference/distance_based_cluster_matcher.hpp"
#include "support/first_difference.hpp"

namespace kelvora::test {
namespace {

using reference::MatchedPair;
using reference::pairsOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Clusters = std::vector<ClusterGeometry>;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

/// A cluster with its centre at a place.
ClusterGeometry clusterAt(float x, float y, float width = 4, float height = 4) {
    return {x - width / 2, y - height / 2, width, height, 0};
}

/// Clusters of one size with centres on the x axis.
Clusters clustersAt(const std::vector<float>& xs) {
    Clusters clusters;
    for (const float x : xs) {
        clusters.push_back(clusterAt(x, 0, 0, 0));
    }
    return clusters;
}

std::vector<MatchedPair> match(float distance_threshold, float size_threshold, Clusters first,
                               Clusters second) {
    DistanceBasedClusterMatcher matcher(distance_threshold, size_threshold);
    const std::size_t pairs = matcher.matchClusters(first, second);
    EXPECT_EQ(pairs, matcher.getPairRecords().size());
    return pairsOf(matcher);
}

bool areMatched(float distance_threshold, float size_threshold, const ClusterGeometry& first,
                const ClusterGeometry& second) {
    return match(distance_threshold, size_threshold, {first}, {second}).size() == 1;
}

/// The arguments of a callback.
struct Call {
    ClusterGeometry* first;
    ClusterGeometry* second;
    int match_tag;
};

bool operator==(const Call& a, const Call& b) {
    return a.first == b.first && a.second == b.second && a.match_tag == b.match_tag;
}

Call call(ClusterGeometry& first, ClusterGeometry& second, int match_tag) {
    return {&first, &second, match_tag};
}

DistanceBasedClusterMatcher::DetectedMatchCallback callsInto(std::vector<Call>& calls) {
    return [&calls](ClusterGeometry& first, ClusterGeometry& second, int match_tag) {
        calls.push_back(call(first, second, match_tag));
    };
}

TEST(DistanceBasedClusterMatcher, AcceptsWidthsThatDifferByTheThresholdButNotByMore) {
    const float more = std::nextafter(4.0F, 5.0F);
    EXPECT_TRUE(areMatched(10, 4, clusterAt(0, 0, 10, 1), clusterAt(0, 0, 14, 1)));
    EXPECT_TRUE(areMatched(10, 4, clusterAt(0, 0, 14, 1), clusterAt(0, 0, 10, 1)));
    EXPECT_FALSE(areMatched(10, 4, clusterAt(0, 0, 0, 1), clusterAt(0, 0, more, 1)));
    EXPECT_FALSE(areMatched(10, 4, clusterAt(0, 0, more, 1), clusterAt(0, 0, 0, 1)));
    EXPECT_TRUE(areMatched(10, more, clusterAt(0, 0, more, 1), clusterAt(0, 0, 0, 1)));
}

TEST(DistanceBasedClusterMatcher, AcceptsHeightsThatDifferByTheThresholdButNotByMore) {
    const float less = std::nextafter(4.0F, 3.0F);
    EXPECT_TRUE(areMatched(10, 4, clusterAt(0, 0, 1, 10), clusterAt(0, 0, 1, 14)));
    EXPECT_TRUE(areMatched(10, 4, clusterAt(0, 0, 1, 14), clusterAt(0, 0, 1, 10)));
    EXPECT_FALSE(areMatched(10, less, clusterAt(0, 0, 1, 10), clusterAt(0, 0, 1, 14)));
    EXPECT_FALSE(areMatched(10, less, clusterAt(0, 0, 1, 14), clusterAt(0, 0, 1, 10)));
}

TEST(DistanceBasedClusterMatcher, ComputesDifferencesOfSizesInFloat) {
    // 16777217 in exact numbers.
    const ClusterGeometry wide = clusterAt(0, 0, 16777216, 1);
    const ClusterGeometry inside_out = clusterAt(0, 0, -1, 1);
    EXPECT_TRUE(areMatched(10, 16777216, wide, inside_out));
}

TEST(DistanceBasedClusterMatcher, MatchesNothingWithSizesThatAreNotNumbers) {
    for (float ClusterGeometry::*size : {&ClusterGeometry::width, &ClusterGeometry::height}) {
        for (const bool spoil_first : {true, false}) {
            Clusters first = clustersAt({0, 10});
            Clusters second = clustersAt({0, 11});
            DistanceBasedClusterMatcher matcher(5, 5);
            // Only now, because such a cluster would have no centre before.
            matcher.setDetectedMatchCallback([&](ClusterGeometry&, ClusterGeometry&, int) {
                (spoil_first ? first : second)[1].*size = kNaN;
            });
            matcher.matchClusters(first, second);
            EXPECT_THAT(pairsOf(matcher), ElementsAre(MatchedPair{0, 0, 0, 0}));
        }
    }
}

TEST(DistanceBasedClusterMatcher, MatchesNothingWithASizeThresholdThatIsNotANumber) {
    EXPECT_FALSE(areMatched(10, kNaN, clusterAt(0, 0), clusterAt(0, 0)));
}

TEST(DistanceBasedClusterMatcher, MatchesNothingWithANegativeSizeThreshold) {
    EXPECT_FALSE(areMatched(10, -1, clusterAt(0, 0), clusterAt(0, 0)));
    EXPECT_FALSE(areMatched(10, -1e-45F, clusterAt(0, 0), clusterAt(0, 0)));
    EXPECT_TRUE(areMatched(10, -0.0F, clusterAt(0, 0), clusterAt(0, 0)));
}

TEST(DistanceBasedClusterMatcher, AcceptsCentresAtTheDistanceThresholdButNotBeyond) {
    const ClusterGeometry origin = clusterAt(0, 0);
    EXPECT_TRUE(areMatched(5, 0, origin, clusterAt(3, 4)));
    EXPECT_TRUE(areMatched(5, 0, origin, clusterAt(-4, 3)));
    EXPECT_TRUE(areMatched(5, 0, clusterAt(0, -5), origin));
    EXPECT_FALSE(areMatched(std::nextafter(5.0F, 0.0F), 0, origin, clusterAt(3, 4)));
    EXPECT_FALSE(areMatched(5, 0, origin, clusterAt(5.001F, 0)));
    EXPECT_FALSE(areMatched(5, 0, origin, clusterAt(4, 4)));
}

TEST(DistanceBasedClusterMatcher, MeasuresBetweenCentresNotCorners) {
    const ClusterGeometry small(10, 20, 2, 2, 0);
    EXPECT_FALSE(areMatched(5, 100, small, {10, 20, 20, 20, 0}));
    EXPECT_TRUE(areMatched(5, 100, small, {1, 11, 20, 20, 0}));
}

TEST(DistanceBasedClusterMatcher, IgnoresTheSignOfTheDistanceThreshold) {
    EXPECT_TRUE(areMatched(-5, 0, clusterAt(0, 0), clusterAt(3, 4)));
    EXPECT_FALSE(areMatched(-5, 0, clusterAt(0, 0), clusterAt(4, 4)));
}

TEST(DistanceBasedClusterMatcher, MatchesCoincidingCentresWithAThresholdOfZero) {
    EXPECT_THAT(match(0, 0, clustersAt({0, 1, 2, 3}), clustersAt({3, 1.5F, 0, 0.0001F})),
                ElementsAre(MatchedPair{0, 2, 0, 0}, MatchedPair{3, 0, 0, 0}));
}

TEST(DistanceBasedClusterMatcher, TakesADistanceWithASquareTooSmallForFloatForZero) {
    EXPECT_TRUE(areMatched(0, 0, clustersAt({0})[0], clustersAt({2.6e-23F})[0]));
    EXPECT_TRUE(areMatched(1e-30F, 0, clustersAt({-1.3e-23F})[0], clustersAt({1.3e-23F})[0]));
    EXPECT_FALSE(areMatched(0, 0, clustersAt({0})[0], clustersAt({2.7e-23F})[0]));
}

TEST(DistanceBasedClusterMatcher, MatchesAnyDistanceWithAnInfiniteThreshold) {
    // The square of 1e20 is infinite in float.
    for (const float threshold : {kInfinity, -kInfinity, 1e20F}) {
        EXPECT_THAT(
            match(threshold, 0, clustersAt({0, kInfinity, kNaN}), clustersAt({3, 3e38F, kNaN})),
            ElementsAre(MatchedPair{0, 0, 0, 9}, MatchedPair{1, 1, 0, kInfinity}));
    }
}

TEST(DistanceBasedClusterMatcher, MatchesNothingWithADistanceThresholdThatIsNotANumber) {
    EXPECT_FALSE(areMatched(kNaN, 10, clusterAt(0, 0), clusterAt(0, 0)));
}

TEST(DistanceBasedClusterMatcher, MatchesNothingAtInfinityWithAFiniteThreshold) {
    for (const float x : {kInfinity, -kInfinity, kNaN}) {
        EXPECT_FALSE(areMatched(1e19F, 0, clustersAt({x})[0], clustersAt({x})[0]));
        EXPECT_FALSE(areMatched(1e19F, 0, clustersAt({x})[0], clustersAt({0})[0]));
        EXPECT_FALSE(areMatched(1e19F, 0, clustersAt({0})[0], clustersAt({x})[0]));
    }
}

TEST(DistanceBasedClusterMatcher, MatchesClustersAtTheLargestCoordinates) {
    const float largest = std::numeric_limits<float>::max();
    EXPECT_TRUE(areMatched(1, 0, {largest, -largest, 0, 0, 0}, {largest, -largest, 0, 0, 0}));
    EXPECT_TRUE(areMatched(1e19F, 0, {largest, 0, 0, 0, 0}, {largest, 1e19F, 0, 0, 0}));
    EXPECT_FALSE(areMatched(1e19F, 0, {largest, 0, 0, 0, 0}, {-largest, 0, 0, 0, 0}));
    EXPECT_FALSE(
        areMatched(1e19F, 0, {largest, 0, 0, 0, 0}, {std::nextafter(largest, 0.0F), 0, 0, 0, 0}));
}

TEST(DistanceBasedClusterMatcher, MatchesClustersAtCoordinatesThatLeaveTheRangeOfAnInteger) {
    for (const float y : {0x1p30F, 0x1p31F, 0x1p32F, 0x1p63F}) {
        EXPECT_TRUE(areMatched(1, 0, {0, y, 0, 0, 0}, {0, y, 0, 0, 0}));
        EXPECT_TRUE(areMatched(1, 0, {1, -y, 0, 0, 0}, {0, -y, 0, 0, 0}));
        EXPECT_FALSE(areMatched(1, 0, {0, y, 0, 0, 0}, {0, -y, 0, 0, 0}));
    }
}

TEST(DistanceBasedClusterMatcher, FindsNoPairsInEmptyBatches) {
    EXPECT_THAT(match(5, 5, {}, {}), IsEmpty());
    EXPECT_THAT(match(5, 5, clustersAt({0}), {}), IsEmpty());
    EXPECT_THAT(match(5, 5, {}, clustersAt({0})), IsEmpty());
    EXPECT_THAT(match(kInfinity, 5, {}, clustersAt({0})), IsEmpty());
}

TEST(DistanceBasedClusterMatcher, AcceptsTheClosestPairsFirst) {
    EXPECT_THAT(
        match(10, 0, clustersAt({0, 10, 20}), clustersAt({23, 11, 2})),
        ElementsAre(MatchedPair{1, 1, 0, 1}, MatchedPair{0, 2, 0, 4}, MatchedPair{2, 0, 0, 9}));
}

TEST(DistanceBasedClusterMatcher, AcceptsEquallyClosePairsInTheOrderOfTheBatches) {
    EXPECT_THAT(
        match(1, 0, clustersAt({20, 0, 10}), clustersAt({11, 21, 19, 9, 1})),
        ElementsAre(MatchedPair{0, 1, 0, 1}, MatchedPair{1, 4, 0, 1}, MatchedPair{2, 0, 0, 1}));
}

TEST(DistanceBasedClusterMatcher, PairsAClusterOfTheFirstBatchOnce) {
    Clusters first = clustersAt({0});
    Clusters second = clustersAt({2, 1});
    std::vector<Call> calls;
    DistanceBasedClusterMatcher matcher(5, 5);
    matcher.setDetectedMatchCallback(callsInto(calls));
    EXPECT_EQ(matcher.matchClusters(first, second), 1U);
    EXPECT_THAT(calls, ElementsAre(call(first[0], second[1], 0)));
}

TEST(DistanceBasedClusterMatcher, PairsAClusterOfTheSecondBatchOnce) {
    Clusters first = clustersAt({2, 1});
    Clusters second = clustersAt({0});
    std::vector<Call> calls;
    DistanceBasedClusterMatcher matcher(5, 5);
    matcher.setDetectedMatchCallback(callsInto(calls));
    EXPECT_EQ(matcher.matchClusters(first, second), 1U);
    EXPECT_THAT(calls, ElementsAre(call(first[1], second[0], 0)));
}

TEST(DistanceBasedClusterMatcher, PairsClustersOnceAlsoWithoutACallback) {
    EXPECT_THAT(match(5, 5, clustersAt({0, 1}), clustersAt({0, 1})),
                ElementsAre(MatchedPair{0, 0, 0, 0}, MatchedPair{1, 1, 0, 0}));
    EXPECT_THAT(match(5, 5, clustersAt({0, 0}), clustersAt({0})),
                ElementsAre(MatchedPair{0, 0, 0, 0}));
}

TEST(DistanceBasedClusterMatcher, LeavesClustersOfDifferentSizesFreeForOthers) {
    const Clusters first = {clusterAt(0, 0, 10, 10), clusterAt(2, 0, 4, 4)};
    const Clusters second = {clusterAt(0, 0, 4, 4), clusterAt(3, 0, 10, 10)};
    EXPECT_THAT(match(5, 1, first, second),
                ElementsAre(MatchedPair{1, 0, 0, 4}, MatchedPair{0, 1, 0, 9}));
}

TEST(DistanceBasedClusterMatcher, PairsAClusterWithItself) {
    Clusters clusters = clustersAt({7});
    std::vector<Call> calls;
    DistanceBasedClusterMatcher matcher(5, 0);
    matcher.setDetectedMatchCallback(callsInto(calls));
    EXPECT_EQ(matcher.matchClusters(clusters, clusters, 3), 1U);
    EXPECT_THAT(calls, ElementsAre(call(clusters[0], clusters[0], 3)));
    EXPECT_EQ(DistanceBasedClusterMatcher(5, -1).matchClusters(clusters, clusters), 0U);
}

TEST(DistanceBasedClusterMatcher, PairsEveryClusterOfABatchWithItselfEvenIfOthersCoincide) {
    Clusters clusters = clustersAt({7, 7, 8});
    std::vector<Call> calls;
    DistanceBasedClusterMatcher matcher(5, 5);
    matcher.setDetectedMatchCallback(callsInto(calls));
    EXPECT_EQ(matcher.matchClusters(clusters, clusters), 3U);
    EXPECT_THAT(calls,
                ElementsAre(call(clusters[0], clusters[0], 0), call(clusters[1], clusters[1], 0),
                            call(clusters[2], clusters[2], 0)));
}

TEST(DistanceBasedClusterMatcher, PassesTheTagToTheCallbackAndStoresItInTheRecords) {
    Clusters first = clustersAt({0});
    Clusters second = clustersAt({1});
    std::vector<Call> calls;
    DistanceBasedClusterMatcher matcher(5, 5);
    matcher.setDetectedMatchCallback(callsInto(calls));
    for (const int match_tag : {17, -1, std::numeric_limits<int>::min()}) {
        matcher.matchClusters(first, second, match_tag);
        EXPECT_EQ(calls.back(), call(first[0], second[0], match_tag));
        EXPECT_THAT(pairsOf(matcher), ElementsAre(MatchedPair{0, 0, match_tag, 1}));
    }
}

TEST(DistanceBasedClusterMatcher, ChangesNoCluster) {
    const Clusters before = {{0, 0, 5, 4, 4, 6, 7, 8, 9}, {10, 0, 1, 4, 4, 2, 3, 4, 5}};
    Clusters first = before;
    Clusters second = before;
    DistanceBasedClusterMatcher matcher(5, 5);
    EXPECT_EQ(matcher.matchClusters(first, second), 2U);
    EXPECT_FALSE(firstDifference(first, before));
    EXPECT_FALSE(firstDifference(second, before));
}

TEST(DistanceBasedClusterMatcher, ForgetsThePairsOfThePreviousCall) {
    Clusters near = clustersAt({0, 1});
    Clusters far = clustersAt({100});
    DistanceBasedClusterMatcher matcher(5, 5);
    EXPECT_THAT(pairsOf(matcher), IsEmpty());
    EXPECT_EQ(matcher.matchClusters(near, near), 2U);
    EXPECT_EQ(matcher.matchClusters(near, near), 2U);
    EXPECT_EQ(pairsOf(matcher).size(), 2U);
    EXPECT_EQ(matcher.matchClusters(near, far), 0U);
    EXPECT_THAT(pairsOf(matcher), IsEmpty());
}

TEST(DistanceBasedClusterMatcher, EndsWhenTheCallbackThrows) {
    Clusters first = clustersAt({0, 10, 20});
    Clusters second = clustersAt({1, 12, 23});
    DistanceBasedClusterMatcher matcher(5, 5);
    int calls = 0;
    matcher.setDetectedMatchCallback([&](ClusterGeometry&, ClusterGeometry&, int) {
        if (++calls == 2) {
            throw std::runtime_error("second pair");
        }
    });
    EXPECT_THROW(matcher.matchClusters(first, second), std::runtime_error);
    EXPECT_EQ(calls, 2);
    EXPECT_THAT(pairsOf(matcher), ElementsAre(MatchedPair{0, 0, 0, 1}));
    EXPECT_EQ(matcher.matchClusters(first, second), 3U);
}

TEST(DistanceBasedClusterMatcher, FixesThePairsBeforeTheCallbackMovesClusters) {
    Clusters first = clustersAt({0, 10, 20});
    Clusters second = clustersAt({1, 12, 23, 24});
    const auto expected = match(5, 5, first, second);
    DistanceBasedClusterMatcher matcher(5, 5);
    matcher.setDetectedMatchCallback([](ClusterGeometry& one, ClusterGeometry& other, int) {
        one = other = clusterAt(24, 0, 100, kNaN);
    });
    EXPECT_EQ(matcher.matchClusters(first, second), 3U);
    EXPECT_EQ(pairsOf(matcher), expected);
    EXPECT_EQ(first[0].width, 100);
    EXPECT_EQ(second[2].width, 100);
}

TEST(DistanceBasedClusterMatcher, ShowsTheCallbackThePreviousPairs) {
    Clusters clusters = clustersAt({0, 10, 20});
    DistanceBasedClusterMatcher matcher(5, 5);
    std::vector<std::size_t> counts;
    matcher.setDetectedMatchCallback([&](ClusterGeometry&, ClusterGeometry&, int) {
        counts.push_back(matcher.getPairRecords().size());
    });
    matcher.matchClusters(clusters, clusters);
    EXPECT_THAT(counts, ElementsAre(0U, 1U, 2U));
}

TEST(DistanceBasedClusterMatcher, KeepsACopyOfTheCallback) {
    Clusters clusters = clustersAt({0});
    std::vector<Call> calls;
    DistanceBasedClusterMatcher matcher(5, 5);
    auto callback = callsInto(calls);
    matcher.setDetectedMatchCallback(callback);
    callback = nullptr;
    matcher.matchClusters(clusters, clusters);
    EXPECT_EQ(calls.size(), 1U);
}

TEST(DistanceBasedClusterMatcher, ReplacesAndRemovesTheCallback) {
    Clusters clusters = clustersAt({0});
    std::vector<Call> old_calls;
    std::vector<Call> new_calls;
    DistanceBasedClusterMatcher matcher(5, 5);
    matcher.setDetectedMatchCallback(callsInto(old_calls));
    matcher.setDetectedMatchCallback(callsInto(new_calls));
    matcher.matchClusters(clusters, clusters);
    matcher.setDetectedMatchCallback(nullptr);
    EXPECT_EQ(matcher.matchClusters(clusters, clusters), 1U);
    EXPECT_EQ(old_calls.size(), 0U);
    EXPECT_EQ(new_calls.size(), 1U);
}

TEST(DistanceBasedClusterMatcher, DestroysItsCallback) {
    const auto token = std::make_shared<int>();
    {
        DistanceBasedClusterMatcher matcher(5, 5);
        matcher.setDetectedMatchCallback([token](ClusterGeometry&, ClusterGeometry&, int) {});
        EXPECT_EQ(token.use_count(), 2);
    }
    EXPECT_EQ(token.use_count(), 1);
}

}  // namespace
}  // namespace kelvora::test
