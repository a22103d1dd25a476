// SPDX-License-Identifier: MIT
#include "generators/noted_pixels.hpp"

#include <gmock/gmock.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "support/event_builders.hpp"

namespace kelvora::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

constexpr std::size_t kMostEvents = 5;

std::vector<std::pair<std::uint16_t, std::uint16_t>> listed(const NotedPixels& noted) {
    std::vector<std::pair<std::uint16_t, std::uint16_t>> pixels;
    for (const NotedPixels::Pixel pixel : noted) {
        pixels.emplace_back(pixel.x, pixel.y);
    }
    return pixels;
}

TEST(NotedPixels, AreAllNotedBeforeTheFirstEvent) {
    const NotedPixels noted(kMostEvents);
    EXPECT_TRUE(noted.areAllNoted());
    EXPECT_THAT(listed(noted), IsEmpty());
}

TEST(NotedPixels, ComeFromEventsOfAllBatches) {
    NotedPixels noted(kMostEvents);
    const std::vector<Event2D> events = {positiveEvent(3, 4), negativeEvent(65535, 0)};
    const auto period = makeEvent<Event2DPeriod<double>>(0, 65535, 2);
    noted.note(events.data(), events.size());
    noted.note(events.data(), 0);
    noted.note(&period, 1);
    EXPECT_TRUE(noted.areAllNoted());
    EXPECT_THAT(listed(noted), ElementsAre(Pair(3, 4), Pair(65535, 0), Pair(0, 65535)));
}

TEST(NotedPixels, AreNotAllNotedIfThereAreTooManyEvents) {
    const std::vector<Event2D> events(kMostEvents + 1, positiveEvent(1, 2));
    NotedPixels in_two_batches(kMostEvents);
    in_two_batches.note(events.data(), kMostEvents);
    EXPECT_TRUE(in_two_batches.areAllNoted());
    in_two_batches.note(events.data(), 1);
    EXPECT_FALSE(in_two_batches.areAllNoted());
    NotedPixels at_once(kMostEvents);
    at_once.note(events.data(), kMostEvents + 1);
    EXPECT_FALSE(at_once.areAllNoted());
    // A smaller batch does not bring the missing pixels back.
    at_once.note(events.data(), 1);
    EXPECT_FALSE(at_once.areAllNoted());
}

TEST(NotedPixels, AreNotAllNotedAfterGivingUp) {
    NotedPixels noted(kMostEvents);
    const Event2D event = positiveEvent(1, 2);
    noted.note(&event, 1);
    noted.giveUp();
    noted.note(&event, 1);
    EXPECT_FALSE(noted.areAllNoted());
}

TEST(NotedPixels, AreForgottenAfterAReset) {
    NotedPixels noted(kMostEvents);
    const std::vector<Event2D> events(kMostEvents, positiveEvent(1, 2));
    noted.note(events.data(), events.size());
    noted.giveUp();
    noted.reset();
    EXPECT_TRUE(noted.areAllNoted());
    EXPECT_THAT(listed(noted), IsEmpty());
    const Event2D event = positiveEvent(5, 6);
    noted.note(&event, 1);
    EXPECT_THAT(listed(noted), ElementsAre(Pair(5, 6)));
}

}  // namespace
}  // namespace kelvora::test
