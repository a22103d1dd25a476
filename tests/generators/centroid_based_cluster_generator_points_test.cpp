// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <opencv2/core/mat.hpp>
#include <type_traits>
#include <vector>

#include "kelvora/centroid_based_cluster_generator.hpp"
#include "support/centroid_settings.hpp"

namespace kelvora::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

template <class Kind>
class PointsOfTheCentroidGenerator : public ::testing::Test {
public:
    using T = typename Kind::T;
    using Generator = CentroidBasedClusterGenerator<Kind::kDim, T>;
    using Coordinates = decltype(Kind::Point::coordinates);
    static constexpr int kDepth = std::is_same_v<T, float> ? CV_32F : CV_64F;

    /// A cluster of three points and one of two.
    static Generator withTwoClusters() {
        return CentroidSettings().scales(0.5F, 0.25F, 0.125F).clusters(2).build<Kind>();
    }
    static void findTwoClusters(Generator& generator) {
        clusterPixels(generator,
                      {{10, 20, 400}, {12, 20, 400}, {90, 60, 448}, {14, 26, 448}, {92, 60, 480}});
    }
    /// The index of the cluster of three points.
    static std::size_t largerOf(Generator& generator) { return sizesOf(generator)[0] == 3 ? 0 : 1; }

    static std::vector<Coordinates> coordinatesOf(const typename Kind::Points& points) {
        std::vector<Coordinates> coordinates;
        for (const auto& point : points) {
            coordinates.push_back(point.coordinates);
        }
        return coordinates;
    }
    static Coordinates c(double x, double y, double z) { return at<Kind>(x, y, z).coordinates; }
};
TYPED_TEST_SUITE(PointsOfTheCentroidGenerator, PointKinds, PointKindNames);

TYPED_TEST(PointsOfTheCentroidGenerator, AreNoneAtFirst) {
    auto generator = this->withTwoClusters();
    EXPECT_THAT(pointsOf<TypeParam>(generator), IsEmpty());
    std::vector<cv::Mat> matrices;
    generator.getClusterPoints(matrices, false);
    EXPECT_THAT(matrices, IsEmpty());
    cv::Mat matrix(3, 3, CV_8U);
    generator.getClusterPoints(matrix, true);
    EXPECT_EQ(matrix.rows, 0);
    EXPECT_THAT(centroidsOf<TypeParam>(generator), IsEmpty());
    EXPECT_THAT(sizesOf(generator), ElementsAre(0, 0));
}

TYPED_TEST(PointsOfTheCentroidGenerator, AreGroupedByClusterInTheOrderOfTheirEvents) {
    auto generator = this->withTwoClusters();
    this->findTwoClusters(generator);
    const std::size_t larger = this->largerOf(generator);
    auto points = pointsOf<TypeParam>(generator, true);
    ASSERT_THAT(points, SizeIs(2));
    EXPECT_THAT(this->coordinatesOf(points[larger]),
                ElementsAre(this->c(10, 20, 400), this->c(12, 20, 400), this->c(14, 26, 448)));
    EXPECT_THAT(this->coordinatesOf(points[1 - larger]),
                ElementsAre(this->c(90, 60, 448), this->c(92, 60, 480)));
    points = pointsOf<TypeParam>(generator, false);
    ASSERT_THAT(points, SizeIs(2));
    EXPECT_THAT(this->coordinatesOf(points[larger]),
                ElementsAre(this->c(5, 5, 50), this->c(6, 5, 50), this->c(7, 6.5, 56)));
    EXPECT_THAT(this->coordinatesOf(points[1 - larger]),
                ElementsAre(this->c(45, 15, 56), this->c(46, 15, 60)));
}

TYPED_TEST(PointsOfTheCentroidGenerator, HaveTheirCentroidsInScaledUnits) {
    auto generator = this->withTwoClusters();
    this->findTwoClusters(generator);
    const std::size_t larger = this->largerOf(generator);
    const auto centroids = centroidsOf<TypeParam>(generator);
    ASSERT_THAT(centroids, SizeIs(2));
    EXPECT_EQ(centroids[larger].coordinates, this->c(6, 5.5, 52));
    EXPECT_EQ(centroids[1 - larger].coordinates, this->c(45.5, 15, 58));
}

TYPED_TEST(PointsOfTheCentroidGenerator, AreCountedPerCluster) {
    auto generator = this->withTwoClusters();
    this->findTwoClusters(generator);
    EXPECT_THAT(sizesOf(generator), ::testing::UnorderedElementsAre(3, 2));
    const auto points = pointsOf<TypeParam>(generator);
    EXPECT_EQ(sizesOf(generator)[0], points[0].size());
}

TYPED_TEST(PointsOfTheCentroidGenerator, AreAppendedToVectors) {
    auto generator = this->withTwoClusters();
    this->findTwoClusters(generator);
    std::vector<typename TypeParam::Points> points(3);
    generator.getClusterPoints(points, true);
    generator.getClusterPoints(points, true);
    EXPECT_THAT(points, SizeIs(7));
    EXPECT_THAT(points[2], IsEmpty());
    std::vector<cv::Mat> matrices(3);
    generator.getClusterPoints(matrices, true);
    generator.getClusterPoints(matrices, true);
    EXPECT_THAT(matrices, SizeIs(7));
    EXPECT_TRUE(matrices[2].empty());
}

TYPED_TEST(PointsOfTheCentroidGenerator, AreRowsOfOneMatrixPerCluster) {
    auto generator = this->withTwoClusters();
    this->findTwoClusters(generator);
    for (const bool restore_scale : {false, true}) {
        const auto points = pointsOf<TypeParam>(generator, restore_scale);
        std::vector<cv::Mat> matrices;
        generator.getClusterPoints(matrices, restore_scale);
        ASSERT_THAT(matrices, SizeIs(2));
        for (std::size_t cluster = 0; cluster < 2; ++cluster) {
            const cv::Mat& matrix = matrices[cluster];
            ASSERT_EQ(matrix.type(), CV_MAKETYPE(TestFixture::kDepth, 1));
            ASSERT_EQ(matrix.cols, TypeParam::kDim);
            ASSERT_EQ(static_cast<std::size_t>(matrix.rows), points[cluster].size());
            for (int row = 0; row < matrix.rows; ++row) {
                const auto& point = points[cluster][static_cast<std::size_t>(row)].coordinates;
                EXPECT_TRUE(
                    std::equal(point.begin(), point.end(), matrix.ptr<typename TypeParam::T>(row)));
            }
        }
    }
}

TYPED_TEST(PointsOfTheCentroidGenerator, AreElementsOfOneColumnForAllClusters) {
    auto generator = this->withTwoClusters();
    this->findTwoClusters(generator);
    for (const bool restore_scale : {false, true}) {
        cv::Mat matrix(7, 7, CV_8U);
        generator.getClusterPoints(matrix, restore_scale);
        ASSERT_EQ(matrix.type(), CV_MAKETYPE(TestFixture::kDepth, TypeParam::kDim));
        ASSERT_EQ(matrix.cols, 1);
        ASSERT_EQ(matrix.rows, 5);
        int row = 0;
        for (const auto& cluster : pointsOf<TypeParam>(generator, restore_scale)) {
            for (const auto& point : cluster) {
                const auto* const element = matrix.ptr<typename TypeParam::T>(row++);
                EXPECT_TRUE(
                    std::equal(point.coordinates.begin(), point.coordinates.end(), element));
            }
        }
    }
}

TYPED_TEST(PointsOfTheCentroidGenerator, AreNoneInEachFormForClustersWithoutPoints) {
    auto generator = CentroidSettings().clusters(3).build<TypeParam>();
    clusterPixels(generator, {{5, 5}, {5, 5}, {5, 5}, {5, 5}});
    EXPECT_THAT(pointsOf<TypeParam>(generator), ElementsAre(SizeIs(4), IsEmpty(), IsEmpty()));
    std::vector<cv::Mat> matrices;
    generator.getClusterPoints(matrices, true);
    ASSERT_THAT(matrices, SizeIs(3));
    EXPECT_EQ(matrices[2].rows, 0);
    cv::Mat matrix;
    generator.getClusterPoints(matrix, true);
    EXPECT_EQ(matrix.rows, 4);
    EXPECT_THAT(this->coordinatesOf(centroidsOf<TypeParam>(generator)), Each(this->c(5, 5, 1000)));
}

TYPED_TEST(PointsOfTheCentroidGenerator, OutliveTheGeneratorInMatrices) {
    cv::Mat matrix;
    std::vector<cv::Mat> matrices;
    {
        auto generator = CentroidSettings().build<TypeParam>();
        clusterPixels(generator, {{10, 20}, {11, 60}});
        generator.getClusterPoints(matrix, true);
        generator.getClusterPoints(matrices, true);
    }
    EXPECT_EQ(matrix.ptr<typename TypeParam::T>(0)[1], 20);
    EXPECT_EQ(matrices[0].template at<typename TypeParam::T>(1, 1), 60);
}

TYPED_TEST(PointsOfTheCentroidGenerator, AreFromTheLastCallRegardlessOfLaterEvents) {
    auto generator = CentroidSettings().build<TypeParam>();
    clusterPixels(generator, {{10, 20}, {11, 60}});
    clusterPixels(generator, {{3, 4, 800}});
    feedPixels(generator, {{7, 7, 800}});
    const auto points = pointsOf<TypeParam>(generator);
    ASSERT_THAT(points, SizeIs(1));
    EXPECT_THAT(this->coordinatesOf(points[0]), ElementsAre(this->c(3, 4, 800)));
    EXPECT_THAT(sizesOf(generator), ElementsAre(1));
    generateFrom(generator);
    generateFrom(generator);
    EXPECT_THAT(pointsOf<TypeParam>(generator), IsEmpty());
}

}  // namespace
}  // namespace kelvora::test
