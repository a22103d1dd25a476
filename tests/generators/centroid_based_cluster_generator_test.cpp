// SPDX-License-Identifier: MIT
#include "kelvora/centroid_based_cluster_generator.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
#include <vector>

#include "support/boxes.hpp"
#include "support/centroid_settings.hpp"
#include "support/kmeans_outcome.hpp"

namespace kelvora::test {
namespace {

using ::testing::AnyOf;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

const Box kNoBox = {0, 0, 0, 0};

template <class Kind>
class CentroidGenerator : public ::testing::Test {};
TYPED_TEST_SUITE(CentroidGenerator, PointKinds, PointKindNames);

TYPED_TEST(CentroidGenerator, FindsNothingWithoutEventsAndEmptiesTheResult) {
    auto generator = CentroidSettings().build<TypeParam>();
    std::vector<ClusterGeometry> clusters(3);
    generator.generateClusters(5, clusters);
    EXPECT_THAT(clusters, IsEmpty());
}

TYPED_TEST(CentroidGenerator, ReportsTheBoxAndTheGivenTimeOfEachCluster) {
    auto generator = CentroidSettings().clusters(2).build<TypeParam>();
    feedPixels(generator, {{70, 60}, {7, 3}, {9, 8, 1004}, {75, 61}, {72, 64, 1002}});
    std::vector<ClusterGeometry> clusters(3);
    generator.generateClusters(77, clusters);
    EXPECT_THAT(boxesOf(clusters), UnorderedElementsAre(Box{70, 60, 5, 4}, Box{7, 3, 2, 5}));
    for (const ClusterGeometry& cluster : clusters) {
        EXPECT_EQ(cluster.timestamp, 77U);
        EXPECT_EQ(cluster.z, 0U);
        EXPECT_EQ(cluster.depth, 0U);
        EXPECT_EQ(cluster.start_time, TypeParam::kDim == 2 ? -1 : 1000);
        EXPECT_EQ(cluster.duration, TypeParam::kDim == 2 ? 0 : cluster.x == 70 ? 2 : 4);
    }
}

TYPED_TEST(CentroidGenerator, FindsNothingInFewerPointsThanClustersButKeepsTheSizes) {
    auto generator = CentroidSettings().clusters(3).build<TypeParam>();
    EXPECT_THAT(sizesOf(generator), ElementsAre(0, 0, 0));
    clusterPixels(generator, {{1, 1}, {50, 50}, {90, 1}, {90, 1}});
    EXPECT_THAT(sizesOf(generator), UnorderedElementsAre(1, 1, 2));
    EXPECT_THAT(clusterPixels(generator, {{1, 1}, {50, 50}}), IsEmpty());
    EXPECT_THAT(pointsOf<TypeParam>(generator), IsEmpty());
    EXPECT_THAT(sizesOf(generator), UnorderedElementsAre(1, 1, 2));
    const auto centroids = centroidsOf<TypeParam>(generator);
    EXPECT_THAT(centroids, IsEmpty());
}

TYPED_TEST(CentroidGenerator, FindsTheNumberOfClustersThatWasSet) {
    auto generator = CentroidSettings().clusters(2).build<TypeParam>();
    const std::vector<Pixel> pixels = {{1, 1}, {30, 1}, {60, 1}, {90, 1}};
    EXPECT_THAT(clusterPixels(generator, pixels), SizeIs(2));
    EXPECT_FALSE(generator.setClusterNumber(0));
    EXPECT_THAT(clusterPixels(generator, pixels), SizeIs(2));
    EXPECT_TRUE(generator.setClusterNumber(4));
    EXPECT_THAT(sizesOf(generator), SizeIs(2));
    EXPECT_THAT(clusterPixels(generator, pixels), SizeIs(4));
    EXPECT_THAT(sizesOf(generator), ElementsAre(1, 1, 1, 1));
    EXPECT_TRUE(generator.setClusterNumber(1));
    EXPECT_THAT(clusterPixels(generator, pixels), SizeIs(1));
    EXPECT_THAT(sizesOf(generator), ElementsAre(4, 0, 0, 0));
    EXPECT_TRUE(generator.setClusterNumber(CentroidSettings::kUnbounded));
    EXPECT_THAT(clusterPixels(generator, pixels), IsEmpty());
}

TYPED_TEST(CentroidGenerator, ConvertsBoxesBackToPixels) {
    auto generator = CentroidSettings().scales(2, 0.5F, 0.25F).build<TypeParam>();
    const auto clusters = clusterPixels(generator, {{10, 20, 4000}, {11, 22, 4004}});
    ASSERT_THAT(boxesOf(clusters), ElementsAre(Box{10, 20, 1, 2}));
    EXPECT_EQ(clusters[0].start_time, TypeParam::kDim == 2 ? -1 : 4000);
    EXPECT_EQ(clusters[0].duration, TypeParam::kDim == 2 ? 0 : 4);
}

TYPED_TEST(CentroidGenerator, GroupsScaledPoints) {
    // 6 columns are less than 4 rows.
    auto generator = CentroidSettings().scales(0.5F, 2, 1).clusters(2).build<TypeParam>();
    EXPECT_THAT(boxesOf(clusterPixels(generator, {{10, 10}, {16, 11}, {10, 14}, {16, 15}})),
                UnorderedElementsAre(Box{10, 10, 6, 1}, Box{10, 14, 6, 1}));
}

TYPED_TEST(CentroidGenerator, ClipsBoxesToTheSensor) {
    auto generator = CentroidSettings().sensor(10, 8).build<TypeParam>();
    EXPECT_THAT(boxesOf(clusterPixels(generator, {{8, 6}, {11, 9}})), ElementsAre(Box{8, 6, 2, 2}));
}

TYPED_TEST(CentroidGenerator, ReportsClustersOffTheSensorOrWithoutAreaAsEmptyBoxes) {
    auto generator = CentroidSettings().sensor(10, 8).clusters(2).build<TypeParam>();
    feedPixels(generator, squareAt(20, 20));
    feedPixels(generator, {{4, 4}, {5, 4}});
    const auto clusters = generateFrom(generator, 9);
    ASSERT_THAT(boxesOf(clusters), ElementsAre(kNoBox, kNoBox));
    EXPECT_EQ(clusters[1].timestamp, 9U);
}

TYPED_TEST(CentroidGenerator, ReportsClustersWithoutPointsAsEmptyBoxesAtNoTime) {
    for (const float scale : {1.0F, 0.25F, 4.0F}) {
        auto generator =
            CentroidSettings().scales(scale, scale, scale).clusters(3).build<TypeParam>();
        feedPixels(generator, {{5, 5}, {5, 5}, {5, 5}, {6, 7}, {6, 7}});
        const auto clusters = generateFrom(generator, 9);
        ASSERT_THAT(boxesOf(clusters), Each(kNoBox));
        ASSERT_THAT(clusters, SizeIs(3));
        // Two clusters of coinciding points each, and an empty one.
        EXPECT_EQ(clusters[2].start_time, TypeParam::kDim == 2 ? -1 : 0);
        EXPECT_EQ(clusters[2].duration, 0);
        EXPECT_EQ(clusters[2].timestamp, 9U);
        EXPECT_EQ(clusters[0].start_time, TypeParam::kDim == 2 ? -1 : 1000);
        EXPECT_THAT(sizesOf(generator), AnyOf(ElementsAre(3, 2, 0), ElementsAre(2, 3, 0)));
    }
}

TYPED_TEST(CentroidGenerator, ReturnsForScalesThatAreNotFinite) {
    for (const float bad : {std::numeric_limits<float>::infinity(),
                            std::numeric_limits<float>::quiet_NaN(), 1e-45F, 3e38F}) {
        for (int axis = 0; axis < TypeParam::kDim; ++axis) {
            auto settings = CentroidSettings().clusters(20);
            settings.scales(axis == 0 ? bad : 1, axis == 1 ? bad : 1, axis == 2 ? bad : 1);
            auto generator = settings.build<TypeParam>();
            for (int i = 0; i < 3000; ++i) {
                feedPixels(generator, {{i % 100, i / 100}});
            }
            EXPECT_THAT(generateFrom(generator), SizeIs(20));
            const auto sizes = sizesOf(generator);
            EXPECT_EQ(std::accumulate(sizes.begin(), sizes.end(), 0ULL), 3000U);
        }
    }
}

TYPED_TEST(CentroidGenerator, ClustersEventsAsTheModelClustersPoints) {
    for (std::uint64_t seed = 0; seed < 40; ++seed) {
        Random random(seed);
        auto generator =
            CentroidSettings().scales(1, 2, 0.5F).clusters(4).iterations(5).build<TypeParam>();
        std::vector<Pixel> pixels(40);
        typename TypeParam::Points points;
        for (Pixel& pixel : pixels) {
            pixel = {randomInt(random, 0, 30), randomInt(random, 0, 15), 1000 + points.size() / 4};
            points.push_back(
                at<TypeParam>(pixel.x, 2 * pixel.y, 0.5 * static_cast<double>(pixel.timestamp)));
        }
        const auto boxes = boxesOf(clusterPixels(generator, pixels));
        const auto centroids = centroidsOf<TypeParam>(generator);
        const auto sizes = sizesOf(generator);
        const auto agrees = [&](std::size_t first) {
            const auto model = KMeansModelRun<TypeParam>(points, 4, 5, 1e-6, first).outcome;
            bool same = std::equal(sizes.begin(), sizes.end(), model.counts.begin());
            for (std::size_t c = 0; c < 4; ++c) {
                const auto& box = model.clustering.boxes[c];
                same = same && centroids[c].coordinates == model.centroids[c].coordinates;
                if (box[TypeParam::kDim] > 0 && box[TypeParam::kDim + 1] > 0) {
                    same = same && boxes[c].x == static_cast<float>(box[0]) &&
                           boxes[c].height == static_cast<float>(box[TypeParam::kDim + 1] / 2);
                }
            }
            return same;
        };
        std::size_t first = 0;
        while (first < points.size() && !agrees(first)) {
            ++first;
        }
        EXPECT_LT(first, points.size()) << "seed " << seed;
    }
}

}  // namespace
}  // namespace kelvora::test
