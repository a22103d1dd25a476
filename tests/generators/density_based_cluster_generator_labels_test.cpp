// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <thread>
#include <vector>

#include "support/density_settings.hpp"
#include "support/feeding.hpp"
#include "support/labels.hpp"
#include "support/pixels.hpp"

namespace kelvora::test {
namespace {

using Labels = std::vector<int>;
using Flat = PointKind<2, float>;

template <class Kind>
class LabelsOfTheDensityGenerator : public ::testing::Test {};
TYPED_TEST_SUITE(LabelsOfTheDensityGenerator, PointKinds, PointKindNames);

TYPED_TEST(LabelsOfTheDensityGenerator, AreNoneBeforeTheFirstClusters) {
    auto generator = DensitySettings().build<TypeParam>();
    EXPECT_EQ(labelsOf(generator), Labels());
    feedPixels(generator, {{1, 1}, {2, 1}});
    EXPECT_EQ(labelsOf(generator), Labels());
}

TYPED_TEST(LabelsOfTheDensityGenerator, AreTheIndicesOfClustersInOrderOfArrival) {
    auto generator = DensitySettings().build<TypeParam>();
    const auto clusters = clusterPixels(generator, {{9, 9}, {50, 40}, {30, 3}, {10, 9}, {50, 41}});
    ASSERT_EQ(clusters.size(), 2U);
    EXPECT_EQ(labelsOf(generator), (Labels{0, 1, -1, 0, 1}));
}

TYPED_TEST(LabelsOfTheDensityGenerator, AreFromTheLastCallOnly) {
    auto generator = DensitySettings().build<TypeParam>();
    clusterPixels(generator, {{9, 9}, {10, 9}, {11, 9}});
    feedPixels(generator, {{30, 3}, {50, 40}, {50, 41}});
    EXPECT_EQ(labelsOf(generator), (Labels{0, 0, 0}));
    generateFrom(generator);
    EXPECT_EQ(labelsOf(generator), (Labels{-1, 0, 0}));
    generateFrom(generator);
    EXPECT_EQ(labelsOf(generator), Labels());
}

TYPED_TEST(LabelsOfTheDensityGenerator, AreOneForEachOfSeveralEqualEvents) {
    auto generator = DensitySettings().capacity(3).build<TypeParam>();
    clusterPixels(generator, {{9, 9}, {9, 9}, {9, 9}, {40, 40}, {9, 9}});
    EXPECT_EQ(labelsOf(generator), (Labels{-1, -1, 0, -1, 0}));
}

TYPED_TEST(LabelsOfTheDensityGenerator, LeaveOutIgnoredEvents) {
    auto generator = DensitySettings().filter(POSITIVE_FREE).build<TypeParam>();
    clusterPixels(generator, {{9, 9, 1000, 1},
                              {9, 9, 1000, 0},
                              {9, 9, 1000, 1},
                              {9, 9, 1000, 1},
                              {9, 9, 1000, 0},
                              {9, 9, 1000, 1}});
    EXPECT_EQ(labelsOf(generator), (Labels{0, 0}));
}

TYPED_TEST(LabelsOfTheDensityGenerator, LeaveOutPolarityTwoWithoutAFilter) {
    auto generator = DensitySettings().build<TypeParam>();
    clusterPixels(generator, {{9, 9, 1000, 1}, {9, 9, 1000, 2}, {9, 9, 1000, 0}});
    EXPECT_EQ(labelsOf(generator), (Labels{0, 0}));
}

TYPED_TEST(LabelsOfTheDensityGenerator, LeaveOutNullEvents) {
    auto generator = DensitySettings().build<TypeParam>();
    feedPixels(generator, {{9, 9}});
    generator.processEvent(static_cast<const Event2D*>(nullptr));
    generator.processEvents(static_cast<const Event2D*>(nullptr), 5);
    clusterPixels(generator, {{10, 9}});
    EXPECT_EQ(labelsOf(generator), (Labels{0, 0}));
}

TYPED_TEST(LabelsOfTheDensityGenerator, AreMinusOneForEventsOutsideTheTimeWindow) {
    auto generator = DensitySettings().timeLength(1000).build<TypeParam>();
    // Two events 1000 us before the others.
    clusterPixels(generator, {{9, 9, 5000}, {9, 9, 5000}, {9, 9, 6000}, {9, 9, 6000}});
    EXPECT_EQ(labelsOf(generator), (Labels{-1, -1, 0, 0}));
}

TYPED_TEST(LabelsOfTheDensityGenerator, AreMinusOneAfterAReset) {
    auto generator = DensitySettings().filter(NEGATIVE_FREE).build<TypeParam>();
    clusterPixels(generator, {{9, 9}, {9, 9, 1000, 0}, {10, 9}});
    ASSERT_EQ(labelsOf(generator), (Labels{0, 0}));
    generator.reset();
    EXPECT_EQ(labelsOf(generator), (Labels{-1, -1}));
}

TYPED_TEST(LabelsOfTheDensityGenerator, OfEventsBeforeAResetAreReportedByTheNextCall) {
    auto generator = DensitySettings().build<TypeParam>();
    feedPixels(generator, {{9, 9}, {10, 9}});
    generator.reset();
    clusterPixels(generator, {{30, 9}});
    EXPECT_EQ(labelsOf(generator), (Labels{0, 0, -1}));
}

TYPED_TEST(LabelsOfTheDensityGenerator, AreMinusOneAfterClusteringFailed) {
    auto generator = DensitySettings().jobs(256).build<TypeParam>();
    feedPixels(generator, {{9, 9}, {9, 9, 1000, 2}, {10, 9}});
    EXPECT_THROW(generateFrom(generator), std::runtime_error);
    EXPECT_EQ(labelsOf(generator), (Labels{-1, -1}));
}

TYPED_TEST(LabelsOfTheDensityGenerator, AreTheClustersOfThePointsForRandomEvents) {
    Random random(11);
    std::size_t labelled = 0;
    for (const EventFilterType filter : {POLARITY_FREE, POSITIVE_FREE, NEGATIVE_FREE}) {
        for (const unsigned long long capacity : {1ULL, 300ULL, 1500ULL, ~0ULL}) {
            for (const int jobs : {1, 3}) {
                auto generator = DensitySettings()
                                     .sensor(100, 100)
                                     .filter(filter)
                                     .capacity(capacity)
                                     .density(1.5, 3)
                                     .jobs(jobs)
                                     .scales(1, 1, 1e-6F)
                                     .build<TypeParam>();
                for (const std::size_t count : {0U, 1U, 255U, 2000U, 900U}) {
                    const auto events = eventsAtDifferentPlaces(random, count, 100);
                    feedInBatches(generator, events, random);
                    generateFrom(generator);
                    const Labels expected =
                        labelsByPosition<TypeParam>(generator, takenEvents(events, filter));
                    ASSERT_EQ(labelsOf(generator), expected);
                    labelled += expected.size() - static_cast<std::size_t>(std::count(
                                                      expected.begin(), expected.end(), -1));
                }
            }
        }
    }
    EXPECT_GT(labelled, 5000U);
}

TYPED_TEST(LabelsOfTheDensityGenerator, AreTheSameForSingleEventsAndBatches) {
    Random random(12);
    for (const EventFilterType filter : {POLARITY_FREE, POSITIVE_FREE, NEGATIVE_FREE}) {
        const auto settings = DensitySettings().filter(filter).capacity(500);
        auto one_by_one = settings.build<TypeParam>();
        auto in_batches = settings.build<TypeParam>();
        for (const std::size_t count : {1U, 257U, 3000U}) {
            const auto events = randomEvents(random, 100, 80, count);
            feedOneByOne(one_by_one, events);
            feedInBatches(in_batches, events, random);
            generateFrom(one_by_one);
            generateFrom(in_batches);
            ASSERT_EQ(labelsOf(in_batches).size(), takenEvents(events, filter).size());
            ASSERT_EQ(labelsOf(in_batches), labelsOf(one_by_one));
        }
    }
}

TEST(LabelsOfTheDensityGeneratorOnSeveralThreads, AreReadWhileClustersAreGenerated) {
    auto generator = DensitySettings().filter(POSITIVE_FREE).build<Flat>();
    const std::vector<Pixel> pixels = {{9, 9, 1000, 0}, {9, 9, 1000, 1}, {9, 9, 1000, 0}};
    clusterPixels(generator, pixels);
    std::thread reader([&] {
        for (int i = 0; i < 500; ++i) {
            EXPECT_EQ(labelsOf(generator), (Labels{0, 0}));
        }
    });
    for (int i = 0; i < 500; ++i) {
        clusterPixels(generator, pixels);
    }
    reader.join();
}

}  // namespace
}  // namespace kelvora::test
