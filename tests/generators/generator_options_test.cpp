// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "support/boxes.hpp"
#include "support/centroid_settings.hpp"
#include "support/density_settings.hpp"
#include "support/grid_settings.hpp"
#include "support/pixels.hpp"

namespace kelvora::test {
namespace {

using ::testing::IsEmpty;
using ::testing::Not;

/// Two squares of 10 x 6 pixels apart from each other, over 30 ms, with both polarities.
std::vector<Pixel> twoSquares() {
    std::vector<Pixel> pixels;
    for (int i = 0; i < 60; ++i) {
        const int x = i % 2 == 0 ? 10 + i % 10 : 50 + i % 7;
        const auto timestamp = 1000 + 500 * static_cast<unsigned long long>(i);
        pixels.push_back({x, 18 + i % 6, timestamp, i / 2 % 2});
    }
    return pixels;
}

template <class Generator>
std::vector<Box> boxesFrom(Generator& generator) {
    return boxesOf(clusterPixels(generator, twoSquares()));
}

template <class Make>
std::string messageOf(Make make) {
    try {
        make();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "nothing was thrown";
}

DensityBasedClusterGeneratorOptions optionsOf(const DensitySettings& settings) {
    DensityBasedClusterGeneratorOptions options;
    options.scale_width = settings.scale_width;
    options.scale_height = settings.scale_height;
    options.scale_time = settings.scale_time;
    options.filter_type = settings.filter_type;
    options.max_capacity = settings.max_capacity;
    options.max_time_length = settings.max_time_length;
    options.eps = settings.eps;
    options.min_pts = settings.min_pts;
    options.n_jobs = settings.n_jobs;
    return options;
}

CentroidBasedClusterGeneratorOptions optionsOf(const CentroidSettings& settings) {
    CentroidBasedClusterGeneratorOptions options;
    options.scale_width = settings.scale_width;
    options.scale_height = settings.scale_height;
    options.scale_time = settings.scale_time;
    options.filter_type = settings.filter_type;
    options.max_capacity = settings.max_capacity;
    options.max_time_length = settings.max_time_length;
    options.k_clusters = settings.k_clusters;
    options.max_iter = settings.max_iter;
    options.tol = settings.tol;
    return options;
}

GridBasedClusterGeneratorOptions optionsOf(const GridSettings& settings) {
    GridBasedClusterGeneratorOptions options;
    options.cell_width = settings.cell_width;
    options.cell_height = settings.cell_height;
    options.max_cluster_size = settings.max_cluster_size;
    options.min_cluster_size = settings.min_cluster_size;
    options.filter_type = settings.filter_type;
    options.count_pixel_once = settings.count_pixel_once;
    options.activation_threshold = settings.activation_threshold;
    return options;
}

template <class Kind>
class PointGeneratorOptions : public ::testing::Test {
public:
    using Density = DensityBasedClusterGenerator<Kind::kDim, typename Kind::T>;
    using Centroid = CentroidBasedClusterGenerator<Kind::kDim, typename Kind::T>;

    static void expectSameBoxes(const DensitySettings& settings) {
        auto expected = settings.build<Kind>();
        Density generator(settings.sensor_width, settings.sensor_height, optionsOf(settings));
        const auto boxes = boxesFrom(expected);
        EXPECT_THAT(boxes, Not(IsEmpty()));
        EXPECT_EQ(boxesFrom(generator), boxes);
    }

    static void expectSameBoxes(const CentroidSettings& settings) {
        auto expected = settings.build<Kind>();
        Centroid generator(settings.sensor_width, settings.sensor_height, optionsOf(settings));
        const auto boxes = boxesFrom(expected);
        EXPECT_THAT(boxes, Not(IsEmpty()));
        EXPECT_EQ(boxesFrom(generator), boxes);
    }

    template <class Generator, class Settings>
    static void expectSameMessage(const Settings& settings) {
        const auto message = messageOf([&] { settings.template build<Kind>(); });
        EXPECT_NE(message, "nothing was thrown");
        EXPECT_EQ(messageOf([&] {
                      const Generator generator(settings.sensor_width, settings.sensor_height,
                                                optionsOf(settings));
                  }),
                  message);
    }
};
TYPED_TEST_SUITE(PointGeneratorOptions, PointKinds, PointKindNames);

TYPED_TEST(PointGeneratorOptions, GiveTheSameDensityClustersAsTheArgumentsInOrder) {
    const DensitySettings some = DensitySettings().density(5, 3).scales(1, 1, 1e-4F);
    this->expectSameBoxes(some);
    this->expectSameBoxes(DensitySettings(some).scales(0.5, 2, 1e-3F));
    this->expectSameBoxes(DensitySettings(some).sensor(53, 21));
    this->expectSameBoxes(DensitySettings(some).filter(NEGATIVE_FREE));
    this->expectSameBoxes(DensitySettings(some).capacity(25));
    this->expectSameBoxes(DensitySettings(some).timeLength(9000));
    this->expectSameBoxes(DensitySettings(some).density(100, 20));
    this->expectSameBoxes(DensitySettings(some).jobs(2));
}

TYPED_TEST(PointGeneratorOptions, GiveTheSameCentroidClustersAsTheArgumentsInOrder) {
    // With one cluster, or as many as points, nothing depends on the random start.
    const CentroidSettings some = CentroidSettings().scales(1, 1, 1e-4F);
    this->expectSameBoxes(some);
    this->expectSameBoxes(CentroidSettings(some).scales(0.5, 2, 1e-3F));
    this->expectSameBoxes(CentroidSettings(some).sensor(53, 21));
    this->expectSameBoxes(CentroidSettings(some).filter(NEGATIVE_FREE));
    this->expectSameBoxes(CentroidSettings(some).capacity(25));
    this->expectSameBoxes(CentroidSettings(some).timeLength(9000));
}

TYPED_TEST(PointGeneratorOptions, AreCheckedLikeTheArgumentsInOrder) {
    using DensityGenerator = typename TestFixture::Density;
    this->template expectSameMessage<DensityGenerator>(DensitySettings().sensor(0, 10));
    this->template expectSameMessage<DensityGenerator>(DensitySettings().scales(1, 1, 0));
    this->template expectSameMessage<DensityGenerator>(DensitySettings().filter(POLARITY_SEPARATE));
    this->template expectSameMessage<DensityGenerator>(DensitySettings().capacity(0));
    this->template expectSameMessage<DensityGenerator>(DensitySettings().timeLength(0));
    this->template expectSameMessage<DensityGenerator>(DensitySettings().density(0, 1));
    this->template expectSameMessage<DensityGenerator>(DensitySettings().density(1, 0));
    using CentroidGenerator = typename TestFixture::Centroid;
    this->template expectSameMessage<CentroidGenerator>(CentroidSettings().sensor(10, 0));
    this->template expectSameMessage<CentroidGenerator>(CentroidSettings().scales(0, 1, 1));
    this->template expectSameMessage<CentroidGenerator>(
        CentroidSettings().filter(POLARITY_SEPARATE));
    this->template expectSameMessage<CentroidGenerator>(CentroidSettings().capacity(0));
    this->template expectSameMessage<CentroidGenerator>(CentroidSettings().timeLength(0));
    this->template expectSameMessage<CentroidGenerator>(CentroidSettings().clusters(0));
    this->template expectSameMessage<CentroidGenerator>(CentroidSettings().iterations(0));
    this->template expectSameMessage<CentroidGenerator>(CentroidSettings().iterations(1, 0));
}

TYPED_TEST(PointGeneratorOptions, RefuseToClusterWithoutANumberOfClusters) {
    using CentroidGenerator = typename TestFixture::Centroid;
    const CentroidBasedClusterGeneratorOptions options;
    EXPECT_EQ(messageOf([&] { const CentroidGenerator generator(100, 80, options); }),
              "CentroidClustering: k must be greater than 0");
}

TYPED_TEST(PointGeneratorOptions, NeedNoOthersForDensityClusters) {
    typename TestFixture::Density generator(100, 80, DensityBasedClusterGeneratorOptions());
    EXPECT_EQ(boxesFrom(generator).size(), 2U);
}

void expectSameBoxes(const GridSettings& settings) {
    auto expected = settings.build();
    GridBasedClusterGenerator generator(settings.sensor_width, settings.sensor_height,
                                        optionsOf(settings));
    const auto boxes = boxesFrom(expected);
    EXPECT_THAT(boxes, Not(IsEmpty())) << settings;
    EXPECT_EQ(boxesFrom(generator), boxes) << settings;
}

TEST(GridGeneratorOptions, GiveTheSameClustersAsTheArgumentsInOrder) {
    const GridSettings some = GridSettings().sensor(100, 80);
    expectSameBoxes(some);
    expectSameBoxes(GridSettings(some).sensor(60, 30));
    expectSameBoxes(GridSettings(some).cells(7, 2));
    expectSameBoxes(GridSettings(some).clusterSizes(1, 16));
    expectSameBoxes(GridSettings(some).filter(POLARITY_SEPARATE));
    expectSameBoxes(GridSettings(some).threshold(3));
    expectSameBoxes(GridSettings(some).threshold(2).countPixelOnce());
}

TEST(GridGeneratorOptions, AreCheckedLikeTheArgumentsInOrder) {
    for (const GridSettings& settings :
         {GridSettings().cells(0, 1), GridSettings().cells(1, -1), GridSettings().sensor(0, 1)}) {
        EXPECT_EQ(messageOf([&] {
                      const GridBasedClusterGenerator generator(
                          settings.sensor_width, settings.sensor_height, optionsOf(settings));
                  }),
                  "Invalid cell size or sensor size");
    }
}

TEST(GridGeneratorOptions, NeedNoOthers) {
    GridBasedClusterGenerator generator(100, 80, GridBasedClusterGeneratorOptions());
    EXPECT_EQ(boxesFrom(generator).size(), 2U);
}

}  // namespace
}  // namespace kelvora::test
