// SPDX-License-Identifier: MIT
#include "command_line/window_clusterer.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

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

WindowClusterer makeClusterer(bool with_tracks) {
    TrackOptions options;
    options.is_wanted = with_tracks;
    options.min_hits = 1;
    options.max_missed = 3;
    return {std::make_unique<BoxPerEvent>(), options, kLength};
}

/// Clusters a window with one event, and returns the result.
WindowClusters show(WindowClusterer& clusterer, std::uint64_t window) {
    const std::array<Event2D, 1> events = {Event2D(100, 50, 1, window * kLength)};
    return clusterer.cluster(
        {window * kLength, (window + 1) * kLength, events.data(), events.data() + events.size()});
}

TEST(WindowClusterer, CountsWindowsAndClustersAndPassesTheRemarkOn) {
    WindowClusterer clusterer = makeClusterer(false);
    EXPECT_EQ(show(clusterer, 7).number, 1U);
    EXPECT_EQ(show(clusterer, 9).number, 3U);
    EXPECT_EQ(clusterer.windowCount(), 2U);
    EXPECT_EQ(clusterer.clusterCount(), 2U);
    EXPECT_EQ(clusterer.remark(), "boxes");
}

TEST(WindowClusterer, FollowsObjectsOnlyIfWanted) {
    WindowClusterer without = makeClusterer(false);
    EXPECT_TRUE(show(without, 7).tracks.empty());
    WindowClusterer with = makeClusterer(true);
    EXPECT_EQ(show(with, 7).tracks.size(), 1U);
}

TEST(WindowClusterer, SeesNoObjectInWindowsWithoutEvents) {
    WindowClusterer clusterer = makeClusterer(true);
    EXPECT_EQ(show(clusterer, 0).tracks.front().id, 1);
    EXPECT_EQ(show(clusterer, 4).tracks.front().id, 1);
    EXPECT_EQ(show(clusterer, 9).tracks.front().id, 2);
}

}  // namespace
}  // namespace kelvora::tool
