// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <algorithm>
#include <opencv2/core/mat.hpp>

#include "kelvora/grid_based_cluster_generator.hpp"
#include "support/boxes.hpp"
#include "support/event_builders.hpp"
#include "support/grid_settings.hpp"

// No test here ignores a polarity, because the first filter would apply to all tests.

namespace kelvora::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

cv::Mat activeMap(GridBasedClusterGenerator& generator) {
    cv::Mat map;
    generator.getActiveMap(map);
    return map;
}

int countAt(const cv::Mat& map, int x, int y) {
    return map.at<unsigned char>(y, x);
}

// When a cell becomes active.

TEST(CountingOfTheGridGenerator, NeedsAsManyEventsInACellAsTheThreshold) {
    auto generator = GridSettings().threshold(3).build();
    feed(generator, positiveEvent(0, 0), 2);
    feed(generator, positiveEvent(4, 0), 2);
    EXPECT_THAT(generate(generator), IsEmpty());
    feed(generator, positiveEvent(0, 0), 2);
    feed(generator, positiveEvent(3, 3));
    EXPECT_THAT(boxesOf(generate(generator)), ElementsAre(Box{0, 0, 8, 8}));
}

TEST(CountingOfTheGridGenerator, MarksOnlyCellsWithEventsIfTheThresholdIsZero) {
    auto generator = GridSettings().threshold(0).build();
    feed(generator, positiveEvent(0, 0));
    feed(generator, positiveEvent(20, 20));
    EXPECT_THAT(boxesOf(generate(generator)), ElementsAre(Box{0, 0, 8, 8}, Box{20, 20, 8, 8}));
}

TEST(CountingOfTheGridGenerator, CountsBothPolaritiesTogetherByDefault) {
    auto generator = GridSettings().threshold(4).build();
    feed(generator, positiveEvent(0, 0), 2);
    feed(generator, negativeEvent(0, 0), 2);
    EXPECT_THAT(generate(generator), SizeIs(1));
}

TEST(CountingOfTheGridGenerator, NeedsEnoughEventsOfEachPolarityIfTheyAreSeparate) {
    auto generator = GridSettings().filter(POLARITY_SEPARATE).threshold(3).build();
    feed(generator, positiveEvent(0, 0), 3);
    feed(generator, negativeEvent(0, 0), 2);
    feed(generator, negativeEvent(20, 20), 3);
    feed(generator, positiveEvent(30, 30), 100);
    EXPECT_THAT(generate(generator), IsEmpty());

    feed(generator, positiveEvent(0, 0), 3);
    feed(generator, negativeEvent(0, 0), 3);
    EXPECT_THAT(boxesOf(generate(generator)), ElementsAre(Box{0, 0, 8, 8}));
}

TEST(CountingOfTheGridGenerator, KeepsThePolaritiesOfNeighbouringCellsApart) {
    auto generator = GridSettings().filter(POLARITY_SEPARATE).build();
    feed(generator, positiveEvent(0, 0));
    feed(generator, negativeEvent(4, 0));
    feed(generator, positiveEvent(0, 4));
    EXPECT_THAT(generate(generator), IsEmpty());
}

TEST(CountingOfTheGridGenerator, NeedsOneEventOfAnyPolarityIfTheThresholdIsZero) {
    auto generator = GridSettings().filter(POLARITY_SEPARATE).threshold(0).build();
    feed(generator, positiveEvent(0, 0));
    feed(generator, negativeEvent(20, 20));
    EXPECT_THAT(boxesOf(generate(generator)), ElementsAre(Box{0, 0, 8, 8}, Box{20, 20, 8, 8}));
}

TEST(CountingOfTheGridGenerator, CountsAnyPolarityExceptZeroAsPositive) {
    auto generator = GridSettings().filter(POLARITY_SEPARATE).threshold(2).build();
    feed(generator, eventOfPolarity(0, 0, 7));
    feed(generator, eventOfPolarity(0, 0, 255));
    EXPECT_THAT(generate(generator), IsEmpty());
    feed(generator, eventOfPolarity(0, 0, 7));
    feed(generator, eventOfPolarity(0, 0, 255));
    feed(generator, negativeEvent(0, 0), 2);
    EXPECT_THAT(generate(generator), SizeIs(1));
}

TEST(CountingOfTheGridGenerator, IgnoresThePolarityTwoThatStandsForNoFilter) {
    for (const EventFilterType filter : {POLARITY_FREE, POLARITY_SEPARATE}) {
        auto generator = GridSettings().filter(filter).threshold(0).build();
        feed(generator, eventOfPolarity(0, 0, 2));
        EXPECT_EQ(countAt(activeMap(generator), 0, 0), 0);
        EXPECT_THAT(generate(generator), IsEmpty());
    }
}

TEST(CountingOfTheGridGenerator, CountsAPixelOnceIfAskedTo) {
    auto generator = GridSettings().countPixelOnce().threshold(2).build();
    feed(generator, positiveEvent(0, 0), 100);
    EXPECT_EQ(countAt(activeMap(generator), 0, 0), 1);
    EXPECT_THAT(generate(generator), IsEmpty());

    feed(generator, positiveEvent(0, 0), 100);
    feed(generator, positiveEvent(1, 0), 100);
    EXPECT_THAT(generate(generator), SizeIs(1));
}

TEST(CountingOfTheGridGenerator, CountsAPixelOnceForBothPolarities) {
    auto generator = GridSettings().filter(POLARITY_SEPARATE).countPixelOnce().build();
    feed(generator, positiveEvent(0, 0));
    feed(generator, negativeEvent(0, 0));
    EXPECT_THAT(generate(generator), IsEmpty());
    feed(generator, positiveEvent(0, 0));
    feed(generator, negativeEvent(1, 0));
    EXPECT_THAT(generate(generator), SizeIs(1));
}

TEST(CountingOfTheGridGenerator, StopsCountingAPixelAt255ButNotItsCell) {
    for (const int threshold : {300, 301}) {
        auto generator = GridSettings().threshold(static_cast<unsigned short>(threshold)).build();
        feed(generator, positiveEvent(0, 0), 300);
        EXPECT_EQ(countAt(activeMap(generator), 0, 0), 255);
        EXPECT_THAT(generate(generator), SizeIs(threshold == 300 ? 1 : 0));
    }
}

TEST(CountingOfTheGridGenerator, ReachesTheLargestThreshold) {
    auto generator = GridSettings().threshold(65'535).build();
    feed(generator, positiveEvent(0, 0), 65'534);
    EXPECT_THAT(generate(generator), IsEmpty());
    feed(generator, positiveEvent(0, 0), 65'535);
    EXPECT_THAT(generate(generator), SizeIs(1));
}

TEST(CountingOfTheGridGenerator, StartsACellFromZeroAgainAfter65536Events) {
    auto generator = GridSettings().filter(POLARITY_SEPARATE).threshold(3).build();
    feed(generator, positiveEvent(0, 0), 65'536 + 2);
    feed(generator, negativeEvent(0, 0), 3);
    EXPECT_THAT(generate(generator), IsEmpty());

    feed(generator, positiveEvent(0, 0), 65'536 + 3);
    feed(generator, negativeEvent(0, 0), 3);
    EXPECT_THAT(generate(generator), SizeIs(1));
}

TEST(CountingOfTheGridGenerator, DoesNotCarryACounterOverIntoTheNext) {
    auto generator = GridSettings().filter(POLARITY_SEPARATE).build();
    feed(generator, negativeEvent(0, 0), 65'536);
    feed(generator, negativeEvent(0, 0));
    feed(generator, positiveEvent(0, 4), 65'536);
    EXPECT_THAT(generate(generator), IsEmpty());
}

TEST(CountingOfTheGridGenerator, LeavesACellMarkedWhoseCounterStartsFromZero) {
    auto generator = GridSettings().threshold(3).build();
    feed(generator, positiveEvent(0, 0), 65'536);
    EXPECT_THAT(generate(generator), SizeIs(1));
}

// reset

TEST(CountingOfTheGridGenerator, ForgetsCountedEventsOnReset) {
    auto generator = GridSettings().threshold(3).build();
    feed(generator, positiveEvent(0, 0), 2);
    generator.reset();
    feed(generator, positiveEvent(0, 0), 2);
    EXPECT_THAT(generate(generator), IsEmpty());
}

TEST(CountingOfTheGridGenerator, CountsPixelsAgainAfterAReset) {
    auto generator = GridSettings().filter(POLARITY_SEPARATE).countPixelOnce().build();
    feed(generator, positiveEvent(0, 0));
    generator.reset();
    feed(generator, negativeEvent(0, 0));
    EXPECT_EQ(countAt(activeMap(generator), 0, 0), 1);
    EXPECT_THAT(generate(generator), IsEmpty());
}

TEST(CountingOfTheGridGenerator, StillReportsCellsThatWereActiveBeforeAReset) {
    auto generator = GridSettings().threshold(3).build();
    feed(generator, positiveEvent(0, 0), 3);
    generator.reset();
    generator.reset();
    feed(generator, positiveEvent(20, 20), 2);
    EXPECT_THAT(boxesOf(generate(generator)), ElementsAre(Box{0, 0, 8, 8}));
    EXPECT_THAT(generate(generator), IsEmpty());
}

TEST(CountingOfTheGridGenerator, JoinsCellsFromBeforeAndAfterAReset) {
    auto generator = GridSettings().build();
    feed(generator, positiveEvent(0, 0));
    generator.reset();
    feed(generator, positiveEvent(4, 4));
    EXPECT_THAT(boxesOf(generate(generator)), ElementsAre(Box{0, 0, 12, 12}));
}

// getActiveMap

TEST(CountingOfTheGridGenerator, ShowsOneBytePerPixelOfTheSensor) {
    auto generator = GridSettings().sensor(13, 7).build();
    const cv::Mat map = activeMap(generator);
    EXPECT_EQ(map.cols, 13);
    EXPECT_EQ(map.rows, 7);
    EXPECT_EQ(map.type(), CV_8UC1);
    EXPECT_EQ(map.step[0], 13U);
    EXPECT_TRUE(map.isContinuous());
}

TEST(CountingOfTheGridGenerator, ShowsTheCountOfEachPixelAndNotOfItsCell) {
    auto generator = GridSettings().sensor(13, 7).build();
    feed(generator, positiveEvent(12, 5), 3);
    feed(generator, negativeEvent(11, 5), 2);
    const cv::Mat map = activeMap(generator);
    EXPECT_EQ(countAt(map, 12, 5), 3);
    EXPECT_EQ(countAt(map, 11, 5), 2);
    EXPECT_EQ(std::count(map.datastart, map.dataend, 0), 13 * 7 - 2);
}

TEST(CountingOfTheGridGenerator, ShowsALiveViewOfItsCounters) {
    auto generator = GridSettings().build();
    const cv::Mat map = activeMap(generator);
    EXPECT_EQ(map.u, nullptr) << "a matrix that owns data is no view";
    EXPECT_EQ(activeMap(generator).data, map.data);
    feed(generator, positiveEvent(1, 2));
    EXPECT_EQ(countAt(map, 1, 2), 1);
    generator.reset();
    EXPECT_EQ(countAt(map, 1, 2), 0);
    feed(generator, positiveEvent(1, 2), 2);
    EXPECT_EQ(countAt(map, 1, 2), 2);
    generate(generator);
    EXPECT_EQ(countAt(map, 1, 2), 0);
}

TEST(CountingOfTheGridGenerator, ClearsCountsThatTheCallerWritesToTheView) {
    auto generator = GridSettings().countPixelOnce().build();
    const Event2D event = positiveEvent(1, 2);
    generator.processEvents(&event, 1);
    cv::Mat map = activeMap(generator);
    for (int window = 0; window < 3; ++window) {
        map.setTo(7);
        generate(generator);
        EXPECT_EQ(std::count(map.datastart, map.dataend, 0), 40 * 40);
        map.setTo(7);
        generator.reset();
        EXPECT_EQ(std::count(map.datastart, map.dataend, 0), 40 * 40);
        generator.processEvents(&event, 1);
    }
    EXPECT_EQ(generate(generator).size(), 1U);
}

TEST(CountingOfTheGridGenerator, ReplacesTheMatrixThatItIsGiven) {
    auto generator = GridSettings().sensor(13, 7).build();
    const cv::Mat other = cv::Mat::ones(2, 2, CV_32F);
    cv::Mat map = other;
    generator.getActiveMap(map);
    EXPECT_EQ(map.cols, 13);
    EXPECT_EQ(other.at<float>(0, 0), 1.0F);
}

// Event types

template <class Event>
class GridGeneratorFedWith : public ::testing::Test {};

using EventTypes =
    ::testing::Types<Event2D, Event2DFrequency, Event2DPeriod<int>, Event2DPeriod<unsigned int>,
                     Event2DPeriod<float>, Event2DPeriod<double>, Event2DPeriod<long long>,
                     Event2DPeriod<unsigned long long>>;
TYPED_TEST_SUITE(GridGeneratorFedWith, EventTypes);

TYPED_TEST(GridGeneratorFedWith, AnyEventTypeCountsAlike) {
    auto generator = GridSettings().sensor(30, 20).threshold(2).build();
    feed(generator, makeEvent<TypeParam>(29, 3, 0));
    feed(generator, makeEvent<TypeParam>(28, 0, 1));
    feed(generator, makeEvent<TypeParam>(5, 10, 1));
    EXPECT_EQ(countAt(activeMap(generator), 5, 10), 1);
    EXPECT_THAT(boxesOf(generate(generator)), ElementsAre(Box{28, 0, 2, 8}));
}

TYPED_TEST(GridGeneratorFedWith, AnyEventTypeHasItsPolaritiesSeparated) {
    auto generator = GridSettings().filter(POLARITY_SEPARATE).build();
    feed(generator, makeEvent<TypeParam>(0, 0, 1), 2);
    feed(generator, makeEvent<TypeParam>(20, 0, 0), 2);
    EXPECT_THAT(generate(generator), IsEmpty());
    feed(generator, makeEvent<TypeParam>(0, 0, 1));
    feed(generator, makeEvent<TypeParam>(0, 0, 0));
    EXPECT_THAT(generate(generator), SizeIs(1));
}

TEST(CountingOfTheGridGenerator, CountsEventsOfDifferentTypesTogether) {
    auto generator = GridSettings().threshold(3).build();
    feed(generator, makeEvent<Event2D>(0, 0, 1));
    feed(generator, makeEvent<Event2DFrequency>(0, 0, 1));
    feed(generator, makeEvent<Event2DPeriod<double>>(0, 0, 1));
    EXPECT_THAT(generate(generator), SizeIs(1));
}

}  // namespace
}  // namespace kelvora::test
