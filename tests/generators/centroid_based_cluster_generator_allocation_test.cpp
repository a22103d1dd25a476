// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "kelvora/centroid_based_cluster_generator.hpp"
#include "support/allocation_checks.hpp"
#include "support/allocations.hpp"
#include "support/centroid_settings.hpp"

namespace kelvora::test {
namespace {

using Kind = PointKind<3, float>;
using Generator = CentroidBasedClusterGenerator<3, float>;

void buildAndDestroy(const CentroidSettings& settings) {
    const Generator generator = settings.build<Kind>();
}

std::string messageFor(const CentroidSettings& settings) {
    try {
        buildAndDestroy(settings);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "nothing was thrown";
}

TEST(AllocationsOfTheCentroidGenerator, ReserveOneAndAHalfTimesTheCapacity) {
    const AllocationWatch watch;
    buildAndDestroy(CentroidSettings().capacity(1000));
    EXPECT_EQ(watch.largestRequest(), 1501 * sizeof(Kind::Point));
    EXPECT_EQ(watch.unfreed(), 0);
}

TEST(AllocationsOfTheCentroidGenerator, ReserveNothingWithoutABoundNorWhenOneIsSet) {
    const AllocationWatch watch;
    auto generator = CentroidSettings().build<Kind>();
    EXPECT_TRUE(generator.setMaxCapacity(1'000'000));
    EXPECT_TRUE(generator.setClusterNumber(1'000'000));
    EXPECT_LT(watch.largestRequest(), 2000U);
}

TEST(AllocationsOfTheCentroidGenerator, AreAllFreedWhenAnArgumentIsRefused) {
    const AllocationWatch watch;
    EXPECT_THROW(buildAndDestroy(CentroidSettings().clusters(0)), std::runtime_error);
    EXPECT_THROW(buildAndDestroy(CentroidSettings().timeLength(0)), std::invalid_argument);
    EXPECT_THROW(buildAndDestroy(CentroidSettings().filter(static_cast<EventFilterType>(4))),
                 std::out_of_range);
    EXPECT_EQ(watch.unfreed(), 0);
}

TEST(AllocationsOfTheCentroidGenerator, AreReportedWhenPointsDoNotFitIntoMemory) {
    const std::string message =
        "CentroidBasedClusterGenerator: Failed to allocate memory for points: std::bad_alloc";
    constexpr std::size_t kMegabyte = 1 << 20;
    const AllocationWatch watch(kNoLimit, kMegabyte);
    EXPECT_EQ(messageFor(CentroidSettings().capacity(1'000'000)), message);
    EXPECT_EQ(watch.largestRequest(), 1'500'001 * sizeof(Kind::Point));
    EXPECT_EQ(messageFor(CentroidSettings().capacity(10'000)), "nothing was thrown");
}

TEST(AllocationsOfTheCentroidGenerator, AreAllFreedWheneverOneOfThemFails) {
    // The implementation, the counts, two buffers, the counter and its bins.
    expectAllIsFreedWheneverAnAllocationFails(
        [] { buildAndDestroy(CentroidSettings().capacity(100)); }, 6);
}

TEST(AllocationsOfTheCentroidGenerator, AreNotNeededUpToOneAndAHalfTimesTheCapacity) {
    auto generator = CentroidSettings().capacity(1000).timeLength(10'000).build<Kind>();
    for (int call = 0; call < 3; ++call) {  // the two buffers alternate
        {
            const AllocationWatch watch;
            for (int i = 0; i < 1501; ++i) {
                const Event2D event(static_cast<unsigned short>(i % 100), 5, 1, 1000);
                generator.processEvent(&event);
            }
            EXPECT_EQ(watch.allocations(), 0U);
        }
        generateFrom(generator);
    }
    const AllocationWatch watch;
    for (int i = 0; i < 1502; ++i) {
        feedPixels(generator, {{1, 1}});
    }
    EXPECT_GT(watch.largestRequest(), 1501 * sizeof(Kind::Point));
}

// Each call gets 12,000 events of a millisecond, more than the capacity.
TEST(AllocationsOfTheCentroidGenerator, AreNotNeededForEventsOfALongStreamWhoseMemoryStaysFlat) {
    auto generator = CentroidSettings()
                         .sensor(1280, 720)
                         .capacity(10'000)
                         .timeLength(1000)
                         .clusters(8)
                         .iterations(5)
                         .build<Kind>();
    expectEventsOfALongStreamNeedNoAllocation(generator, 12'000);
}

}  // namespace
}  // namespace kelvora::test
