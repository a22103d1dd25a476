// SPDX-License-Identifier: MIT
#include "kelvora/grid_based_cluster_generator.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

#include "support/boxes.hpp"
#include "support/event_builders.hpp"
#include "support/grid_settings.hpp"

// Unless a test says otherwise, cells are 4 x 4 pixels and one event makes a cell active. No test
// here ignores a polarity, because the first filter would apply to all tests.

namespace kelvora::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// The boxes of single positive events at some pixels.
struct Pixel {
    int x;
    int y;
};

std::vector<Box> boxesAround(const std::vector<Pixel>& pixels,
                             const GridSettings& settings = GridSettings()) {
    auto generator = settings.build();
    for (const Pixel& pixel : pixels) {
        feed(generator, positiveEvent(pixel.x, pixel.y));
    }
    return boxesOf(generate(generator));
}

// The result of generateClusters.

TEST(GridBasedClusterGenerator, EmptiesTheVectorAndAppendsNothingBeforeTheFirstEvent) {
    auto generator = GridSettings().build();
    std::vector<ClusterGeometry> clusters(3);
    generator.generateClusters(7, clusters);
    EXPECT_THAT(clusters, IsEmpty());
}

TEST(GridBasedClusterGenerator, ReplacesTheClustersOfTheBatchBefore) {
    auto generator = GridSettings().build();
    std::vector<ClusterGeometry> clusters;
    feed(generator, positiveEvent(0, 0));
    feed(generator, positiveEvent(20, 20));
    generator.generateClusters(1, clusters);
    EXPECT_THAT(clusters, SizeIs(2));
    feed(generator, positiveEvent(12, 0));
    generator.generateClusters(2, clusters);
    EXPECT_THAT(boxesOf(clusters), ElementsAre(Box{12, 0, 8, 8}));
}

TEST(GridBasedClusterGenerator, KeepsTheStorageOfTheVector) {
    auto generator = GridSettings().build();
    std::vector<ClusterGeometry> clusters(100);
    const auto* const storage = clusters.data();
    feed(generator, positiveEvent(0, 0));
    generator.generateClusters(1, clusters);
    EXPECT_EQ(clusters.data(), storage);
    EXPECT_GE(clusters.capacity(), 100U);
}

TEST(GridBasedClusterGenerator, StampsClustersWithTheTimeOfTheCallAndSetsNoOtherExtent) {
    constexpr auto kLargestTime = std::numeric_limits<std::size_t>::max();
    auto generator = GridSettings().build();
    feed(generator, positiveEvent(0, 0));
    const auto clusters = generate(generator, kLargestTime);
    ASSERT_THAT(clusters, SizeIs(1));
    EXPECT_EQ(clusters[0].timestamp, kLargestTime);
    EXPECT_EQ(clusters[0].start_time, -1);
    EXPECT_EQ(clusters[0].duration, 0);
    EXPECT_EQ(clusters[0].z, 0U);
    EXPECT_EQ(clusters[0].depth, 0U);
}

TEST(GridBasedClusterGenerator, ReportsNothingInASecondCallWithoutEvents) {
    auto generator = GridSettings().build();
    feed(generator, positiveEvent(0, 0), 5);
    EXPECT_THAT(generate(generator), SizeIs(1));
    EXPECT_THAT(generate(generator), IsEmpty());
}

TEST(GridBasedClusterGenerator, CountsFromZeroAfterEachCall) {
    auto generator = GridSettings().threshold(3).build();
    feed(generator, positiveEvent(0, 0), 2);
    EXPECT_THAT(generate(generator), IsEmpty());
    feed(generator, positiveEvent(0, 0), 2);
    EXPECT_THAT(generate(generator), IsEmpty());
    feed(generator, positiveEvent(0, 0), 3);
    EXPECT_THAT(generate(generator), SizeIs(1));
}

TEST(GridBasedClusterGenerator, IgnoresTheTimestampsOfEvents) {
    auto generator = GridSettings().threshold(2).build();
    feed(generator, Event2D(0, 0, 1, std::numeric_limits<unsigned long long>::max()));
    feed(generator, Event2D(0, 0, 1, 0));
    EXPECT_THAT(generate(generator, 5), SizeIs(1));
}

TEST(GridBasedClusterGenerator, SharesNothingWithOtherGenerators) {
    auto first = GridSettings().threshold(2).build();
    auto second = GridSettings().threshold(2).build();
    feed(first, positiveEvent(0, 0));
    feed(second, positiveEvent(0, 0));
    EXPECT_THAT(generate(first), IsEmpty());
    EXPECT_THAT(generate(second), IsEmpty());
}

// Which cells become one cluster.

TEST(GridBasedClusterGenerator, ReportsASingleActiveCellAsTwoByTwoCells) {
    EXPECT_THAT(boxesAround({{13, 22}}), ElementsAre(Box{12, 20, 8, 8}));
}

TEST(GridBasedClusterGenerator, TakesAllPixelsOfACellAlike) {
    for (const Pixel& pixel : {Pixel{12, 20}, {15, 20}, {12, 23}, {15, 23}}) {
        EXPECT_THAT(boxesAround({pixel}), ElementsAre(Box{12, 20, 8, 8}));
    }
    EXPECT_THAT(boxesAround({{11, 20}}), ElementsAre(Box{8, 20, 8, 8}));
    EXPECT_THAT(boxesAround({{16, 24}}), ElementsAre(Box{16, 24, 8, 8}));
}

TEST(GridBasedClusterGenerator, CutsTheBlockAtTheEdgeOfTheGrid) {
    EXPECT_THAT(boxesAround({{39, 0}}), ElementsAre(Box{36, 0, 4, 8}));
    EXPECT_THAT(boxesAround({{0, 39}}), ElementsAre(Box{0, 36, 8, 4}));
    EXPECT_THAT(boxesAround({{39, 39}}), ElementsAre(Box{36, 36, 4, 4}));
}

TEST(GridBasedClusterGenerator, DoesNotContinueABlockOfTheLastColumnInTheNextRow) {
    EXPECT_THAT(boxesAround({{39, 0}, {0, 4}}), ElementsAre(Box{36, 0, 4, 8}, Box{0, 4, 8, 8}));
}

TEST(GridBasedClusterGenerator, JoinsCellsThatTouchOnlyAtACorner) {
    EXPECT_THAT(boxesAround({{0, 0}, {4, 4}}), ElementsAre(Box{0, 0, 12, 12}));
    EXPECT_THAT(boxesAround({{4, 0}, {0, 4}}), ElementsAre(Box{0, 0, 12, 12}));
}

TEST(GridBasedClusterGenerator, JoinsCellsOverAGapOfOneCell) {
    EXPECT_THAT(boxesAround({{0, 0}, {8, 0}}), ElementsAre(Box{0, 0, 16, 8}));
    EXPECT_THAT(boxesAround({{0, 0}, {0, 8}}), ElementsAre(Box{0, 0, 8, 16}));
}

TEST(GridBasedClusterGenerator, KeepsCellsApartOverAGapOfTwoCells) {
    EXPECT_THAT(boxesAround({{0, 0}, {12, 0}}), ElementsAre(Box{0, 0, 8, 8}, Box{12, 0, 8, 8}));
    EXPECT_THAT(boxesAround({{0, 0}, {0, 12}}), ElementsAre(Box{0, 0, 8, 8}, Box{0, 12, 8, 8}));
}

TEST(GridBasedClusterGenerator, KeepsBlocksApartThatTouchOnlyAtACorner) {
    EXPECT_THAT(boxesAround({{0, 0}, {8, 8}}), ElementsAre(Box{0, 0, 8, 8}, Box{8, 8, 8, 8}));
}

TEST(GridBasedClusterGenerator, GivesTheSameClustersForAnyOrderOfTheEvents) {
    std::vector<Pixel> pixels = {{0, 0}, {8, 4}, {20, 20}, {28, 16}, {36, 0}};
    const auto expected = boxesAround(pixels);
    std::reverse(pixels.begin(), pixels.end());
    EXPECT_EQ(boxesAround(pixels), expected);
    EXPECT_THAT(expected, SizeIs(3));
}

TEST(GridBasedClusterGenerator, OrdersClustersByTheirFirstCellsFromTopToBottomAndLeftToRight) {
    EXPECT_THAT(boxesAround({{0, 32}, {28, 0}, {0, 0}, {16, 4}}),
                ElementsAre(Box{0, 0, 8, 8}, Box{28, 0, 8, 8}, Box{16, 4, 8, 8}, Box{0, 32, 8, 8}));
}

TEST(GridBasedClusterGenerator, TakesTheLeftmostCellOfTheTopRowAsFirst) {
    // The second cluster continues below the first, further to the left.
    EXPECT_THAT(boxesAround({{24, 0}, {24, 8}, {24, 16}, {16, 16}, {8, 16}, {0, 16}, {8, 0}}),
                ElementsAre(Box{8, 0, 8, 8}, Box{0, 0, 32, 24}));
}

// The size filter.

TEST(GridBasedClusterGenerator, AcceptsClustersOfExactlyTheSmallestAndTheLargestSize) {
    EXPECT_THAT(boxesAround({{0, 0}}, GridSettings().clusterSizes(8, 8)),
                ElementsAre(Box{0, 0, 8, 8}));
    EXPECT_THAT(boxesAround({{0, 0}}, GridSettings().clusterSizes(9, 100)), IsEmpty());
    EXPECT_THAT(boxesAround({{0, 0}}, GridSettings().clusterSizes(0, 7)), IsEmpty());
}

TEST(GridBasedClusterGenerator, AppliesBothSizesToWidthAndHeightAlike) {
    const std::vector<Pixel> wide = {{0, 0}, {4, 0}};
    const std::vector<Pixel> high = {{0, 0}, {0, 4}};
    EXPECT_THAT(boxesAround(wide, GridSettings().clusterSizes(8, 12)), SizeIs(1));
    EXPECT_THAT(boxesAround(high, GridSettings().clusterSizes(8, 12)), SizeIs(1));
    for (const GridSettings& settings :
         {GridSettings().clusterSizes(9, 12), GridSettings().clusterSizes(8, 11)}) {
        EXPECT_THAT(boxesAround(wide, settings), IsEmpty());
        EXPECT_THAT(boxesAround(high, settings), IsEmpty());
    }
}

TEST(GridBasedClusterGenerator, RejectsEveryClusterIfTheSmallestSizeExceedsTheLargest) {
    EXPECT_THAT(boxesAround({{0, 0}, {20, 20}, {24, 24}}, GridSettings().clusterSizes(12, 8)),
                IsEmpty());
}

TEST(GridBasedClusterGenerator, AcceptsNegativeSizes) {
    EXPECT_THAT(boxesAround({{39, 39}}, GridSettings().clusterSizes(-1, 100)), SizeIs(1));
    EXPECT_THAT(boxesAround({{39, 39}}, GridSettings().clusterSizes(-2, -1)), IsEmpty());
}

TEST(GridBasedClusterGenerator, ReportsTheOtherClustersIfOneIsRejected) {
    EXPECT_THAT(boxesAround({{0, 0}, {20, 0}, {24, 0}, {0, 20}}, GridSettings().clusterSizes(0, 8)),
                ElementsAre(Box{0, 0, 8, 8}, Box{0, 20, 8, 8}));
}

TEST(GridBasedClusterGenerator, DropsARejectedClusterForGood) {
    auto generator = GridSettings().clusterSizes(12, 100).build();
    feed(generator, positiveEvent(0, 0));
    EXPECT_THAT(generate(generator), IsEmpty());
    feed(generator, positiveEvent(4, 4));
    EXPECT_THAT(generate(generator), IsEmpty());
}

// Sensors whose size is not a multiple of the cell size.

TEST(GridBasedClusterGenerator, ClipsClustersToTheSensor) {
    const GridSettings settings = GridSettings().sensor(10, 10);
    EXPECT_THAT(boxesAround({{9, 0}}, settings), ElementsAre(Box{8, 0, 2, 8}));
    EXPECT_THAT(boxesAround({{0, 9}}, settings), ElementsAre(Box{0, 8, 8, 2}));
    EXPECT_THAT(boxesAround({{9, 9}}, settings), ElementsAre(Box{8, 8, 2, 2}));
    EXPECT_THAT(boxesAround({{4, 4}}, settings), ElementsAre(Box{4, 4, 6, 6}));
}

TEST(GridBasedClusterGenerator, MeasuresClustersBeforeItClipsThem) {
    const std::vector<Pixel> corner = {{9, 9}};
    const GridSettings settings = GridSettings().sensor(10, 10);
    EXPECT_THAT(boxesAround(corner, GridSettings(settings).clusterSizes(4, 4)),
                ElementsAre(Box{8, 8, 2, 2}));
    EXPECT_THAT(boxesAround(corner, GridSettings(settings).clusterSizes(5, 10)), IsEmpty());
    EXPECT_THAT(boxesAround(corner, GridSettings(settings).clusterSizes(0, 3)), IsEmpty());
}

}  // namespace
}  // namespace kelvora::test
