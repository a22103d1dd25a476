// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <opencv2/core/mat.hpp>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include "kelvora/density_based_cluster_generator.hpp"
#include "support/density_settings.hpp"

namespace kelvora::test {
namespace {

using ::testing::Each;
using ::testing::IsEmpty;
using ::testing::SizeIs;

template <class Kind>
class PointsOfTheDensityGenerator : public ::testing::Test {
public:
    using Generator = DensityBasedClusterGenerator<Kind::kDim, typename Kind::T>;
    using Coordinates = std::array<typename Kind::T, Kind::kDim>;
    static constexpr int kDepth = std::is_same_v<typename Kind::T, float> ? CV_32F : CV_64F;

    // With these scales, two columns, two rows, or four microseconds are one unit.
    static DensitySettings settings() {
        return DensitySettings().scales(0.5F, 0.5F, 0.25F).density(0.75, 1);
    }

    /// A cluster of three points and one of two.
    static void findTwoClusters(Generator& generator) {
        clusterPixels(generator,
                      {{10, 20, 400}, {50, 60, 404}, {11, 20, 404}, {51, 60, 404}, {12, 20, 404}});
    }

    static std::vector<typename Kind::Points> pointsOf(Generator& generator, bool restore_scale) {
        std::vector<typename Kind::Points> points;
        generator.getClusterPoints(points, restore_scale);
        return points;
    }

    static void expectThereAreNoPoints(Generator& generator) {
        EXPECT_THAT(pointsOf(generator, true), Each(IsEmpty()));
        std::vector<cv::Mat> matrices;
        generator.getClusterPoints(matrices, false);
        for (const cv::Mat& matrix : matrices) {
            EXPECT_EQ(matrix.rows, 0);
        }
        cv::Mat matrix(3, 3, CV_8U);
        generator.getClusterPoints(matrix, true);
        EXPECT_EQ(matrix.rows, 0);
    }

    /// Coordinates of the points of a cluster, sorted.
    static std::vector<Coordinates> sorted(const typename Kind::Points& points) {
        std::vector<Coordinates> coordinates;
        for (const auto& point : points) {
            coordinates.push_back(point.coordinates);
        }
        std::sort(coordinates.begin(), coordinates.end());
        return coordinates;
    }

    static Coordinates coordinates(double x, double y, double z) {
        return at<Kind>(x, y, z).coordinates;
    }
};
TYPED_TEST_SUITE(PointsOfTheDensityGenerator, PointKinds, PointKindNames);

TYPED_TEST(PointsOfTheDensityGenerator, AreNoneAtFirst) {
    auto generator = this->settings().template build<TypeParam>();
    EXPECT_THAT(this->pointsOf(generator, true), IsEmpty());
    this->expectThereAreNoPoints(generator);
}

TYPED_TEST(PointsOfTheDensityGenerator, AreGroupedByCluster) {
    // In three dimensions the first point is a unit of time away from all others.
    auto generator = this->settings().density(1.125, 1).template build<TypeParam>();
    this->findTwoClusters(generator);
    auto points = this->pointsOf(generator, true);
    ASSERT_THAT(points, SizeIs(2));
    const auto c = [this](double x, double y, double z) { return this->coordinates(x, y, z); };
    EXPECT_THAT(this->sorted(points[0]),
                ::testing::ElementsAre(c(10, 20, 400), c(11, 20, 404), c(12, 20, 404)));
    EXPECT_THAT(this->sorted(points[1]), ::testing::ElementsAre(c(50, 60, 404), c(51, 60, 404)));
    points = this->pointsOf(generator, false);
    ASSERT_THAT(points, SizeIs(2));
    EXPECT_THAT(this->sorted(points[0]),
                ::testing::ElementsAre(c(5, 10, 100), c(5.5, 10, 101), c(6, 10, 101)));
    EXPECT_THAT(this->sorted(points[1]), ::testing::ElementsAre(c(25, 30, 101), c(25.5, 30, 101)));
}

TYPED_TEST(PointsOfTheDensityGenerator, AreAppendedToVectors) {
    auto generator = this->settings().density(1.125, 1).template build<TypeParam>();
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

TYPED_TEST(PointsOfTheDensityGenerator, AreRowsOfOneMatrixPerCluster) {
    auto generator = this->settings().density(1.125, 1).template build<TypeParam>();
    this->findTwoClusters(generator);
    for (const bool restore_scale : {false, true}) {
        const auto points = this->pointsOf(generator, restore_scale);
        std::vector<cv::Mat> matrices;
        generator.getClusterPoints(matrices, restore_scale);
        ASSERT_EQ(matrices.size(), points.size());
        for (std::size_t cluster = 0; cluster < points.size(); ++cluster) {
            const cv::Mat& matrix = matrices[cluster];
            ASSERT_EQ(matrix.type(), CV_MAKETYPE(TestFixture::kDepth, 1));
            ASSERT_EQ(matrix.cols, TypeParam::kDim);
            ASSERT_EQ(static_cast<std::size_t>(matrix.rows), points[cluster].size());
            for (int row = 0; row < matrix.rows; ++row) {
                for (int axis = 0; axis < TypeParam::kDim; ++axis) {
                    EXPECT_EQ(matrix.at<typename TypeParam::T>(row, axis),
                              points[cluster][static_cast<std::size_t>(row)].getPoint(axis));
                }
            }
        }
    }
}

TYPED_TEST(PointsOfTheDensityGenerator, AreElementsOfOneColumnForAllClusters) {
    auto generator = this->settings().density(1.125, 1).template build<TypeParam>();
    this->findTwoClusters(generator);
    for (const bool restore_scale : {false, true}) {
        cv::Mat matrix(7, 7, CV_8U);
        generator.getClusterPoints(matrix, restore_scale);
        ASSERT_EQ(matrix.type(), CV_MAKETYPE(TestFixture::kDepth, TypeParam::kDim));
        ASSERT_EQ(matrix.cols, 1);
        ASSERT_EQ(matrix.rows, 5);
        int row = 0;
        for (const auto& cluster : this->pointsOf(generator, restore_scale)) {
            for (const auto& point : cluster) {
                const auto* const element = matrix.ptr<typename TypeParam::T>(row++);
                EXPECT_TRUE(
                    std::equal(point.coordinates.begin(), point.coordinates.end(), element));
            }
        }
    }
}

TYPED_TEST(PointsOfTheDensityGenerator, OutliveTheGeneratorInMatrices) {
    cv::Mat matrix;
    std::vector<cv::Mat> matrices;
    {
        auto generator = this->settings().density(1.125, 1).template build<TypeParam>();
        this->findTwoClusters(generator);
        generator.getClusterPoints(matrix, true);
        generator.getClusterPoints(matrices, true);
    }
    EXPECT_EQ(matrix.ptr<typename TypeParam::T>(0)[1], 20);
    EXPECT_EQ(matrices[1].template at<typename TypeParam::T>(0, 1), 60);
}

TYPED_TEST(PointsOfTheDensityGenerator, AreFromTheLastCall) {
    auto generator = this->settings().density(1.125, 1).template build<TypeParam>();
    this->findTwoClusters(generator);
    clusterPixels(generator, {{3, 4, 800}});
    feedPixels(generator, {{7, 7, 800}});
    const auto points = this->pointsOf(generator, true);
    ASSERT_THAT(points, SizeIs(1));
    EXPECT_THAT(this->sorted(points[0]), ::testing::ElementsAre(this->coordinates(3, 4, 800)));
    generateFrom(generator);
    generateFrom(generator);
    EXPECT_THAT(this->pointsOf(generator, true), IsEmpty());
}

TYPED_TEST(PointsOfTheDensityGenerator, AreGoneAfterResetUnlikeNewEvents) {
    auto generator = this->settings().density(1.125, 1).template build<TypeParam>();
    this->findTwoClusters(generator);
    feedPixels(generator, {{3, 4, 800}});
    generator.reset();
    this->expectThereAreNoPoints(generator);
    generator.reset();
    this->expectThereAreNoPoints(generator);
    EXPECT_THAT(generateFrom(generator), SizeIs(1));
    EXPECT_THAT(this->pointsOf(generator, true), SizeIs(1));
}

TYPED_TEST(PointsOfTheDensityGenerator, AreNoneWhenGeneratingThrew) {
    auto generator = this->settings().jobs(256).template build<TypeParam>();
    for (const int count : {100, 5, 1}) {
        for (int i = 0; i < count; ++i) {
            feedPixels(generator, squareAt(i % 50, 5));
        }
        EXPECT_THROW(generateFrom(generator), std::runtime_error);
        this->expectThereAreNoPoints(generator);
    }
    generator.reset();
    this->expectThereAreNoPoints(generator);
}

}  // namespace
}  // namespace kelvora::test
