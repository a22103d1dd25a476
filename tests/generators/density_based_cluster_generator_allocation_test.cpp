// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "kelvora/density_based_cluster_generator.hpp"
#include "support/allocation_checks.hpp"
#include "support/allocations.hpp"
#include "support/density_settings.hpp"

namespace kelvora::test {
namespace {

using Kind = PointKind<2, float>;
using Generator = DensityBasedClusterGenerator<2, float>;

void buildAndDestroy(const DensitySettings& settings) {
    const Generator generator = settings.build<Kind>();
}

std::string messageFor(const DensitySettings& settings) {
    try {
        buildAndDestroy(settings);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "nothing was thrown";
}

TEST(AllocationsOfTheDensityGenerator, ReserveOneAndAHalfTimesTheCapacityTwice) {
    for (const std::size_t capacity : {1U, 10U, 11U, 1000U}) {
        const AllocationWatch watch;
        buildAndDestroy(DensitySettings().capacity(capacity));
        if (capacity == 1000) {
            EXPECT_EQ(watch.largestRequest(), 1501 * sizeof(Kind::Point));
        }
        EXPECT_EQ(watch.unfreed(), 0);
    }
}

TEST(AllocationsOfTheDensityGenerator, ReserveNothingWithoutABound) {
    const AllocationWatch watch;
    buildAndDestroy(DensitySettings());
    EXPECT_LT(watch.largestRequest(), 2000U);
}

TEST(AllocationsOfTheDensityGenerator, AreAllFreedWhenAnArgumentIsRefused) {
    const AllocationWatch watch;
    EXPECT_THROW(buildAndDestroy(DensitySettings().density(0, 1)), std::runtime_error);
    EXPECT_THROW(buildAndDestroy(DensitySettings().filter(static_cast<EventFilterType>(4))),
                 std::out_of_range);
    EXPECT_EQ(watch.unfreed(), 0);
}

TEST(AllocationsOfTheDensityGenerator, AreReportedWhenPointsDoNotFitIntoMemory) {
    const std::string message =
        "DensityBasedClusterGenerator: Failed to allocate memory for points: std::bad_alloc";
    constexpr std::size_t kMegabyte = 1 << 20;
    const AllocationWatch watch(kNoLimit, kMegabyte);
    EXPECT_EQ(messageFor(DensitySettings().capacity(1'000'000)), message);
    EXPECT_EQ(watch.largestRequest(), 1'500'001 * sizeof(Kind::Point));
    EXPECT_EQ(messageFor(DensitySettings().capacity(1ULL << 59)), message);
    EXPECT_EQ(messageFor(DensitySettings().capacity(10'000)), "nothing was thrown");
}

TEST(AllocationsOfTheDensityGenerator, AreAllFreedWheneverOneOfThemFails) {
    // At least the implementation and two buffers.
    expectAllIsFreedWheneverAnAllocationFails(
        [] { buildAndDestroy(DensitySettings().capacity(100)); }, 3);
}

TEST(AllocationsOfTheDensityGenerator, AreNotNeededUpToOneAndAHalfTimesTheCapacity) {
    auto generator = DensitySettings().capacity(1000).timeLength(10'000).build<Kind>();
    const AllocationWatch watch;
    for (int i = 0; i < 1501; ++i) {
        const Event2D event(static_cast<unsigned short>(i % 100), 5, 1, 1000);
        generator.processEvent(&event);
    }
    EXPECT_EQ(watch.allocations(), 0U);
}

// Each call gets 120,000 events of 10 milliseconds, more than the capacity.
TEST(AllocationsOfTheDensityGenerator, AreNotNeededForEventsOfALongStreamWhoseMemoryStaysFlat) {
    auto generator = DensitySettings()
                         .sensor(1280, 720)
                         .capacity(100'000)
                         .timeLength(10'000)
                         .density(1.1, 4)
                         .build<Kind>();
    expectEventsOfALongStreamNeedNoAllocation(generator, 120'000);
}

}  // namespace
}  // namespace kelvora::test
