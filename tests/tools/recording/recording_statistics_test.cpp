// SPDX-License-Identifier: MIT
#include "recording/recording_statistics.hpp"

#include <gtest/gtest.h>

#include "recording_support.hpp"

namespace kelvora::recording {
namespace {

RecordingStatistics statisticsOf(const std::vector<Event2D>& events) {
    RecordingStatistics statistics(SensorSize{640, 480});
    statistics.add(events);
    return statistics;
}

std::vector<Event2D> burst(std::uint64_t time, std::size_t count) {
    std::vector<Event2D> events(count, eventAt(time, 1, 1, 1));
    return events;
}

TEST(RecordingStatistics, AreZeroWithoutEvents) {
    const RecordingStatistics statistics = statisticsOf({});
    EXPECT_EQ(statistics.events(), 0U);
    EXPECT_EQ(statistics.firstTime(), 0U);
    EXPECT_EQ(statistics.lastTime(), 0U);
    EXPECT_EQ(statistics.duration(), 0U);
    EXPECT_EQ(statistics.meanRate(), 0.0);
    EXPECT_EQ(statistics.peakRate(), 0.0);
    EXPECT_EQ(statistics.onShare(), 0.0);
}

TEST(RecordingStatistics, TellTimesAndMeanRate) {
    const RecordingStatistics statistics = statisticsOf(
        {eventAt(500'000, 1, 1, 1), eventAt(700'000, 1, 1, 1), eventAt(2'500'000, 1, 1, 1)});
    EXPECT_EQ(statistics.events(), 3U);
    EXPECT_EQ(statistics.firstTime(), 500'000U);
    EXPECT_EQ(statistics.lastTime(), 2'500'000U);
    EXPECT_EQ(statistics.duration(), 2'000'000U);
    EXPECT_DOUBLE_EQ(statistics.meanRate(), 1.5);
}

TEST(RecordingStatistics, TellTheRateOfTheBusiestTenMillisecondsAlsoAcrossChunks) {
    RecordingStatistics statistics(std::nullopt);
    statistics.add(burst(5'000, 3));
    statistics.add(burst(15'000, 4));
    statistics.add(burst(19'999, 2));
    statistics.add(burst(20'000, 5));
    statistics.add(burst(1'000'000, 1));
    EXPECT_DOUBLE_EQ(statistics.peakRate(), 600.0);
}

TEST(RecordingStatistics, CountPolaritiesAndLargestCoordinates) {
    const RecordingStatistics statistics = statisticsOf(
        {eventAt(0, 700, 2, 1), eventAt(1, 3, 400, 0), eventAt(2, 5, 5, 0), eventAt(3, 5, 5, 0)});
    EXPECT_DOUBLE_EQ(statistics.onShare(), 0.25);
    EXPECT_EQ(statistics.largestX(), 700);
    EXPECT_EQ(statistics.largestY(), 400);
}

TEST(RecordingStatistics, CountEventsThatGoBackInTime) {
    RecordingStatistics statistics(std::nullopt);
    statistics.add({eventAt(5, 1, 1, 1), eventAt(4, 1, 1, 1), eventAt(4, 1, 1, 1)});
    statistics.add({eventAt(3, 1, 1, 1), eventAt(9, 1, 1, 1)});
    EXPECT_EQ(statistics.outOfOrder(), 2U);
    EXPECT_EQ(statistics.firstTime(), 3U);
    EXPECT_EQ(statistics.lastTime(), 9U);
}

TEST(RecordingStatistics, CountEventsOffTheSensorIfItsSizeIsKnown) {
    EXPECT_EQ(statisticsOf({eventAt(0, 640, 1, 1), eventAt(0, 1, 480, 1), eventAt(0, 639, 479, 1)})
                  .offSensor(),
              2U);
    EXPECT_FALSE(RecordingStatistics(std::nullopt).offSensor());
}

TEST(RecordingStatistics, NeverHaveAPeakBelowTheMean) {
    // 1 ms long: the 10 ms interval with all its events would give a tenth of the mean rate.
    std::vector<Event2D> events = burst(2'000, 50);
    events.push_back(eventAt(3'000, 1, 1, 1));
    EXPECT_DOUBLE_EQ(statisticsOf(events).peakRate(), 51'000.0);
}

TEST(RecordingStatistics, CountLittleStepsBackForTheSameInterval) {
    RecordingStatistics statistics(std::nullopt);
    statistics.add({eventAt(0, 1, 1, 1), eventAt(10'001, 1, 1, 1), eventAt(9'999, 1, 1, 1),
                    eventAt(10'002, 1, 1, 1), eventAt(1'000'000, 1, 1, 1)});
    EXPECT_DOUBLE_EQ(statistics.peakRate(), 300.0);
}

TEST(RecordingStatistics, GoOnAfterADamagedTimeFarAhead) {
    RecordingStatistics statistics(std::nullopt);
    statistics.add(burst(99'000'000'000, 1));
    for (std::uint64_t time = 0; time < 1'000'000; time += 1000) {
        statistics.add(burst(time, 1));
    }
    EXPECT_DOUBLE_EQ(statistics.peakRate(), 1000.0);
}

}  // namespace
}  // namespace kelvora::recording
