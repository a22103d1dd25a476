// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

#include "kelvora/events.hpp"

namespace kelvora {
namespace {

static_assert(__cplusplus / 100 == 2000 + EXPECTED_CXX_STANDARD ||
                  (EXPECTED_CXX_STANDARD == 20 && __cplusplus > 201703L),
              "compiled with the standard that the program is named after");

template <typename T>
class Event2DPeriodOf : public ::testing::Test {};

using PeriodTypes =
    ::testing::Types<int, unsigned int, float, double, long long, unsigned long long>;
TYPED_TEST_SUITE(Event2DPeriodOf, PeriodTypes);

TYPED_TEST(Event2DPeriodOf, IsAnAggregateThatCanBeCopiedAndMoved) {
    using Event = Event2DPeriod<TypeParam>;
    EXPECT_TRUE(std::is_aggregate_v<Event>);
    EXPECT_TRUE(std::is_standard_layout_v<Event>);
    EXPECT_TRUE(std::is_trivially_copyable_v<Event>);
    EXPECT_TRUE(std::is_copy_constructible_v<Event>);
    EXPECT_TRUE(std::is_copy_assignable_v<Event>);
    EXPECT_TRUE(std::is_move_constructible_v<Event>);
    EXPECT_TRUE(std::is_move_assignable_v<Event>);
}

TYPED_TEST(Event2DPeriodOf, IsInitialisedInTheOrderOfItsFields) {
    const auto period = std::numeric_limits<TypeParam>::max();
    const Event2DPeriod<TypeParam> event = {65535, 2, 1, 4, period};
    EXPECT_EQ(event.x, 65535);
    EXPECT_EQ(event.y, 2);
    EXPECT_EQ(event.polarity, 1);
    EXPECT_EQ(event.timestamp, 4U);
    EXPECT_EQ(event.period, period);
}

TYPED_TEST(Event2DPeriodOf, HasZerosWhereNothingIsGiven) {
    const Event2DPeriod<TypeParam> event = {};
    EXPECT_EQ(event.x, 0);
    EXPECT_EQ(event.y, 0);
    EXPECT_EQ(event.polarity, 0);
    EXPECT_EQ(event.timestamp, 0U);
    EXPECT_EQ(event.period, TypeParam{0});
}

TYPED_TEST(Event2DPeriodOf, CopiesEveryField) {
    using Event = Event2DPeriod<TypeParam>;
    const Event source = {1, 2, 3, 4, 5};
    const Event constructed = source;
    Event assigned = {};
    assigned = source;
    Event moved = {};
    moved = Event{1, 2, 3, 4, 5};
    for (const Event& copy : {constructed, assigned, moved}) {
        EXPECT_EQ(copy.x, 1);
        EXPECT_EQ(copy.y, 2);
        EXPECT_EQ(copy.polarity, 3);
        EXPECT_EQ(copy.timestamp, 4U);
        EXPECT_EQ(copy.period, TypeParam{5});
    }
}

TYPED_TEST(Event2DPeriodOf, BeginsLikeAnEvent2D) {
    using Event = Event2DPeriod<TypeParam>;
    EXPECT_EQ(offsetof(Event, x), offsetof(Event2D, x));
    EXPECT_EQ(offsetof(Event, y), offsetof(Event2D, y));
    EXPECT_EQ(offsetof(Event, polarity), offsetof(Event2D, polarity));
    EXPECT_EQ(offsetof(Event, timestamp), offsetof(Event2D, timestamp));
    EXPECT_EQ(offsetof(Event, period), 16U);
}

}  // namespace
}  // namespace kelvora
