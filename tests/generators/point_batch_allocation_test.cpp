// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <vector>

#include "support/allocations.hpp"
#include "support/boxes.hpp"
#include "support/centroid_settings.hpp"
#include "support/density_settings.hpp"
#include "support/feeding.hpp"

namespace kelvora::test {
namespace {

using Kind = PointKind<2, float>;

std::vector<Event2D> someEvents(std::size_t count) {
    Random random(5);
    auto events = randomEvents(random, 100, 80, count);
    for (Event2D& event : events) {
        event.polarity = 1;
    }
    return events;
}

template <class Settings>
class AllocationsOfPointBatches : public ::testing::Test {
protected:
    static auto build(const Settings& settings) { return settings.template build<Kind>(); }
};
using BothSettings = ::testing::Types<DensitySettings, CentroidSettings>;
TYPED_TEST_SUITE(AllocationsOfPointBatches, BothSettings);

TYPED_TEST(AllocationsOfPointBatches, AreNotNeededUpToOneAndAHalfTimesTheCapacity) {
    auto generator = this->build(TypeParam().capacity(1000));
    const auto events = someEvents(1501);
    const AllocationWatch watch;
    generator.processEvents(events.data(), events.size());
    EXPECT_EQ(watch.allocations(), 0U);
}

TYPED_TEST(AllocationsOfPointBatches, AreTheSameAsForSingleEventsWithoutABound) {
    auto one_by_one = this->build(TypeParam());
    auto in_batch = this->build(TypeParam());
    const auto events = someEvents(10'000);
    std::size_t expected = 0;
    std::size_t expected_largest = 0;
    {
        const AllocationWatch watch;
        feedOneByOne(one_by_one, events);
        expected = watch.allocations();
        expected_largest = watch.largestRequest();
    }
    ASSERT_GT(expected, 5U);
    const AllocationWatch watch;
    in_batch.processEvents(events.data(), events.size());
    EXPECT_EQ(watch.allocations(), expected);
    EXPECT_EQ(watch.largestRequest(), expected_largest);
}

TYPED_TEST(AllocationsOfPointBatches, ThatFailLeaveTheEventsBeforeThem) {
    const auto events = someEvents(1000);
    for (std::size_t allowed = 0; allowed < 8; ++allowed) {
        auto one_by_one = this->build(TypeParam());
        auto in_batch = this->build(TypeParam());
        {
            const AllocationWatch watch(allowed);
            EXPECT_THROW(feedOneByOne(one_by_one, events), std::bad_alloc);
        }
        {
            const AllocationWatch watch(allowed);
            EXPECT_THROW(in_batch.processEvents(events.data(), events.size()), std::bad_alloc);
        }
        EXPECT_EQ(boxesOf(generateFrom(in_batch)), boxesOf(generateFrom(one_by_one)));
    }
}

}  // namespace
}  // namespace kelvora::test
