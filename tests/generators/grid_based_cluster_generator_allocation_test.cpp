// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <opencv2/core/mat.hpp>
#include <stdexcept>
#include <vector>

#include "kelvora/grid_based_cluster_generator.hpp"
#include "support/allocation_checks.hpp"
#include "support/allocations.hpp"
#include "support/event_builders.hpp"
#include "support/grid_settings.hpp"

namespace kelvora::test {
namespace {

void buildAndDestroy(const GridSettings& settings) {
    const GridBasedClusterGenerator generator = settings.build();
}

TEST(AllocationsOfTheGridGenerator, AreSeenByTheWatch) {
    const AllocationWatch watch;
    const auto generator = GridSettings().build();
    EXPECT_GT(watch.allocations(), 0U);
    EXPECT_GT(watch.unfreed(), 0);
}

TEST(AllocationsOfTheGridGenerator, AreFreedByItsDestructor) {
    const AllocationWatch watch;
    buildAndDestroy(GridSettings().filter(POLARITY_SEPARATE));
    EXPECT_EQ(watch.unfreed(), 0);
}

TEST(AllocationsOfTheGridGenerator, AreAllFreedWhenAnArgumentIsRefused) {
    const AllocationWatch watch;
    EXPECT_THROW(buildAndDestroy(GridSettings().cells(0, 4)), std::invalid_argument);
    EXPECT_THROW(buildAndDestroy(GridSettings().sensor(10, 0)), std::invalid_argument);
    EXPECT_EQ(watch.unfreed(), 0);
}

TEST(AllocationsOfTheGridGenerator, AreAllFreedWheneverOneOfThemFails) {
    expectAllIsFreedWheneverAnAllocationFails([] { buildAndDestroy(GridSettings()); }, 1);
}

TEST(AllocationsOfTheGridGenerator, AreOneBytePerPixelEvenIfTheirNumberExceedsAnInt) {
    constexpr std::size_t kMegabyte = 1 << 20;
    const AllocationWatch watch(kNoLimit, kMegabyte);
    EXPECT_THROW(buildAndDestroy(GridSettings().sensor(65536, 65536).cells(64, 64)),
                 std::bad_alloc);
    EXPECT_EQ(watch.largestRequest(), std::size_t{65536} * 65536);
    EXPECT_EQ(watch.unfreed(), 0);
}

TEST(AllocationsOfTheGridGenerator, AreNotNeededToProcessEvents) {
    auto generator = GridSettings().filter(POLARITY_SEPARATE).build();
    Random random(1);
    const auto events = randomEvents(random, 40, 40, 10'000);
    const AllocationWatch watch;
    feedAll(generator, events);
    generator.processEvents(events.data(), events.size());
    EXPECT_EQ(watch.allocations(), 0U);
}

TEST(AllocationsOfTheGridGenerator, AreNotNeededForFurtherBatchesLikeTheFirst) {
    auto generator = GridSettings().threshold(3).build();
    Random random(1);
    const auto events = randomEvents(random, 40, 40, 400);
    std::vector<ClusterGeometry> clusters;
    feedAll(generator, events);
    generator.generateClusters(0, clusters);
    const std::size_t clusters_of_first = clusters.size();
    ASSERT_GT(clusters_of_first, 1U);

    const AllocationWatch watch;
    for (std::size_t batch = 1; batch < 20; ++batch) {
        feedAll(generator, events);
        generator.generateClusters(batch, clusters);
    }
    EXPECT_EQ(watch.allocations(), 0U);
    EXPECT_EQ(clusters.size(), clusters_of_first);
}

TEST(AllocationsOfTheGridGenerator, AreNotNeededToViewOrResetTheCounts) {
    auto generator = GridSettings().build();
    cv::Mat map;
    const AllocationWatch watch;
    generator.getActiveMap(map);
    generator.reset();
    EXPECT_EQ(watch.allocations(), 0U);
}

}  // namespace
}  // namespace kelvora::test
