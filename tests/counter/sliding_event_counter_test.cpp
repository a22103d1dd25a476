// SPDX-License-Identifier: MIT
#include "kelvora/sliding_event_counter.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "reference/sliding_event_counter.hpp"
#include "support/event_builders.hpp"

namespace kelvora::test {
namespace {

using ::testing::ThrowsMessage;

constexpr std::size_t kLargest = std::numeric_limits<std::size_t>::max();

void count(SlidingEventCounter& counter, unsigned long long timestamp, int times = 1) {
    const Event2D event(0, 0, 1, timestamp);
    for (int i = 0; i < times; ++i) {
        counter.addEvent(&event);
    }
}

std::size_t countAfter(SlidingEventCounter& counter, unsigned long long timestamp) {
    count(counter, timestamp);
    return counter.getEventCount();
}

TEST(SlidingEventCounter, RefusesAnEmptyWindowBeforeItChecksTheBins) {
    const std::string message = "SlidingEventCounter: window_length must be larger than 0";
    EXPECT_THAT([] { SlidingEventCounter(0, 10); }, ThrowsMessage<std::invalid_argument>(message));
    EXPECT_THAT([] { SlidingEventCounter(0, 0); }, ThrowsMessage<std::invalid_argument>(message));
}

TEST(SlidingEventCounter, RefusesZeroBins) {
    EXPECT_THAT([] { SlidingEventCounter(10, 0); },
                ThrowsMessage<std::invalid_argument>(
                    "SlidingEventCounter: num_bins must be larger than 0"));
}

TEST(SlidingEventCounter, CountsNothingAtFirst) {
    EXPECT_EQ(SlidingEventCounter(100, 10).getEventCount(), 0U);
}

TEST(SlidingEventCounter, RefusesANullEventAndStaysAsItIs) {
    SlidingEventCounter counter(100, 10);
    const Event2D* const none = nullptr;
    EXPECT_THAT([&] { counter.addEvent(none); },
                ThrowsMessage<std::invalid_argument>("SlidingEventCounter: null event pointer"));
    EXPECT_EQ(counter.getEventCount(), 0U);
    count(counter, 5'000'000);
    EXPECT_THROW(counter.addEvent(none), std::invalid_argument);
    EXPECT_EQ(counter.getEventCount(), 1U);
}

template <class Event>
class SlidingEventCounterOf : public ::testing::Test {};

using EventTypes =
    ::testing::Types<Event2D, Event2DFrequency, Event2DPeriod<int>, Event2DPeriod<unsigned int>,
                     Event2DPeriod<float>, Event2DPeriod<double>, Event2DPeriod<long long>,
                     Event2DPeriod<unsigned long long>>;
TYPED_TEST_SUITE(SlidingEventCounterOf, EventTypes, );

TYPED_TEST(SlidingEventCounterOf, AnyTypeReadsItsTimestamp) {
    SlidingEventCounter counter(100, 10);
    TypeParam event{};
    event.timestamp = 7;
    counter.addEvent(&event);
    counter.addEvent(&event);
    EXPECT_EQ(counter.getEventCount(), 2U);
    event.timestamp = 107;
    counter.addEvent(&event);
    EXPECT_EQ(counter.getEventCount(), 1U);
}

TYPED_TEST(SlidingEventCounterOf, AnyTypeRefusesNull) {
    SlidingEventCounter counter(100, 10);
    EXPECT_THROW(counter.addEvent(static_cast<const TypeParam*>(nullptr)), std::invalid_argument);
}

TEST(SlidingEventCounter, CountsEventsOfTheSameTimeTogether) {
    SlidingEventCounter counter(100, 10);
    count(counter, 42, 3);
    EXPECT_EQ(counter.getEventCount(), 3U);
}

TEST(SlidingEventCounter, ForgetsBinByBin) {
    SlidingEventCounter counter(30, 3);
    count(counter, 0, 4);   // first bin
    count(counter, 10, 2);  // second
    count(counter, 20);     // third
    EXPECT_EQ(counter.getEventCount(), 7U);
    EXPECT_EQ(countAfter(counter, 30), 4U);  // in place of the first
    EXPECT_EQ(countAfter(counter, 40), 3U);  // in place of the second
}

TEST(SlidingEventCounter, ForgetsAllBinsItSkips) {
    SlidingEventCounter counter(40, 4);
    for (unsigned long long bin = 0; bin < 4; ++bin) {
        count(counter, 10 * bin, static_cast<int>(bin) + 1);
    }
    EXPECT_EQ(counter.getEventCount(), 10U);
    // Clears the bins with 1 and 2 events, and reuses the second one for itself.
    EXPECT_EQ(countAfter(counter, 50), 8U);
}

TEST(SlidingEventCounter, StartsAgainAfterExactlyOneWindow) {
    SlidingEventCounter counter(100, 10);
    count(counter, 0, 5);
    EXPECT_EQ(countAfter(counter, 100), 1U);
    SlidingEventCounter almost(100, 10);
    count(almost, 0, 5);
    EXPECT_EQ(countAfter(almost, 99), 6U);
}

TEST(SlidingEventCounter, MovesOnAroundTheRingAfterAGapOfManyWindows) {
    SlidingEventCounter counter(40, 4);
    count(counter, 0);
    EXPECT_EQ(countAfter(counter, 4'000'000'010), 1U);
    EXPECT_EQ(countAfter(counter, 4'000'000'020), 2U);
    EXPECT_EQ(countAfter(counter, 4'000'000'030), 3U);
    EXPECT_EQ(countAfter(counter, 4'000'000'040), 4U);
    EXPECT_EQ(countAfter(counter, 4'000'000'050), 4U);
}

TEST(SlidingEventCounter, ClearsEveryBinIfAllBinsAreShorterThanTheWindow) {
    SlidingEventCounter counter(1000, 3);  // of 333 each
    count(counter, 0);
    count(counter, 333);
    count(counter, 666);
    EXPECT_EQ(counter.getEventCount(), 3U);
    EXPECT_EQ(countAfter(counter, 666 + 999), 1U);
    EXPECT_EQ(countAfter(counter, 666 + 999 + 332), 2U);
}

TEST(SlidingEventCounter, HasNoMoreBinsThanMicroseconds) {
    SlidingEventCounter counter(5, 10);
    for (unsigned long long t = 0; t < 5; ++t) {
        EXPECT_EQ(countAfter(counter, t), t + 1);
    }
    EXPECT_EQ(countAfter(counter, 5), 5U);
    EXPECT_FALSE(counter.setWindowLength(4));
    EXPECT_TRUE(counter.setWindowLength(5));
}

TEST(SlidingEventCounter, NeverForgetsAStreamWithoutGapsOfABin) {
    SlidingEventCounter counter(10'000, 100);
    for (unsigned long long t = 0; t < 50'000; ++t) {
        count(counter, t);
    }
    EXPECT_EQ(counter.getEventCount(), 50'000U);
    for (unsigned long long i = 0; i < 1000; ++i) {
        count(counter, 50'000 + 99 * i);
    }
    EXPECT_EQ(counter.getEventCount(), 51'000U);
}

TEST(SlidingEventCounter, CountsAnOlderEventAlone) {
    SlidingEventCounter counter(100, 10);
    count(counter, 1000, 5);
    EXPECT_EQ(countAfter(counter, 999), 1U);
    // Gaps are now measured from the older event.
    EXPECT_EQ(countAfter(counter, 1010), 2U);
}

TEST(SlidingEventCounter, CountsTheFirstEventAtAnyTime) {
    SlidingEventCounter counter(100, 10);
    EXPECT_EQ(countAfter(counter, std::numeric_limits<unsigned long long>::max()), 1U);
    EXPECT_EQ(countAfter(counter, std::numeric_limits<unsigned long long>::max()), 2U);
}

TEST(SlidingEventCounter, KeepsItsWindowWhenAnotherIsSet) {
    SlidingEventCounter counter(1000, 10);
    count(counter, 0, 3);
    EXPECT_FALSE(counter.setWindowLength(0));
    EXPECT_FALSE(counter.setWindowLength(9));
    EXPECT_TRUE(counter.setWindowLength(10));
    EXPECT_TRUE(counter.setWindowLength(kLargest));
    EXPECT_EQ(counter.getEventCount(), 3U);
    EXPECT_EQ(countAfter(counter, 999), 4U);
    EXPECT_EQ(countAfter(counter, 1999), 1U);
    EXPECT_FALSE(counter.setWindowLength(9));
}

TEST(SlidingEventCounter, StartsAgainAfterReset) {
    SlidingEventCounter counter(100, 10);
    count(counter, 0, 3);
    count(counter, 35);
    counter.reset();
    EXPECT_EQ(counter.getEventCount(), 0U);
    EXPECT_EQ(countAfter(counter, 1'000'000'000), 1U);
    EXPECT_EQ(countAfter(counter, 1'000'000'099), 2U);
    counter.reset();
    EXPECT_EQ(countAfter(counter, 3), 1U);
}

TEST(SlidingEventCounter, CopiesItsState) {
    SlidingEventCounter counter(100, 10);
    count(counter, 50, 3);
    SlidingEventCounter copy(counter);
    EXPECT_EQ(countAfter(copy, 60), 4U);
    EXPECT_EQ(counter.getEventCount(), 3U);
    SlidingEventCounter assigned(7, 7);
    assigned = counter;
    EXPECT_EQ(countAfter(assigned, 149), 4U);
    EXPECT_EQ(countAfter(assigned, 249), 1U);
    const SlidingEventCounter& same = counter;
    counter = same;
    EXPECT_EQ(countAfter(counter, 60), 4U);
}

TEST(SlidingEventCounter, MovesItsState) {
    SlidingEventCounter counter(100, 10);
    count(counter, 50, 3);
    SlidingEventCounter moved(std::move(counter));
    EXPECT_EQ(countAfter(moved, 60), 4U);
    counter = SlidingEventCounter(200, 10);  // may be assigned to
    EXPECT_EQ(countAfter(counter, 0), 1U);
    counter = std::move(moved);
    EXPECT_EQ(countAfter(counter, 70), 5U);
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<SlidingEventCounter>);
    EXPECT_TRUE(std::is_nothrow_move_assignable_v<SlidingEventCounter>);
}

class SlidingEventCounterWithTheLargestWindow : public ::testing::TestWithParam<std::size_t> {};

TEST_P(SlidingEventCounterWithTheLargestWindow, OfOneBinCountsAllEvents) {
    SlidingEventCounter counter(GetParam(), 1);
    count(counter, 0, 2);
    EXPECT_EQ(countAfter(counter, 1), 3U);
    EXPECT_EQ(countAfter(counter, kLargest / 2), 4U);
    EXPECT_EQ(countAfter(counter, kLargest - 100'000), 5U);
    EXPECT_TRUE(counter.setWindowLength(1));
    EXPECT_EQ(countAfter(counter, kLargest), 6U);
}

TEST_P(SlidingEventCounterWithTheLargestWindow, OfAHundredBinsForgetsBinByBin) {
    SlidingEventCounter counter(GetParam(), 100);
    // 2^64 / 100 = 184467440737095516.16
    constexpr unsigned long long kBin = 184'467'440'737'095'520;
    count(counter, 0);
    for (unsigned long long bin = 1; bin < 99; ++bin) {
        EXPECT_EQ(countAfter(counter, bin * kBin), bin + 1);
    }
    EXPECT_EQ(countAfter(counter, 98 * kBin + 1000), 100U);
}

INSTANTIATE_TEST_SUITE_P(Of, SlidingEventCounterWithTheLargestWindow,
                         ::testing::Values(kLargest, kLargest - 1, kLargest - 1023,
                                           kLargest - 1024));

TEST(SlidingEventCounter, TakesAnEventOfTheLargestTimeAfterTheSmallest) {
    SlidingEventCounter counter(kLargest, 1);
    count(counter, 0, 3);
    EXPECT_EQ(countAfter(counter, kLargest), 1U);
}

TEST(SlidingEventCounter, CountsTimestampsAsItCountsEvents) {
    for (std::uint64_t seed = 0; seed < 200; ++seed) {
        Random random(seed);
        const auto window = static_cast<std::size_t>(randomInt(random, 1, 2000));
        const auto num_bins = static_cast<std::size_t>(randomInt(random, 1, 120));
        SlidingEventCounter one_by_one(window, num_bins);
        SlidingEventCounter at_once(window, num_bins);
        reference::SlidingEventCounter model(window, std::min(window, num_bins));
        unsigned long long time = 5000;
        for (int batch = 0; batch < 20; ++batch) {
            std::vector<unsigned long long> times(
                static_cast<std::size_t>(randomInt(random, 0, 50)));
            // Mostly gaps within a bin, some within the window, some longer, some backwards.
            const int longest_gap = randomInt(random, 1, 3000);
            for (unsigned long long& timestamp : times) {
                time += static_cast<unsigned long long>(
                    randomInt(random, 0, randomInt(random, 0, longest_gap)));
                time -= randomInt(random, 0, 99) == 0 ? 700 : 0;
                timestamp = time;
                count(one_by_one, timestamp);
                model.addTimestamp(timestamp);
                ASSERT_EQ(one_by_one.getEventCount(), model.getEventCount()) << "seed " << seed;
            }
            at_once.addTimestamps(times.data(), times.size());
            ASSERT_EQ(at_once.getEventCount(), model.getEventCount()) << "seed " << seed;
        }
    }
}

TEST(SlidingEventCounter, StartsAgainWithTimestampsAfterAReset) {
    SlidingEventCounter counter(100, 10);
    const std::vector<unsigned long long> times = {1000, 1001, 1050};
    counter.addTimestamps(times.data(), times.size());
    counter.reset();
    counter.addTimestamps(times.data(), 2);
    EXPECT_EQ(counter.getEventCount(), 2U);
}

TEST(SlidingEventCounter, RefusesNullTimestampsUnlessThereAreNone) {
    SlidingEventCounter counter(100, 10);
    count(counter, 1000, 3);
    EXPECT_THAT(
        [&] { counter.addTimestamps(nullptr, 1); },
        ThrowsMessage<std::invalid_argument>("SlidingEventCounter: null pointer to timestamps"));
    EXPECT_NO_THROW(counter.addTimestamps(nullptr, 0));
    EXPECT_EQ(counter.getEventCount(), 3U);
}

}  // namespace
}  // namespace kelvora::test
