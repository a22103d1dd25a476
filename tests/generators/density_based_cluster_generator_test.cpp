// SPDX-License-Identifier: MIT
#include "kelvora/density_based_cluster_generator.hpp"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/boxes.hpp"
#include "support/density_models.hpp"
#include "support/density_settings.hpp"

namespace kelvora::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

template <class Kind>
class DensityGenerator : public ::testing::Test {};
TYPED_TEST_SUITE(DensityGenerator, PointKinds, PointKindNames);

TYPED_TEST(DensityGenerator, FindsNothingWithoutEventsAndEmptiesTheResult) {
    auto generator = DensitySettings().build<TypeParam>();
    std::vector<ClusterGeometry> clusters(3);
    generator.generateClusters(5, clusters);
    EXPECT_THAT(clusters, IsEmpty());
}

TYPED_TEST(DensityGenerator, ReportsTheBoxAndTheGivenTimeOfEachCluster) {
    auto generator = DensitySettings().build<TypeParam>();
    feedPixels(generator, squareAt(40, 30));
    feedPixels(generator, squareAt(7, 3));
    feedPixels(generator, {{9, 3}, {60, 60}});
    std::vector<ClusterGeometry> clusters(3);
    generator.generateClusters(77, clusters);
    EXPECT_THAT(boxesOf(clusters), ElementsAre(Box{40, 30, 1, 1}, Box{7, 3, 2, 1}));
    for (const ClusterGeometry& cluster : clusters) {
        EXPECT_EQ(cluster.timestamp, 77U);
        EXPECT_EQ(cluster.z, 0U);
        EXPECT_EQ(cluster.depth, 0U);
        EXPECT_EQ(cluster.start_time, TypeParam::kDim == 2 ? -1 : 1000);
        EXPECT_EQ(cluster.duration, 0);
    }
}

TYPED_TEST(DensityGenerator, IgnoresNull) {
    auto generator = DensitySettings().density(1, 1).build<TypeParam>();
    generator.processEvent(static_cast<const Event2D*>(nullptr));
    generator.processEvent(static_cast<const Event2DFrequency*>(nullptr));
    generator.processEvent(static_cast<const Event2DPeriod<typename TypeParam::T>*>(nullptr));
    EXPECT_THAT(generateFrom(generator), IsEmpty());
}

TYPED_TEST(DensityGenerator, TreatsEventsOfEachTypeAlike) {
    auto generator = DensitySettings().density(1.5, 3).build<TypeParam>();
    const Event2D plain(5, 6, 1, 1000);
    const Event2DFrequency flickering(6, 6, true, 1000, 50.0F);
    const Event2DPeriod<typename TypeParam::T> periodic{5, 7, 1, 1001, 20};
    generator.processEvent(&plain);
    generator.processEvent(&flickering);
    generator.processEvent(&periodic);
    const auto clusters = generateFrom(generator);
    // In three dimensions, the last one is at a distance of the square root of 2 from the first.
    ASSERT_THAT(boxesOf(clusters), ElementsAre(Box{5, 6, 1, 1}));
    EXPECT_EQ(clusters[0].duration, TypeParam::kDim == 2 ? 0 : 1);
}

TYPED_TEST(DensityGenerator, DropsThePolarityOfItsFilter) {
    const std::vector<Pixel> pixels = {{1, 1, 1000, 0},  {10, 1, 1000, 1}, {20, 1, 1000, 0},
                                       {30, 1, 1000, 1}, {40, 1, 1000, 2}, {50, 1, 1000, 255}};
    const auto count = [&](EventFilterType filter) {
        auto generator = DensitySettings().density(1, 1).filter(filter).build<TypeParam>();
        return clusterPixels(generator, pixels).size();
    };
    EXPECT_EQ(count(POLARITY_FREE), 5U);  // 2: a polarity of no event
    EXPECT_EQ(count(POSITIVE_FREE), 4U);
    EXPECT_EQ(count(NEGATIVE_FREE), 4U);
}

TYPED_TEST(DensityGenerator, DoesNotCountDroppedEvents) {
    auto generator =
        DensitySettings().density(1, 1).filter(POSITIVE_FREE).timeLength(1000).build<TypeParam>();
    // If the positive event were counted, the other two would be too old.
    const auto clusters =
        clusterPixels(generator, {{1, 1, 1000, 0}, {9, 1, 1000, 0}, {20, 1, 90'000, 1}});
    EXPECT_THAT(clusters, SizeIs(2));
}

TYPED_TEST(DensityGenerator, ForgetsThePointsOfAnEarlierCall) {
    auto generator = DensitySettings().density(1.5, 4).build<TypeParam>();
    EXPECT_THAT(clusterPixels(generator, squareAt(7, 3)), SizeIs(1));
    EXPECT_THAT(clusterPixels(generator, {{7, 3}, {8, 3}, {7, 4}}), IsEmpty());
    EXPECT_THAT(generateFrom(generator), IsEmpty());
    EXPECT_THAT(clusterPixels(generator, squareAt(9, 9)), SizeIs(1));
}

TYPED_TEST(DensityGenerator, KeepsTheNewestPointsOfMoreThanItsCapacity) {
    auto generator = DensitySettings().density(1.5, 1).capacity(3).build<TypeParam>();
    for (int i = 0; i < 10; ++i) {
        feedPixels(generator, {{5 * i, 0}});
    }
    generateFrom(generator);
    std::vector<std::vector<typename TypeParam::Point>> points;
    generator.getClusterPoints(points, true);
    ASSERT_THAT(points, SizeIs(3));
    for (std::size_t i = 0; i < 3; ++i) {
        ASSERT_THAT(points[i], SizeIs(1));
        EXPECT_EQ(points[i][0].coordinates,
                  at<TypeParam>(35.0 + 5.0 * static_cast<double>(i), 0, 1000).coordinates);
    }
}

TYPED_TEST(DensityGenerator, FollowsItsCapacityWhenThatIsSet) {
    auto generator = DensitySettings().density(1.5, 1).capacity(3).build<TypeParam>();
    const std::vector<Pixel> pixels = {{0, 0}, {5, 0}, {10, 0}, {15, 0}, {20, 0}};
    EXPECT_FALSE(generator.setMaxCapacity(0));
    EXPECT_THAT(clusterPixels(generator, pixels), SizeIs(3));
    EXPECT_TRUE(generator.setMaxCapacity(4));
    EXPECT_THAT(clusterPixels(generator, pixels), SizeIs(4));
    EXPECT_TRUE(generator.setMaxCapacity(1));
    EXPECT_THAT(clusterPixels(generator, pixels), SizeIs(1));
}

TYPED_TEST(DensityGenerator, KeepsAsManyOfTheNewestPointsAsTheWindowOfTimeCounts) {
    auto generator = DensitySettings().density(1.5, 1).timeLength(1000).build<TypeParam>();
    const std::vector<Pixel> pixels = {
        {0, 0, 0}, {5, 0, 0}, {10, 0, 5000}, {15, 0, 5000}, {20, 0, 5500}};
    EXPECT_THAT(clusterPixels(generator, pixels), SizeIs(3));
}

TYPED_TEST(DensityGenerator, KeepsOnlyAnEventThatIsOlderThanTheOneBefore) {
    auto generator = DensitySettings().density(1.5, 1).build<TypeParam>();
    EXPECT_THAT(clusterPixels(generator, {{0, 0, 10}, {5, 0, 10}, {10, 0, 9}}), SizeIs(1));
}

TYPED_TEST(DensityGenerator, KeepsItsWindowWhenATimeLengthIsSet) {
    auto generator = DensitySettings().density(1.5, 1).timeLength(1000).build<TypeParam>();
    EXPECT_TRUE(generator.setMaxTimeLength(1'000'000));
    EXPECT_THAT(clusterPixels(generator, {{0, 0, 0}, {5, 0, 1000}}), SizeIs(1));
}

TYPED_TEST(DensityGenerator, ConvertsBoxesBackToPixels) {
    auto generator = DensitySettings().scales(2, 0.5F, 0.25F).density(2.5, 2).build<TypeParam>();
    feedPixels(generator, {{10, 20, 4000}, {11, 22, 4004}});
    const auto clusters = generateFrom(generator);
    ASSERT_THAT(boxesOf(clusters), ElementsAre(Box{10, 20, 1, 2}));
    EXPECT_EQ(clusters[0].start_time, TypeParam::kDim == 2 ? -1 : 4000);
    EXPECT_EQ(clusters[0].duration, TypeParam::kDim == 2 ? 0 : 4);
}

TYPED_TEST(DensityGenerator, ClipsBoxesToTheSensor) {
    auto generator = DensitySettings().sensor(10, 8).build<TypeParam>();
    EXPECT_THAT(boxesOf(clusterPixels(generator, {{8, 6}, {9, 7}, {10, 8}, {11, 9}})),
                ElementsAre(Box{8, 6, 2, 2}));
}

TYPED_TEST(DensityGenerator, ReportsClustersOffTheSensorOrWithoutAreaAsEmptyBoxes) {
    auto generator = DensitySettings().sensor(10, 8).build<TypeParam>();
    feedPixels(generator, squareAt(20, 20));
    feedPixels(generator, {{4, 4}, {5, 4}});
    const auto clusters = generateFrom(generator, 9);
    ASSERT_THAT(boxesOf(clusters), ElementsAre(Box{0, 0, 0, 0}, Box{0, 0, 0, 0}));
    EXPECT_EQ(clusters[0].timestamp, 9U);
}

TYPED_TEST(DensityGenerator, LeavesTheFirstPointOutOfTheLargestCoordinatesWithManyJobs) {
    auto generator = DensitySettings().density(2.5, 2).jobs(2).build<TypeParam>();
    EXPECT_THAT(boxesOf(clusterPixels(generator, {{12, 12}, {11, 11}, {10, 10}})),
                ElementsAre(Box{10, 10, 1, 1}));
}

TYPED_TEST(DensityGenerator, CountsCorePointsAsItsJobsDo) {
    auto one = DensitySettings().density(1.5, 4).jobs(1).build<TypeParam>();
    auto two = DensitySettings().density(1.5, 4).jobs(2).build<TypeParam>();
    EXPECT_THAT(clusterPixels(one, squareAt(1, 1)), SizeIs(1));
    EXPECT_THAT(clusterPixels(two, squareAt(1, 1)), IsEmpty());
}

TYPED_TEST(DensityGenerator, UsesTheLow8BitsOfTheNumberOfJobs) {
    // Whether the four points of a square make a cluster depends on whether there is one job or
    // more.
    for (const int jobs : {257, 513, -255}) {
        auto generator = DensitySettings().density(1.5, 4).jobs(jobs).build<TypeParam>();
        EXPECT_THAT(clusterPixels(generator, squareAt(1, 1)), SizeIs(1)) << jobs;
    }
    for (const int jobs : {300, -2, 258}) {
        auto generator = DensitySettings().density(1.5, 4).jobs(jobs).build<TypeParam>();
        EXPECT_THAT(clusterPixels(generator, squareAt(1, 1)), IsEmpty()) << jobs;
        feedPixels(generator, squareAt(1, 1));
        EXPECT_THAT(clusterPixels(generator, {{1, 1}}), SizeIs(1)) << jobs;
    }
}

TYPED_TEST(DensityGenerator, ThrowsIfTheNumberOfJobsBecomesZero) {
    for (const int jobs : {256, 512, -256}) {
        auto generator = DensitySettings().jobs(jobs).build<TypeParam>();
        std::vector<ClusterGeometry> clusters(2);
        for (int round = 0; round < 2; ++round) {  // the mutex is free again
            feedPixels(generator, squareAt(1, 1));
            try {
                generator.generateClusters(0, clusters);
                FAIL() << "nothing was thrown";
            } catch (const std::runtime_error& error) {
                EXPECT_EQ(error.what(), std::string("n_jobs must be greater than 0"));
            }
            EXPECT_THAT(clusters, SizeIs(2));
        }
    }
}

TYPED_TEST(DensityGenerator, FindsClustersWithAllHardwareThreads) {
    for (const int jobs : {0, -1}) {
        auto generator = DensitySettings().density(1.5, 2).jobs(jobs).build<TypeParam>();
        EXPECT_THAT(clusterPixels(generator, squareAt(1, 1)), SizeIs(1)) << jobs;
    }
}

TYPED_TEST(DensityGenerator, TreatsPointsOfScalesThatAreNotFiniteAsNoise) {
    for (const float bad : {std::numeric_limits<float>::infinity(), std::nanf("")}) {
        for (int axis = 0; axis < TypeParam::kDim; ++axis) {
            for (const int jobs : {1, 2}) {
                auto settings = DensitySettings().density(1.5, 1).jobs(jobs);
                settings.scales(axis == 0 ? bad : 1, axis == 1 ? bad : 1, axis == 2 ? bad : 1);
                auto generator = settings.build<TypeParam>();
                for (int i = 0; i < 12'000; ++i) {
                    feedPixels(generator, {{i % 100, i / 100}});
                }
                EXPECT_THAT(generateFrom(generator), IsEmpty());
            }
        }
    }
}

TYPED_TEST(DensityGenerator, WorksInSeveralThreadsEachWithItsOwn) {
    std::vector<std::size_t> found(4, 0);
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < found.size(); ++thread) {
        threads.emplace_back([&found, thread] {
            auto generator =
                DensitySettings().density(1.5, 2).jobs(static_cast<int>(thread)).build<TypeParam>();
            for (int round = 0; round < 50; ++round) {
                feedPixels(generator, squareAt(round, round));
                found[thread] += clusterPixels(generator, squareAt(round + 10, round)).size();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(found, ::testing::Each(100U));
}

TYPED_TEST(DensityGenerator, MayBeAskedForPointsAndResetFromAnotherThread) {
    auto generator = DensitySettings().density(1.5, 2).jobs(2).build<TypeParam>();
    std::thread other([&] {
        for (int round = 0; round < 300; ++round) {
            std::vector<std::vector<typename TypeParam::Point>> points;
            generator.getClusterPoints(points, true);
            for (const auto& cluster : points) {
                EXPECT_TRUE(cluster.empty() || cluster.size() == 4);
            }
            if (round % 10 == 0) {
                generator.reset();
            }
        }
    });
    for (int round = 0; round < 300; ++round) {
        EXPECT_THAT(clusterPixels(generator, squareAt(round % 50, 3)), SizeIs(1));
    }
    other.join();
}

TYPED_TEST(DensityGenerator, ClustersEventsAsTheModelClustersPoints) {
    for (std::uint64_t seed = 0; seed < 40; ++seed) {
        Random random(seed);
        const int jobs = seed % 2 == 0 ? 1 : 3;
        auto generator =
            DensitySettings().scales(1, 2, 0.5F).density(2.5, 3).jobs(jobs).build<TypeParam>();
        std::vector<Pixel> pixels(200);
        typename TypeParam::Points points;
        for (Pixel& pixel : pixels) {
            pixel = {randomInt(random, 0, 30), randomInt(random, 0, 15), 1000 + points.size() / 20};
            points.push_back(
                at<TypeParam>(pixel.x, 2 * pixel.y, 0.5 * static_cast<double>(pixel.timestamp)));
        }
        EXPECT_FALSE(clusterPixels(generator, pixels).empty());
        std::vector<std::vector<typename TypeParam::Point>> found;
        generator.getClusterPoints(found, false);
        const auto expected = jobs == 1 ? modelOfOneJob<TypeParam>(points, 2.5, 3)
                                        : modelOfManyJobs<TypeParam>(points, 2.5, 3);
        std::vector<std::size_t> sizes;
        std::vector<std::size_t> expected_sizes;
        for (const auto& cluster : found) {
            sizes.push_back(cluster.size());
        }
        for (const auto& cluster : expected.clusters) {
            expected_sizes.push_back(cluster.size());
        }
        EXPECT_THAT(sizes, ::testing::UnorderedElementsAreArray(expected_sizes));
    }
}

}  // namespace
}  // namespace kelvora::test
