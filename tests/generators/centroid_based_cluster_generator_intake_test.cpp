// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <vector>

#include "kelvora/centroid_based_cluster_generator.hpp"
#include "support/boxes.hpp"
#include "support/centroid_settings.hpp"

namespace kelvora::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

template <class Kind>
class IntakeOfTheCentroidGenerator : public ::testing::Test {};
TYPED_TEST_SUITE(IntakeOfTheCentroidGenerator, PointKinds, PointKindNames);

TYPED_TEST(IntakeOfTheCentroidGenerator, IgnoresNull) {
    auto generator = CentroidSettings().build<TypeParam>();
    generator.processEvent(static_cast<const Event2D*>(nullptr));
    generator.processEvent(static_cast<const Event2DFrequency*>(nullptr));
    generator.processEvent(static_cast<const Event2DPeriod<typename TypeParam::T>*>(nullptr));
    EXPECT_THAT(generateFrom(generator), IsEmpty());
}

TYPED_TEST(IntakeOfTheCentroidGenerator, TreatsEventsOfEachTypeAlike) {
    using T = typename TypeParam::T;
    for (const EventFilterType filter : {POLARITY_FREE, POSITIVE_FREE, NEGATIVE_FREE}) {
        auto generator = CentroidSettings().filter(filter).build<TypeParam>();
        for (const int polarity : {0, 1}) {
            const auto byte = static_cast<unsigned char>(polarity);
            const unsigned long long t = 1000 + byte;
            const Event2D plain(5, 6, byte, t);
            const Event2DFrequency flickering(6, 6, polarity != 0, t, 50.0F);
            const Event2DPeriod<T> periodic{5, 8, byte, t + 1, 20};
            generator.processEvent(&plain);
            generator.processEvent(&flickering);
            generator.processEvent(&periodic);
        }
        const auto clusters = generateFrom(generator);
        ASSERT_THAT(boxesOf(clusters), ElementsAre(Box{5, 6, 1, 2}));
        EXPECT_EQ(clusters[0].duration, TypeParam::kDim == 2 ? 0 : filter == POLARITY_FREE ? 2 : 1);
        EXPECT_THAT(sizesOf(generator), ElementsAre(filter == POLARITY_FREE ? 6 : 3));
    }
}

TYPED_TEST(IntakeOfTheCentroidGenerator, DropsThePolarityOfItsFilter) {
    const std::vector<Pixel> pixels = {{1, 1, 1000, 0}, {2, 1, 1000, 1}, {3, 1, 1000, 2},
                                       {4, 1, 1000, 7}, {5, 1, 1000, 0}, {6, 1, 1000, 255}};
    const auto taken = [&](EventFilterType filter) {
        auto generator = CentroidSettings().filter(filter).build<TypeParam>();
        return columnsAfter<TypeParam>(generator, pixels);
    };
    EXPECT_THAT(taken(POLARITY_FREE), ElementsAre(1, 2, 4, 5, 6));  // 2: a polarity of no event
    EXPECT_THAT(taken(POSITIVE_FREE), ElementsAre(1, 3, 4, 5, 6));
    EXPECT_THAT(taken(NEGATIVE_FREE), ElementsAre(2, 3, 4, 6));
}

TYPED_TEST(IntakeOfTheCentroidGenerator, DoesNotCountDroppedEvents) {
    auto generator = CentroidSettings().filter(POSITIVE_FREE).timeLength(1000).build<TypeParam>();
    // If the positive event were counted, the other two would be too old.
    EXPECT_THAT(
        columnsAfter<TypeParam>(generator, {{1, 1, 1000, 0}, {9, 1, 1000, 0}, {20, 1, 9000, 1}}),
        ElementsAre(1, 9));
}

TYPED_TEST(IntakeOfTheCentroidGenerator, ForgetsThePointsOfAnEarlierCall) {
    auto generator = CentroidSettings().clusters(2).build<TypeParam>();
    EXPECT_THAT(clusterPixels(generator, squareAt(7, 3)), SizeIs(2));
    EXPECT_THAT(clusterPixels(generator, {{20, 5}}), IsEmpty());
    EXPECT_THAT(generateFrom(generator), IsEmpty());
    EXPECT_THAT(columnsAfter<TypeParam>(generator, {{1, 1}, {1, 5}, {1, 9}}), ElementsAre(1, 1, 1));
}

TYPED_TEST(IntakeOfTheCentroidGenerator, KeepsTheNewestPointsOfMoreThanItsCapacity) {
    auto generator = CentroidSettings().capacity(3).build<TypeParam>();
    std::vector<Pixel> pixels;
    for (int i = 0; i < 10; ++i) {
        pixels.push_back({i, 0});
    }
    EXPECT_THAT(columnsAfter<TypeParam>(generator, pixels), ElementsAre(7, 8, 9));
    EXPECT_TRUE(generator.setMaxCapacity(4));
    EXPECT_THAT(columnsAfter<TypeParam>(generator, pixels), ElementsAre(6, 7, 8, 9));
    EXPECT_TRUE(generator.setMaxCapacity(1));
    EXPECT_THAT(columnsAfter<TypeParam>(generator, pixels), ElementsAre(9));
}

TYPED_TEST(IntakeOfTheCentroidGenerator, KeepsNoPointWithoutCapacityUntilItHasSomeAgain) {
    auto generator = CentroidSettings().build<TypeParam>();
    feedPixels(generator, squareAt(1, 1));
    EXPECT_TRUE(generator.setMaxCapacity(0));
    EXPECT_THAT(generateFrom(generator), IsEmpty());
    EXPECT_THAT(columnsOf<TypeParam>(generator), IsEmpty());
    feedPixels(generator, {{5, 5}, {6, 5}});
    EXPECT_TRUE(generator.setMaxCapacity(1));
    EXPECT_THAT(generateFrom(generator), SizeIs(1));
    EXPECT_THAT(columnsOf<TypeParam>(generator), ElementsAre(6));
}

TYPED_TEST(IntakeOfTheCentroidGenerator,
           KeepsAsManyOfTheNewestPointsAsItsWindowCountsWhateverIsSet) {
    auto generator = CentroidSettings().timeLength(1000).build<TypeParam>();
    const auto columns = [&](unsigned long long start) {
        return columnsAfter<TypeParam>(generator, {{1, 0, start},
                                                   {2, 0, start},
                                                   {3, 0, start + 5000},
                                                   {4, 0, start + 5000},
                                                   {5, 0, start + 5500}});
    };
    EXPECT_THAT(columns(10'000), ElementsAre(3, 4, 5));
    EXPECT_TRUE(generator.setMaxTimeLength(1'000'000));
    EXPECT_THAT(columns(20'000), ElementsAre(3, 4, 5));
    EXPECT_TRUE(generator.setMaxTimeLength(100));
    EXPECT_THAT(columns(30'000), ElementsAre(3, 4, 5));
    EXPECT_FALSE(generator.setMaxTimeLength(50));
    EXPECT_THAT(columns(40'000), ElementsAre(3, 4, 5));
}

TYPED_TEST(IntakeOfTheCentroidGenerator, KeepsOnlyAnEventThatIsOlderThanTheOneBefore) {
    auto generator = CentroidSettings().build<TypeParam>();
    EXPECT_THAT(columnsAfter<TypeParam>(generator, {{1, 0, 10}, {2, 0, 10}, {3, 0, 9}}),
                ElementsAre(3));
}

TYPED_TEST(IntakeOfTheCentroidGenerator, TakesAsManyPointsAsThereAreEventsSinceAReset) {
    auto generator = CentroidSettings().build<TypeParam>();
    feedPixels(generator, {{1, 0}, {2, 0}, {3, 0}});
    generator.reset();
    EXPECT_THAT(generateFrom(generator), IsEmpty());
    feedPixels(generator, {{4, 0}, {5, 0}, {6, 0}});
    generator.reset();
    feedPixels(generator, {{7, 0}});
    generator.reset();
    // The counter has two events since the last reset, so the newest two are used.
    EXPECT_THAT(columnsAfter<TypeParam>(generator, {{8, 0}, {9, 0}}), ElementsAre(8, 9));
    // The counter was not reset since then: it allows more events than there are.
    EXPECT_THAT(columnsAfter<TypeParam>(generator, {{10, 0}}), ElementsAre(10));
    feedPixels(generator, {{11, 0}, {12, 0}});
    EXPECT_THAT(columnsAfter<TypeParam>(generator, {{13, 0}}), ElementsAre(11, 12, 13));
}

TYPED_TEST(IntakeOfTheCentroidGenerator, ReportsTheLastResultsAlsoAfterAReset) {
    auto generator = CentroidSettings().clusters(1).build<TypeParam>();
    clusterPixels(generator, {{10, 4}, {20, 8}});
    feedPixels(generator, {{90, 70}});
    generator.reset();
    EXPECT_THAT(columnsOf<TypeParam>(generator), ElementsAre(10, 20));
    EXPECT_THAT(sizesOf(generator), ElementsAre(2));
    const auto centroids = centroidsOf<TypeParam>(generator);
    ASSERT_THAT(centroids, SizeIs(1));
    EXPECT_EQ(centroids[0].coordinates, at<TypeParam>(15, 6, 1000).coordinates);
}

}  // namespace
}  // namespace kelvora::test
