// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <opencv2/core/mat.hpp>
#include <vector>

#include "kelvora/grid_based_cluster_generator.hpp"
#include "support/boxes.hpp"
#include "support/event_builders.hpp"
#include "support/feeding.hpp"
#include "support/grid_settings.hpp"

// Batches with filters that ignore a polarity are tested with the remembered filter and in the
// random cases.

namespace kelvora::test {
namespace {

using ::testing::IsEmpty;

template <class Event>
class BatchesOfTheGridGenerator : public ::testing::Test {};
using EventTypes =
    ::testing::Types<Event2D, Event2DFrequency, Event2DPeriod<int>, Event2DPeriod<unsigned int>,
                     Event2DPeriod<float>, Event2DPeriod<double>, Event2DPeriod<long long>,
                     Event2DPeriod<unsigned long long>>;
TYPED_TEST_SUITE(BatchesOfTheGridGenerator, EventTypes);

template <class Event>
std::vector<Event> randomEventsOf(Random& random, const GridSettings& settings) {
    std::vector<Event> events;
    for (const Event2D& event :
         randomEvents(random, settings.sensor_width, settings.sensor_height, 2000)) {
        events.push_back(makeEvent<Event>(event.x, event.y, event.polarity));
    }
    return events;
}

std::vector<unsigned char> pixelCounts(GridBasedClusterGenerator& generator) {
    cv::Mat map;
    generator.getActiveMap(map);
    return {map.datastart, map.dataend};
}

template <class Event>
void expectBatchesToBeLikeSingleEvents(const GridSettings& settings, Random& random) {
    auto one_by_one = settings.build();
    auto in_batches = settings.build();
    for (int call = 0; call < 3; ++call) {
        const auto events = randomEventsOf<Event>(random, settings);
        feedOneByOne(one_by_one, events);
        feedInBatches(in_batches, events, random);
        ASSERT_EQ(pixelCounts(in_batches), pixelCounts(one_by_one)) << settings;
        ASSERT_EQ(boxesOf(generate(in_batches)), boxesOf(generate(one_by_one))) << settings;
    }
}

TYPED_TEST(BatchesOfTheGridGenerator, AreLikeOneEventAfterTheOther) {
    Random random(7);
    for (const EventFilterType filter : {POLARITY_FREE, POLARITY_SEPARATE}) {
        for (const std::uint16_t threshold : std::array<std::uint16_t, 4>{0, 1, 6, 30}) {
            auto settings = GridSettings().sensor(90, 70).filter(filter).threshold(threshold);
            expectBatchesToBeLikeSingleEvents<TypeParam>(settings, random);
            expectBatchesToBeLikeSingleEvents<TypeParam>(settings.countPixelOnce(), random);
        }
    }
}

TYPED_TEST(BatchesOfTheGridGenerator, WithoutEventsDoNothing) {
    auto generator = GridSettings().build();
    const auto event = makeEvent<TypeParam>(3, 3, 1);
    generator.processEvents(&event, 0);
    generator.processEvents(static_cast<const TypeParam*>(nullptr), 0);
    generator.processEvents(static_cast<const TypeParam*>(nullptr), 3);
    EXPECT_THAT(generate(generator), IsEmpty());
}

// After few events, the generator clears only the counts of their pixels, unless `getActiveMap` was
// called before.
TEST(BatchOfTheGridGenerator, LeavesNoCountsBehindAfterFewOrManyEvents) {
    Random random(11);
    for (const EventFilterType filter : {POLARITY_FREE, POLARITY_SEPARATE}) {
        const auto settings = GridSettings().sensor(90, 70).filter(filter).threshold(2);
        auto in_batches = settings.build();
        for (const std::size_t count : {10U, 5000U, 0U, 24U, 25U, 1000U, 3U, 24U, 1U, 100U, 1U}) {
            const auto events = randomEvents(random, 90, 70, count);
            auto one_by_one = settings.build();
            auto viewed = settings.build();
            feedOneByOne(one_by_one, events);
            for (auto* const generator : {&in_batches, &viewed}) {
                generator->processEvents(events.data(), count / 3);
                generator->processEvents(events.data() + count / 3, count - count / 3);
            }
            const auto boxes = boxesOf(generate(one_by_one));
            ASSERT_EQ(boxesOf(generate(in_batches)), boxes) << count;
            ASSERT_EQ(boxesOf(generate(viewed)), boxes) << count;
            ASSERT_EQ(pixelCounts(viewed), std::vector<unsigned char>(90 * 70)) << count;
        }
    }
}

TEST(BatchOfTheGridGenerator, MayContainIgnoredEventsOffTheSensor) {
    auto generator = GridSettings().sensor(40, 40).build();
    const std::vector<Event2D> events = {eventOfPolarity(65535, 0, 2), positiveEvent(1, 1),
                                         eventOfPolarity(0, 40, 2), eventOfPolarity(40, 39, 2)};
    generator.processEvents(events.data(), events.size());
    EXPECT_EQ(boxesOf(generate(generator)), (std::vector<Box>{{0, 0, 8, 8}}));
    EXPECT_EQ(pixelCounts(generator), std::vector<unsigned char>(40 * 40));
}

TEST(BatchOfTheGridGenerator, MayComeBetweenSingleEvents) {
    Random random(13);
    for (const bool count_pixel_once : {false, true}) {
        auto settings = GridSettings().sensor(90, 70).threshold(3);
        settings.count_pixel_once = count_pixel_once;
        auto mixed = settings.build();
        for (int window = 0; window < 40; ++window) {
            const auto events = randomEvents(random, 90, 70, 300);
            auto one_by_one = settings.build();
            feedOneByOne(one_by_one, events);
            for (std::size_t done = 0; done < events.size();) {
                const auto most = static_cast<int>(std::min<std::size_t>(events.size() - done, 12));
                const auto count = static_cast<std::size_t>(randomInt(random, 1, most));
                mixed.processEvents(events.data() + done, count - 1);
                mixed.processEvent(&events[done + count - 1]);
                done += count;
            }
            ASSERT_EQ(boxesOf(generate(mixed)), boxesOf(generate(one_by_one))) << window;
        }
        ASSERT_EQ(pixelCounts(mixed), std::vector<unsigned char>(90 * 70));
    }
}

TEST(BatchOfTheGridGenerator, MayBeMixedWithSingleEvents) {
    auto settings = GridSettings().threshold(2);
    auto generator = settings.build();
    const std::vector<Event2D> batch = {positiveEvent(1, 1)};
    generator.processEvents(batch.data(), 1);
    feed(generator, positiveEvent(30, 30));
    generator.processEvents(batch.data(), 1);
    EXPECT_EQ(boxesOf(generate(generator)), (std::vector<Box>{{0, 0, 8, 8}}));
    feed(generator, positiveEvent(30, 30));
    EXPECT_THAT(generate(generator), IsEmpty());
}

TEST(BatchOfTheGridGenerator, WrapsTheCountersOfCellsAndSaturatesTheCountersOfPixels) {
    auto generator = GridSettings().threshold(3).build();
    const std::vector<Event2D> events(65535, positiveEvent(5, 6));
    generator.processEvents(events.data(), events.size());
    EXPECT_EQ(generate(generator).size(), 1U);
    // Active cells stay active after the counter wraps.
    generator.processEvents(events.data(), events.size());
    generator.processEvents(events.data(), 2);
    EXPECT_EQ(pixelCounts(generator)[6 * 40 + 5], 255);
    EXPECT_EQ(generate(generator).size(), 1U);
}

}  // namespace
}  // namespace kelvora::test
