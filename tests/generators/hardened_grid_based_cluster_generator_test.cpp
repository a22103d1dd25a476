// SPDX-License-Identifier: MIT
// The grid generator in a hardened build.
#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "support/boxes.hpp"
#include "support/event_builders.hpp"
#include "support/grid_settings.hpp"

namespace kelvora::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::ThrowsMessage;

const std::string kOffTheSensor = "GridBasedClusterGenerator: event off the sensor";

const std::vector<Event2D> kEventsOffTheSensor = {positiveEvent(10, 0), positiveEvent(0, 8),
                                                  positiveEvent(65535, 7), positiveEvent(9, 65535)};

template <class Event>
class HardenedGridGenerators : public ::testing::Test {};
using EventTypes =
    ::testing::Types<Event2D, Event2DFrequency, Event2DPeriod<int>, Event2DPeriod<double>>;
TYPED_TEST_SUITE(HardenedGridGenerators, EventTypes);

TYPED_TEST(HardenedGridGenerators, RefuseEventsOffTheSensor) {
    auto generator = GridSettings().sensor(10, 8).build();
    for (const Event2D& off : kEventsOffTheSensor) {
        const auto event = makeEvent<TypeParam>(off.x, off.y, 1);
        EXPECT_THAT([&] { generator.processEvent(&event); },
                    ThrowsMessage<std::invalid_argument>(kOffTheSensor));
        EXPECT_THAT([&] { generator.processEvents(&event, 1); },
                    ThrowsMessage<std::invalid_argument>(kOffTheSensor));
    }
    EXPECT_THAT(generate(generator), IsEmpty());
}

TYPED_TEST(HardenedGridGenerators, TakeEventsAtTheEdgesOfTheSensor) {
    auto generator = GridSettings().sensor(10, 8).cells(1, 1).build();
    for (const auto& [x, y] :
         {std::pair(0, 0), std::pair(9, 0), std::pair(0, 7), std::pair(9, 7)}) {
        const auto event = makeEvent<TypeParam>(x, y, 1);
        EXPECT_NO_THROW(generator.processEvent(&event));
        EXPECT_NO_THROW(generator.processEvents(&event, 1));
    }
    EXPECT_EQ(generate(generator).size(), 4U);
}

TEST(HardenedGridGenerator, RefusesNullEvents) {
    auto generator = GridSettings().build();
    const Event2D* const no_event = nullptr;
    EXPECT_THAT(
        [&] { generator.processEvent(no_event); },
        ThrowsMessage<std::invalid_argument>("GridBasedClusterGenerator: null event pointer"));
    EXPECT_NO_THROW(generator.processEvents(no_event, 1));
}

TEST(HardenedGridGenerator, CountsTheEventsOfABatchUpToTheOneItRefuses) {
    for (const bool count_pixel_once : {false, true}) {
        for (const EventFilterType filter : {POLARITY_FREE, POLARITY_SEPARATE}) {
            auto settings = GridSettings().sensor(40, 40).cells(4, 4).filter(filter);
            settings.count_pixel_once = count_pixel_once;
            auto generator = settings.build();
            const std::vector<Event2D> events = {positiveEvent(0, 0), negativeEvent(1, 0),
                                                 positiveEvent(40, 0), positiveEvent(20, 20),
                                                 negativeEvent(21, 20)};
            EXPECT_THAT([&] { generator.processEvents(events.data(), events.size()); },
                        ThrowsMessage<std::invalid_argument>(kOffTheSensor));
            EXPECT_THAT(boxesOf(generate(generator)), ElementsAre(Box{0, 0, 8, 8}));
        }
    }
}

}  // namespace
}  // namespace kelvora::test
