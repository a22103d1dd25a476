// SPDX-License-Identifier: MIT
#include "scoring/frame_matcher.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace kelvora::scoring {
namespace {

/// Boxes of 10 x 10 pixels at these positions on the x axis. Tracks of clusters count from 1.
Frame frameOf(const std::vector<double>& objects, const std::vector<double>& clusters) {
    Frame frame;
    for (const double x : objects) {
        frame.truth.push_back({0, {x, 0, 10, 10}, 0, 1.0, true});
    }
    for (const double x : clusters) {
        frame.clusters.push_back({0, {x, 0, 10, 10}, frame.clusters.size() + 1});
    }
    return frame;
}

TEST(FrameMatcher, ReportsTheOverlapOfAMatch) {
    const Frame frame = frameOf({0}, {50, 2});
    FrameMatcher matcher(frame, 0.5);
    matcher.matchAll({0});
    ASSERT_EQ(matcher.matches().size(), 1U);
    EXPECT_EQ(matcher.matches()[0].object, 0U);
    EXPECT_EQ(matcher.matches()[0].cluster, 1U);
    EXPECT_DOUBLE_EQ(matcher.matches()[0].iou, 80.0 / 120.0);
}

TEST(FrameMatcher, MatchesAtExactlyTheMinimumOverlapAndNotBelow) {
    const Frame frame = frameOf({0}, {5});
    FrameMatcher exact(frame, 50.0 / 150.0);
    exact.matchAll({0});
    EXPECT_EQ(exact.matches().size(), 1U);
    FrameMatcher strict(frame, 0.34);
    strict.matchAll({0});
    EXPECT_TRUE(strict.matches().empty());
}

TEST(FrameMatcher, MatchesTwoObjectsRatherThanOneWell) {
    const Frame frame = frameOf({0, 3}, {2, -2});
    // The second object overlaps enough with the first cluster only.
    FrameMatcher matcher(frame, 0.5);
    matcher.matchAll({0, 1});
    ASSERT_EQ(matcher.matches().size(), 2U);
    EXPECT_EQ(matcher.matches()[0].cluster, 1U);
    EXPECT_EQ(matcher.matches()[1].cluster, 0U);
}

TEST(FrameMatcher, MatchesATrackThatIsNotTheNearest) {
    const Frame frame = frameOf({0}, {0, 2});
    FrameMatcher matcher(frame, 0.5);
    matcher.matchWithTrack(0, 2);
    matcher.matchAll({0});
    ASSERT_EQ(matcher.matches().size(), 1U);
    EXPECT_EQ(matcher.matches()[0].cluster, 1U);
}

TEST(FrameMatcher, DoesNotMatchATrackThatIsTooFarOrTaken) {
    const Frame frame = frameOf({0, 1}, {0, 8});
    FrameMatcher matcher(frame, 0.5);
    matcher.matchWithTrack(0, 3);
    matcher.matchWithTrack(0, 2);
    EXPECT_TRUE(matcher.matches().empty());
    matcher.matchWithTrack(0, 1);
    matcher.matchWithTrack(1, 1);
    EXPECT_EQ(matcher.matches().size(), 1U);
}

TEST(FrameMatcher, LeavesFreeClustersToOtherObjects) {
    const Frame frame = frameOf({0, 1, 100}, {1, 101});
    FrameMatcher matcher(frame, 0.5);
    matcher.matchAll({0});
    matcher.matchAll({1, 2});
    ASSERT_EQ(matcher.matches().size(), 2U);
    EXPECT_EQ(matcher.matches()[0].object, 0U);
    EXPECT_EQ(matcher.matches()[1].object, 2U);
}

TEST(FrameMatcher, RefusesMorePairsThanItMayCompare) {
    const std::vector<double> same_place(10, 0.0);
    const Frame frame = frameOf(same_place, same_place);
    const std::vector<std::size_t> all = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    FrameMatcher sufficient(frame, 0.5, 100);
    EXPECT_NO_THROW(sufficient.matchAll(all));
    EXPECT_EQ(sufficient.matches().size(), 10U);
    FrameMatcher insufficient(frame, 0.5, 99);
    EXPECT_THROW(insufficient.matchAll(all), TooManyOverlaps);
}

// Few pairs overlap, but a matrix of the whole chain would be large.
TEST(FrameMatcher, RefusesAChainThatIsTooLongForAMatrix) {
    std::vector<double> chain;
    std::vector<std::size_t> all;
    for (std::size_t i = 0; i < 1000; ++i) {
        chain.push_back(static_cast<double>(i) * 3);
        all.push_back(i);
    }
    const Frame frame = frameOf(chain, chain);
    FrameMatcher matcher(frame, 0.3);
    EXPECT_THROW(matcher.matchAll(all), TooManyOverlaps);
}

TEST(FrameMatcher, MatchesAnyNumberOfBoxesThatLieApart) {
    std::vector<double> apart;
    std::vector<std::size_t> all;
    for (std::size_t i = 0; i < 20'000; ++i) {
        apart.push_back(static_cast<double>(i) * 20);
        all.push_back(i);
    }
    const Frame frame = frameOf(apart, apart);
    FrameMatcher matcher(frame, 0.5);
    matcher.matchWithTrack(7, 8);
    matcher.matchAll(all);
    EXPECT_EQ(matcher.matches().size(), 20'000U);
}

}  // namespace
}  // namespace kelvora::scoring
