// SPDX-License-Identifier: MIT
#include "recording/event_cleaner.hpp"

#include <gmock/gmock.h>

#include "recording_support.hpp"

namespace kelvora::recording {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<Event2D> eventsAt(const std::vector<std::uint64_t>& times) {
    std::vector<Event2D> events;
    events.reserve(times.size());
    for (const std::uint64_t time : times) {
        events.push_back(eventAt(time, 1, 1, 1));
    }
    return events;
}

std::vector<Event2D> cleaned(EventCleaner& cleaner, std::vector<Event2D> events) {
    cleaner.clean(events);
    return events;
}

class EventCleanerTest : public ::testing::Test {
protected:
    EventCleaner cleaner{SensorSize{640, 480}};
};

TEST_F(EventCleanerTest, LeavesSoundEventsAlone) {
    const std::vector<Event2D> events = {eventAt(1615211683123456, 0, 0, 0),
                                         eventAt(1615211683123456, 639, 479, 1),
                                         eventAt(1715211683123456, 5, 5, 1)};
    EXPECT_EQ(cleaned(cleaner, events), events);
    EXPECT_EQ(cleaner.droppedOffSensor(), 0U);
    EXPECT_EQ(cleaner.clampedTimes(), 0U);
}

TEST_F(EventCleanerTest, DropsAndCountsEventsOffTheSensor) {
    EXPECT_THAT(cleaned(cleaner, {eventAt(1, 640, 0, 0), eventAt(2, 639, 479, 1),
                                  eventAt(3, 0, 480, 0), eventAt(4, 1, 1, 0)}),
                ElementsAre(eventAt(2, 639, 479, 1), eventAt(4, 1, 1, 0)));
    EXPECT_THAT(cleaned(cleaner, {eventAt(5, 65535, 65535, 0)}), IsEmpty());
    EXPECT_EQ(cleaner.droppedOffSensor(), 3U);
}

TEST_F(EventCleanerTest, RaisesAndCountsTimesThatGoBackAlsoFromChunkToChunk) {
    EXPECT_EQ(cleaned(cleaner, eventsAt({10, 12, 11, 5, 12, 13})),
              eventsAt({10, 12, 12, 12, 12, 13}));
    EXPECT_EQ(cleaned(cleaner, eventsAt({3, 14})), eventsAt({13, 14}));
    EXPECT_EQ(cleaner.clampedTimes(), 3U);
}

TEST_F(EventCleanerTest, IgnoresTheTimesOfDroppedEvents) {
    EXPECT_EQ(cleaned(cleaner, {eventAt(900, 640, 0, 0), eventAt(2, 1, 1, 1)}), eventsAt({2}));
    EXPECT_EQ(cleaner.clampedTimes(), 0U);
}

// A damaged time must not raise the times of all later events.
TEST_F(EventCleanerTest, LowersASingleTimeThatIsFarAheadOfItsNeighbours) {
    EXPECT_EQ(cleaned(cleaner, eventsAt({10, 12, 99'000'000'000, 14, 15})),
              eventsAt({10, 12, 12, 14, 15}));
    EXPECT_EQ(cleaner.clampedTimes(), 1U);
}

TEST_F(EventCleanerTest, LowersADamagedFirstTimeToTheNextTime) {
    EXPECT_EQ(cleaned(cleaner, eventsAt({99'000'000'000, 14, 15})), eventsAt({14, 14, 15}));
}

TEST_F(EventCleanerTest, AcceptsAPauseThatTheNextEventConfirms) {
    const auto events = eventsAt({10, 99'000'000'000, 98'999'999'000, 99'000'000'001});
    EXPECT_EQ(cleaned(cleaner, events),
              eventsAt({10, 99'000'000'000, 99'000'000'000, 99'000'000'001}));
}

TEST_F(EventCleanerTest, DoesNotTrustASingleTimeFarBehind) {
    EXPECT_EQ(cleaned(cleaner, eventsAt({50'000'000, 50'000'001, 7, 50'000'002})),
              eventsAt({50'000'000, 50'000'001, 50'000'001, 50'000'002}));
    EXPECT_EQ(cleaner.clampedTimes(), 1U);
}

TEST_F(EventCleanerTest, AcceptsEmptyChunks) {
    EXPECT_THAT(cleaned(cleaner, {}), IsEmpty());
}

}  // namespace
}  // namespace kelvora::recording
