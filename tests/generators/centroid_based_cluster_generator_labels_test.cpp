// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "support/centroid_settings.hpp"
#include "support/feeding.hpp"
#include "support/labels.hpp"
#include "support/pixels.hpp"

namespace kelvora::test {
namespace {

using Labels = std::vector<int>;

template <class Kind>
class LabelsOfTheCentroidGenerator : public ::testing::Test {};
TYPED_TEST_SUITE(LabelsOfTheCentroidGenerator, PointKinds, PointKindNames);

TYPED_TEST(LabelsOfTheCentroidGenerator, AreNoneBeforeTheFirstClusters) {
    auto generator = CentroidSettings().build<TypeParam>();
    feedPixels(generator, {{1, 1}, {2, 1}});
    EXPECT_EQ(labelsOf(generator), Labels());
}

TYPED_TEST(LabelsOfTheCentroidGenerator, AreTheIndicesOfClustersInOrderOfArrival) {
    auto generator = CentroidSettings().clusters(2).build<TypeParam>();
    const auto clusters = clusterPixels(generator, {{9, 9}, {50, 40}, {10, 10}, {51, 41}});
    ASSERT_EQ(clusters.size(), 2U);
    const int first = clusters[0].x < 30 ? 0 : 1;
    EXPECT_EQ(labelsOf(generator), (Labels{first, 1 - first, first, 1 - first}));
}

TYPED_TEST(LabelsOfTheCentroidGenerator, AreFromTheLastCallOnly) {
    auto generator = CentroidSettings().build<TypeParam>();
    clusterPixels(generator, {{9, 9}, {10, 9}, {11, 9}});
    feedPixels(generator, {{30, 3}, {50, 40}});
    EXPECT_EQ(labelsOf(generator), (Labels{0, 0, 0}));
    generateFrom(generator);
    EXPECT_EQ(labelsOf(generator), (Labels{0, 0}));
}

TYPED_TEST(LabelsOfTheCentroidGenerator, AreMinusOneBeyondTheCapacity) {
    auto generator = CentroidSettings().capacity(3).build<TypeParam>();
    const std::vector<Pixel> equal(5, {9, 9});
    clusterPixels(generator, equal);
    EXPECT_EQ(labelsOf(generator), (Labels{-1, -1, 0, 0, 0}));
    generator.setMaxCapacity(0);
    clusterPixels(generator, equal);
    EXPECT_EQ(labelsOf(generator), (Labels{-1, -1, -1, -1, -1}));
}

TYPED_TEST(LabelsOfTheCentroidGenerator, LeaveOutIgnoredEvents) {
    auto generator = CentroidSettings().filter(NEGATIVE_FREE).build<TypeParam>();
    clusterPixels(generator, {{9, 9, 1000, 0}, {9, 9, 1000, 1}, {9, 9, 1000, 0}, {9, 9, 1000, 1}});
    EXPECT_EQ(labelsOf(generator), (Labels{0, 0}));
}

TYPED_TEST(LabelsOfTheCentroidGenerator, AreMinusOneForEventsOutsideTheTimeWindow) {
    auto generator = CentroidSettings().timeLength(1000).build<TypeParam>();
    clusterPixels(generator, {{9, 9, 5000}, {9, 9, 5000}, {9, 9, 6000}});
    EXPECT_EQ(labelsOf(generator), (Labels{-1, -1, 0}));
}

TYPED_TEST(LabelsOfTheCentroidGenerator, AreMinusOneForFewerPointsThanClusters) {
    auto generator = CentroidSettings().clusters(3).build<TypeParam>();
    clusterPixels(generator, {{9, 9}, {10, 9}, {11, 9}});
    clusterPixels(generator, {{9, 9}, {10, 9}});
    EXPECT_EQ(labelsOf(generator), (Labels{-1, -1}));
}

TYPED_TEST(LabelsOfTheCentroidGenerator, AreKeptByAReset) {
    auto generator = CentroidSettings().build<TypeParam>();
    clusterPixels(generator, {{9, 9}, {10, 9}});
    generator.reset();
    EXPECT_EQ(labelsOf(generator), (Labels{0, 0}));
}

TYPED_TEST(LabelsOfTheCentroidGenerator, OfEventsBeforeAResetAreMinusOne) {
    auto generator = CentroidSettings().build<TypeParam>();
    feedPixels(generator, {{9, 9}, {10, 9}});
    generator.reset();
    clusterPixels(generator, {{30, 9}});
    EXPECT_EQ(labelsOf(generator), (Labels{-1, -1, 0}));
}

TYPED_TEST(LabelsOfTheCentroidGenerator, AreTheClustersOfThePointsForRandomEvents) {
    Random random(13);
    for (const EventFilterType filter : {POLARITY_FREE, POSITIVE_FREE, NEGATIVE_FREE}) {
        for (const unsigned long long capacity : {1ULL, 300ULL, ~0ULL}) {
            auto generator = CentroidSettings()
                                 .sensor(100, 100)
                                 .filter(filter)
                                 .capacity(capacity)
                                 .clusters(capacity < 7 ? 1 : 7)
                                 .build<TypeParam>();
            for (const std::size_t count : {0U, 255U, 2000U, 900U}) {
                const auto events = eventsAtDifferentPlaces(random, count, 100);
                feedInBatches(generator, events, random);
                const bool has_clusters = !generateFrom(generator).empty();
                EXPECT_EQ(has_clusters, count > 0);
                ASSERT_EQ(labelsOf(generator),
                          labelsByPosition<TypeParam>(generator, takenEvents(events, filter)));
            }
        }
    }
}

}  // namespace
}  // namespace kelvora::test
