// SPDX-License-Identifier: MIT
// Timestamps, invalid boxes, and other unusual input of a tracker.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "kelvora/cluster_tracker.hpp"
#include "support/boxes.hpp"
#include "support/tracks.hpp"

namespace kelvora::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::SizeIs;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kLargest = std::numeric_limits<float>::max();

/// Boxes that no object can have.
std::vector<ClusterGeometry> impossibleBoxes(std::uint64_t timestamp) {
    std::vector<ClusterGeometry> boxes;
    for (const float value : {kNaN, kInfinity, -kInfinity}) {
        boxes.emplace_back(value, 90.0F, 20.0F, 20.0F, timestamp);
        boxes.emplace_back(90.0F, value, 20.0F, 20.0F, timestamp);
        boxes.emplace_back(90.0F, 90.0F, value, 20.0F, timestamp);
        boxes.emplace_back(90.0F, 90.0F, 20.0F, value, timestamp);
    }
    for (const float size : {0.0F, -20.0F}) {
        boxes.emplace_back(90.0F, 90.0F, size, 20.0F, timestamp);
        boxes.emplace_back(90.0F, 90.0F, 20.0F, size, timestamp);
        boxes.emplace_back(90.0F, 90.0F, size, size, timestamp);
    }
    // Centre and area above the range of a float, and an area below it.
    boxes.emplace_back(kLargest, 90.0F, kLargest, 1e-38F, timestamp);
    boxes.emplace_back(90.0F, 90.0F, 1e30F, 1e30F, timestamp);
    boxes.emplace_back(90.0F, 90.0F, 1e-30F, 1e-30F, timestamp);
    return boxes;
}

TEST(ClusterTracker, BeginsNoTracksForInvalidBoxes) {
    ClusterTracker tracker(kInfinity, kInfinity, 10, 1);
    EXPECT_THAT(tracker.update(impossibleBoxes(0)), Each(0));
    EXPECT_THAT(tracker.getTracks(), IsEmpty());
}

TEST(ClusterTracker, DoesNotMatchInvalidBoxes) {
    ClusterTracker tracker(kInfinity, kInfinity, 10, 1);
    tracker.update({square(100, 100, 0)});
    EXPECT_THAT(tracker.update(impossibleBoxes(0)), Each(0));
    ASSERT_THAT(tracker.getTracks(), SizeIs(1));
    EXPECT_FALSE(tracker.getTracks().front().is_hidden);
    EXPECT_EQ(tracker.getTracks().front().missed, 1);

    std::vector<ClusterGeometry> clusters = impossibleBoxes(10);
    clusters.push_back(square(102, 100, 10));
    EXPECT_EQ(tracker.update(clusters).back(), 1);
}

TEST(ClusterTracker, FollowsBoxesThatAreHardlyVisibleWithoutLosingSightOfOthers) {
    ClusterTracker tracker(20, 15, 10, 1);
    const ClusterGeometry tiny(100, 100, 1e-18F, 1e-18F, 0);
    tracker.update({tiny});
    EXPECT_THAT(tracker.update({square(300, 300, 0), tiny}), ElementsAre(2, 1));
}

TEST(ClusterTracker, SurvivesAVelocityTooLargeForFloat) {
    ClusterTracker tracker(kInfinity, kInfinity, 2, 1);
    tracker.update({square(-1e38F, 100, 0)});
    EXPECT_THAT(tracker.update({square(1e38F, 100, 1)}), ElementsAre(1));
    for (int i = 0; i < 3; ++i) {
        EXPECT_THAT(tracker.update({square(100, 100, 1)}).front(), Ge(1));
    }
}

TEST(ClusterTracker, RefusesATimestampLowerThanBeforeAndChangesNothing) {
    ClusterTracker tracker;
    showRepeatedly(tracker, {square(100, 100, 0)}, 5);
    const Track before = tracker.getTracks().front();
    EXPECT_THROW(tracker.update({square(100, 100, 39'999), square(300, 100, 39'999)}),
                 std::invalid_argument);
    ASSERT_THAT(tracker.getTracks(), SizeIs(1));
    const Track after = tracker.getTracks().front();
    EXPECT_EQ(after.id, before.id);
    EXPECT_EQ(after.hits, before.hits);
    EXPECT_EQ(after.missed, before.missed);
    EXPECT_EQ(after.cluster, before.cluster);
    EXPECT_EQ(boxesOf({after.box}), boxesOf({before.box}));
    EXPECT_THAT(tracker.update({square(300, 100, 40'000), square(100, 100, 40'000)}),
                ElementsAre(2, 1));
}

TEST(ClusterTracker, SaysThatTimestampsMustNotDecrease) {
    ClusterTracker tracker;
    tracker.update({square(100, 100, 5)});
    try {
        tracker.update({square(100, 100, 4)});
        FAIL() << "accepted";
    } catch (const std::invalid_argument& error) {
        EXPECT_EQ(std::string(error.what()), "ClusterTracker: timestamps must not decrease");
    }
}

TEST(ClusterTracker, FollowsObjectsThroughEqualTimestamps) {
    ClusterTracker tracker;
    for (int i = 0; i < 15; ++i) {
        EXPECT_THAT(tracker.update({square(static_cast<float>(100 + 5 * i), 100, 7)}),
                    ElementsAre(1));
        const Track track = tracker.getTracks().front();
        EXPECT_EQ(track.vx, 0);
        EXPECT_EQ(track.vy, 0);
    }
}

class ClusterTrackerSince : public testing::TestWithParam<std::uint64_t> {};

TEST_P(ClusterTrackerSince, FollowsTheSameTracksAtAnyTime) {
    ClusterTracker tracker;
    for (std::uint64_t i = 0; i < 12; ++i) {
        const auto x = static_cast<float>(100 + 8 * i);
        EXPECT_THAT(tracker.update({square(x, 100, GetParam() + i * 10'000)}), ElementsAre(1));
    }
    EXPECT_NEAR(tracker.getTracks().front().vx, 800, 0.01);
    tracker.update({square(500, 400, GetParam() + 130'000)});
    EXPECT_NEAR(tracker.getTracks().front().box.x, 100 + 8 * 13 - 10, 1e-3);
}

INSTANTIATE_TEST_SUITE_P(Times, ClusterTrackerSince,
                         testing::Values(0, 1'615'211'683'000'000, (1ULL << 53) + 1,
                                         (1ULL << 63) - 60'000, ~0ULL - 130'000));

TEST(ClusterTracker, TakesTheTimeOfAnUpdateFromItsFirstCluster) {
    ClusterTracker tracker;
    tracker.update({square(100, 100, 10'000), square(300, 100, 5)});
    EXPECT_THAT(tracker.update({square(104, 100, 20'000), square(304, 100, 5)}), ElementsAre(1, 2));
    EXPECT_NEAR(tracker.getTracks()[1].vx, 400, 0.01);
}

TEST(ClusterTracker, StartsAgainAfterAResetWithNewIdsAndFromAnyTime) {
    ClusterTracker tracker;
    showRepeatedly(tracker, {square(100, 100, 0)}, 5, 1'000'000);
    tracker.reset();
    EXPECT_THAT(tracker.getTracks(), IsEmpty());
    EXPECT_THAT(showRepeatedly(tracker, {square(100, 100, 0)}, 1), ElementsAre(2));
    EXPECT_EQ(tracker.getTracks().front().state, TrackState::Tentative);
}

TEST(ClusterTracker, CopiesGoOnIndependently) {
    ClusterTracker original(20, 15, 3, 2);
    showRepeatedly(original, {square(100, 100, 0)}, 3);
    ClusterTracker copy = original;
    for (int i = 0; i < 4; ++i) {
        copy.update({});
    }
    EXPECT_THAT(copy.getTracks(), IsEmpty());
    EXPECT_THAT(original.getTracks(), SizeIs(1));
    EXPECT_THAT(showRepeatedly(copy, {square(100, 100, 0)}, 1, 30'000), ElementsAre(2));
    EXPECT_THAT(showRepeatedly(original, {square(100, 100, 0)}, 1, 30'000), ElementsAre(1));
    copy = original;
    EXPECT_THAT(showRepeatedly(copy, {square(100, 100, 0)}, 1, 40'000), ElementsAre(1));
    EXPECT_EQ(copy.getTracks().front().hits, 5);
    EXPECT_EQ(original.getTracks().front().hits, 4);
}

}  // namespace
}  // namespace kelvora::test
