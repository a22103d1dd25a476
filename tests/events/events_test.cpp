// SPDX-License-Identifier: MIT
#include "kelvora/events.hpp"

#include <gmock/gmock.h>

#include <cstddef>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace kelvora {
namespace {

constexpr auto kLargestTime = std::numeric_limits<unsigned long long>::max();

template <typename Record>
class EventRecord : public ::testing::Test {};

using Records = ::testing::Types<Event2D, Event2DFrequency, EventTriggerIn, KvStatisticInfo>;
TYPED_TEST_SUITE(EventRecord, Records);

TYPED_TEST(EventRecord, IsAStandardLayoutValueThatCanBeCopiedAndMoved) {
    EXPECT_TRUE(std::is_standard_layout_v<TypeParam>);
    EXPECT_TRUE(std::is_default_constructible_v<TypeParam>);
    EXPECT_TRUE(std::is_copy_constructible_v<TypeParam>);
    EXPECT_TRUE(std::is_copy_assignable_v<TypeParam>);
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<TypeParam>);
    EXPECT_TRUE(std::is_nothrow_move_assignable_v<TypeParam>);
}

TYPED_TEST(EventRecord, IsPassedInRegistersAsItsCopyConstructorIsTrivial) {
    EXPECT_TRUE(std::is_trivially_copy_constructible_v<TypeParam>);
    EXPECT_TRUE(std::is_trivially_destructible_v<TypeParam>);
}

TEST(Event2D, HasAllFieldsZeroByDefault) {
    const Event2D event;
    EXPECT_EQ(event.x, 0);
    EXPECT_EQ(event.y, 0);
    EXPECT_EQ(event.polarity, 0);
    EXPECT_EQ(event.timestamp, 0U);
}

TEST(Event2D, StoresTheLargestValuesAsTheyAre) {
    const Event2D event(65535, 65534, 255, kLargestTime);
    EXPECT_EQ(event.x, 65535);
    EXPECT_EQ(event.y, 65534);
    EXPECT_EQ(event.polarity, 255);
    EXPECT_EQ(event.timestamp, kLargestTime);
}

TEST(Event2D, LaysOutItsFieldsInSixteenBytes) {
    EXPECT_EQ(offsetof(Event2D, x), 0U);
    EXPECT_EQ(offsetof(Event2D, y), 2U);
    EXPECT_EQ(offsetof(Event2D, polarity), 4U);
    EXPECT_EQ(offsetof(Event2D, timestamp), 8U);
    EXPECT_EQ(sizeof(Event2D), 16U);
}

TEST(Event2D, CopiesEveryField) {
    const Event2D source(1, 2, 3, 4);
    const Event2D constructed = source;
    Event2D assigned;
    assigned = source;
    for (const Event2D& copy : {constructed, assigned}) {
        EXPECT_EQ(copy.x, 1);
        EXPECT_EQ(copy.y, 2);
        EXPECT_EQ(copy.polarity, 3);
        EXPECT_EQ(copy.timestamp, 4U);
    }
}

TEST(Event2D, MovesLikeItCopies) {
    Event2D source(1, 2, 3, 4);
    const Event2D constructed = std::move(source);
    Event2D assigned;
    assigned = Event2D(1, 2, 3, 4);
    for (const Event2D& copy : {constructed, assigned}) {
        EXPECT_EQ(copy.x, 1);
        EXPECT_EQ(copy.y, 2);
        EXPECT_EQ(copy.polarity, 3);
        EXPECT_EQ(copy.timestamp, 4U);
    }
}

TEST(Event2D, CanBeInsertedIntoAndErasedFromVectors) {
    std::vector<Event2D> events = {{1, 1, 1, 1}, {3, 3, 1, 3}};
    events.insert(events.begin() + 1, Event2D(2, 2, 0, 2));
    events.erase(events.begin());
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].x, 2);
    EXPECT_EQ(events[1].timestamp, 3U);
}

TEST(Event2DFrequency, HasAllFieldsZeroByDefault) {
    const Event2DFrequency event;
    EXPECT_EQ(event.x, 0);
    EXPECT_EQ(event.y, 0);
    EXPECT_FALSE(event.polarity);
    EXPECT_EQ(event.timestamp, 0U);
    EXPECT_EQ(event.frequency, 0.0F);
}

TEST(Event2DFrequency, StoresAndAssignsEveryField) {
    const Event2DFrequency event(65535, 2, true, kLargestTime, 99.5F);
    Event2DFrequency assigned;
    assigned = event;
    Event2DFrequency moved;
    moved = Event2DFrequency(event);
    for (const Event2DFrequency& copy : {event, assigned, moved}) {
        EXPECT_EQ(copy.x, 65535);
        EXPECT_EQ(copy.y, 2);
        EXPECT_TRUE(copy.polarity);
        EXPECT_EQ(copy.timestamp, kLargestTime);
        EXPECT_EQ(copy.frequency, 99.5F);
    }
}

TEST(Event2DFrequency, BeginsLikeAnEvent2D) {
    EXPECT_EQ(offsetof(Event2DFrequency, x), offsetof(Event2D, x));
    EXPECT_EQ(offsetof(Event2DFrequency, y), offsetof(Event2D, y));
    EXPECT_EQ(offsetof(Event2DFrequency, polarity), offsetof(Event2D, polarity));
    EXPECT_EQ(offsetof(Event2DFrequency, timestamp), offsetof(Event2D, timestamp));
    EXPECT_EQ(offsetof(Event2DFrequency, frequency), 16U);
    EXPECT_EQ(sizeof(Event2DFrequency::polarity), 1U);
}

TEST(EventTriggerIn, HasAllFieldsZeroByDefault) {
    const EventTriggerIn trigger;
    EXPECT_EQ(trigger.trigger_id, 0);
    EXPECT_EQ(trigger.timestamp, 0U);
    EXPECT_EQ(trigger.trigger_value, 0);
}

TEST(EventTriggerIn, TakesTheValueFirstButStoresTheIdFirst) {
    const EventTriggerIn trigger(5, 9, 100);
    EXPECT_EQ(trigger.trigger_value, 5);
    EXPECT_EQ(trigger.trigger_id, 9);
    EXPECT_EQ(trigger.timestamp, 100U);
    EXPECT_EQ(offsetof(EventTriggerIn, trigger_id), 0U);
    EXPECT_EQ(offsetof(EventTriggerIn, timestamp), 8U);
    EXPECT_EQ(offsetof(EventTriggerIn, trigger_value), 16U);
}

TEST(EventTriggerIn, StoresAndAssignsEveryField) {
    const EventTriggerIn trigger(-32768, 32767, kLargestTime);
    EventTriggerIn assigned;
    assigned = trigger;
    EventTriggerIn moved;
    moved = EventTriggerIn(trigger);
    for (const EventTriggerIn& copy : {trigger, assigned, moved}) {
        EXPECT_EQ(copy.trigger_value, -32768);
        EXPECT_EQ(copy.trigger_id, 32767);
        EXPECT_EQ(copy.timestamp, kLargestTime);
    }
}

TEST(KvStatisticInfo, HasBothCountsZeroByDefault) {
    const KvStatisticInfo info;
    EXPECT_EQ(info.first_count, 0U);
    EXPECT_EQ(info.second_count, 0U);
}

TEST(KvStatisticInfo, StoresAndAssignsBothCountsInOrder) {
    const KvStatisticInfo info(3, kLargestTime);
    KvStatisticInfo assigned;
    assigned = info;
    KvStatisticInfo moved;
    moved = KvStatisticInfo(info);
    for (const KvStatisticInfo& copy : {info, assigned, moved}) {
        EXPECT_EQ(copy.first_count, 3U);
        EXPECT_EQ(copy.second_count, kLargestTime);
    }
    EXPECT_EQ(offsetof(KvStatisticInfo, first_count), 0U);
    EXPECT_EQ(offsetof(KvStatisticInfo, second_count), 8U);
}

TEST(EventFilterType, IsAPlainEnumerationOfThirtyTwoBits) {
    EXPECT_TRUE((std::is_convertible_v<EventFilterType, unsigned>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<EventFilterType>, std::uint32_t>));
    EXPECT_EQ(sizeof(EventFilterType), 4U);
    EXPECT_EQ(POLARITY_FREE, 0U);
    EXPECT_EQ(POSITIVE_FREE, 1U);
    EXPECT_EQ(NEGATIVE_FREE, 2U);
    EXPECT_EQ(POLARITY_SEPARATE, 3U);
}

TEST(EventFilterType, HoldsAnyThirtyTwoBitValue) {
    constexpr auto kLargest = static_cast<EventFilterType>(0xFFFFFFFF);
    EXPECT_EQ(static_cast<std::uint32_t>(kLargest), 0xFFFFFFFF);
    EXPECT_EQ(static_cast<std::uint32_t>(static_cast<EventFilterType>(4)), 4U);
}

TEST(EventFilterType, HasATableOfRejectedPolarities) {
    EXPECT_THAT(kFilterTypeToRejectedPolarity, ::testing::ElementsAre(2, 1, 0, 2));
}

TEST(EventFilterType, IsNamedLikeItsEnumerators) {
    const std::vector<std::pair<EventFilterType, std::string>> expected = {
        {POLARITY_FREE, "POLARITY_FREE"},
        {POSITIVE_FREE, "POSITIVE_FREE"},
        {NEGATIVE_FREE, "NEGATIVE_FREE"},
        {POLARITY_SEPARATE, "POLARITY_SEPARATE"}};
    for (const auto& [type, name] : expected) {
        EXPECT_EQ(kFilterTypeToName.at(type), name);
        EXPECT_EQ(kNameToFilterType.at(name), type);
    }
    EXPECT_EQ(kFilterTypeToName.size(), expected.size());
    EXPECT_EQ(kNameToFilterType.size(), expected.size());
}

}  // namespace
}  // namespace kelvora
