// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "kelvora/grid_based_cluster_generator.hpp"
#include "support/boxes.hpp"
#include "support/event_builders.hpp"
#include "support/grid_settings.hpp"

// The first grid generator in a process that receives an event of some type sets the filter for
// this type. Every test here therefore uses separate event types, which are not used anywhere else
// in this program.

namespace kelvora::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto kUnknownFilter = static_cast<EventFilterType>(0x80000001);

/// The boxes after one event of each polarity: a negative one on the left, a positive one in the
/// middle, and one with another byte on the right.
template <class Event>
std::vector<Box> boxesByPolarity(EventFilterType filter) {
    auto generator = GridSettings().filter(filter).build();
    feed(generator, makeEvent<Event>(0, 0, 0));
    feed(generator, makeEvent<Event>(16, 0, 1));
    feed(generator, makeEvent<Event>(32, 0, 7));
    return boxesOf(generate(generator));
}

/// The same for events in one batch.
template <class Event>
std::vector<Box> boxesOfBatchByPolarity(EventFilterType filter) {
    auto generator = GridSettings().filter(filter).build();
    const std::vector<Event> events = {makeEvent<Event>(0, 0, 0), makeEvent<Event>(16, 0, 1),
                                       makeEvent<Event>(32, 0, 7)};
    generator.processEvents(events.data(), events.size());
    return boxesOf(generate(generator));
}

/// The exception thrown for a batch of one event.
template <class Event>
std::string messageForBatchOf(GridBasedClusterGenerator& generator, const Event& event) {
    try {
        generator.processEvents(&event, 1);
    } catch (const std::out_of_range& error) {
        return error.what();
    }
    return "nothing was thrown";
}

constexpr Box kNegative = {0, 0, 8, 8};
constexpr Box kPositive = {16, 0, 8, 8};
constexpr Box kOther = {32, 0, 8, 8};

TEST(RememberedFilter, IgnoresDefaultEventsIfItIsNegativeFree) {
    auto generator = GridSettings().filter(NEGATIVE_FREE).build();
    feed(generator, Event2D());
    EXPECT_THAT(generate(generator), IsEmpty());
    feed(generator, positiveEvent(0, 0));
    EXPECT_THAT(boxesOf(generate(generator)), ElementsAre(kNegative));
}

TEST(RememberedFilter, IgnoresTrueAndAcceptsDefaultEventsIfItIsPositiveFree) {
    auto generator = GridSettings().filter(POSITIVE_FREE).build();
    feed(generator, Event2DFrequency(0, 0, true, 0, 0));
    EXPECT_THAT(generate(generator), IsEmpty());
    feed(generator, Event2DFrequency());
    EXPECT_THAT(boxesOf(generate(generator)), ElementsAre(kNegative));
}

TEST(RememberedFilter, IgnoresOnlyPolarityOneIfItIsPositiveFree) {
    // The first event of this type comes in a batch.
    EXPECT_THAT(boxesOfBatchByPolarity<Event2DPeriod<int>>(POSITIVE_FREE),
                ElementsAre(kNegative, kOther));
    EXPECT_THAT(boxesByPolarity<Event2DPeriod<int>>(POSITIVE_FREE), ElementsAre(kNegative, kOther));
    EXPECT_THAT(boxesOfBatchByPolarity<Event2DPeriod<int>>(NEGATIVE_FREE),
                ElementsAre(kNegative, kOther));
}

TEST(RememberedFilter, IgnoresOnlyPolarityZeroIfItIsNegativeFree) {
    EXPECT_THAT(boxesByPolarity<Event2DPeriod<unsigned int>>(NEGATIVE_FREE),
                ElementsAre(kPositive, kOther));
}

TEST(RememberedFilter, LeavesNoTraceOfIgnoredEvents) {
    auto generator = GridSettings().filter(NEGATIVE_FREE).countPixelOnce().threshold(0).build();
    using Event = Event2DPeriod<float>;
    feed(generator, makeEvent<Event>(5, 6, 0), 3);
    cv::Mat map;
    generator.getActiveMap(map);
    EXPECT_EQ(map.at<unsigned char>(6, 5), 0);
    EXPECT_THAT(generate(generator), IsEmpty());
    feed(generator, makeEvent<Event>(5, 6, 1));
    EXPECT_EQ(map.at<unsigned char>(6, 5), 1);
    EXPECT_THAT(boxesOf(generate(generator)), ElementsAre(Box{4, 4, 8, 8}));

    // Later generators use it for this event type, regardless of their own filter.
    EXPECT_THAT(boxesByPolarity<Event>(POLARITY_FREE), ElementsAre(kPositive, kOther));
    EXPECT_THAT(boxesByPolarity<Event>(POSITIVE_FREE), ElementsAre(kPositive, kOther));
    EXPECT_THAT(boxesByPolarity<Event>(POLARITY_SEPARATE), IsEmpty());
}

TEST(RememberedFilter, IsRememberedForEachEventTypeSeparately) {
    using First = Event2DPeriod<long long>;
    using Second = Event2DPeriod<unsigned long long>;
    auto generator = GridSettings().filter(POSITIVE_FREE).build();
    feed(generator, makeEvent<First>(0, 0, 1));
    EXPECT_THAT(boxesByPolarity<Second>(NEGATIVE_FREE), ElementsAre(kPositive, kOther));
    EXPECT_THAT(boxesByPolarity<First>(NEGATIVE_FREE), ElementsAre(kNegative, kOther));

    // A single generator also handles each event by its type.
    feed(generator, makeEvent<First>(0, 0, 1));
    feed(generator, makeEvent<Second>(16, 0, 1));
    EXPECT_THAT(boxesOf(generate(generator)), ElementsAre(kPositive));
}

TEST(RememberedFilter, IsNotRememberedWhileItIsUnknown) {
    using Event = Event2DPeriod<double>;
    auto generator = GridSettings().filter(kUnknownFilter).threshold(2).build();
    const auto event = makeEvent<Event>(0, 0, 1);
    for (int attempt = 0; attempt < 3; ++attempt) {
        try {
            generator.processEvent(&event);
            FAIL() << "attempt " << attempt << " did not throw";
        } catch (const std::out_of_range& error) {
            EXPECT_EQ(error.what(), std::string("invalid unordered_map<K, T> key"));
        }
    }
    EXPECT_EQ(messageForBatchOf(generator, event), "invalid unordered_map<K, T> key");
    EXPECT_NO_THROW(generator.processEvents(&event, 0));
    EXPECT_THAT(generate(generator), IsEmpty());

    // A batch without events does not set the filter.
    auto negative_free = GridSettings().filter(NEGATIVE_FREE).build();
    negative_free.processEvents(&event, 0);
    negative_free.processEvents(static_cast<const Event*>(nullptr), 5);

    auto known = GridSettings().filter(POLARITY_FREE).build();
    known.processEvent(&event);

    // Now there is a value to use, and an unknown filter counts both polarities together.
    EXPECT_NO_THROW(feed(generator, event));
    EXPECT_NO_THROW(feed(generator, makeEvent<Event>(0, 0, 0)));
    EXPECT_THAT(boxesOf(generate(generator)), ElementsAre(Box{0, 0, 8, 8}));
}

}  // namespace
}  // namespace kelvora::test
