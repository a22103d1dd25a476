// SPDX-License-Identifier: MIT
#include "sessions/session.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "sessions/cluster_rows.hpp"

namespace kelvora::tool {
namespace {

constexpr std::uint64_t kLength = 10'000;

/// Reports a box of 20 by 20 pixels at each event.
class BoxPerEvent : public ClusteringMethod {
public:
    void cluster(const recording::Window& window, WindowClusters& found) override {
        found.clusters.clear();
        for (const Event2D& event : window) {
            found.clusters.emplace_back(event.x, event.y, 20.0F, 20.0F, window.end_time);
        }
    }

    std::string remark() const override { return "boxes"; }
};

Session makeClusterer(bool with_tracks) {
    Settings settings;
    settings.windows.window = Duration{kLength};
    settings.track.is_wanted = with_tracks;
    settings.track.min_hits = 1;
    settings.track.max_missed = 3;
    return {std::make_unique<BoxPerEvent>(), settings};
}

/// Clusters a window with one event, and returns the result.
WindowClusters show(Session& clusterer, std::uint64_t window) {
    const std::array<Event2D, 1> events = {Event2D(100, 50, 1, window * kLength)};
    return clusterer.cluster(
        {window * kLength, (window + 1) * kLength, events.data(), events.data() + events.size()});
}

TEST(Session, CountsWindowsAndClustersAndForwardsTheRemark) {
    Session clusterer = makeClusterer(false);
    EXPECT_EQ(show(clusterer, 7).number, 1U);
    EXPECT_EQ(show(clusterer, 9).number, 3U);
    EXPECT_EQ(clusterer.windowCount(), 2U);
    EXPECT_EQ(clusterer.clusterCount(), 2U);
    EXPECT_EQ(clusterer.remark(), "boxes");
}

TEST(Session, FollowsObjectsOnlyIfRequested) {
    Session without = makeClusterer(false);
    EXPECT_TRUE(show(without, 7).tracks.empty());
    Session with = makeClusterer(true);
    EXPECT_EQ(show(with, 7).tracks.size(), 1U);
}

TEST(Session, SeesNoObjectInWindowsWithoutEvents) {
    Session clusterer = makeClusterer(true);
    EXPECT_EQ(show(clusterer, 0).tracks.front().id, 1);
    EXPECT_EQ(show(clusterer, 4).tracks.front().id, 1);
    EXPECT_EQ(show(clusterer, 9).tracks.front().id, 2);
}

struct Variant {
    std::string method;
    int dim;
    int jobs;
};

class SessionByVariant : public testing::TestWithParam<Variant> {
protected:
    SessionByVariant() {
        settings.method = GetParam().method;
        settings.point.dim = GetParam().dim;
        settings.density.jobs = GetParam().jobs;
        settings.grid.min_cluster_size = 0;
    }

    Settings settings;
};

/// A square of events, and a column of events, with times since 1970.
std::vector<Event2D> squareAndColumn() {
    constexpr std::uint64_t kStart = 1'615'211'683'000'000;
    std::vector<Event2D> events;
    for (unsigned short i = 0; i < 100; ++i) {
        events.emplace_back(200 + i % 10, 100 + i / 10, 1, kStart + 1000 + 7 * i);
    }
    for (unsigned short i = 0; i < 30; ++i) {
        events.emplace_back(20, 30 + i / 2, 0, kStart + 5001 + 11 * i);
    }
    return events;
}

TEST_P(SessionByVariant, FindsTheSameInWholeWindowsAsInEventsThatArriveInParts) {
    const std::vector<Event2D> events = squareAndColumn();
    const std::uint64_t start = 1'615'211'683'000'000;
    Session whole(settings, {320, 240});
    Session parts(settings, {320, 240});
    for (int i = 0; i < 2; ++i) {
        const auto expected = rowsOf(
            whole.cluster({start, start + 10'000, events.data(), events.data() + events.size()}));
        parts.add(events.data(), 57);
        parts.add(events.data() + 57, events.size() - 57);
        const auto rows = rowsOf(parts.finishWindow(start + 10'000));
        ASSERT_EQ(rows.size(), expected.size());
        ASSERT_EQ(rows.size(), 2U);
        for (std::size_t row = 0; row < rows.size(); ++row) {
            EXPECT_EQ(rows[row].x, expected[row].x);
            EXPECT_EQ(rows[row].height, expected[row].height);
            EXPECT_EQ(rows[row].start_time, expected[row].start_time);
            EXPECT_EQ(rows[row].duration, expected[row].duration);
            EXPECT_EQ(rows[row].events, expected[row].events);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Variants, SessionByVariant,
                         testing::Values(Variant{"grid", 2, 1}, Variant{"density", 2, 1},
                                         Variant{"density", 2, 2}, Variant{"density", 3, 1},
                                         Variant{"density", 3, 2}));

TEST(Session, MeasuresTimesAndEventsAndThinBoxesFromTheEvents) {
    Settings settings;
    settings.method = "density";
    settings.point.dim = 3;
    const std::uint64_t start = 1'615'211'683'000'000;
    const std::vector<Event2D> events = squareAndColumn();
    Session session(settings, {320, 240});
    session.add(events.data(), events.size());
    const auto rows = rowsOf(session.finishWindow(start + 10'000));
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].start_time, static_cast<std::int64_t>(start) + 1000);
    EXPECT_EQ(rows[0].duration, 7 * 99);
    EXPECT_EQ(rows[0].events, 100);
    EXPECT_EQ(rows[1].start_time, static_cast<std::int64_t>(start) + 5001);
    EXPECT_EQ(rows[1].duration, 11 * 29);
    EXPECT_EQ(rows[1].events, 30);
    EXPECT_EQ(rows[1].x, 20);
    EXPECT_EQ(rows[1].y, 30);
    EXPECT_EQ(rows[1].width, 1);
    EXPECT_EQ(rows[1].height, 14);
}

TEST(Session, KeepsZeroBoxesIfAsked) {
    Settings settings;
    settings.method = "density";
    settings.point.keep_zero_boxes = true;
    const std::vector<Event2D> events = squareAndColumn();
    Session session(settings, {320, 240});
    session.add(events.data(), events.size());
    const auto rows = rowsOf(session.finishWindow(0));
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[1].x, 0);
    EXPECT_EQ(rows[1].height, 0);
    EXPECT_EQ(rows[1].events, 30);
}

}  // namespace
}  // namespace kelvora::tool
