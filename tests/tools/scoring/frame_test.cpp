// SPDX-License-Identifier: MIT
#include "scoring/frame.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace kelvora::scoring {
namespace {

std::vector<TruthBox> truthAt(const std::vector<std::uint64_t>& times) {
    std::vector<TruthBox> rows;
    rows.reserve(times.size());
    for (const std::uint64_t time : times) {
        rows.push_back({time, {}, static_cast<std::int64_t>(rows.size()), 1.0, true});
    }
    return rows;
}

std::vector<ClusterBox> clustersAt(const std::vector<std::uint64_t>& times) {
    std::vector<ClusterBox> rows;
    rows.reserve(times.size());
    for (const std::uint64_t time : times) {
        rows.push_back({time, {}, rows.size() + 1});
    }
    return rows;
}

TEST(JoinFrames, PutsTruthAndClustersOfATimeTogetherInAnyOrder) {
    const FrameSequence sequence = joinFrames(truthAt({20, 10, 20}), clustersAt({20, 10}));
    ASSERT_EQ(sequence.frames.size(), 2U);
    EXPECT_EQ(sequence.common_times, 2U);
    ASSERT_EQ(sequence.frames[0].truth.size(), 1U);
    EXPECT_EQ(sequence.frames[0].truth[0].id, 1);
    EXPECT_EQ(sequence.frames[0].clusters.at(0).track, 2U);
    ASSERT_EQ(sequence.frames[1].truth.size(), 2U);
    EXPECT_EQ(sequence.frames[1].truth[0].id, 0);
    EXPECT_EQ(sequence.frames[1].truth[1].id, 2);
    EXPECT_EQ(sequence.frames[1].clusters.at(0).track, 1U);
}

TEST(JoinFrames, KeepsClustersBetweenTheTruthAsFramesWithoutObjects) {
    const FrameSequence sequence = joinFrames(truthAt({10, 30}), clustersAt({20, 25}));
    ASSERT_EQ(sequence.frames.size(), 4U);
    EXPECT_EQ(sequence.common_times, 0U);
    EXPECT_TRUE(sequence.frames[1].truth.empty());
    EXPECT_EQ(sequence.frames[1].clusters.size(), 1U);
    EXPECT_TRUE(sequence.frames[3].clusters.empty());
}

TEST(JoinFrames, LeavesOutAndCountsClustersOutsideTheTimeOfTheTruth) {
    const FrameSequence sequence = joinFrames(truthAt({10, 20}), clustersAt({5, 9, 10, 20, 21}));
    EXPECT_EQ(sequence.frames.size(), 2U);
    EXPECT_EQ(sequence.common_times, 2U);
    EXPECT_EQ(sequence.clusters_outside, 3U);
}

TEST(JoinFrames, OfNothingHasNoFrames) {
    const FrameSequence without_truth = joinFrames({}, clustersAt({10, 20}));
    EXPECT_TRUE(without_truth.frames.empty());
    EXPECT_EQ(without_truth.clusters_outside, 2U);
    EXPECT_EQ(joinFrames(truthAt({10}), {}).frames.size(), 1U);
    EXPECT_TRUE(joinFrames({}, {}).frames.empty());
}

TEST(JoinFrames, MeasuresTheUsualTimeBetweenTruthsAndTheLeastBetweenClusters) {
    const FrameSequence sequence =
        joinFrames(truthAt({10, 10, 20, 30, 33, 70}), clustersAt({40, 10, 40, 20}));
    EXPECT_EQ(sequence.truth_interval_us, 10U);
    EXPECT_EQ(sequence.cluster_interval_us, 10U);
    EXPECT_EQ(joinFrames(truthAt({10, 10}), clustersAt({7})).truth_interval_us, 0U);
    EXPECT_EQ(joinFrames(truthAt({10, 10}), clustersAt({7})).cluster_interval_us, 0U);
}

}  // namespace
}  // namespace kelvora::scoring
