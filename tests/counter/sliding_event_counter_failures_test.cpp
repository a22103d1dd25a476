// SPDX-License-Identifier: MIT
// A counter without enough memory.
#include <gtest/gtest.h>

#include <cstddef>

#include "kelvora/sliding_event_counter.hpp"
#include "support/allocation_checks.hpp"

namespace kelvora::test {
namespace {

SlidingEventCounter counterOf(std::size_t window, unsigned events) {
    SlidingEventCounter counter(window, 10);
    for (unsigned i = 0; i < events; ++i) {
        const Event2D event(0, 0, 1, 1000 + i);
        counter.addEvent(&event);
    }
    return counter;
}

TEST(SlidingEventCounterWithoutMemory, IsUnchangedIfItCannotBeAssigned) {
    const SlidingEventCounter small = counterOf(3, 1);
    const SlidingEventCounter large = counterOf(1000, 7);
    const std::size_t failures = failEachAllocation(
        [&] { return small; }, [&](SlidingEventCounter& counter) { counter = large; },
        [&](SlidingEventCounter& counter) {
            EXPECT_EQ(counter.getEventCount(), 1U);
            // Within the large window, but not within the small one.
            const Event2D event(0, 0, 1, 1500);
            counter.addEvent(&event);
            EXPECT_EQ(counter.getEventCount(), 1U);
        });
    EXPECT_EQ(failures, 1U);
}

TEST(SlidingEventCounterWithoutMemory, NeedsNoneForEvents) {
    SlidingEventCounter counter(1000, 10);
    const AllocationWatch watch(0);
    for (unsigned long long time = 0; time < 100'000; time += 37) {
        const Event2D event(0, 0, 1, time);
        EXPECT_NO_THROW(counter.addEvent(&event));
    }
    counter.reset();
    EXPECT_EQ(counter.getEventCount(), 0U);
}

}  // namespace
}  // namespace kelvora::test
