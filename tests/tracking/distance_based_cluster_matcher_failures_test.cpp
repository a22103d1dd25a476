// SPDX-License-Identifier: MIT
// A matcher without enough memory, and callbacks that throw.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

#include "kelvora/distance_based_cluster_matcher.hpp"
#include "support/allocation_checks.hpp"

namespace kelvora::test {
namespace {

using Clusters = std::vector<ClusterGeometry>;
using Pairs = std::vector<std::pair<int, int>>;

Clusters rowOfSquares(int count, float shift) {
    Clusters clusters;
    for (int i = 0; i < count; ++i) {
        clusters.emplace_back(static_cast<float>(i) * 20 + shift, 0.0F, 10.0F, 10.0F, 0);
    }
    return clusters;
}

Pairs pairsOf(const DistanceBasedClusterMatcher& matcher) {
    Pairs pairs;
    for (const auto& record : matcher.getPairRecords()) {
        pairs.emplace_back(record.first_index, record.second_index);
    }
    return pairs;
}

class MatcherThatFails : public ::testing::Test {
protected:
    static constexpr int kCount = 20;

    Clusters first = rowOfSquares(kCount, 0);
    Clusters second = rowOfSquares(kCount, 3);
};

TEST_F(MatcherThatFails, HasRecordedEachPairThatWasReported) {
    std::size_t reported = 0;
    std::size_t failures_after_pairs = 0;
    const auto make = [&] {
        DistanceBasedClusterMatcher matcher(5.0F, 5.0F);
        matcher.setDetectedMatchCallback(
            [&](ClusterGeometry&, ClusterGeometry&, int) { ++reported; });
        reported = 0;
        return matcher;
    };
    const auto match = [&](DistanceBasedClusterMatcher& matcher) {
        matcher.matchClusters(first, second);
    };
    const std::size_t failures =
        failEachAllocation(make, match, [&](DistanceBasedClusterMatcher& matcher) {
            failures_after_pairs += reported > 0 ? 1 : 0;
            EXPECT_EQ(pairsOf(matcher).size(), reported);
            EXPECT_EQ(matcher.matchClusters(first, second), std::size_t{kCount});
        });
    EXPECT_GT(failures, 10U);
    EXPECT_GT(failures_after_pairs, 5U);
}

TEST_F(MatcherThatFails, CanBeUsedAgainAfterItsCallbackHasThrown) {
    DistanceBasedClusterMatcher matcher(5.0F, 5.0F);
    for (int allowed = 0; allowed < kCount; ++allowed) {
        int left = allowed;
        matcher.setDetectedMatchCallback([&](ClusterGeometry&, ClusterGeometry&, int) {
            if (left-- == 0) {
                throw std::runtime_error("no more");
            }
        });
        EXPECT_THROW(matcher.matchClusters(first, second), std::runtime_error);
        EXPECT_EQ(pairsOf(matcher).size(), static_cast<std::size_t>(allowed));
    }
    matcher.setDetectedMatchCallback({});
    EXPECT_EQ(matcher.matchClusters(first, second), std::size_t{kCount});
}

/// A callback that does not fit into a `std::function`.
struct LargeCallback {
    int* calls;
    std::array<int, 100> rest{};

    void operator()(ClusterGeometry&, ClusterGeometry&, int) const { ++*calls; }
};

TEST_F(MatcherThatFails, IsUnchangedIfItCannotBeAssignedOrGetANewCallback) {
    int calls = 0;
    int other_calls = 0;
    DistanceBasedClusterMatcher other(500.0F, 5.0F);
    other.setDetectedMatchCallback(LargeCallback{&other_calls});
    other.matchClusters(second, second);
    const DistanceBasedClusterMatcher::DetectedMatchCallback large = LargeCallback{&other_calls};
    const auto make = [&] {
        DistanceBasedClusterMatcher matcher(1.0F, 5.0F);
        matcher.setDetectedMatchCallback(LargeCallback{&calls});
        Clusters one = {first[0]};
        matcher.matchClusters(one, one);
        return matcher;
    };
    const auto isAsBefore = [&](DistanceBasedClusterMatcher& matcher) {
        EXPECT_EQ(pairsOf(matcher), (Pairs{{0, 0}}));
        EXPECT_EQ(matcher.matchClusters(first, second), 0U);
        calls = 0;
        other_calls = 0;
        EXPECT_EQ(matcher.matchClusters(first, first), std::size_t{kCount});
        EXPECT_EQ(calls, kCount);
        EXPECT_EQ(other_calls, 0);
    };
    EXPECT_GE(failEachAllocation(
                  make, [&](DistanceBasedClusterMatcher& matcher) { matcher = other; }, isAsBefore),
              2U);
    EXPECT_GE(
        failEachAllocation(
            make,
            [&](DistanceBasedClusterMatcher& matcher) { matcher.setDetectedMatchCallback(large); },
            isAsBefore),
        1U);
}

}  // namespace
}  // namespace kelvora::test
