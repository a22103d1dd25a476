// SPDX-License-Identifier: MIT
// A tracker without enough memory.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <tuple>
#include <vector>

#include "kelvora/cluster_tracker.hpp"
#include "support/allocation_checks.hpp"
#include "support/tracks.hpp"

namespace kelvora::test {
namespace {

using Clusters = std::vector<ClusterGeometry>;

/// All that a tracker tells about its tracks.
auto valuesOf(const ClusterTracker& tracker) {
    std::vector<std::tuple<int, TrackState, float, float, float, float, unsigned long long, float,
                           float, int, int, int, bool>>
        values;
    for (const Track& track : tracker.getTracks()) {
        const ClusterGeometry& box = track.box;
        values.emplace_back(track.id, track.state, box.x, box.y, box.width, box.height,
                            box.timestamp, track.vx, track.vy, track.cluster, track.hits,
                            track.missed, track.is_hidden);
    }
    return values;
}

/// Three objects, of which two meet; new ones appear, and one is not seen all the time.
Clusters clustersOfStep(int step) {
    const auto time = static_cast<std::uint64_t>(step) * kUpdateInterval;
    const auto offset = static_cast<float>(5 * step);
    Clusters clusters = {square(50 + offset, 50, time)};
    if (step < 8) {
        clusters.push_back(square(150 - offset, 50, time));
    }
    if (step % 4 != 3) {
        clusters.push_back(square(100, 300 + offset, time));
    }
    if (step > 5) {
        clusters.push_back(boxAround(400, 100, 20 + offset, 20, time));
    }
    return clusters;
}

TEST(ClusterTrackerWithoutMemory, IsUnchangedIfAnUpdateFailsAnywhere) {
    ClusterTracker tracker;
    std::size_t failures = 0;
    for (int step = 0; step < 16; ++step) {
        const Clusters clusters = clustersOfStep(step);
        ClusterTracker next = tracker;
        const std::vector<int> ids = next.update(clusters);
        failures += failEachAllocation([&] { return tracker; },
                                       [&](ClusterTracker& failed) { failed.update(clusters); },
                                       [&](ClusterTracker& failed) {
                                           EXPECT_EQ(valuesOf(failed), valuesOf(tracker));
                                           EXPECT_EQ(failed.update(clusters), ids);
                                           EXPECT_EQ(valuesOf(failed), valuesOf(next));
                                       });
        tracker = next;
    }
    EXPECT_GT(failures, 200U);
}

TEST(ClusterTrackerWithoutMemory, AcceptsTheTimestampThatItHadBefore) {
    ClusterTracker tracker;
    tracker.update({square(100, 100, 1000)});
    const Clusters later = {square(100, 100, 9000)};
    const Clusters earlier = {square(100, 100, 2000)};
    const std::size_t failures = failEachAllocation(
        [&] { return tracker; }, [&](ClusterTracker& failed) { failed.update(later); },
        [&](ClusterTracker& failed) { EXPECT_EQ(failed.update(earlier), std::vector<int>{1}); });
    EXPECT_GT(failures, 5U);
}

}  // namespace
}  // namespace kelvora::test
