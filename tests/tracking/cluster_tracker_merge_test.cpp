// SPDX-License-Identifier: MIT
// Objects that merge, break apart, and enter or leave the view.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "kelvora/cluster_tracker.hpp"
#include "support/boxes.hpp"
#include "support/tracks.hpp"

namespace kelvora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// The box around two others, as a generator reports touching objects.
ClusterGeometry merged(const ClusterGeometry& a, const ClusterGeometry& b) {
    return {a.get2DBoundingBox() | b.get2DBoundingBox(), a.timestamp};
}

/// Two objects that meet, cross, and separate again.
struct CrossingPair {
    explicit CrossingPair(int update)
        : time(static_cast<std::uint64_t>(update) * kUpdateInterval),
          right(square(static_cast<float>(100 + 4 * update), 100, time)),
          left(square(static_cast<float>(260 - 4 * update), 106, time)) {}

    bool isMerged() const {
        return (right.get2DBoundingBox() & left.get2DBoundingBox()).area() > 0;
    }

    std::vector<ClusterGeometry> clusters() const {
        return isMerged() ? std::vector{merged(right, left)} : std::vector{right, left};
    }

    std::uint64_t time;
    ClusterGeometry right;
    ClusterGeometry left;
};

// The merged box is too large for both tracks at first and at last. In between, one track has it.
TEST(ClusterTracker, KeepsTheIdsOfObjectsThatMergeAndSeparateAgain) {
    ClusterTracker tracker;
    int merged_updates = 0;
    for (int i = 0; i < 40; ++i) {
        const CrossingPair pair(i);
        const std::vector<int> ids = tracker.update(pair.clusters());
        if (!pair.isMerged()) {
            ASSERT_THAT(ids, ElementsAre(1, 2)) << "update " << i;
        } else {
            ++merged_updates;
        }
        ASSERT_THAT(tracker.getTracks(), SizeIs(2)) << "update " << i;
    }
    EXPECT_GE(merged_updates, 4);
}

TEST(ClusterTracker, HidesConfirmedTracksInALargerCluster) {
    ClusterTracker tracker;
    showRepeatedly(tracker, {square(100, 100, 0), square(140, 100, 0)}, 5);
    EXPECT_THAT(tracker.update({boxAround(120, 100, 60, 20, 50'000)}), ElementsAre(0));
    for (const Track& track : tracker.getTracks()) {
        EXPECT_TRUE(track.is_hidden);
        EXPECT_EQ(track.missed, 0);
        EXPECT_EQ(track.cluster, -1);
        EXPECT_EQ(track.hits, 5);
    }
    EXPECT_THAT(boxesOf({tracker.getTracks()[0].box, tracker.getTracks()[1].box}),
                ElementsAre(Box{90, 90, 20, 20}, Box{130, 90, 20, 20}));
    EXPECT_THAT(showRepeatedly(tracker, {square(100, 100, 0), square(140, 100, 0)}, 1, 60'000),
                ElementsAre(1, 2));
    EXPECT_FALSE(tracker.getTracks()[0].is_hidden);
}

TEST(ClusterTracker, HidesATrackIfHalfOfItLiesInACluster) {
    const auto is_hidden = [](float x) {
        ClusterTracker tracker;
        showRepeatedly(tracker, {square(100, 100, 0)}, 3);
        tracker.update({ClusterGeometry{x, 50, 100, 100, 30'000}});
        return tracker.getTracks().front().is_hidden;
    };
    EXPECT_TRUE(is_hidden(100));
    EXPECT_FALSE(is_hidden(100.1F));
}

TEST(ClusterTracker, DoesNotHideTentativeTracks) {
    ClusterTracker tracker;
    showRepeatedly(tracker, {square(100, 100, 0)}, 2);
    EXPECT_THAT(tracker.update({boxAround(120, 100, 60, 20, 20'000)}), ElementsAre(2));
    EXPECT_THAT(tracker.getTracks(), SizeIs(1));
}

TEST(ClusterTracker, HidesATrackForAsManyUpdatesAsItWasMatched) {
    ClusterTracker tracker(20, 15, 2, 3);
    showRepeatedly(tracker, {square(100, 100, 0)}, 6);
    const ClusterGeometry large = boxAround(120, 100, 60, 60, 0);
    for (int i = 1; i <= 6; ++i) {
        showRepeatedly(tracker, {large}, 1, 50'000);
        EXPECT_TRUE(tracker.getTracks().front().is_hidden);
    }
    for (int missed = 1; missed <= 2; ++missed) {
        showRepeatedly(tracker, {large}, 1, 50'000);
        EXPECT_FALSE(tracker.getTracks().front().is_hidden);
        EXPECT_EQ(tracker.getTracks().front().missed, missed);
    }
    // The cluster that hid it is now a new object.
    EXPECT_THAT(showRepeatedly(tracker, {large}, 2, 50'000), ElementsAre(2));
    EXPECT_THAT(tracker.getTracks(), SizeIs(1));
}

TEST(ClusterTracker, HidesATrackAgainAfterEachMatch) {
    ClusterTracker tracker(20, 15, 0, 3);
    std::uint64_t time = 0;
    showRepeatedly(tracker, {square(100, 100, 0)}, 3, time);
    for (int i = 0; i < 5; ++i) {
        time += 3 * kUpdateInterval;
        showRepeatedly(tracker, {boxAround(120, 100, 60, 60, 0)}, 3, time);
        time += 3 * kUpdateInterval;
        EXPECT_THAT(showRepeatedly(tracker, {square(100, 100, 0)}, 1, time), ElementsAre(1));
    }
}

TEST(ClusterTracker, DoesNotBeginTracksForPiecesOfAConfirmedOne) {
    ClusterTracker tracker;
    showRepeatedly(tracker, {boxAround(100, 100, 40, 40, 0)}, 3);
    const ClusterGeometry whole = boxAround(100, 100, 40, 40, 30'000);
    const ClusterGeometry inside = boxAround(105, 100, 8, 8, 30'000);
    const ClusterGeometry half_inside = boxAround(120, 100, 8, 8, 30'000);
    const ClusterGeometry less_inside = boxAround(121, 100, 8, 8, 30'000);
    EXPECT_THAT(tracker.update({inside, whole, half_inside, less_inside}), ElementsAre(0, 1, 0, 2));
}

TEST(ClusterTracker, DoesNotBeginTracksForPiecesOfAConfirmedOneThatIsNotSeen) {
    ClusterTracker tracker;
    showRepeatedly(tracker, {boxAround(100, 100, 40, 40, 0)}, 3);
    EXPECT_THAT(
        tracker.update({boxAround(84, 100, 8, 38, 30'000), boxAround(116, 100, 8, 38, 30'000)}),
        ElementsAre(0, 0));
    EXPECT_THAT(tracker.getTracks(), SizeIs(1));
}

TEST(ClusterTracker, BeginsTracksForPiecesOfTentativeOnes) {
    ClusterTracker tracker;
    showRepeatedly(tracker, {boxAround(100, 100, 40, 40, 0)}, 1);
    EXPECT_THAT(
        tracker.update({boxAround(84, 100, 8, 38, 10'000), boxAround(116, 100, 8, 38, 10'000)}),
        ElementsAre(2, 3));
}

/// The visible part of an object of 60 by 40 pixels, at the left edge of the view.
ClusterGeometry atTheEdge(float visible_width, int update) {
    return {0, 100, visible_width, 40, static_cast<std::uint64_t>(update) * kUpdateInterval};
}

TEST(ClusterTracker, FollowsObjectsThatGrowAsTheyEnterTheView) {
    ClusterTracker tracker(20, 5, 0, 3);
    for (int i = 0; i <= 10; ++i) {
        const auto width = static_cast<float>(20 + 4 * i);
        EXPECT_THAT(tracker.update({atTheEdge(width, i)}), ElementsAre(1)) << "update " << i;
        EXPECT_EQ(tracker.getTracks().front().box.width, width);
    }
}

TEST(ClusterTracker, FollowsObjectsThatShrinkAsTheyLeaveTheView) {
    ClusterTracker tracker(20, 5, 0, 3);
    for (int i = 0; i <= 10; ++i) {
        EXPECT_THAT(tracker.update({atTheEdge(static_cast<float>(60 - 2 * i), i)}), ElementsAre(1))
            << "update " << i;
    }
}

TEST(ClusterTracker, TakesAClusterOfAnotherSizeOnlyIfItOverlapsEnough) {
    const auto id_of_width = [](float width) {
        ClusterTracker tracker(20, 5, 10, 3);
        showRepeatedly(tracker, {boxAround(100, 100, 60, 60, 0)}, 3);
        return tracker.update({boxAround(100, 100, width, 60, 30'000)}).front();
    };
    EXPECT_EQ(id_of_width(99), 1);   // intersection over union 0.61
    EXPECT_EQ(id_of_width(101), 0);  // 0.59
    EXPECT_EQ(id_of_width(37), 1);
    EXPECT_EQ(id_of_width(35), 0);
}

TEST(ClusterTracker, TakesTheClusterThatOverlapsMost) {
    ClusterTracker tracker(20, 5, 10, 3);
    showRepeatedly(tracker, {boxAround(100, 100, 60, 60, 0)}, 3);
    EXPECT_THAT(
        tracker.update({boxAround(100, 100, 92, 60, 30'000), boxAround(100, 100, 70, 60, 30'000),
                        boxAround(100, 100, 80, 60, 30'000)}),
        ElementsAre(0, 1, 0));
}

TEST(ClusterTracker, LeavesTentativeTracksWithoutAClusterOfAnotherSize) {
    ClusterTracker tracker(20, 5, 10, 3);
    showRepeatedly(tracker, {boxAround(100, 100, 60, 60, 0)}, 2);
    EXPECT_THAT(tracker.update({boxAround(100, 100, 70, 60, 20'000)}), ElementsAre(2));
}

TEST(ClusterTracker, LeavesAClusterOfAnotherSizeAloneWhereAnotherConfirmedTrackLies) {
    ClusterTracker tracker(20, 5, 10, 3);
    const ClusterGeometry large = boxAround(100, 100, 60, 60, 0);
    const ClusterGeometry small = boxAround(140, 100, 10, 10, 0);
    showRepeatedly(tracker, {large, small}, 3);
    EXPECT_THAT(showRepeatedly(tracker, {merged(large, small)}, 1, 30'000), ElementsAre(0));
    const std::vector<Track> tracks = tracker.getTracks();
    ASSERT_THAT(tracks, SizeIs(2));
    EXPECT_TRUE(tracks[0].is_hidden);
    EXPECT_TRUE(tracks[1].is_hidden);
}

TEST(ClusterTracker, EndsHiddenTracksOnlyOnceNothingHidesThem) {
    ClusterTracker tracker(20, 15, 1, 3);
    showRepeatedly(tracker, {square(100, 100, 0)}, 9);
    showRepeatedly(tracker, {boxAround(120, 100, 60, 60, 0)}, 5, 90'000);
    ASSERT_THAT(tracker.getTracks(), SizeIs(1));
    tracker.update({});
    EXPECT_FALSE(tracker.getTracks().front().is_hidden);
    tracker.update({});
    EXPECT_THAT(tracker.getTracks(), IsEmpty());
}

}  // namespace
}  // namespace kelvora::test
